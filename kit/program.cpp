// SPDX-License-Identifier: BSD-3-Clause
#include "kit/program.h"

#include <iostream>
#include <new>

#include "kit/base/printable.h"

namespace kit {

namespace {

constexpr int BAD_USAGE = 2;

int fail(const std::string& why)
{
    std::cerr << "vireloce-kit: " << printable(why) << '\n';
    return BAD_USAGE;
}

} // namespace

int runProgram(int argc, char** argv, const std::vector<AddCommand>& commands)
{
    CLI::App program{"Companion of the placer vireloce", "vireloce-kit"};
    program.require_subcommand(1);
    int exitStatus = 0;
    for (const AddCommand add : commands) {
        add(program, exitStatus);
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return program.exit(help);
    } catch (const CLI::ParseError& error) {
        return fail(error.what());
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    } catch (const std::exception& error) { // a Fault, or what the file system says
        return fail(error.what());
    }
    return exitStatus;
}

} // namespace kit
