// SPDX-License-Identifier: BSD-3-Clause
// The only source that knows the library for command lines, which takes long to compile.
#include "kit/base/commandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <map>
#include <new>
#include <numeric>
#include <string_view>

#include "kit/base/text/escape.h"
#include "kit/base/version.h"

namespace kit {

/// What the subcommands of a run of the program have in common.
struct ProgramState {
    std::map<const CLI::App*, std::map<std::string, std::string>> renamed; ///< [subcommand][earlier spelling]
    std::function<int()> work; ///< of the subcommand that is named
};

namespace {

constexpr int BAD_USAGE = 2;

using Words = std::vector<std::string>;

int fail(const std::string& why)
{
    std::cerr << "vireloce-kit: " << printable(why) << '\n';
    return BAD_USAGE;
}

/// An option's name without the value behind "=".
std::string nameOf(const std::string& word)
{
    return word.substr(0, word.find('='));
}

/// A subcommand by its name, null if there is none.
CLI::App* subcommandOf(CLI::App& app, const std::string& name)
{
    for (CLI::App* const subcommand : app.get_subcommands(/*filter=*/nullptr)) {
        if (subcommand->check_name(name)) {
            return subcommand;
        }
    }
    return nullptr;
}

/// Replaces earlier spellings of options.
void modernize(CLI::App& program, const ProgramState& state, Words& words)
{
    CLI::App* app = &program;
    for (std::string& word : words) {
        if (CLI::App* const named = subcommandOf(*app, word)) {
            app = named;
            continue;
        }
        const auto names = state.renamed.find(app);
        if (names == state.renamed.end()) {
            continue;
        }
        const std::string name = nameOf(word);
        if (const auto found = names->second.find(name); found != names->second.end()) {
            word.replace(0, name.size(), found->second);
        }
    }
}

/// How many characters must be put in, left out or replaced to make one text the other (Levenshtein 1966).
size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<size_t> distances(b.size() + 1); // from what is read of `a` to each beginning of `b`
    std::iota(distances.begin(), distances.end(), size_t{0});
    for (const char character : a) {
        size_t corner = distances[0]++;
        for (size_t i = 0; i < b.size(); ++i) {
            const size_t replaced = corner + (b[i] == character ? 0 : 1);
            corner = distances[i + 1];
            distances[i + 1] = std::min({replaced, corner + 1, distances[i] + 1});
        }
    }
    return distances.back();
}

/// The end of a message about a word that is not known: the known one that is most alike, if one is.
std::string suggestion(const std::string& word, const Words& known)
{
    const std::string* best = nullptr;
    size_t least = std::max<size_t>(1, word.size() / 3) + 1;
    for (const std::string& other : known) {
        if (const size_t distance = editDistance(word, other); distance < least) {
            least = distance;
            best = &other;
        }
    }
    return best == nullptr ? "" : "; did you mean " + *best + "?";
}

Words subcommandNames(const CLI::App& app)
{
    Words names;
    for (const CLI::App* const subcommand : app.get_subcommands(/*filter=*/nullptr)) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

Words optionNames(const CLI::App& app)
{
    Words names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

/// What is wrong with the first word that is neither a subcommand where one is needed nor an option of its
/// subcommand; empty if there is none.
std::string faultOfNames(CLI::App& program, const Words& words)
{
    CLI::App* app = &program;
    for (const std::string& word : words) {
        if (word == "--") {
            break;
        }
        if (word.rfind("--", 0) == 0) {
            const Words known = optionNames(*app);
            if (std::find(known.begin(), known.end(), nameOf(word)) == known.end()) {
                return "there is no option " + nameOf(word) + suggestion(nameOf(word), known);
            }
        } else if (app->get_require_subcommand_min() > 0) {
            CLI::App* const named = subcommandOf(*app, word);
            if (named == nullptr) {
                return "there is no subcommand " + word + suggestion(word, subcommandNames(*app));
            }
            app = named;
        }
    }
    return "";
}

} // namespace

Option& Option::required()
{
    m_option->required();
    return *this;
}

Option& Option::oneEach()
{
    m_option->expected(1)->take_all();
    return *this;
}

Option& Option::needs(const Option& other)
{
    m_option->needs(other.m_option);
    return *this;
}

Option& Option::between(int64_t least, int64_t greatest)
{
    m_option->check(CLI::Range(least, greatest));
    return *this;
}

Option& Option::within(double least, double greatest)
{
    m_option->check(CLI::Range(least, greatest));
    return *this;
}

Option& Option::withDefault()
{
    m_option->capture_default_str();
    return *this;
}

Option& Option::formerly(const std::string& name)
{
    m_program->renamed[m_app][name] = m_option->get_name();
    return *this;
}

Option& Option::check(const std::function<std::string(const std::string&)>& fault)
{
    m_option->check(CLI::Validator(fault, ""));
    return *this;
}

Command Command::subcommand(const std::string& name, const std::string& what) const
{
    return {*m_app->add_subcommand(name, what), *m_program};
}

template <typename Value>
Option Command::add(const std::string& name, Value& value, const std::string& help) const
{
    return {*m_app->add_option(name, value, help), *m_app, *m_program};
}

template Option Command::add(const std::string&, std::string&, const std::string&) const;
template Option Command::add(const std::string&, std::vector<std::string>&, const std::string&) const;
template Option Command::add(const std::string&, int32_t&, const std::string&) const;
template Option Command::add(const std::string&, int64_t&, const std::string&) const;
template Option Command::add(const std::string&, uint64_t&, const std::string&) const;
template Option Command::add(const std::string&, double&, const std::string&) const;
template Option Command::add(const std::string&, std::optional<int32_t>&, const std::string&) const;
template Option Command::add(const std::string&, std::optional<double>&, const std::string&) const;

Option Command::flag(const std::string& name, bool& value, const std::string& help) const
{
    return {*m_app->add_flag(name, value, help), *m_app, *m_program};
}

Option Command::read(const std::string& name, const std::function<std::string(const std::string&)>& read,
                     const std::string& help) const
{
    const auto take = [read, name](const std::string& text) {
        if (const std::string fault = read(text); !fault.empty()) {
            throw CLI::ValidationError(name, fault);
        }
    };
    return {*m_app->add_option_function<std::string>(name, take, help), *m_app, *m_program};
}

void Command::footer(const std::string& text) const
{
    m_app->footer(text);
}

void Command::needsSubcommand() const
{
    m_app->require_subcommand(1);
}

void Command::does(const std::function<int()>& work) const
{
    m_app->callback([program = m_program, work] { program->work = work; });
}

int runProgram(int argc, const char* const* argv, const std::vector<AddCommand>& commands)
{
    CLI::App program{"Companion of the placer vireloce", "vireloce-kit"};
    ProgramState state;
    program.set_version_flag("--version", std::string("vireloce-kit ") + programVersion(),
                             "Print the version and exit");
    const Command top(program, state);
    top.needsSubcommand();
    for (const AddCommand add : commands) {
        add(top);
    }
    Words words(argv + std::min(argc, 1), argv + argc);
    modernize(program, state, words);
    try {
        program.parse(Words(words.rbegin(), words.rend())); // the library takes the first from the end
        return state.work();
    } catch (const CLI::Success& help) {
        return program.exit(help);
    } catch (const CLI::ParseError& error) {
        const std::string fault = faultOfNames(program, words);
        return fail(fault.empty() ? error.what() : fault);
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    } catch (const std::exception& error) { // a Fault, or what the file system says
        return fail(error.what());
    }
}

} // namespace kit
