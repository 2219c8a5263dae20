// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/issue.h"

namespace kit::design {

const std::vector<KindInfo>& kinds()
{
    static const std::vector<KindInfo> s_kinds{
        {"double-component", Severity::ERROR, "names of components that come again"},
        {"not-placed", Severity::ERROR, "components behind FILLER_1, which the placer leaves out"},
        {"unknown-cell", Severity::ERROR, "components whose cell is not in the library"},
        {"no-colors", Severity::ERROR, "components without colours"},
        {"stray-colors", Severity::ERROR, "colours without a component"},
        {"cell-differs", Severity::ERROR, "colours of another cell than the component's"},
        {"bad-solution", Severity::ERROR, "solutions that the cell does not have"},
        {"mask-count", Severity::ERROR, "more or fewer masks than shapes"},
        {"bad-mask", Severity::ERROR, "masks other than 0, 1, 2"},
        {"masks-differ", Severity::ERROR, "masks other than those of the solution"},
        {"stitches-differ", Severity::ERROR, "stitches other than those of the solution"},
        {"orientation", Severity::ERROR, "orientations that do not fit a row"},
        {"off-row", Severity::ERROR, "cells on no row"},
        {"outside-row", Severity::ERROR, "cells that reach beyond their row"},
        {"off-grid", Severity::ERROR, "cells between the sites"},
        {"macro-overlap", Severity::ERROR, "cells that overlap a macro"},
        {"cell-overlap", Severity::ERROR, "pairs of cells that overlap"},
        {"conflict", Severity::ERROR, "pairs of cells in a row with metal of one mask too close"},
        {"too-many", Severity::ERROR, "searches given up: counts are too low"},
        {"row-conflict", Severity::NOTE, "pairs of cells in different rows with metal of one mask too close"},
        {"fillers", Severity::NOTE, "fillers, which are not judged"},
    };
    return s_kinds;
}

const KindInfo& infoOf(Kind kind)
{
    return kinds()[static_cast<size_t>(kind)];
}

} // namespace kit::design
