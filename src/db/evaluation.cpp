// SPDX-License-Identifier: BSD-3-Clause
// What a placement measures: wirelength, stitches, conflicts, and the final report of them.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "db/design.h"
#include "qlib/report.h"

void Design::evaluateBound(Net* net)
{
    // In locals, which the compiler keeps in registers; the members could be any integers of the components.
    int32_t xl = std::numeric_limits<int32_t>::max();
    int32_t yl = xl;
    int32_t xh = std::numeric_limits<int32_t>::min();
    int32_t yh = xh;
    const auto include = [&](int32_t x, int32_t y) {
        xl = std::min(xl, x);
        xh = std::max(xh, x);
        yl = std::min(yl, y);
        yh = std::max(yh, y);
    };
    for (const Component* comp : net->components) {
        const Cell& cell = cellOf(*comp);
        include(comp->x + cell.width / 2, comp->y + cell.height / 2);
    }
    for (const Pin* pin : net->pins) {
        include(pin->x, pin->y);
    }
    net->boxXl = xl;
    net->boxYl = yl;
    net->boxXh = xh;
    net->boxYh = yh;
}

long Design::evaluateHPWL()
{
    int64_t total = 0;
    for (Net* net : nets) {
        evaluateBound(net);
        const int32_t length = (net->boxXh - net->boxXl) + (net->boxYh - net->boxYl);
        total += length;
    }
    return total;
}

int Design::evaluateStitchLowerBound()
{
    int32_t sum = 0;
    for (const Component* comp : components) {
        const Cell& cell = cellOf(*comp);
        // Required: a cell without solutions adds the largest integer, and the sum wraps around.
        int32_t fewest = std::numeric_limits<int32_t>::max();
        for (size_t s = 0; s < cell.colors.size(); ++s) {
            fewest = std::min(fewest, cell.stitchNums[s]);
        }
        sum += fewest;
    }
    return sum;
}

int Design::evaluateStitchNum()
{
    int32_t sum = 0;
    for (const Segment* segment : segments) {
        for (const Component* comp : segment->components) {
            sum += cellOf(*comp).stitchesOf(comp->solution);
        }
    }
    return sum;
}

int Design::evaluateConflictNum()
{
    int32_t conflicts = 0;
    for (const Segment* segment : segments) {
        const Component* left = nullptr;
        for (const Component* comp : segment->components) {
            if (left != nullptr) {
                const int32_t need = safeSites(*left, left->solution, *comp, comp->solution);
                conflicts += comp->siteX - left->siteX < need ? 1 : 0;
            }
            left = comp;
        }
    }
    return conflicts;
}

void Design::evaluation()
{
    finalHPWL = evaluateHPWL();
    vireloce::report() << "STAT | final HPWL               = " << finalHPWL << '\n';
    const int64_t increase = finalHPWL - initHPWL;
    const double percent = static_cast<double>(increase) * 100.0 / static_cast<double>(initHPWL);
    // Required: 0 of 0 prints as "-nan". Processors differ in the sign they give it; that of x86 is kept.
    vireloce::reportf("STAT | HPWL increases           = %ld(%.3f%%)\n", static_cast<long>(increase),
                      std::isnan(percent) ? std::copysign(percent, -1.0) : percent);
    const int stitches = evaluateStitchNum();
    const int conflicts = evaluateConflictNum();
    vireloce::report() << "STAT | final stitch   #         = " << stitches << '\n'
                       << "STAT | final conflict #         = " << conflicts << '\n';
}

void Design::calibreAllTcl()
{
    for (const std::string& file : tclFiles) {
        // A viewer that fails to start is no concern of the placer.
        [[maybe_unused]] const int status = std::system(("calibredrv " + file).c_str());
    }
}

void Design::dumpOutPlace() {}
void Design::debugPlace(std::string, std::string) {}
void Design::debugMetal1() {}
void Design::debugColors() {}
void Design::debugCellDistribution() {}
