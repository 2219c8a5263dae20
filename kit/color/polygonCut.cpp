// SPDX-License-Identifier: BSD-3-Clause
// Rectilinear polygons as rectangles.
#include <algorithm>

#include "kit/color/metal.h"

namespace kit::color {

namespace {

using lefdef::LefPoint;
using lefdef::LefShape;
using lefdef::Length;

/// An upright edge of a polygon.
struct Edge {
    Length x;
    Length yl;
    Length yh;
};

/// The upright edges; nothing if an edge is slanting.
std::vector<Edge> uprightEdges(const std::vector<LefPoint>& points)
{
    std::vector<Edge> edges;
    for (size_t i = 0; i < points.size(); ++i) {
        const LefPoint& a = points[i];
        const LefPoint& b = points[(i + 1) % points.size()];
        if (a.x != b.x && a.y != b.y) {
            return {};
        }
        if (a.y != b.y) {
            edges.push_back({a.x, std::min(a.y, b.y), std::max(a.y, b.y)});
        }
    }
    return edges;
}

} // namespace

std::vector<LefShape> rectanglesOf(const std::vector<LefPoint>& points)
{
    const std::vector<Edge> edges = uprightEdges(points);
    std::vector<Length> levels;
    for (const Edge& edge : edges) {
        levels.insert(levels.end(), {edge.yl, edge.yh});
    }
    std::sort(levels.begin(), levels.end());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    std::vector<LefShape> rects;
    std::vector<Length> crossings;
    for (size_t i = 1; i < levels.size(); ++i) {
        crossings.clear();
        for (const Edge& edge : edges) {
            if (edge.yl <= levels[i - 1] && edge.yh >= levels[i]) {
                crossings.push_back(edge.x);
            }
        }
        std::sort(crossings.begin(),
                  crossings.end()); // inside lies between the 1st and 2nd, 3rd and 4th, ...
        for (size_t k = 1; k < crossings.size(); k += 2) {
            if (crossings[k - 1] < crossings[k]) {
                rects.push_back({.points = {{crossings[k - 1], levels[i - 1]}, {crossings[k], levels[i]}}});
            }
        }
    }
    return rects;
}

} // namespace kit::color
