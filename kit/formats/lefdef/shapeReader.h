// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"

namespace kit::lefdef {

/// Reads the shapes of ports and obstructions.
class ShapeReader {
public:
    /// @param in     at the file
    /// @param layer  whose shapes are kept; must outlive the reader, as must the others
    /// @param vias   known so far, by name: whether they have metal of that layer
    ShapeReader(Parser& in, const std::string& layer, const Vias& vias)
        : m_in(in), m_layer(layer), m_vias(vias)
    {
    }

    /// Reads statements up to END, which is taken, and appends the shapes of the wanted layer.
    ///
    /// @param kind  what it is, for the texts: "port"
    void read(std::vector<LefShape>& shapes, const char* kind);

    /// The layers of the shapes that were left out since this was last asked.
    std::set<std::string> takeOtherLayers() { return std::exchange(m_otherLayers, {}); }

private:
    /// How a shape is repeated.
    struct Grid {
        int32_t columns = 1;
        int32_t rows = 1;
        Length stepX = 0;
        Length stepY = 0;
    };

    void readStatement(std::vector<LefShape>& shapes);
    void readLayer();
    void readShape(std::vector<LefShape>& shapes, bool polygon, size_t begin);
    void readPath(size_t begin);
    void readVia(size_t begin);
    Grid readGrid(size_t corners);
    void keepCopies(const LefShape& shape, const Grid& grid, std::vector<LefShape>& shapes);
    std::vector<LefPoint> readRect();
    std::vector<LefPoint> readPolygon();
    int32_t readMask();
    LefPoint readPoint();

    Parser& m_in;
    const std::string& m_layer;
    const Vias& m_vias;
    bool m_anyLayer = false;     ///< a layer has been named
    std::string_view m_layerNow; ///< the last of them
    bool m_onLayer = false;      ///< it is wanted
    std::set<std::string> m_otherLayers;
    int64_t m_copied = 0; ///< corners that ITERATE has made in this file
};

} // namespace kit::lefdef
