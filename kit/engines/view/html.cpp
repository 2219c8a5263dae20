// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/html.h"

#include <cassert>
#include <string_view>

#include "kit/base/text/base64.h"
#include "kit/base/text/escape.h"
#include "kit/engines/view/pageData.h"
#include "kit/engines/view/viewerText.h"

namespace kit::view {

namespace {

/// Writes an array as a script element of that id, which the browser does not run.
template <typename Array>
void writeArray(OutputFile& file, std::string_view id, const Array& array)
{
    file << "<script type=\"text/plain\" id=\"" << id << "\">";
    writeBase64(file, bytesOf(array));
    file << "</script>\n";
}

void writeData(OutputFile& file, const Scene& scene)
{
    file << "<script type=\"application/json\" id=\"design\">" << describe(scene) << "</script>\n";
    const PageArrays arrays = arrange(scene);
    writeArray(file, "x", arrays.x);
    writeArray(file, "y", arrays.y);
    writeArray(file, "kind", arrays.kind);
    writeArray(file, "colouring", arrays.colouring);
    writeArray(file, "turns", arrays.turns);
    writeArray(file, "names", arrays.names);
    writeArray(file, "stripes", arrays.stripes);
    writeArray(file, "beforeX", arrays.beforeX);
    writeArray(file, "beforeY", arrays.beforeY);
    writeArray(file, "beforeOrder", arrays.beforeOrder);
    writeArray(file, "beforeStripes", arrays.beforeStripes);
    writeArray(file, "netBegin", arrays.netBegin);
    writeArray(file, "members", arrays.members);
    writeArray(file, "conflictList", arrays.conflicts);
}

/// Writes the text up to a mark and takes both away from it.
void writeUpTo(OutputFile& file, std::string_view& text, std::string_view mark)
{
    const size_t place = text.find(mark);
    assert(place != std::string_view::npos);
    file << text.substr(0, place);
    text.remove_prefix(place + mark.size());
}

} // namespace

void writeHtml(OutputFile& file, const Scene& scene)
{
    std::string_view page = VIEWER_HTML;
    writeUpTo(file, page, "@title@");
    file << escapeXml(scene.title);
    writeUpTo(file, page, "@style@");
    file << VIEWER_CSS;
    writeUpTo(file, page, "@data@");
    writeData(file, scene);
    writeUpTo(file, page, "@script@");
    file << VIEWER_JS << page;
}

} // namespace kit::view
