// SPDX-License-Identifier: BSD-3-Clause
// The design in memory: rows, segments, components, nets, pins and macros, with their cell library.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/placeOptions.h"
#include "db/component.h"
#include "db/macro.h"
#include "db/net.h"
#include "db/pin.h"
#include "db/row.h"
#include "db/segment.h"
#include "db/setUpFigures.h"
#include "lut/lutable.h"
#include "parser/netParser.h"
#include "parser/pinParser.h"
#include "parser/placeParser.h"
#include "qlib/qLibRTree.h"

/// A placed design and all that the placer knows of it. It owns every record. Geometry is in DBU, positions
/// inside a segment are in sites.
///
/// Life: constructed, configured by setOptions(), read and set up by initAll(), placed by
/// Legalizer::solveDPlace(), measured by evaluation().
class Design {
public:
    /// An empty design with the default paths; enters "N" and "FN" into Component::s_orientMap.
    Design();
    /// Deletes all records.
    ~Design();
    /// Not copied: it owns its records.
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;

    /// Changes the options as vireloce::readOptions() reads them.
    ///
    /// @param argc  number of entries of argv, the program's name included
    /// @param argv  [argc]
    /// @return whether all of them could be read
    bool parseParameters(int argc, char** argv);

    /// Takes the paths and the algorithm number of some options, and sets the parameters to theirs.
    void setOptions(const vireloce::PlaceOptions& options);

    /// Reads the library and the design files, cuts rows, assigns components, prints the statistics.
    ///
    /// Errors: those of the readers; a component of an unknown cell; a site width that is not positive.
    void initAll();

    /// Keeps a macro until the design ends, and enters it into macros and macroTree.
    void addMacro(Macro macro);

    /// Takes SITE_HEIGHT and SITE_WIDTH from the rows and rescales the cells; nothing with fewer than two
    /// rows.
    void resizeCell();

    /// Cuts every row at the edges of the macros on it, and enters the pieces into segments and segmentTree.
    ///
    /// Required: the sorted edges are paired by position and not clipped to the row. For macros inside the
    /// row that do not overlap each other the pairs are just the free stretches.
    ///
    /// Errors: a segment of a negative number of sites.
    void initSegments();

    /// Puts every component into the first segment that the search finds under it, by its x and y.
    ///
    /// Required: a component that overlaps no segment joins the segment of the last search that found one. If
    /// there was none, it is left out with the line "WARNING| cannot assign component: ".
    void initCompInSegments();

    /// Puts every component on the row with its y, by row instead of by segment. Not part of a run.
    void initCompOnRows();

    /// Segments that overlap the square from (x - range, y - range) to (x + range, y + range), DBU.
    ///
    /// @return the segments in search order, not owned
    std::vector<Segment*> searchSegments(int x, int y, int range);

    /// Takes the design bound from the segments.
    void initDesignBound();

    /// Fills the nets of every component, one entry per membership.
    void initNetInComp();

    /// Removes one trailing "." from placePath.
    void cleanPlacePath();

    /// Largest capacity of a segment, sites; the smallest integer without segments.
    int getMaxSiteNum();

    /// Largest number of components in a segment; the smallest integer without segments.
    int getMaxCompNum();

    /// Sets a net's bounding box from the centres of its components and its pins, DBU.
    void evaluateBound(Net* net);

    /// Total half-perimeter wirelength, DBU; sets every net's box.
    long evaluateHPWL();

    /// Sum over the components of the fewest stitches of any solution of their cells.
    int evaluateStitchLowerBound();

    /// Stitches of the chosen solutions of all components that are in a segment.
    int evaluateStitchNum();

    /// Number of neighbours in a segment that are closer than their solutions need.
    ///
    /// Required: it compares left end with left end, without the left component's width; the solvers put the
    /// spacing after that width.
    int evaluateConflictNum();

    /// Sets finalHPWL and prints the final statistics.
    void evaluation();

    /// Runs the layout tool on every script named in tclFiles. Not part of a run.
    void calibreAllTcl();

    /// Debugging hooks. They do nothing.
    ///@{
    void dumpOutPlace();
    void debugPlace(std::string, std::string);
    void debugMetal1();
    void debugColors();
    void debugCellDistribution();
    ///@}

    /// The library cell of a component of a known cell.
    const Cell& cellOf(const Component& comp) const { return *lut.cells[static_cast<size_t>(comp.cellIdx)]; }

    /// Sites that two neighbours must keep between them: the table's spacing for the two solutions, divided
    /// by SITE_WIDTH and rounded up; 0 where one of the cells has no such solution.
    ///
    /// Required: the table's entries are counts of sites already, and are divided all the same. So any entry
    /// from 1 to SITE_WIDTH means one site.
    ///
    /// @param left           left component
    /// @param leftSolution   its solution
    /// @param right          right component
    /// @param rightSolution  its solution
    int32_t safeSites(const Component& left, int32_t leftSolution, const Component& right,
                      int32_t rightSolution) const;

    /// Empties compIndex and pinIndex. Names serve the readers only; their memory, a good part of what a
    /// design takes, then serves the solver.
    void dropNames();

    /// Ends the run with an error line if the cell of a component is not in the library.
    void requireCells() const;

    /// Ends the run with an error line if the cell of a component has no colour solution.
    void requireSolutions() const;

    int32_t boundXl = 0;                      ///< design bound, left edge, DBU
    int32_t boundXh = 0;                      ///< right edge, DBU
    int32_t boundYl = 0;                      ///< bottom edge, DBU
    int32_t boundYh = 0;                      ///< top edge, DBU
    int32_t algo = 0;                         ///< placement method, option "-algo"
    int64_t initHPWL = 0;                     ///< wirelength after set-up, DBU
    int64_t finalHPWL = 0;                    ///< wirelength after placement, DBU
    PlaceParser placeParser;                  ///< reader of the placement file
    PinParser pinParser;                      ///< reader of the pin file
    NetParser netParser;                      ///< reader of the netlist file
    LUTable lut;                              ///< cell library and spacing table
    std::string placePath;                    ///< path of the design files without extension
    std::string designName;                   ///< placePath without its folder
    std::string cellPath;                     ///< folder of the colour files
    std::vector<Row*> rows;                   ///< file order, owned
    std::vector<Segment*> segments;           ///< by id, owned
    std::vector<Pin*> pins;                   ///< file order, owned
    std::vector<Net*> nets;                   ///< by id, owned
    std::vector<Component*> components;       ///< file order, owned
    std::vector<Macro*> macros;               ///< file order, not owned: see addMacro()
    std::map<std::string, int32_t> pinIndex;  ///< name to index in pins, the last of a name
    std::map<std::string, int32_t> compIndex; ///< name to index in components, the last of a name
    std::map<int32_t, int32_t> rowIndexByY;   ///< bottom y to index in rows, the last at a y
    std::set<std::string> tclFiles;           ///< scripts for calibreAllTcl()
    RTree<Macro*, int, 2, float, 8, 4> macroTree;
    RTree<Segment*, int, 2, float, 8, 4> segmentTree;
    vireloce::SetUpFigures setUpFigures; ///< of initAll()

private:
    /// Searches segmentTree and notes the first hit in m_lastHit.
    const std::vector<Segment*>& findSegments(int32_t xl, int32_t yl, int32_t xh, int32_t yh);

    /// Sets setUpFigures and prints them but for those of the library, which has printed its own.
    void reportSetUp();

    std::deque<Macro> m_ownMacros; ///< those of addMacro(); a deque never moves its elements
    Segment* m_lastHit = nullptr;  ///< first segment of the last search that found one, not owned
};
