// SPDX-License-Identifier: BSD-3-Clause
#include "kit/gen/command.h"
#include "kit/place/command.h"
#include "kit/program.h"
#include "kit/verify/command.h"
#include "kit/view/command.h"

int main(int argc, char** argv)
{
    return kit::runProgram(
        argc, argv,
        {kit::gen::addCommand, kit::place::addCommand, kit::verify::addCommand, kit::view::addCommand});
}
