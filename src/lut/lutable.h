// SPDX-License-Identifier: BSD-3-Clause
// The cell library: its cells and the table of the spacings that they need between them.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "lut/cell.h"

/// The cell library. It owns the cells and the rectangles that it has read.
class LUTable {
public:
    /// A library without cells.
    LUTable() = default;
    /// Deletes the cells.
    ~LUTable();
    /// Not copied: it owns its cells.
    LUTable(const LUTable&) = delete;
    LUTable& operator=(const LUTable&) = delete;

    /// Sets the folder of the colour files; every trailing "/" is stripped.
    void setCellPath(std::string path);

    /// Reads a list of cells, a count and as many names, and every cell in it; prints the number of cells.
    ///
    /// A list that cannot be opened gets an error line and counts as empty; so does, silently, a list whose
    /// count is no number. Errors: ends the run if the list ends early, and as readCell().
    void readCells(std::string path);

    /// Reads the colour file of a cell and appends the cell.
    ///
    /// Errors: ends the run if the file cannot be opened, ends early, holds text for a number, or has a count
    /// or a size that cannot be.
    void readCell(std::string name);

    /// Index of the last cell read with a name, -1 if there is none.
    int32_t getCellIndex(std::string name) const;

    /// Builds the spacing table of all cells and prints its size.
    ///
    /// Type i of 0 .. 2N - 1 is cell i mod N, mirrored left to right from N on.
    ///
    /// Errors: ends the run if the table would be larger than s_maxTableSize.
    void genLUTable();

    /// Spacings between two cells that stand side by side.
    ///
    /// @param left       left cell
    /// @param leftFlip   whether it is mirrored
    /// @param right      right cell
    /// @param rightFlip  whether it is mirrored
    /// @return [left solution][right solution] spacing, sites of the library
    std::vector<std::vector<int32_t>> genLUTable(Cell* left, bool leftFlip, Cell* right,
                                                 bool rightFlip) const;

    /// Spacing that two abutting cells need for a pair of solutions, DBU of the library, 0 or more.
    ///
    /// Required: it is that of the first pair of rectangles that gives a positive value, in the order left
    /// shape, right shape, left rectangle, right rectangle; not the largest over all pairs.
    ///
    /// Errors: a solution out of range prints "WARNING| larger id1" (id2 for the right cell) and gives 0.
    int32_t getSafeDist(Cell* left, bool leftFlip, int32_t leftSolution, Cell* right, bool rightFlip,
                        int32_t rightSolution) const;

    /// getSafeDist() in sites of the library, rounded up: an entry of the table.
    int32_t getSafeSiteDist(Cell* left, bool leftFlip, int32_t leftSolution, Cell* right, bool rightFlip,
                            int32_t rightSolution) const;

    /// Whether a shape of a cell is one of some shapes or touches one of them. Not part of a run.
    bool isConnectWithShapeID(Cell* cell, int32_t shape, const std::vector<int>& shapeIDs) const;

    /// Number of entries of the table.
    size_t countEntries() const;

    /// Prints the number of entries of the table.
    void evaluateLUT() const;

    /// Writes "debug.tcl" into the working folder, a layout script that draws two cells side by side. Not
    /// part of a run.
    ///
    /// @param id1  index of the left cell
    /// @param id2  index of the right cell
    /// @param s1   solution of the left cell
    /// @param s2   solution of the right cell
    void debugTwoCells(int id1, int id2, int s1, int s2) const;

    std::string cellPath;                     ///< folder of the colour files
    std::vector<Cell*> cells;                 ///< in the order read, owned
    std::map<std::string, int32_t> cellIndex; ///< name to index in cells, the last of a name

    /// [left type][right type][left solution][right solution] spacing, sites of the library.
    std::vector<std::vector<std::vector<std::vector<int32_t>>>> distTable;

    /// Most entries of a table, those counted in that hold its blocks: the square of the number of types and
    /// of their solutions.
    static int64_t s_maxTableSize;

private:
    /// Ends the run if the table would be larger than s_maxTableSize.
    void requireTableSize() const;

    std::deque<qBox> m_boxes; ///< rectangles of the cells that were read; a deque never moves its elements
};
