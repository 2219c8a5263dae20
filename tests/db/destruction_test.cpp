// SPDX-License-Identifier: BSD-3-Clause
// What the end of a design releases. A program of its own, for it counts the blocks of the whole process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "db/design.h"
#include "lut/library.h"

namespace {

int64_t s_liveBlocks = 0;

} // namespace

// Not inlined: the compiler would take malloc() and free() for mismatched calls.
[[gnu::noinline]] void* operator new(size_t size)
{
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++s_liveBlocks;
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    s_liveBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, size_t /*size*/) noexcept
{
    operator delete(block);
}

namespace {

/// A name that no string keeps inside itself.
std::string longName(int number)
{
    return "a name that is too long to be kept in place, number " + std::to_string(number);
}

/// Gives a design some of everything that it owns, and a macro that it does not.
void fill(Design& design, Macro* macro)
{
    for (int i = 0; i < 20; ++i) {
        auto* row = new Row;
        row->name = longName(i);
        design.rows.push_back(row);
        design.rowIndexByY[i] = i;
        auto* cell = new Cell(190, 1900);
        cell->colors.resize(3);
        design.lut.cells.push_back(cell);
        auto* comp = new Component;
        comp->name = longName(i);
        comp->leftIDs = comp->rightIDs = {1, 2};
        design.components.push_back(comp);
        design.compIndex[comp->name] = i;
        row->components.push_back(comp);
        design.pins.push_back(new Pin{longName(i), 0, 0});
        design.pinIndex[longName(i)] = i;
        auto* net = new Net;
        net->components.push_back(comp);
        net->pins.push_back(design.pins.back());
        comp->nets.push_back(net);
        design.nets.push_back(net);
        auto* segment = new Segment;
        segment->components.assign(3, comp);
        design.segments.push_back(segment);
        row->segments.push_back(segment);
        qLib::insertItem(design.segmentTree, segment, i * 190, 0, i * 190 + 190, 1900);
        design.addMacro({i, 0, 190, 1900, longName(i)});
        design.macros.push_back(macro);
        qLib::insertItem(design.macroTree, macro, i * 190, 0, i * 190 + 190, 1900);
        design.tclFiles.insert(longName(i));
    }
}

TEST(DesignEnd, ReleasesEverythingThatTheDesignOwns)
{
    Macro macro; // on the stack: to delete it would be the end of the process
    {            // the orientations, which stay
        const Design first;
    }
    const int64_t before = s_liveBlocks;
    int64_t inUse = 0;
    {
        Design design;
        fill(design, &macro);
        inUse = s_liveBlocks;
    }
    const int64_t after = s_liveBlocks;
    EXPECT_GT(inUse, before + 500);
    EXPECT_EQ(after, before);
}

TEST(DesignEnd, LeavesTheMacrosOfOthers)
{
    Macro macro;
    macro.name = longName(1);
    macro.width = 5;
    {
        Design design;
        fill(design, &macro);
    }
    EXPECT_EQ(macro.name, longName(1));
    EXPECT_EQ(macro.width, 5);
}

TEST(LibraryEnd, ReleasesTheRectanglesThatItHasRead)
{
    const test::Library files; // for its folder
    std::string text = "190 1900 0 1 2000\n";
    for (int i = 0; i < 2000; ++i) {
        text += "0 0 10 10\n";
    }
    files.addFile("A", text + "1 0 0\n");
    const int64_t before = s_liveBlocks;
    {
        LUTable lut;
        lut.setCellPath(files.path("lib"));
        lut.readCell("A");
        EXPECT_EQ(lut.cells.at(0)->shapes.at(0).size(), 2000U);
        EXPECT_GT(s_liveBlocks, before + 50);
    }
    const int64_t after = s_liveBlocks;
    EXPECT_EQ(after, before);
}

TEST(DesignEnd, OfAnEmptyDesignReleasesItsTrees)
{
    {
        const Design first;
    }
    const int64_t before = s_liveBlocks;
    {
        const Design second;
    }
    const int64_t after = s_liveBlocks;
    EXPECT_EQ(after, before);
}

} // namespace
