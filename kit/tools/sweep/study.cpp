// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/study.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <utility>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

constexpr size_t LONGEST_NAME = 100; // characters; names become parts of file names

/// Reads a JSON file in which no object has a member twice.
///
/// Errors: throws Fault with path, line and column if it cannot be read or is no JSON.
Json readJson(const std::string& path)
{
    const std::string text = readFile(path);
    try {
        return Json::parse(text);
    } catch (const Fault& fault) {
        throw Fault(path + ": " + fault.what());
    }
}

/// A value in a JSON file together with its place, for messages. What is not as it is asked for throws Fault.
class Field {
public:
    /// @param value    must outlive the field
    /// @param file     path of the file
    /// @param pointer  JSON pointer to the value, empty for the whole file
    Field(const Json& value, std::string file, std::string pointer)
        : m_value(value), m_file(std::move(file)), m_pointer(std::move(pointer))
    {
    }

    /// Throws Fault: file, place, and what is wrong there.
    [[noreturn]] void fail(const std::string& what) const
    {
        throw Fault(m_file + ": " + (m_pointer.empty() ? "the file" : m_pointer) + " " + what);
    }

    /// Checks that this is an object with no other members than these.
    void onlyMembers(const std::vector<std::string_view>& names) const
    {
        require(m_value.isObject(), "is no object");
        for (const auto& [name, value] : m_value.members()) {
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                std::string known;
                for (const std::string_view other : names) {
                    known.append(known.empty() ? "" : ", ").append(other);
                }
                child(value, name).fail("is not known here; known are " + known);
            }
        }
    }

    /// A member of an object, if it is there.
    std::optional<Field> find(const char* name) const
    {
        return m_value.contains(name) ? std::optional(child(m_value.at(name), name)) : std::nullopt;
    }

    /// A member of an object.
    Field member(const char* name) const
    {
        const std::optional<Field> field = find(name);
        require(field.has_value(), "has no member \"" + std::string(name) + "\"");
        return *field;
    }

    /// The entries of a list that is not empty.
    std::vector<Field> entries() const
    {
        require(m_value.isArray(), "is no list");
        require(!m_value.empty(), "is an empty list");
        std::vector<Field> entries;
        for (size_t i = 0; i < m_value.size(); ++i) {
            entries.push_back(child(m_value[i], std::to_string(i)));
        }
        return entries;
    }

    /// A text that is not empty.
    std::string text() const
    {
        require(m_value.isString(), "is no text");
        const std::string& text = m_value.asString();
        require(!text.empty(), "is an empty text");
        require(text.find('\0') == std::string::npos, "has a character of code 0");
        return text;
    }

    /// A whole number from one to another.
    int64_t integer(int32_t least, int32_t most) const
    {
        const std::string bounds = std::to_string(least) + " to " + std::to_string(most);
        const bool huge = m_value.isNumber() && std::fabs(m_value.asNumber()) > INT32_MAX;
        require(huge || m_value.isInteger(), "is no whole number; " + bounds + " is possible");
        require(!huge && m_value.asInteger() >= least && m_value.asInteger() <= most,
                "is out of bounds; " + bounds + " is possible");
        return m_value.asInteger();
    }

    /// A number of at most this size.
    double number(double most) const
    {
        require(m_value.isNumber(), "is no number");
        const double value = m_value.asNumber();
        require(std::isfinite(value) && std::fabs(value) <= most, "is too large a number");
        return value;
    }

    /// true or false.
    bool boolean() const
    {
        require(m_value.isBool(), "is neither true nor false");
        return m_value.asBool();
    }

private:
    void require(bool good, const std::string& fault) const
    {
        if (!good) {
            fail(fault);
        }
    }

    Field child(const Json& value, const std::string& name) const
    {
        return {value, m_file, m_pointer + "/" + replaced(name, {{'~', "~0"}, {'/', "~1"}})};
    }

    const Json& m_value;
    std::string m_file;
    std::string m_pointer;
};

bool isName(const std::string& text)
{
    constexpr std::string_view CHARACTERS =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
    return !text.empty() && text.size() <= LONGEST_NAME && text[0] != '.' && text[0] != '-' &&
           text.find_first_not_of(CHARACTERS) == std::string::npos;
}

/// The names of all options, behind some others.
std::vector<std::string_view> optionNames(std::vector<std::string_view> names)
{
    for (const NumberOption& option : NUMBER_OPTIONS) {
        names.emplace_back(option.name);
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        names.emplace_back(option.name);
    }
    return names;
}

double readNumber(const Field& field, const NumberOption& option)
{
    return option.whole ? static_cast<double>(field.integer(option.least, option.most))
                        : field.number(option.most);
}

/// Reads the values of a grid's member, or one where there is none; `Value` is optional but for flags.
template <typename Value, typename Read>
std::vector<Value> listOf(const Field& grid, const char* name, const Read& read)
{
    const std::optional<Field> list = grid.find(name);
    if (!list.has_value()) {
        return {Value{}};
    }
    std::vector<Value> values;
    for (const Field& entry : list->entries()) {
        const Value value = read(entry);
        if (std::find(values.begin(), values.end(), value) != values.end()) {
            entry.fail("is there twice");
        }
        values.push_back(value);
    }
    return values;
}

/// Makes of each run one per value.
template <typename Value>
void extend(std::vector<RunOptions>& runs, const std::vector<Value>& values, Value RunOptions::*member)
{
    std::vector<RunOptions> extended;
    extended.reserve(runs.size() * values.size());
    for (const RunOptions& run : runs) {
        for (const Value value : values) {
            extended.push_back(run);
            extended.back().*member = value;
        }
    }
    runs = std::move(extended);
}

