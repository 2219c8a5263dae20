// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/designWriter.h"

#include <array>
#include <filesystem>
#include <string>

#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/engines/gen/scale.h"
#include "kit/formats/placer/writer.h"

namespace kit::gen {

namespace {

std::string colorPath(const Options& options, const std::string& cell)
{
    return (std::filesystem::path(cellFolder(options)) / (cell + ".color")).string();
}

/// A cell as the placer's files have it: a rectangle a shape.
placer::Cell placerCell(const LibraryCell& cell)
{
    placer::Cell result;
    result.width = cell.sites * placer::LIBRARY_SITE;
    result.height = LIBRARY_HEIGHT;
    result.headerBoxes = {{0, 0, result.width, result.height}};
    for (const Shape& shape : cell.shapes) {
        result.shapes.push_back({.rects = {{shape.box.xl, shape.box.yl, shape.box.xh, shape.box.yh}}});
    }
    for (const Solution& solution : cell.solutions) {
        result.solutions.push_back(
            {.stitches = solution.stitches, .masks = {solution.masks.begin(), solution.masks.end()}});
    }
    return result;
}

} // namespace

void checkOutputsOf(const Options& options)
{
    std::vector<std::string> paths;
    for (const char* extension : {".place", ".pins", ".netlist", ".cells"}) {
        paths.push_back(options.out + extension);
    }
    for (int32_t type = 0; type < options.cellTypes; ++type) {
        paths.push_back(colorPath(options, nameOfType(type)));
    }
    if (options.lefDef) {
        paths.push_back(options.out + ".lef");
        paths.push_back(options.out + ".def");
    }
    checkOutputs(paths, {}, options.force);
}

void writeLibrary(const std::vector<LibraryCell>& library, const Options& options, OutputSet& set)
{
    makeFolder(cellFolder(options));
    for (const LibraryCell& cell : library) {
        set.add(colorPath(options, cell.name),
                [&cell](OutputFile& out) { placer::writeColorFile(out, placerCell(cell)); });
    }
    std::vector<std::string> names;
    for (const LibraryCell& cell : library) {
        names.push_back(cell.name);
    }
    set.add(options.out + ".cells", [&names](OutputFile& out) { placer::writeCellList(out, names); });
}

void writePlacement(const Placement& placement, const std::vector<LibraryCell>& library,
                    const Options& options, OutputFile& out)
{
    const Scale scale(options);
    const Floorplan& plan = placement.plan;
    const std::array<int64_t, 4> die{0, 0, scale.x(plan.sitesPerRow + Scale::BORDER_SITES),
                                     scale.y(plan.rows + Scale::BORDER_ROWS)};
    placer::PlaceWriter place(
        {.design = std::filesystem::path(options.out).filename().string(),
         .dbuPerMicron = DBU_PER_MICROMETRE,
         .core = {scale.x(0), scale.y(0), scale.x(plan.sitesPerRow), scale.y(plan.rows)},
         .die = &die},
        out);
    for (int32_t row = 0; row < plan.rows; ++row) {
        place.row("ROW_" + std::to_string(row), "core", scale.x(0), scale.y(row), orientOfRow(row),
                  plan.sitesPerRow, scale.step);
    }
    place.beginComponents(placement.cells.size());
    for (size_t i = 0; i < placement.cells.size(); ++i) {
        const Placed& cell = placement.cells[i];
        // The placer knows a mirrored cell by FN alone, in every row.
        place.component("u" + std::to_string(i), library[cell.type].name, scale.x(cell.site),
                        scale.y(cell.row), cell.mirrored ? "FN" : orientOfRow(cell.row));
    }
    place.beginBlocks(plan.macros.size());
    for (size_t i = 0; i < plan.macros.size(); ++i) {
        const MacroBox& macro = plan.macros[i];
        place.block("m" + std::to_string(i), scale.x(macro.site), scale.y(macro.row),
                    macro.sites * scale.step, macro.rows * scale.height);
    }
    place.end();
}

void writePins(const Netlist& netlist, const Options& options, OutputFile& out)
{
    const Scale scale(options);
    out << netlist.pins.size() << "\n";
    for (size_t i = 0; i < netlist.pins.size(); ++i) {
        placer::writePin(out, "p" + std::to_string(i), scale.x(netlist.pins[i].site),
                         scale.y(netlist.pins[i].row));
    }
}

void writeNets(const Netlist& netlist, OutputFile& out)
{
    out << netlist.netBegin.size() - 1 << "\n";
    for (size_t net = 0; net + 1 < netlist.netBegin.size(); ++net) {
        const size_t begin = netlist.netBegin[net];
        placer::writeNet(out, netlist.netBegin[net + 1] - begin, [&](size_t i) {
            const int32_t member = netlist.members[begin + i];
            return member < 0 ? "p" + std::to_string(-1 - member) : "u" + std::to_string(member);
        });
    }
}

} // namespace kit::gen
