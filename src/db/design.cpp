// SPDX-License-Identifier: BSD-3-Clause
#include "db/design.h"

#include "app/parameters.h"
#include "qlib/exact.h"
#include "qlib/report.h"

namespace {

/// Deletes what the pointers of a vector own.
template <class T>
void deleteAll(std::vector<T*>& owned)
{
    for (T* item : owned) {
        delete item;
    }
    owned.clear();
}

} // namespace

Design::Design() : placeParser(this), pinParser(this), netParser(this)
{
    const vireloce::PlaceOptions defaults;
    placePath = designName = defaults.placePath;
    cellPath = defaults.cellPath;
    Component::s_orientMap.emplace("N", Component::N);
    Component::s_orientMap.emplace("FN", Component::FN);
}

Design::~Design()
{
    deleteAll(rows);
    deleteAll(components);
    deleteAll(pins);
    deleteAll(nets);
    deleteAll(segments);
    segmentTree.clear();
    macroTree.clear();
}

void Design::addMacro(Macro macro)
{
    Macro& own = m_ownMacros.emplace_back(std::move(macro));
    macros.push_back(&own);
    qLib::insertItem(macroTree, &own, own.x, own.y, own.x + own.width, own.y + own.height);
}

int32_t Design::safeSites(const Component& left, int32_t leftSolution, const Component& right,
                          int32_t rightSolution) const
{
    const auto& block = lut.distTable[static_cast<size_t>(left.cellIdx)][static_cast<size_t>(right.cellIdx)];
    // A negative index becomes a huge one here, and is out of range like any other.
    const auto s = static_cast<size_t>(leftSolution);
    const auto t = static_cast<size_t>(rightSolution);
    if (s >= block.size() || t >= block[s].size()) {
        return 0;
    }
    return vireloce::ceilSites(block[s][t], SITE_WIDTH);
}

void Design::dropNames()
{
    compIndex.clear();
    pinIndex.clear();
}

void Design::requireCells() const
{
    for (const Component* comp : components) {
        if (comp->cellIdx < 0) {
            vireloce::endRun("ERROR| component " + comp->name + ": its cell " + comp->cellName +
                             " is not in the library");
        }
    }
}

void Design::requireSolutions() const
{
    for (const Component* comp : components) {
        if (cellOf(*comp).colors.empty()) {
            vireloce::endRun("ERROR| component " + comp->name + ": its cell " + comp->cellName +
                             " has no colour solution");
        }
    }
}
