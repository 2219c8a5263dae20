// SPDX-License-Identifier: BSD-3-Clause
// The page's own files, which the build puts into the program.
#pragma once

#include <string_view>

namespace kit::view {

extern const std::string_view VIEWER_HTML; ///< viewer.html, with a mark for each thing that is put into it
extern const std::string_view VIEWER_CSS;  ///< viewer.css
extern const std::string_view VIEWER_JS;   ///< viewer.js

} // namespace kit::view
