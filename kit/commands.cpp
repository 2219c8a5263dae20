// SPDX-License-Identifier: BSD-3-Clause
#include "kit/commands.h"

#include "kit/color/command.h"
#include "kit/compare/command.h"
#include "kit/export/command.h"
#include "kit/flow/command.h"
#include "kit/gen/command.h"
#include "kit/import/command.h"
#include "kit/lint/command.h"
#include "kit/place/command.h"
#include "kit/sweep/command.h"
#include "kit/verify/command.h"
#include "kit/view/command.h"

namespace kit {

std::vector<AddCommand> allCommands()
{
    return {flow::addCommand,    importing::addCommand, color::addCommand,    lint::addCommand,
            place::addCommand,   verify::addCommand,    exporter::addCommand, view::addCommand,
            compare::addCommand, sweep::addCommand,     gen::addCommand};
}

} // namespace kit
