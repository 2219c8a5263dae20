// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/flow/steps.h"

#include <algorithm>
#include <sstream>

#include "kit/base/process/childProcess.h"
#include "kit/base/text/text.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/refine/result.h"

namespace kit::flow {

namespace {

using Words = std::vector<std::string>;

constexpr const char* SEE_MESSAGES = "see to what the messages say";

/// Adds an option if it was given.
void addGiven(Words& words, const char* name, const std::string& value)
{
    if (!value.empty()) {
        words.insert(words.end(), {name, value});
    }
}

/// Adds the distance if it was given, as it was: each step knows the sites.
void addDistance(Words& words, const Options& options)
{
    addGiven(words, "--mindp", options.minDist ? options.minDist->given() : "");
}

/// Adds a number if it was given, in one word with its option: it may be negative.
template <typename Number>
void addGiven(Words& words, const std::string& name, std::optional<Number> value)
{
    if (value.has_value()) {
        words.push_back(name + "=" + shortText(*value));
    }
}

void addLefs(Words& words, const Options& options)
{
    for (const std::string& lef : options.lefs) {
        words.insert(words.end(), {"--lef", lef});
    }
}

/// What a rescue did, if there was anything to do.
std::string rescueSummary(const Json& rescue)
{
    const int64_t pairs = rescue.isNull() ? 0 : rescue["pairs"].asInteger();
    if (rescue.isNull() || (pairs == 0 && rescue["cells"].empty())) {
        return "";
    }
    const Json& cells = rescue["cells"];
    const auto helped =
        std::ranges::count_if(cells.items(), [](const Json& cell) { return cell["helped"] == true; });
    return "; rescued " + std::to_string(helped) + " of " +
           counted(static_cast<int64_t>(cells.size()), "cell") + " and " + rescue["mended_pairs"].dump() +
           " of " + counted(pairs, "pair") + ", for which " +
           counted(rescue["moved_neighbours"].asInteger(), "other cell") + " moved";
}

/// The result file of a placement in a few words.
std::string placementSummary(const Json& result)
{
    if (result["placement"].isNull()) {
        return "no placement";
    }
    const Json& recolored = result.atPointer("/fixed/placement");
    const Json& settled = recolored.isNull() ? result["placement"] : recolored;
    const Json& after = result["rescue"].isNull() ? settled : result["rescue"]["placement"];
    std::ostringstream text;
    text << "HPWL " << result["report"]["init HPWL"] << " -> " << after["hpwl"] << ", " << after["stitches"]
         << " stitches, " << after["conflicts"] << " conflicts";
    text << rescueSummary(result["rescue"]);
    if (result["judge"].isObject() && result["judge"]["errors"].asInteger() > 0) {
        text << "; verify finds " << counted(result["judge"]["errors"].asInteger(), "error");
    }
    if (const Json& pins = result["hpwl_pins"]; pins.isObject()) {
        text << "; from pin to pin " << design::micrometresText(pins["before"]) << " -> "
             << design::micrometresText(pins["after"]);
    }
    return text.str();
}

/// What has become of the wires, in a few words.
std::string refineSummary(const Json& result)
{
    std::string text = refine::summaryOf(result["refine"]);
    if (result["refine"]["options"]["anew"] == true) {
        text += "; from the import, as place left errors";
    } else if (const Json& pins = result["hpwl_pins"]; pins.isObject()) {
        text += "; before it was placed " + design::micrometresText(pins["before"]);
    }
    return text;
}

} // namespace

std::string summaryIn(const Json& result)
{
    return result["summary"].asString();
}

Places placesOf(const Options& options)
{
    const std::string folder = options.out + ".flow";
    return {.folder = folder,
            .base = folder + "/design",
            .placed = folder + "/placed",
            .refined = folder + "/refined",
            .result = folder + (options.effort > 0 ? "/refined" : "/placed"),
            .cellDir = options.cellPath,
            .colored = folder + "/colored.cells"};
}

Step importStep(const Options& options, const Places& places)
{
    Words words{"import", "--def", options.def, "-o", places.base, "--json"};
    addGiven(words, "--layer", options.layer);
    addLefs(words, options);
    addGiven(words, "--site", options.site);
    if (options.legalize) {
        words.emplace_back("--legalize");
    }
    return {.name = "import", .words = words, .advice = SEE_MESSAGES};
}

Step colorStep(const Options& options, const Places& places, const std::string& site,
               const std::string& folder)
{
    Words words{"color", "-o", folder, "--cells", places.colored, "--json"};
    addGiven(words, "--layer", options.layer);
    addLefs(words, options);
    addGiven(words, "--site", site);
    addDistance(words, options);
    addGiven(words, "--max-solutions", options.maxSolutions);
    addGiven(words, "--jobs", options.jobs);
    if (options.allowConflicts) {
        words.emplace_back("--allow-conflicts");
    }
    if (options.railsConflict) {
        words.emplace_back("--rails-conflict");
    }
    if (options.rowsMeet) {
        words.emplace_back("--rows-meet");
    }
    // Statuses 1 and 2 are those of cells that cannot be coloured; flow names the ones that it needs.
    return {.name = "color",
            .words = words,
            .needs = "summary",
            .goodStatus = 2,
            .advice = SEE_MESSAGES,
            .tellsMessages = false}; // one for each cell without a good colouring; the summary counts them
}

Step lintStep(const Options& options, const Places& places)
{
    Words words{"lint", places.base, "--cell-path", places.cellDir, "--json"};
    addDistance(words, options);
    return {.name = "lint", .words = words, .goodStatus = 1, .advice = SEE_MESSAGES};
}

Step placeStep(const Options& options, const Places& places)
{
    Words words{"place", places.base, "--cell-path", places.cellDir, "-o", places.placed, "--rescue"};
    if (!options.asDrawn) {
        words.emplace_back("--true-orientation");
    }
    if (options.rowsMeet) {
        words.emplace_back("--rows-meet");
    }
    addDistance(words, options);
    addGiven(words, "--algo", options.algo);
    addGiven(words, "--weight", options.weight);
    addGiven(words, "--move-range", options.moveRange);
    return {.name = "place",
            .words = words,
            .result = places.placed + ".json",
            .needs = "placement",
            .goodStatus = 1, // whether the placement is good is for verify to say
            .advice = SEE_MESSAGES,
            .summary = placementSummary};
}

Step refineStep(const Options& options, const Places& places, bool anew)
{
    Words words{"refine", places.placed + ".json", "--cell-path", places.cellDir,
                "-o",     places.refined,          "--effort",    std::to_string(options.effort)};
    addGiven(words, "--jobs", options.jobs);
    if (anew) {
        words.emplace_back("--anew");
    }
    return {.name = "refine",
            .words = words,
            .result = places.refined + ".json",
            .needs = "refine",
            .goodStatus = 1, // as of place
            .advice = "see to what the messages say, or give --effort 0 to leave the step out",
            .summary = refineSummary};
}

Step verifyStep(const Options& options, const Places& places)
{
    const std::string markers = places.result + ".lyrdb";
    Words words{"verify",      places.result + ".place", "--colors", places.result + ".colors",
                "--cell-path", places.cellDir,           "--lyrdb",  markers,
                "--json"};
    if (options.rowsMeet) {
        words.emplace_back("--across-rows");
    }
    addDistance(words, options);
    return {.name = "verify",
            .words = words,
            .goodStatus = 1, // what is not clean is written and told
            .advice = SEE_MESSAGES,
            .tellsMessages = false};
}

Step exportStep(const Options& options, const Places& places)
{
    Words words{"export", places.result + ".json", "--def", options.def,
                "-o",     places.result + ".def",  "--gds", places.result + ".gds"};
    addGiven(words, "--layer", options.layer);
    addLefs(words, options);
    // The fillers of the old placement would overlap cells of the new one.
    words.insert(words.end(), {"--cell-path", places.cellDir, options.noFill ? "--drop-fillers" : "--fill",
                               "--force", "--json"});
    return {.name = "export",
            .words = words,
            .goodStatus = 1,
            .advice = SEE_MESSAGES,
            .summary = [out = options.out](const Json& result) {
                return out + ".def: " + summaryIn(result["files"][0]);
            }};
}

Step viewStep(const Options& options, const Places& places)
{
    Words words{"view",     places.result + ".place",  "-o",          places.result + ".html",
                "--colors", places.result + ".colors", "--cell-path", places.cellDir,
                "--before", places.base + ".place",    "--force"};
    addDistance(words, options);
    return {.name = "view",
            .words = words,
            .advice = SEE_MESSAGES,
            .summary = [path = options.out + ".html"](const Json& /*result*/) { return path; }};
}

} // namespace kit::flow
