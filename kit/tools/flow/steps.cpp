// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/flow/steps.h"

#include <sstream>

#include "kit/base/files/readFile.h"
#include "kit/base/process/childProcess.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"

namespace kit::flow {

namespace {

using Words = std::vector<std::string>;

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

/// A line of a log without the path that it begins with.
std::string withoutPath(const std::string& line, const std::string& path)
{
    return line.rfind(path + ": ", 0) == 0 ? line.substr(path.size() + 2) : line;
}

std::string firstLine(const std::string& log)
{
    return log.substr(0, log.find('\n'));
}

/// The cells of a colouring's log, and those that have no good one.
std::string colourSummary(const std::string& log)
{
    std::string text = firstLine(log);
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        text += line.find(" without a colouring") != std::string::npos ? "; " + line : "";
    }
    return text;
}

/// The result file of a placement in a few words.
std::string placementSummary(const std::string& path)
{
    const Json result = Json::parse(readFile(path));
    if (result["placement"].isNull()) {
        return "no placement";
    }
    const Json& after = result["rescue"].isNull() ? result["placement"] : result["rescue"]["placement"];
    std::ostringstream text;
    text << "HPWL " << result["report"]["init HPWL"] << " -> " << after["hpwl"] << ", " << after["stitches"]
         << " stitches, " << after["conflicts"] << " conflicts";
    if (result["judge"].isObject() && result["judge"]["errors"].asInteger() > 0) {
        text << "; verify finds " << counted(result["judge"]["errors"].asInteger(), "error");
    }
    return text.str();
}

} // namespace

std::string lastLine(const std::string& log)
{
    const size_t last = log.find_last_not_of(" \n");
    const size_t before = last == std::string::npos ? last : log.rfind('\n', last);
    return last == std::string::npos ? "" : log.substr(before + 1, last - before);
}

Places placesOf(const Options& options)
{
    const std::string folder = options.out + ".flow";
    return {.folder = folder,
            .base = folder + "/design",
            .placed = folder + "/placed",
            .result = folder + "/result",
            .cellDir = options.cellPath};
}

Step importStep(const Options& options, const Places& places)
{
    Words words{"import", "--def", options.def, "-o", places.base, "--layer", options.layer};
    addLefs(words, options);
    addGiven(words, "--site", options.site);
    if (options.legalize) {
        words.emplace_back("--legalize");
    }
    return {.name = "import",
            .words = words,
            .advice = "see to what the messages say",
            .summary = [path = places.base + ".place"](const std::string& log) {
                return withoutPath(lastLine(log), path);
            }};
}

Step colorStep(const Options& options, const std::string& site, const std::string& folder)
{
    Words words{"color", "-o", folder, "--layer", options.layer};
    addLefs(words, options);
    addGiven(words, "--site", site);
    addDistance(words, options);
    addGiven(words, "--max-solutions", options.maxSolutions);
    addGiven(words, "--jobs", options.jobs);
    if (options.allowConflicts) {
        words.emplace_back("--allow-conflicts");
    }
    // Status 1 is that of a library with cells that cannot be coloured; the design may do without them.
    return {.name = "color",
            .words = words,
            .goodStatus = 1,
            .advice = "see to what the messages say",
            .tellsMessages = false, // one for each cell without a good colouring; the summary counts them
            .summary = colourSummary};
}

Step lintStep(const Options& options, const Places& places)
{
    Words words{"lint", places.base, "--cell-path", places.cellDir};
    addDistance(words, options);
    return {.name = "lint",
            .words = words,
            .goodStatus = 1,
            .advice = "see to what the messages say",
            .summary = lastLine};
}

Step placeStep(const Options& options, const Places& places)
{
    Words words{"place", places.base, "--cell-path", places.cellDir, "-o", places.placed, "--rescue"};
    addDistance(words, options);
    addGiven(words, "--algo", options.algo);
    addGiven(words, "--weight", options.weight);
    addGiven(words, "--move-range", options.moveRange);
    return {.name = "place",
            .words = words,
            .advice = "see what verify finds: " +
                      process::shellText({"vireloce-kit", "verify", places.placed + ".place", "--colors",
                                          places.placed + ".colors", "--cell-path", places.cellDir}) +
                      "; try another --algo (0, 1, 3) or more --max-solutions",
            .summary = [path = places.placed + ".json"](const std::string& /*log*/) {
                return placementSummary(path);
            }};
}

Step verifyStep(const Options& options, const Places& places)
{
    Words words{"verify",      places.placed + ".place", "--colors", places.placed + ".colors",
                "--cell-path", places.cellDir,           "--lyrdb",  places.folder + "/placed.lyrdb"};
    addDistance(words, options);
    return {.name = "verify",
            .words = words,
            .advice = "look at " + places.folder + "/placed.lyrdb, or draw it with `vireloce-kit view`",
            .summary = [path = places.placed + ".place"](const std::string& log) {
                return withoutPath(lastLine(log), path);
            }};
}

Step exportStep(const Options& options, const Places& places)
{
    Words words{"export", places.placed + ".json", "--def",   options.def,  "-o", places.result + ".def",
                "--gds",  places.result + ".gds",  "--layer", options.layer};
    addLefs(words, options);
    // Fillers fill the gaps of the old placement; in the new one they would overlap cells.
    words.insert(words.end(), {"--cell-path", places.cellDir, "--drop-fillers", "--force"});
    return {.name = "export",
            .words = words,
            .goodStatus = 1,
            .advice = "see to what the messages say",
            .summary = [path = places.result + ".def", out = options.out + ".def"](const std::string& log) {
                return out + ": " + withoutPath(firstLine(log), path);
            }};
}

Step viewStep(const Options& options, const Places& places)
{
    Words words{"view",     places.placed + ".place",  "-o",          places.result + ".html",
                "--colors", places.placed + ".colors", "--cell-path", places.cellDir,
                "--before", places.base + ".place",    "--force"};
    addDistance(words, options);
    return {.name = "view",
            .words = words,
            .advice = "see to what the messages say",
            .summary = [path = options.out + ".html"](const std::string& /*log*/) { return path; }};
}

} // namespace kit::flow
