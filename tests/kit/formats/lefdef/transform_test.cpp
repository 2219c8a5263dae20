// SPDX-License-Identifier: BSD-3-Clause
// Where points of masters come to lie.
#include <gtest/gtest.h>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/orient.h"

namespace {

using kit::lefdef::LefPoint;
using kit::lefdef::Orient;

struct Turned {
    const char* name;
    Orient orient;
    LefPoint to; ///< of the point (1, 2) of a master of 10 by 20
};

class LefTransform : public testing::TestWithParam<Turned> {};

TEST_P(LefTransform, PutsAPointWhereItLies)
{
    const LefPoint at = kit::lefdef::transformed({.x = 1, .y = 2}, 10, 20, GetParam().orient);
    EXPECT_EQ(at.x, GetParam().to.x);
    EXPECT_EQ(at.y, GetParam().to.y);
}

INSTANTIATE_TEST_SUITE_P(Orientations, LefTransform,
                         testing::Values(Turned{"N", Orient::N, {1, 2}}, Turned{"W", Orient::W, {18, 1}},
                                         Turned{"S", Orient::S, {9, 18}}, Turned{"E", Orient::E, {2, 9}},
                                         Turned{"FN", Orient::FN, {9, 2}}, Turned{"FW", Orient::FW, {2, 1}},
                                         Turned{"FS", Orient::FS, {1, 18}},
                                         Turned{"FE", Orient::FE, {18, 9}}),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
