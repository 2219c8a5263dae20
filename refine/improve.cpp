// SPDX-License-Identifier: BSD-3-Clause
#include "refine/improve.h"

namespace refine {

Result improve(Model& /*model*/, const Options& /*options*/, const Hooks& /*hooks*/)
{
    return {};
}

} // namespace refine
