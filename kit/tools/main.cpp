// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/standardStreams.h"
#include "kit/tools/commands.h"

int main(int argc, char** argv)
{
    kit::prepareStreams();
    return kit::finishStreams(kit::runProgram(argc, argv, kit::allCommands()));
}
