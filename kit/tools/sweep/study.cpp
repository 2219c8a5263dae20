// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/study.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "kit/tools/sweep/fields.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

constexpr size_t LONGEST_NAME = 100; // characters; names become parts of file names

bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.';
}

bool isName(const std::string& text)
{
    return !text.empty() && text.size() <= LONGEST_NAME && text[0] != '.' && text[0] != '-' &&
           std::all_of(text.begin(), text.end(), isNameCharacter);
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

int32_t readAlgo(const Field& field)
{
    return field.integer(0, 4);
}

int32_t readMoveRange(const Field& field)
{
    return field.integer(0, 1'000'000);
}

int32_t readMindp(const Field& field)
{
    return field.integer(0, 10'000);
}

int32_t readSiteWidth(const Field& field)
{
    return field.integer(1, 1'000'000);
}

double readWeight(const Field& field)
{
    return field.number(1e9);
}

bool readRescue(const Field& field)
{
    return field.boolean();
}

/// Every way to take one value of each list.
class Grid {
public:
    explicit Grid(const Field& field)
        : m_algos(listOf<std::optional<int32_t>>(field, "algo", readAlgo)),
          m_weights(listOf<std::optional<double>>(field, "weight", readWeight)),
          m_moveRanges(listOf<std::optional<int32_t>>(field, "move_range", readMoveRange)),
          m_mindps(listOf<std::optional<int32_t>>(field, "mindp", readMindp)),
          m_siteWidths(listOf<std::optional<int32_t>>(field, "site_width", readSiteWidth)),
          m_rescues(listOf<bool>(field, "rescue", readRescue))
    {
        double runs = 1; // as no integer might hold it
        for (const size_t size : {m_algos.size(), m_weights.size(), m_moveRanges.size(), m_mindps.size(),
                                  m_siteWidths.size(), m_rescues.size()}) {
            runs *= static_cast<double>(size);
        }
        if (runs > MOST_RUNS) {
            field.fail("has more than " + std::to_string(MOST_RUNS) + " runs");
        }
    }

    std::vector<RunOptions> runs() const
    {
        std::vector<RunOptions> runs{RunOptions{}};
        extend(runs, m_algos, &RunOptions::algo);
        extend(runs, m_weights, &RunOptions::weight);
        extend(runs, m_moveRanges, &RunOptions::moveRange);
        extend(runs, m_mindps, &RunOptions::mindp);
        extend(runs, m_siteWidths, &RunOptions::siteWidth);
        extend(runs, m_rescues, &RunOptions::rescue);
        return runs;
    }

private:
    /// Makes of each run one per value.
    template <typename Value>
    static void extend(std::vector<RunOptions>& runs, const std::vector<Value>& values,
                       Value RunOptions::*member)
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

    std::vector<std::optional<int32_t>> m_algos;
    std::vector<std::optional<double>> m_weights;
    std::vector<std::optional<int32_t>> m_moveRanges;
    std::vector<std::optional<int32_t>> m_mindps;
    std::vector<std::optional<int32_t>> m_siteWidths;
    std::vector<bool> m_rescues;
};

template <typename Value, typename Read>
std::optional<Value> valueOf(const Field& run, const char* name, const Read& read)
{
    const std::optional<Field> field = run.find(name);
    return field.has_value() ? std::optional<Value>(read(*field)) : std::nullopt;
}

RunOptions readRun(const Field& run)
{
    return {.algo = valueOf<int32_t>(run, "algo", readAlgo),
            .weight = valueOf<double>(run, "weight", readWeight),
            .moveRange = valueOf<int32_t>(run, "move_range", readMoveRange),
            .mindp = valueOf<int32_t>(run, "mindp", readMindp),
            .siteWidth = valueOf<int32_t>(run, "site_width", readSiteWidth),
            .rescue = valueOf<bool>(run, "rescue", readRescue).value_or(false)};
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
        readGrid();
        readRuns();
        if (!m_root.find("grid").has_value() && m_listed.empty()) {
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

    void readGrid()
    {
        const std::optional<Field> grid = m_root.find("grid");
        if (grid.has_value()) {
            grid->onlyMembers({"algo", "weight", "move_range", "mindp", "site_width", "rescue"});
            m_grid = Grid(*grid).runs();
        }
    }

    void readRuns()
    {
        const std::optional<Field> list = m_root.find("runs");
        if (!list.has_value()) {
            return;
        }
        for (const Field& run : list->entries()) {
            run.onlyMembers({"design", "algo", "weight", "move_range", "mindp", "site_width", "rescue"});
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
