// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/coloredPlacement.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <unordered_map>

#include "kit/design/nameMap.h"
#include "kit/formats/gds/gdsNames.h"
#include "kit/formats/placer/reader.h"

namespace kit::design {

namespace {

/// A component for messages, with its cell.
std::string nameText(const placer::Component& comp)
{
    return comp.name + " (" + comp.cellName + ")";
}

/// Components by name; those of one name are handed out in file order.
class Partners {
public:
    Partners(const std::vector<placer::Component>& components, Issues& issues) : m_next(components.size(), -1)
    {
        m_first.reserve(components.size());
        for (size_t i = components.size(); i-- > 0;) {
            const auto [at, isNew] = m_first.try_emplace(components[i].name, -1);
            m_next[i] = at->second;
            at->second = static_cast<int32_t>(i);
            if (!isNew) {
                const auto later = static_cast<size_t>(m_next[i]);
                issues.push_back({.kind = Kind::DOUBLE_COMPONENT,
                                  .line = components[later].line,
                                  .component = m_next[i],
                                  .what = "the name " + components[i].name + " has come in line " +
                                          std::to_string(components[i].line) + " already"});
            }
        }
    }

    bool knows(std::string_view name) const { return m_first.contains(name); }

    /// Takes the next component of a name, -1 if there is none left.
    int32_t take(std::string_view name)
    {
        const auto at = m_first.find(name);
        if (at == m_first.end() || at->second < 0) {
            return -1;
        }
        const int32_t taken = at->second;
        at->second = m_next[static_cast<size_t>(taken)];
        return taken;
    }

private:
    std::unordered_map<std::string_view, int32_t> m_first; ///< not yet taken, -1 if all are
    std::vector<int32_t> m_next;                           ///< [component] the next of its name, -1
};

/// Compares the colours of one component with its cell.
class ColorCheck {
public:
    ColorCheck(int32_t component, const placer::Component& comp, const placer::ColorRecord& record,
               Issues& issues)
        : m_component(component), m_comp(comp), m_record(record), m_issues(issues)
    {
    }

    void run(const placer::Cell* cell)
    {
        if (m_record.cell != m_comp.cellName) {
            add(Kind::CELL_DIFFERS, "has colours of the cell " + m_record.cell);
            return;
        }
        checkMasks();
        if (cell != nullptr) {
            checkSolution(*cell);
        }
    }

private:
    void checkMasks()
    {
        const auto bad =
            std::ranges::find_if(m_record.masks, [](int32_t mask) { return mask < 0 || mask >= MASKS; });
        if (bad != m_record.masks.end()) {
            add(Kind::BAD_MASK, "has shape " + std::to_string(bad - m_record.masks.begin()) + " on mask " +
                                    std::to_string(*bad) + ": the masks are 0, 1, 2");
        }
    }

    void checkSolution(const placer::Cell& cell)
    {
        if (m_record.masks.size() != cell.shapes.size()) {
            add(Kind::MASK_COUNT, "has " + std::to_string(m_record.masks.size()) + " masks for " +
                                      std::to_string(cell.shapes.size()) + " shapes");
        }
        if (cell.solutions.empty() && m_record.solution == -1) {
            return; // a cell without metal needs none
        }
        if (m_record.solution < 0 || static_cast<size_t>(m_record.solution) >= cell.solutions.size()) {
            add(Kind::BAD_SOLUTION, "has solution " + std::to_string(m_record.solution) + " of " +
                                        std::to_string(cell.solutions.size()) + ", counted from 0");
            return;
        }
        compare(cell.solutions[static_cast<size_t>(m_record.solution)]);
    }

    void compare(const placer::Solution& solution)
    {
        const std::vector<int32_t>& masks = m_record.masks;
        const auto [at, expected] =
            std::mismatch(masks.begin(), masks.end(), solution.masks.begin(), solution.masks.end());
        if (masks.size() == solution.masks.size() && at != masks.end()) {
            add(Kind::MASKS_DIFFER, "has shape " + std::to_string(at - masks.begin()) + " on mask " +
                                        std::to_string(*at) + ", and solution " +
                                        std::to_string(m_record.solution) + " has it on " +
                                        std::to_string(*expected));
        }
        if (m_record.stitches != solution.stitches) {
            add(Kind::STITCHES_DIFFER, "has " + std::to_string(m_record.stitches) +
                                           " stitches, and solution " + std::to_string(m_record.solution) +
                                           " has " + std::to_string(solution.stitches));
        }
    }

