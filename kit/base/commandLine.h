// SPDX-License-Identifier: BSD-3-Clause
// The command line of the companion program: subcommands, their options, help and errors.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the library's own name
class App;
class Option;
} // namespace CLI

namespace kit {

struct ProgramState;

/// An option of a subcommand, or an argument without a name, to say more about it.
class Option {
public:
    /// Made by Command.
    Option(CLI::Option& option, CLI::App& app, ProgramState& program)
        : m_option(&option), m_app(&app), m_program(&program)
    {
    }

    /// It must be given.
    Option& required();

    /// Each time it is given it takes one value; without this, a list takes all that follow.
    Option& oneEach();

    /// It makes sense only with another one.
    Option& needs(const Option& other);

    /// An integer must be from `least` to `greatest`.
    Option& between(int64_t least, int64_t greatest);

    /// A number must be from `least` to `greatest`.
    Option& within(double least, double greatest);

    /// The help tells the value that it has now, which is the one without the option.
    Option& withDefault();

    /// An earlier spelling, such as "--out", is still accepted. The help does not tell it.
    Option& formerly(const std::string& name);

    /// @param fault  gives why a text is no good value, empty if it is one
    Option& check(const std::function<std::string(const std::string&)>& fault);

private:
    CLI::Option* m_option;
    CLI::App* m_app;
    ProgramState* m_program;
};

/// A subcommand that is being described. What it is given to fill must live until its work begins.
class Command {
public:
    /// Made by runProgram().
    Command(CLI::App& app, ProgramState& program) : m_app(&app), m_program(&program) {}

    /// Adds a subcommand.
    ///
    /// @param what  what it does, a line for the help
    Command subcommand(const std::string& name, const std::string& what) const;

    /// Adds an option ("--jobs", "-o,--output") or an argument without a name ("BASE"). Its value is put in
    /// `value` if it is given. Of a list, every value.
    ///
    /// @param value  a text, a list of texts, an integer or a number, the last two optional or not
    /// @param help   what it is, with its unit
    template <typename Value>
    Option add(const std::string& name, Value& value, const std::string& help) const;

    /// Adds an option without a value. @param value  out: true if it is given
    Option flag(const std::string& name, bool& value, const std::string& help) const;

    /// Adds an option whose text is read by the caller.
    ///
    /// @param read  takes the text; returns why it is no good value, empty if it is one
    Option read(const std::string& name, const std::function<std::string(const std::string&)>& read,
                const std::string& help) const;

    /// The end of the help: exit status and an example.
    void footer(const std::string& text) const;

    /// One of its subcommands must be named.
    void needsSubcommand() const;

    /// @param work  run once all arguments are read and good; gives the exit status: 0 done; 1 if the work is
    ///              done and the result is not good; 2 if there is an error in the input
    void does(const std::function<int()>& work) const;

private:
    CLI::App* m_app;
    ProgramState* m_program;
};

/// Adds a subcommand with its options to the program.
using AddCommand = void (*)(const Command& program);

/// Reads the arguments and runs the subcommand that they name.
///
/// @param argc      number of entries of argv, the program's name included
/// @param argv      [argc]
/// @param commands  the subcommands, in the order of the help text
/// @return exit status: the subcommand's; 2 after one line on standard error, for wrong arguments and for
///         every Fault
int runProgram(int argc, const char* const* argv, const std::vector<AddCommand>& commands);

} // namespace kit
