// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/version.h"

namespace kit {

const char* programVersion()
{
    return VIRELOCE_VERSION;
}

} // namespace kit
