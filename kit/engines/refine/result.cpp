// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/result.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "kit/base/text/text.h"
#include "kit/design/pinOffsets.h"

namespace kit::refine {

namespace {

const char* nameOf(::refine::Move move)
{
    switch (move) {
    case ::refine::Move::INSERT:
        return "insert";
    case ::refine::Move::SWAP:
        return "swap";
    case ::refine::Move::ROW:
        return "row";
    case ::refine::Move::REORDER:
        return "reorder";
    }
    return "";
}

Json optionsJson(const Options& options, const Outcome& outcome, int32_t dbuPerMicron)
{
    // Whoever reads it may be in another folder.
    const auto absolute = [](const std::string& path) {
        return path.empty() ? Json() : Json(std::filesystem::absolute(path).lexically_normal().string());
    };
    const auto given = [](const std::optional<double>& value) { return value ? Json(*value) : Json(); };
    return {{"input", absolute(options.input)},
            {"colors", absolute(options.colors)},
            {"base", absolute(options.base)},
            {"anew", options.anew},
            {"effort", options.effort},
            {"jobs", options.jobs},
            {"time", given(options.seconds)},
            {"stitch_price_um", dbuPerMicron > 0 ? Json(outcome.stitchPrice / (2.0 * dbuPerMicron)) : Json()},
            {"max_displacement_um", given(options.maxDisplacement)},
            {"fix", absolute(options.fixedNames)},
            {"net_weights", absolute(options.netWeights)}};
}

Json passesJson(const std::vector<::refine::Pass>& passes, int32_t dbuPerMicron)
{
    Json json = Json::array();
    for (const ::refine::Pass& pass : passes) {
        Json moves = Json::array();
        for (int32_t i = 0; i < ::refine::MOVES; ++i) {
            const ::refine::MoveFigures& figures = pass.moves[i];
            moves.push_back({{"move", nameOf(static_cast<::refine::Move>(i))},
                             {"tried", figures.tried},
                             {"taken", figures.taken},
                             {"gain", design::pinLengthJson(figures.gain, dbuPerMicron)},
                             {"seconds", figures.seconds}});
        }
        json.push_back({{"wirelength", design::pinLengthJson(pass.wirelength, dbuPerMicron)},
                        {"stitches", pass.stitches},
                        {"moves", std::move(moves)}});
    }
    return json;
}

template <typename Value>
Json change(Value before, Value after)
{
    return {{"before", std::move(before)}, {"after", std::move(after)}};
}

} // namespace

Json refineJson(const Options& options, const Outcome& outcome, bool byPins, int32_t dbuPerMicron)
{
    Json strays = Json::array();
    for (const std::string& name : outcome.strays) {
        strays.push_back(name);
    }
    Json homeless = Json::array();
    for (const Outcome::Homeless& cell : outcome.homeless) {
        homeless.push_back({{"name", cell.name}, {"proved", cell.isProved}});
    }
    Json base;
    if (outcome.base) {
        base = {
            {"kept", outcome.base->kept}, {"changed", outcome.base->changes}, {"new", outcome.base->news}};
    }
    return {{"options", optionsJson(options, outcome, dbuPerMicron)},
            {"base", std::move(base)},
            {"by_pins", byPins},
            {"wirelength", change(design::pinLengthJson(outcome.lengthBefore, dbuPerMicron),
                                  design::pinLengthJson(outcome.lengthAfter, dbuPerMicron))},
            {"stitches", change(outcome.stitchesBefore, outcome.stitchesAfter)},
            {"moved_cells", outcome.movedCells},
            {"mirrored_cells", outcome.mirroredCells},
            {"recolored_cells", outcome.recoloredCells},
            {"legalized", outcome.search.legalized},
            {"homeless", std::move(homeless)},
            {"stray_cells", std::move(strays)},
            {"passes", passesJson(outcome.search.passes, dbuPerMicron)},
            {"stopped", outcome.stopped.empty() ? Json() : Json(outcome.stopped)},
            {"seconds", outcome.seconds}};
}

std::string summaryOf(const Json& refine)
{
    const Json& before = refine["wirelength"]["before"];
    const Json& after = refine["wirelength"]["after"];
    const double from = before["dbu"].asNumber();
    std::array<char, 32> percent{};
    std::snprintf(percent.data(), percent.size(), " (%+.2f %%)",
                  from > 0 ? 100.0 * (after["dbu"].asNumber() / from - 1.0) : 0.0);
    std::ostringstream text;
    text << "wirelength " << (refine["by_pins"] == true ? "from pin to pin " : "from middle to middle ");
    if (before["um"].isNull()) {
        text << before["dbu"] << " -> " << after["dbu"] << " DBU";
    } else {
        text << design::micrometresText(before) << " -> " << design::micrometresText(after);
    }
    text << percent.data() << ", " << refine["stitches"]["before"] << " -> " << refine["stitches"]["after"]
         << " stitches; " << counted(refine["moved_cells"].asInteger(), "cell") << " moved, "
         << refine["mirrored_cells"] << " mirrored, " << refine["recolored_cells"] << " recolored";
    if (const Json& base = refine["base"]; base.isObject()) {
        text << "; " << counted(base["kept"].asInteger(), "cell") << " as in the earlier result, "
             << base["changed"] << " changed, " << base["new"] << " new";
    }
    if (refine["legalized"].asInteger() > 0) {
        text << "; " << counted(refine["legalized"].asInteger(), "cell") << " changed to be legal";
    }
    if (!refine["homeless"].empty()) {
        text << "; " << counted(static_cast<int64_t>(refine["homeless"].size()), "cell")
             << " without a legal place";
    }
    if (!refine["stopped"].isNull()) {
        text << "; stopped by " << refine["stopped"].asString();
    }
    return text.str();
}

} // namespace kit::refine