    void add(Kind kind, const std::string& what)
    {
        m_issues.push_back({.kind = kind,
                            .inColors = true,
                            .line = m_record.line,
                            .component = m_component,
                            .what = nameText(m_comp) + " " + what});
    }

    int32_t m_component;
    const placer::Component& m_comp;
    const placer::ColorRecord& m_record;
    Issues& m_issues;
};

void addStray(const placer::ColorRecord& record, bool known, Issues& issues)
{
    issues.push_back({.kind = Kind::STRAY_COLOURS,
                      .inColors = true,
                      .line = record.line,
                      .what = known ? "the component " + record.name + " has colours already"
                                    : "there is no component " + record.name});
}

} // namespace

std::string placeText(const placer::Component& comp)
{
    return nameText(comp) + " at (" + std::to_string(comp.x) + ", " + std::to_string(comp.y) + ")";
}

Matching matchColors(const placer::Design& design, const std::vector<placer::ColorRecord>& records,
                     Issues& issues)
{
    Partners partners(design.components, issues);
    Matching matching(design.components.size());
    for (const placer::ColorRecord& record : records) {
        const int32_t component = partners.take(record.name);
        if (component < 0) {
            addStray(record, partners.knows(record.name), issues);
        } else {
            matching[static_cast<size_t>(component)] = &record;
        }
    }
    for (size_t i = 0; i < matching.size(); ++i) {
        if (matching[i] == nullptr) {
            issues.push_back({.kind = Kind::NO_COLOURS,
                              .line = design.components[i].line,
                              .component = static_cast<int32_t>(i),
                              .what = nameText(design.components[i]) + " has no colours"});
        }
    }
    return matching;
}

void checkColors(const placer::Design& design, const Matching& matching, Issues& issues)
{
    for (size_t i = 0; i < matching.size(); ++i) {
        if (matching[i] != nullptr) {
            const placer::Component& comp = design.components[i];
            ColorCheck(static_cast<int32_t>(i), comp, *matching[i], issues).run(design.cellOf(comp));
        }
    }
}

ColoredPlacement readColoredPlacement(const PlacementPaths& paths)
{
    ColoredPlacement result;
    Findings findings;
    placer::readPlacement(paths.placement, result.design, findings);
    restoreOrientations(paths.mapOf.empty() ? paths.placement : paths.mapOf, result.design, findings);
    if (paths.cells.empty()) {
        placer::readCells(placer::usedCells(result.design), paths.cellDir, result.design, findings);
    } else {
        placer::readLibrary(paths.cells, paths.cellDir, result.design, findings);
    }
    placer::findCells(result.design);
    if (!paths.colors.empty()) {
        result.colors = placer::readColors(paths.colors, findings);
    }
    const std::string fixed = paths.fixed.empty() ? fixedOf(paths.placement) : paths.fixed;
    const FixedParts parts = readFixed(fixed, findings);
    addFixed(parts, paths.cellDir, result.design, findings);
    result.fixedColors = fixedColorsOf(parts, result.design);
    checkFixedSolutions(parts, result.design, fixed, findings);
    result.faults = errorsOf(findings);
    return result;
}

void addFixedColors(const std::vector<placer::ColorRecord>& colors, Matching& matching)
{
    for (const placer::ColorRecord& record : colors) {
        matching.push_back(&record);
    }
}

Frame frameOf(const placer::Design& design, const std::string& placement)
{
    const std::string name =
        design.name.empty() ? std::filesystem::path(placement).stem().string() : design.name;
    return {gds::gdsName(name), design.dbuPerMicron > 0 ? design.dbuPerMicron : USUAL_DBU_PER_MICRON};
}

} // namespace kit::design
