// SPDX-License-Identifier: BSD-3-Clause
// The subcommands of the companion program; each is described and run by the source that is named after it.
#pragma once

#include "kit/base/commandLine.h"

namespace kit {

// clang-format off
namespace flow { void addCommand(const Command& program); }
namespace importing { void addCommand(const Command& program); }
namespace color { void addCommand(const Command& program); }
namespace lint { void addCommand(const Command& program); }
namespace place { void addCommand(const Command& program); }
namespace refine { void addCommand(const Command& program); }
namespace verify { void addCommand(const Command& program); }
namespace exporter { void addCommand(const Command& program); }
namespace view { void addCommand(const Command& program); }
namespace compare { void addCommand(const Command& program); }
namespace sweep { void addCommand(const Command& program); }
namespace gen { void addCommand(const Command& program); }
// clang-format on

/// All of them, in the order of the help.
inline std::vector<AddCommand> allCommands()
{
    return {flow::addCommand,  importing::addCommand, color::addCommand,  lint::addCommand,
            place::addCommand, refine::addCommand,    verify::addCommand, exporter::addCommand,
            view::addCommand,  compare::addCommand,   sweep::addCommand,  gen::addCommand};
}

} // namespace kit
