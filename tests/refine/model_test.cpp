// SPDX-License-Identifier: BSD-3-Clause
#include "refine/model.h"

#include <rapidcheck/Log.h>

#include "refine/randomModel.h"

PROPERTY_TIMES(RefineModel, WirelengthIsTheSumOfWeightedHalfPerimeters, 3)
{
    const refine::Model model = test::scattered({});
    RC_ASSERT(refine::Options::PRICE_PARTS * refine::wirelength(model) ==
              test::Objective(model, {}).of(model));
}

PROPERTY_TIMES(RefineModel, LegalModelsHaveNoViolations, 3)
{
    const refine::Model model = test::RandomModel({}).model;
    RC_LOG() << test::textOf(model);
    RC_ASSERT(refine::violationsOf(model).sum() == 0);
}

PROPERTY_TIMES(RefineModel, ViolationsAreThoseOfAllCellsAndAllPairs, 5)
{
    const refine::Model model = test::scattered({});
    refine::Violations want;
    for (size_t i = 0; i < model.cells.size(); ++i) {
        const refine::Cell& one = model.cells[i];
        want.offSite += one.fixed || test::isOnSites(model, one) ? 0 : 1;
        for (size_t j = 0; j < i; ++j) {
            const refine::Cell& other = model.cells[j];
            if (!test::areApart(model, one, other)) {
                const refine::Cell& left = one.x < other.x ? one : other;
                const refine::Cell& right = one.x < other.x ? other : one;
                const bool anyFixed = one.fixed || other.fixed;
                ++(right.x < test::endOf(model, left) && !anyFixed ? want.overlaps : want.tooClose);
            }
        }
    }
    const refine::Violations found = refine::violationsOf(model);
    RC_ASSERT(found.offSite == want.offSite);
    RC_ASSERT(found.overlaps == want.overlaps);
    RC_ASSERT(found.tooClose == want.tooClose);
}