/// Every way to take one value of each list.
std::vector<RunOptions> readGrid(const Field& grid)
{
    using Number = std::optional<double>;
    grid.onlyMembers(optionNames({}));
    std::vector<std::vector<Number>> numbers; // [NUMBER_OPTIONS]
    double count = 1;                         // of runs, as no integer might hold it
    for (const NumberOption& option : NUMBER_OPTIONS) {
        numbers.push_back(listOf<Number>(
            grid, option.name, [&option](const Field& field) { return readNumber(field, option); }));
        count *= static_cast<double>(numbers.back().size());
    }
    std::vector<std::vector<bool>> flags; // [FLAG_OPTIONS]
    for (const FlagOption& option : FLAG_OPTIONS) {
        flags.push_back(listOf<bool>(grid, option.name, [](const Field& field) { return field.boolean(); }));
        count *= static_cast<double>(flags.back().size());
    }
    if (count > MOST_RUNS) {
        grid.fail("has more than " + std::to_string(MOST_RUNS) + " runs");
    }
    std::vector<RunOptions> runs{RunOptions{}};
    for (size_t i = 0; i < numbers.size(); ++i) {
        extend(runs, numbers[i], NUMBER_OPTIONS[i].member);
    }
    for (size_t i = 0; i < flags.size(); ++i) {
        extend(runs, flags[i], FLAG_OPTIONS[i].member);
    }
    return runs;
}

RunOptions readRun(const Field& run)
{
    RunOptions options;
    for (const NumberOption& option : NUMBER_OPTIONS) {
        if (const std::optional<Field> field = run.find(option.name)) {
            options.*option.member = readNumber(*field, option);
        }
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        const std::optional<Field> field = run.find(option.name);
        options.*option.member = field.has_value() && field->boolean();
    }
    return options;
}

/// Reads the parts of a study one after the other.
class StudyReader {
public:
    StudyReader(const Field& root, fs::path folder) : m_root(root), m_folder(std::move(folder)) {}

    Study read()
    {
        m_root.onlyMembers({"$schema", "designs", "grid", "runs"});
        for (const Field& design : m_root.member("designs").entries()) {
            readDesign(design);
        }
        const std::optional<Field> grid = m_root.find("grid");
        if (grid.has_value()) {
            m_grid = readGrid(*grid);
        }
        readRuns();
        if (!grid.has_value() && m_listed.empty()) {
            m_root.fail("has neither \"grid\" nor \"runs\"");
        }
        expand();
        return std::move(m_study);
    }

private:
    void readDesign(const Field& field)
    {
        field.onlyMembers({"name", "base", "cell_path"});
        StudyDesign design;
        const Field name = field.member("name");
        design.name = name.text();
        if (!isName(design.name)) {
            name.fail("is no name: 1 to 100 letters, digits, '_', '-' and '.', '-' and '.' not first");
        }
        if (find(design.name) != m_study.designs.size()) {
            name.fail("is the name of two designs: " + design.name);
        }
        design.base = (m_folder / field.member("base").text()).string();
        for (const char* extension : {".place", ".pins", ".netlist", ".cells"}) {
            if (!fs::is_regular_file(design.base + extension)) {
                field.member("base").fail("has no file " + design.base + extension);
            }
        }
        design.cellPath = (m_folder / field.member("cell_path").text()).string();
        if (!fs::is_directory(design.cellPath)) {
            field.member("cell_path").fail("is no folder: " + design.cellPath);
        }
        m_study.designs.push_back(std::move(design));
    }

    /// Index of a design by its name, the number of designs if there is none.
    size_t find(const std::string& name) const
    {
        const auto at = std::find_if(m_study.designs.begin(), m_study.designs.end(),
                                     [&](const StudyDesign& design) { return design.name == name; });
        return static_cast<size_t>(at - m_study.designs.begin());
    }

    void readRuns()
    {
        const std::optional<Field> list = m_root.find("runs");
        if (!list.has_value()) {
            return;
        }
        for (const Field& run : list->entries()) {
            run.onlyMembers(optionNames({"design"}));
            std::optional<size_t> design;
            if (const std::optional<Field> name = run.find("design")) {
                design = find(name->text());
                if (*design == m_study.designs.size()) {
                    name->fail("is the name of no design: " + name->text());
                }
            }
            m_listed.push_back({design, readRun(run)});
        }
    }

    void expand()
    {
        const size_t runs = m_grid.size() + m_listed.size();
        if (static_cast<double>(runs) * static_cast<double>(m_study.designs.size()) > MOST_RUNS) {
            m_root.fail("has more than " + std::to_string(MOST_RUNS) + " runs");
        }
        for (size_t design = 0; design < m_study.designs.size(); ++design) {
            for (const RunOptions& options : m_grid) {
                m_study.runs.push_back({design, options});
            }
            for (const auto& [only, options] : m_listed) {
                if (only.value_or(design) == design) {
                    m_study.runs.push_back({design, options});
                }
            }
        }
    }

    const Field& m_root;
    fs::path m_folder;
    Study m_study;
    std::vector<RunOptions> m_grid;
    std::vector<std::pair<std::optional<size_t>, RunOptions>> m_listed; ///< the design, all if none
};

} // namespace

Study readStudy(const std::string& path)
{
    const Json study = readJson(path);
    return StudyReader(Field(study, path, ""), fs::absolute(path).parent_path()).read();
}

} // namespace kit::sweep
