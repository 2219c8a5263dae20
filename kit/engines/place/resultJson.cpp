// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/resultJson.h"

#include <sys/resource.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "db/design.h"

namespace kit::place {

namespace {

constexpr int SCHEMA_VERSION = 1;

/// CPU seconds with the digits that the report has.
double asReported(const vireloce::Times& times)
{
    return std::round(times.cpu * 1000.0) / 1000.0;
}

/// The numbers of the report by their labels, single blanks in them.
Json reportJson(const PlacerRun& run)
{
    const vireloce::SetUpFigures& setUp = run.result.setUp;
    Json json{{"cell type #", setUp.cellTypes},
              {"LUTable item #", setUp.tableEntries},
              {"net #", setUp.nets},
              {"row #", setUp.rows},
              {"segment #", setUp.segments},
              {"component #", setUp.components},
              {"macro #", setUp.macros},
              {"max solution # for cells", setUp.maxSolutions},
              {"max site # on rows", setUp.maxSites},
              {"max componnet # on rows", setUp.maxComponents},
              {"init HPWL", setUp.hpwl},
              {"stitch # lowerB", setUp.stitchLowerBound},
              {"LUT CPU time", asReported(run.result.setUpTime)}};
    if (run.complete) {
        const vireloce::FinalFigures& end = run.result.end;
        json.update({{"final HPWL", end.hpwl},
                     {"HPWL increases", end.hpwlIncrease},
                     {"final stitch #", end.stitches},
                     {"final conflict #", end.conflicts},
                     {"Virelocer CPU time", asReported(run.result.placeTime)}});
    }
    return json;
}

Json optionsJson(const Options& options, int32_t minDist)
{
    // Whoever reads it may be in another folder.
    const auto absolute = [](const std::string& path) {
        return std::filesystem::absolute(path).lexically_normal().string();
    };
    Json json{{"base", absolute(options.base)},
              {"cell_path", absolute(options.cellPath)},
              {"out", absolute(options.out)}};
    const auto addGiven = [&](const char* name, const auto& value) {
        json[name] = value.has_value() ? Json(*value) : Json(nullptr);
    };
    addGiven("algo", options.algo);
    json["mindp"] = options.minDist ? Json(minDist) : Json(nullptr);
    addGiven("site_width", options.siteWidth);
    addGiven("move_range", options.moveRange);
    addGiven("weight", options.weight);
    json["true_orientation"] = options.trueOrientation;
    json["rescue"] = options.rescue;
    if (options.rowsMeet) {
        json["rows_meet"] = true;
    }
    return json;
}

Json passesJson(const std::vector<vireloce::Pass>& passes)
{
    Json json = Json::array();
    for (const vireloce::Pass& pass : passes) {
        json.push_back({{"overfull_segments", pass.overfull}, {"moved_cells", pass.movedOut}});
    }
    return json;
}

Json displacementJson(const Displacement& displacement)
{
    Json histogram = Json::array();
    for (size_t k = 0; k < displacement.histogram.size(); ++k) {
        histogram.push_back({{"from", k == 0 ? 0 : int64_t{1} << (k - 1)},
                             {"below", int64_t{1} << k},
                             {"cells", displacement.histogram[k]}});
    }
    return {{"unit", "sites"},
            {"mean", displacement.mean},
            {"largest", displacement.largest},
            {"farthest_cell", displacement.farthest.empty() ? Json(nullptr) : Json(displacement.farthest)},
            {"histogram", histogram}};
}

Json segmentsJson(const std::vector<Filling>& segments)
{
    Json json = Json::array();
    for (const Filling& segment : segments) {
        const double density = segment.numSites == 0 ? 0.0 : double(segment.taken) / segment.numSites;
        json.push_back({{"x", segment.x},
                        {"y", segment.y},
                        {"sites", segment.numSites},
                        {"cells", segment.cells},
                        {"taken_sites", segment.taken},
                        {"density", density}});
    }
    return json;
}

Json namesJson(const Design& design, const std::vector<int32_t>& components)
{
    Json json = Json::array();
    for (const int32_t id : components) {
        json.push_back(design.components[static_cast<size_t>(id)]->name);
    }
    return json;
}

int64_t peakMemoryKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

Json toJson(const Design& design, const State& state)
{
    return {{"hpwl", state.hpwl},
            {"stitches", state.stitches},
            {"conflicts", state.conflicts},
            {"dropped_cells", namesJson(design, state.dropped)},
            {"cells_beyond_segment", namesJson(design, state.beyond)},
            {"overlapping_cells", namesJson(design, state.overlapping)},
            {"displacement", displacementJson(state.displacement)},
            {"hash", state.hash},
            {"segments", segmentsJson(state.segments)}};
}

Json toJson(const Design& design, const Rescue& rescue)
{
    Json cells = Json::array();
    for (const Rescued& rescued : rescue.cells) {
        const Component& comp = *design.components[static_cast<size_t>(rescued.component)];
        Json cell{{"name", comp.name},
                  {"helped", rescued.helped},
                  {"from", Json::array({rescued.fromX, rescued.fromY})}};
        cell["to"] = rescued.helped ? Json::array({comp.x, comp.y}) : Json(nullptr);
        cells.push_back(std::move(cell));
    }
    return {{"cells", cells},
            {"pairs", rescue.pairs},
            {"mended_pairs", rescue.mendedPairs},
            {"moved_neighbours", rescue.movedNeighbours},
            {"recolored_cells", rescue.recolored},
            {"mirrored_cells", rescue.mirrored.size()},
            {"searches_given_up", rescue.searchesGivenUp}};
}

Json resultJson(const Options& options, int32_t minDist, const PlacerRun& run, Json placement, Json rescue,
                double seconds)
{
    return {{"schema", "vireloce-place"},
            {"version", SCHEMA_VERSION},
            {"options", optionsJson(options, minDist)},
            {"complete", run.complete},
            {"report", reportJson(run)},
            {"passes", passesJson(run.result.passes)},
            {"placement", std::move(placement)},
            {"rescue", std::move(rescue)},
            {"judge", nullptr},
            {"hpwl_pins", nullptr},
            {"seconds", seconds},
            {"peak_memory_kib", peakMemoryKib()}};
}

} // namespace kit::place
