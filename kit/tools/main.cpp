// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

int main(int argc, char** argv)
{
    return kit::runProgram(argc, argv, kit::allCommands());
}
