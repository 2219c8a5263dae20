// SPDX-License-Identifier: BSD-3-Clause
#include "refine/pairTable.h"

#include <algorithm>

namespace refine {

namespace {

int32_t ceilDiv(int32_t a, int32_t b)
{
    return a >= 0 ? (a + b - 1) / b : -(-a / b);
}

/// Numbers rows of a matrix so that equal ones have one number.
///
/// @param rows  each of the same length, one after the other
/// @return [row]
std::vector<uint16_t> numbered(const std::vector<int32_t>& rows, size_t count, size_t length)
{
    std::vector<uint16_t> numbers(count);
    std::vector<size_t> firsts;
    for (size_t i = 0; i < count; ++i) {
        const auto equals = [&](size_t first) {
            return std::equal(rows.begin() + static_cast<std::ptrdiff_t>(i * length),
                              rows.begin() + static_cast<std::ptrdiff_t>((i + 1) * length),
                              rows.begin() + static_cast<std::ptrdiff_t>(first * length));
        };
        const auto at = std::find_if(firsts.begin(), firsts.end(), equals);
        numbers[i] = static_cast<uint16_t>(at - firsts.begin());
        if (at == firsts.end()) {
            firsts.push_back(i);
        }
    }
    return numbers;
}

} // namespace

PairTable::PairTable(const Model& model)
    : m_model(model), m_views(static_cast<size_t>(model.views)), m_gaps(model.gaps.data()),
      m_leastBefore(model.kinds.size(), std::numeric_limits<int32_t>::min()), m_number(model.kinds.size(), -1)
{
    std::vector<int32_t> movable;
    for (const Cell& cell : model.cells) {
        int32_t& number = m_number[static_cast<size_t>(cell.kind)];
        if (!cell.fixed && number < 0) {
            number = static_cast<int32_t>(movable.size());
            movable.push_back(cell.kind);
        }
    }
    m_largest = model.gaps.empty() ? 0 : std::max(0, *std::ranges::max_element(model.gaps));
    for (const int32_t kind : movable) {
        const int32_t width = model.kinds[static_cast<size_t>(kind)].width;
        if (width < m_largest) {
            m_leastBefore[static_cast<size_t>(kind)] = m_largest - width;
        }
    }
    m_count = movable.size();
    m_entries.reserve(m_count * m_count);
    for (const int32_t left : movable) {
        for (const int32_t right : movable) {
            addPair(left, right);
        }
    }
}

void PairTable::addPair(int32_t left, int32_t right)
{
    const auto lefts = static_cast<size_t>(m_model.stateCount(left));
    const auto rights = static_cast<size_t>(m_model.stateCount(right));
    std::vector<int32_t> gaps(lefts * rights);
    std::vector<int32_t> columns(lefts * rights);
    for (size_t l = 0; l < lefts; ++l) {
        for (size_t r = 0; r < rights; ++r) {
            const int32_t gap = between(left, static_cast<int32_t>(l), right, static_cast<int32_t>(r));
            gaps[l * rights + r] = columns[r * lefts + l] = std::max(0, ceilDiv(gap, m_model.step));
        }
    }
    const std::vector<uint16_t> leftClasses = numbered(gaps, lefts, rights);
    const std::vector<uint16_t> rightClasses = numbered(columns, rights, lefts);
    Entry& entry = m_entries.emplace_back();
    entry.leftClasses = static_cast<uint16_t>(*std::ranges::max_element(leftClasses) + 1);
    entry.rightClasses = static_cast<uint16_t>(*std::ranges::max_element(rightClasses) + 1);
    entry.classes = static_cast<uint32_t>(m_classes.size());
    entry.gaps = static_cast<uint32_t>(m_sites.size());
    m_classes.insert(m_classes.end(), leftClasses.begin(), leftClasses.end());
    m_classes.insert(m_classes.end(), rightClasses.begin(), rightClasses.end());
    m_sites.resize(m_sites.size() + size_t{entry.leftClasses} * entry.rightClasses);
    for (size_t l = 0; l < lefts; ++l) {
        for (size_t r = 0; r < rights; ++r) {
            m_sites[entry.gaps + size_t{leftClasses[l]} * entry.rightClasses + rightClasses[r]] =
                gaps[l * rights + r];
        }
    }
}

PairTable::Pair PairTable::of(int32_t left, int32_t right) const
{
    const size_t row = static_cast<size_t>(m_number[static_cast<size_t>(left)]) * m_count;
    const Entry& entry = m_entries[row + static_cast<size_t>(m_number[static_cast<size_t>(right)])];
    const uint16_t* const classes = m_classes.data() + entry.classes;
    return {entry.leftClasses, entry.rightClasses, classes, classes + m_model.stateCount(left),
            m_sites.data() + entry.gaps};
}

} // namespace refine
