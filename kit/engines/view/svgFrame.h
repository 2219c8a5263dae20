// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

#include "kit/base/files/outputFile.h"
#include "kit/engines/view/scene.h"
#include "kit/engines/view/svg.h"

namespace kit::view {

/// What stands around the plan in a static picture: title, legend, styles. Lengths are in pixels.
class SvgFrame {
public:
    SvgFrame(OutputFile& file, const Scene& scene, Detail detail);

    /// Pixels of a DBU in the plan.
    double scale() const { return m_scale; }

    /// Whether rows are so low that conflicts are marked by squares of the picture.
    bool isFar() const;

    /// Writes everything up to the plan, whose coordinates are DBU from its upper-left corner.
    void open();

    /// Writes everything after the plan.
    void close();

private:
    struct Size {
        int32_t width;
        int32_t height;
    };

    Size planSize() const;
    void writeStyle();
    void writeLegend();
    void entry(std::string_view symbol, std::string_view label);
    void rampEntry();

    OutputFile& m_file;
    const Scene& m_scene;
    Detail m_detail;
    Box m_bounds;
    Size m_plan;
    double m_scale;
    int32_t m_x = 0; ///< of the next entry of the legend
    int32_t m_y = 0; ///< of the legend's line
};

/// The two lines of a picture's title: the placement, and what the picture shows of it.
std::string titleOf(const Scene& scene);
std::string subtitleOf(const Scene& scene, Detail detail);

} // namespace kit::view
