// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/edits.h"

#include <algorithm>
#include <cassert>

#include "kit/base/files/outputFile.h"

namespace kit::lefdef {

namespace {

/// Hands over the pieces of the changed text one by one.
template <typename SortedEdits, typename Take>
void forEachPiece(const SortedEdits& edits, std::string_view text, size_t begin, size_t end, Take take)
{
    size_t done = begin;
    for (const auto& edit : edits) {
        assert(done <= edit.begin && edit.begin <= edit.end && edit.end <= end);
        take(text.substr(done, edit.begin - done));
        take(edit.text);
        done = edit.end;
    }
    take(text.substr(done, end - done));
}

} // namespace

void Edits::replace(size_t begin, size_t end, std::string text)
{
    m_edits.push_back({begin, end, std::move(text)});
}

void Edits::sort()
{
    std::sort(m_edits.begin(), m_edits.end(), [](const Edit& a, const Edit& b) { return a.begin < b.begin; });
}

std::string Edits::apply(std::string_view text, size_t begin, size_t end)
{
    sort();
    std::string result;
    forEachPiece(m_edits, text, begin, end, [&result](std::string_view piece) { result += piece; });
    return result;
}

void Edits::write(std::string_view text, OutputFile& out)
{
    sort();
    forEachPiece(m_edits, text, 0, text.size(), [&out](std::string_view piece) { out << piece; });
}

} // namespace kit::lefdef
