// SPDX-License-Identifier: BSD-3-Clause
// The detailed placement: passes over all segments, and the moves out of those that are too full.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <utility>
#include <vector>

class Design;
struct Component;
struct Segment;

namespace vireloce {
class FastRoad;
} // namespace vireloce

/// A component that may leave its segment: ((preferred x, preferred y), (component, sites freed)); DBU,
/// sites.
using MoveCandidate = std::pair<std::pair<int32_t, int32_t>, std::pair<Component*, int32_t>>;

/// Orders candidates: the farthest from its preferred row first.
bool byDeltaY(const MoveCandidate& a, const MoveCandidate& b);

/// Orders (value, index) pairs: the largest value first.
bool byDec(const std::pair<float, int>& a, const std::pair<float, int>& b);

namespace vireloce {

/// How far a placement has got.
struct Progress {
    int32_t pass;         ///< passes begun
    int32_t segmentsDone; ///< segments solved in this pass
    int32_t numSegments;  ///< segments in a pass
    int32_t overfull;     ///< segments of this pass that components had to be moved out of
    int32_t movedOut;     ///< components moved out in this pass
};

} // namespace vireloce

/// Places a design.
class Legalizer {
public:
    /// @param placed  the design, set up, not owned
    explicit Legalizer(Design* placed);
    ~Legalizer();
    Legalizer(const Legalizer&) = delete;
    Legalizer& operator=(const Legalizer&) = delete;

    /// Runs passes over all segments, densest first, until a pass moves no component between segments.
    ///
    /// A segment whose coloured components do not fit gives some to segments that the pass has not come to
    /// yet; a segment that is done stays as it is for the rest of the pass. The number of passes has no
    /// limit.
    ///
    /// Errors: ends the run with an error line where moving cannot help, or with the greedy method at once.
    void solveDPlace();

    /// Moves components out of a segment until enough sites are free.
    ///
    /// @param seg   the segment
    /// @param need  sites to free
    /// @return whether that many were freed
    bool globalMove(Segment* seg, int need);

    /// Mean position of what shares a net with a component, corners not centres, clamped to the design; the
    /// component's own position if there is none.
    ///
    /// @param x  out: DBU
    /// @param y  out: DBU
    void getOptimalPos(Component* c, int& x, int& y);

    /// Moves a component into the least dense segment near a point that the pass has not come to yet.
    ///
    /// Required: into an empty segment, or right of all components of one, nothing is inserted, although the
    /// result is 1; the caller takes the component out of its segment, and it is in none from then on.
    ///
    /// @param x  wanted x, DBU
    /// @param y  wanted y, DBU
    /// @pre   segDone and segDensity hold an entry per segment, as they do during solveDPlace().
    /// @return 1 if a segment was found, else 0
    int moveComponent(Component* c, int x, int y);

    /// Moves every component out of a segment that sticks out of its right end. Not part of a run.
    void postMove(Segment* seg);

    /// Sites taken by a segment's cells over its capacity; 0 without any.
    float getDensity(Segment* seg);

    /// Sites that a segment's components need, packed from the left, with the spacings of their solutions.
    ///
    /// @param seg  at least one component
    int getColoredSiteNum(Segment* seg);

    /// getColoredSiteNum() over the segment's capacity.
    ///
    /// @param seg  at least one component
    float getColoredDensity(Segment* seg);

    /// Clears every mark of segDone. Not part of a run.
    void refinement();

    /// Does nothing.
    void debugGlobalMove(int);

    std::vector<bool> segDone;     ///< [segment id] whether this pass has come to the segment
    std::vector<float> segDensity; ///< [segment id] density at the start of the pass
    int32_t passCount = 0;         ///< passes begun
    int32_t movedOut = 0;          ///< components moved out of their segment in this pass
    std::function<void(const vireloce::Progress&)> onProgress; ///< called after every segment, if not empty
    Design* design;                                            ///< not owned
    std::list<Component*>::iterator lastInsertPos; ///< where moveComponent() last inserted, or would have
    Segment* lastTargetSeg = nullptr;              ///< segment that a move last worked on, not owned
    std::unique_ptr<vireloce::FastRoad> fastRoad;  ///< of the segment solver, during solveDPlace() only
    int32_t metric = 0;                            ///< what SegLegalizer::getEdgeCost_bak() measures: 0 or 1

private:
    class FastRoadScope;

    /// Solves all segments once.
    ///
    /// @return the number of those that components were moved out of
    int32_t solvePass();

    /// Starts a pass: densities, and the segment ids in the order of the visit.
    std::vector<int32_t> beginPass();

    /// Solves one segment.
    ///
    /// @return whether components were moved out of it
    bool solveSegment(Segment* seg);

    /// The segment that moveComponent() chooses, nullptr if there is none.
    Segment* findTarget(int x, int y);

    /// The least dense of some segments that are not done, the last of equals; nullptr if all are done.
    Segment* leastDense(const std::vector<Segment*>& found) const;

    /// Sites that a component takes: its width and the gap to its left neighbour.
    int32_t sitesWithGap(const Component& left, const Component& comp) const;
};
