// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/layout.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "kit/engines/export/layerProperties.h"
#include "kit/formats/gds/gdsNames.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/placer/metal.h"
#include "kit/geometry/polygon.h"

namespace kit::exporter {

namespace {

using lefdef::DefComponent;
using lefdef::LefMacro;
using lefdef::LefShape;
using lefdef::Orient;

constexpr std::string_view LIBRARY_NAME = "VIRELOCE";

/// A cell with colours: its index, solution (-1 for none) and orientation.
using ColouredKey = std::tuple<int32_t, int32_t, Orient>;

/// A macro without: its name and orientation.
using BareKey = std::pair<std::string_view, Orient>;

/// An instance.
struct Instance {
    const std::string* structure; ///< its name
    gds::GdsPoint at;
    std::string_view name;
};

/// Draws one cell. A shape without area is none: files may have some, and what is thinner than half a
/// database unit is rounded to one.
class Drawing {
public:
    Drawing(gds::GdsWriter& gds, Orient orient, int64_t width, int64_t height)
        : m_gds(gds), m_orient(orient), m_width(width), m_height(height)
    {
        rectangle(OUTLINE_LAYER, {0, 0, width, height});
    }

    void rectangle(int16_t layer, const gds::GdsBox& box)
    {
        if (box.xl == box.xh || box.yl == box.yh) {
            return;
        }
        const gds::GdsPoint a = turn({box.xl, box.yl});
        const gds::GdsPoint b = turn({box.xh, box.yh});
        m_gds.rectangle(layer,
                        {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
    }

    void polygon(int16_t layer, std::vector<gds::GdsPoint> corners)
    {
        if (!geometry::hasArea(corners)) {
            return;
        }
        std::transform(corners.begin(), corners.end(), corners.begin(),
                       [this](const gds::GdsPoint& corner) { return turn(corner); });
        m_gds.boundary(layer, corners);
    }

private:
    gds::GdsPoint turn(const gds::GdsPoint& point) const
    {
        const auto [x, y] = lefdef::transformed({.x = point.x, .y = point.y}, m_width, m_height, m_orient);
        return {x, y};
    }

    gds::GdsWriter& m_gds;
    Orient m_orient;
    int64_t m_width;
    int64_t m_height;
};

class LayoutWriter {
public:
    LayoutWriter(const LayoutParts& parts, OutputFile& out)
        : m_parts(parts), m_grid(parts.grid), m_gds(out, LIBRARY_NAME, parts.grid.unitsPerMicron()),
          m_top(m_names.take(parts.topCell, ""))
    {
    }

    /// Structures come before the instances that need them.
    int64_t run()
    {
        for (const Placed& placed : m_parts.placed) {
            addPlaced(placed);
        }
        std::unordered_set<size_t> known;
        for (const Kept& kept : m_parts.kept) {
            const DefComponent& component = m_parts.def.components[kept.inDef];
            known.insert(kept.inDef);
            add(kept.cell, m_parts.design.cells[static_cast<size_t>(kept.cell)], kept.solution, component.x,
                component.y, component.orient, component.name);
        }
        int64_t leftOut = 0;
        for (const size_t index : m_parts.others) {
            if (known.contains(index)) {
                continue;
            }
            const DefComponent& component = m_parts.def.components[index];
            const auto macro = m_parts.macros.find(component.macro);
            if (macro == m_parts.macros.end()) {
                ++leftOut;
            } else {
                addOther(component, *macro->second);
            }
        }
        for (const Filled& filler : m_parts.filling.fillers) {
            add(keyOf(filler).first, m_parts.filling.masters[filler.master], filler.solution, filler.x,
                filler.y, filler.orient, filler.name);
        }
        m_gds.beginStructure(m_top);
        for (const Instance& instance : m_instances) {
            m_gds.reference(*instance.structure, instance.at, instance.name);
        }
        m_gds.endStructure();
        m_gds.finish();
        return leftOut;
    }

private:
    void addPlaced(const Placed& placed)
    {
        const int32_t index = m_parts.design.components[placed.inPlace].cell;
        if (index < 0) {
            return; // told when the colours were checked
        }
        const placer::Cell& cell = m_parts.design.cells[static_cast<size_t>(index)];
        const placer::ColorRecord* const colours = m_parts.colours[placed.inPlace];
        add(index, cell, colours == nullptr ? -1 : colours->solution, placed.x, placed.y, placed.orient,
            m_parts.def.components[placed.inDef].name);
    }

    /// Adds an instance of a cell with colours, and its structure if it is the first.
    void add(int32_t index, const placer::Cell& cell, int32_t solution, int32_t x, int32_t y, Orient orient,
             std::string_view name)
    {
        const auto [at, isNew] = m_coloured.try_emplace({index, solution, orient});
        if (isNew) {
            const std::string colouring = solution < 0 ? "" : "_S" + std::to_string(solution);
            at->second = m_names.take(cell.name, colouring + "_" + std::string(nameOf(orient)));
            draw(cell, solution, orient, at->second);
        }
        m_instances.push_back({&at->second, {m_grid.ofDbu(x), m_grid.ofDbu(y)}, name});
    }

    void draw(const placer::Cell& cell, int32_t solution, Orient orient, const std::string& name)
    {
        m_gds.beginStructure(name);
        const std::vector<geometry::Labelled> pieces = placer::truePiecesOf(cell);
        const bool isTrue = !pieces.empty();
        Drawing drawing(m_gds, orient,
                        isTrue ? m_grid.ofLength(cell.trueMetal->width) : m_grid.ofLibrary(cell.width),
                        isTrue ? m_grid.ofLength(cell.trueMetal->height) : m_grid.ofLibrary(cell.height));
        const auto add = [&](const gds::GdsBox& box, size_t shape) {
            drawing.rectangle(METAL_LAYER, box);
            if (solution >= 0) {
                const int32_t mask = cell.solutions[static_cast<size_t>(solution)].masks[shape];
                drawing.rectangle(static_cast<int16_t>(FIRST_MASK_LAYER + mask), box);
            }
        };
        for (const auto& [box, shape] : pieces) {
            add({m_grid.ofLength(box.xl), m_grid.ofLength(box.yl), m_grid.ofLength(box.xh),
                 m_grid.ofLength(box.yh)},
                static_cast<size_t>(shape));
        }
        for (size_t i = 0; i < cell.shapes.size() && !isTrue; ++i) {
            for (const placer::Rect& rect : cell.shapes[i].rects) {
                add({m_grid.ofLibrary(rect.xl), m_grid.ofLibrary(rect.yl), m_grid.ofLibrary(rect.xh),
                     m_grid.ofLibrary(rect.yh)},
                    i);
            }
        }
        m_gds.endStructure();
    }

    void addOther(const DefComponent& component, const LefMacro& macro)
    {
        const auto [at, isNew] = m_bare.try_emplace({macro.name, component.orient});
        if (isNew) {
            at->second = m_names.take(macro.name, "_" + std::string(nameOf(component.orient)));
            draw(macro, component.orient, at->second);
        }
        m_instances.push_back(
            {&at->second, {m_grid.ofDbu(component.x), m_grid.ofDbu(component.y)}, component.name});
    }

    void draw(const LefMacro& macro, Orient orient, const std::string& name)
    {
        m_gds.beginStructure(name);
        Drawing drawing(m_gds, orient, m_grid.ofLength(macro.width), m_grid.ofLength(macro.height));
        for (const lefdef::LefPin& pin : macro.pins) {
            draw(pin.shapes, drawing);
        }
        draw(macro.obstructions, drawing);
        m_gds.endStructure();
    }

    void draw(const std::vector<LefShape>& shapes, Drawing& drawing) const
    {
        for (const LefShape& shape : shapes) {
            std::vector<gds::GdsPoint> corners;
            for (const lefdef::LefPoint& point : shape.points) {
                corners.push_back({m_grid.ofLength(point.x), m_grid.ofLength(point.y)});
            }
            if (shape.polygon) {
                drawing.polygon(METAL_LAYER, std::move(corners));
            } else {
                const gds::GdsPoint& low = corners.front();
                const gds::GdsPoint& high = corners.back();
                drawing.rectangle(METAL_LAYER, {low.x, low.y, high.x, high.y});
            }
        }
    }

    const LayoutParts& m_parts;
    const Grid& m_grid;
    gds::GdsWriter m_gds;
    gds::GdsNames m_names;
    std::string m_top;
    std::map<ColouredKey, std::string> m_coloured; ///< names of structures, which stay where they are
    std::map<BareKey, std::string> m_bare;         ///< so do these
    std::vector<Instance> m_instances;
};

} // namespace

int64_t writeLayout(const LayoutParts& parts, OutputFile& out)
{
    return LayoutWriter(parts, out).run();
}

} // namespace kit::exporter
