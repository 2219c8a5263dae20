# Writes a source file that holds viewer.html, viewer.css and viewer.js as texts.
#
# Usage: cmake -D FOLDER=<of the three> -D OUTPUT=<source file> -P embed.cmake
set(source "// SPDX-License-Identifier: BSD-3-Clause\n#include \"kit/engines/view/viewerText.h\"\n\nnamespace kit::view {\n\n")
foreach(type HTML CSS JS)
    string(TOLOWER ${type} extension)
    file(READ ${FOLDER}/viewer.${extension} text)
    string(APPEND source "const std::string_view VIEWER_${type} = R\"viewer(${text})viewer\";\n\n")
endforeach()
string(APPEND source "} // namespace kit::view\n")
file(WRITE ${OUTPUT} "${source}")
