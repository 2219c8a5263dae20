// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/flow/flow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <future>
#include <memory>
#include <ostream>
#include <sstream>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/memoryFile.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/base/process/childProcess.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"
#include "kit/design/issue.h"
#include "kit/design/nameMap.h"
#include "kit/formats/lefdef/units.h"
#include "kit/formats/placer/writer.h"
#include "kit/tools/flow/cache.h"
#include "kit/tools/flow/steps.h"

namespace kit::flow {

namespace fs = std::filesystem;

namespace {

constexpr int NOT_CLEAN = 1;
constexpr int FAILED = 2;
constexpr int64_t MOST_TOLD = 20; // errors of a step

class Flow {
public:
    Flow(const Options& options, std::ostream& out, std::ostream& errors)
        : m_options(options), m_out(out), m_errors(errors), m_places(placesOf(options))
    {
    }

    int run()
    {
        prepare();
        int status = FAILED;
        try {
            status = runSteps();
        } catch (const std::exception& error) {
            m_errors << "vireloce-kit: " << printable(error.what()) << "\n";
        }
        if (status == FAILED) {
            m_errors << "Stopped; the files so far are in " << m_places.folder << "\n";
        } else {
            m_out << "Done: " << results() << "\n";
        }
        if (status != FAILED && !m_options.keep) {
            fs::remove_all(m_places.folder);
        }
        m_out.flush();
        return status;
    }

private:
    void prepare()
    {
        std::vector<std::string> inputs = m_options.lefs;
        inputs.push_back(m_options.def);
        std::vector<std::string> outputs;
        for (const char* extension : RESULTS) {
            outputs.push_back(m_options.out + extension);
        }
        const std::vector<std::string> cells = filesIn(m_options.cellPath);
        inputs.insert(inputs.end(), cells.begin(), cells.end());
        checkOutputs(outputs, inputs, m_options.force);
        inputs.insert(inputs.end(), {m_options.cellPath, m_options.cache});
        for (const std::string& input : inputs) {
            for (const std::string& folder : {m_places.folder, m_options.out + LIBRARY}) {
                requireOutside(input, folder);
            }
        }
        requireOwn(m_options.out + LIBRARY);
        requireOwn(m_places.folder);
        fs::remove_all(m_places.folder);
        makeFolder(m_places.folder);
        writeFile(m_places.folder + "/" + MARK, "");
        m_out << "step     seconds  peak MB  result\n";
    }

    /// The folders of the results and of what is in between are made anew.
    static void requireOutside(const std::string& input, const std::string& name)
    {
        const fs::path folder = fs::weakly_canonical(name);
        const fs::path path = input.empty() ? fs::path() : fs::weakly_canonical(input);
        if (std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end()) {
            throw Fault(input + " is in " + name + ", which flow makes anew: choose another -o");
        }
    }

    /// A folder that an earlier run has left is known by its mark.
    void requireOwn(const std::string& folder) const
    {
        const bool marked = fs::exists(folder + "/" + MARK);
        if (fs::exists(folder) && !(m_options.force && marked)) {
            throw Fault(folder + " exists" +
                        (marked ? ": choose another -o, or --force to replace it"
                                : ", and no run of flow has made it: choose another -o"));
        }
    }

    int runSteps()
    {
        if (!import() || !colour()) {
            return FAILED;
        }
        // Steps side by side need nothing of each other.
        Running lint = started(lintStep(m_options, m_places));
        Running place = started(placeStep(m_options, m_places));
        if (!finish(lint) || !finish(place)) {
            return FAILED;
        }
        // Made legal from the start, cells are nearer to where they should be than mended in the end.
        const bool anew = m_ending.status != 0;
        if (m_options.effort > 0 && !runStep(refineStep(m_options, m_places, anew))) {
            return FAILED;
        }
        Running verify = started(verifyStep(m_options, m_places));
        Running exporting = started(exportStep(m_options, m_places));
        Running view = started(viewStep(m_options, m_places));
        if (!finish(verify)) {
            return FAILED;
        }
        m_status = m_ending.status;
        const Json judgement = std::move(m_result);
        if (!finish(exporting) || !finish(view)) {
            return FAILED;
        }
        writeResults();
        if (m_status == NOT_CLEAN) {
            tellUnclean(judgement);
        }
        return m_status;
    }

    /// Says how many errors a written placement has, which, and what to do.
    void tellUnclean(const Json& judgement)
    {
        m_errors << "\n";
        tellErrors(judgement["findings"], m_options.out + ".lyrdb");
        m_errors << "\nNot clean:\n";
        for (const design::KindInfo& info : design::KINDS) {
            const Json& count = judgement["counts"][info.name];
            if (info.severity == Severity::ERROR && count != Json(0)) {
                m_errors << "  " << count << "  " << info.name << ": " << info.title << "\n";
            }
        }
        m_errors << "What to do: try another --algo (0, 1, 3), more --max-solutions or a smaller --mindp; to "
                    "see where it is, open "
                 << m_options.out << ".html, or take " << m_options.out
                 << ".lyrdb into a layout viewer with the layout\n";
    }

    void writeResults() const
    {
        makeFolder(m_options.out + LIBRARY);
        try {
            OutputSet set;
            addLibrary(set);
            for (const std::string extension : RESULTS) {
                if (extension == ".json") {
                    continue;
                }
                if (extension == ".fixed" && !fs::exists(m_places.result + extension)) {
                    set.remove(m_options.out + extension); // that of an earlier run
                } else {
                    set.addCopy(m_options.out + extension, m_places.result + extension);
                }
            }
            set.add(m_options.out + ".json", [this](OutputFile& file) { file << resultJson() << "\n"; });
            set.commit();
        } catch (...) {
            std::error_code error; // of a folder that is not empty: it was there before
            fs::remove(m_options.out + LIBRARY, error);
            throw;
        }
    }

    /// The colour files of the cells in use, in place of those of an earlier run.
    void addLibrary(OutputSet& set) const
    {
        const std::string folder = m_options.out + LIBRARY + "/";
        for (const std::string& path : filesIn(folder)) {
            set.remove(path);
        }
        set.add(folder + MARK, [](OutputFile& /*file*/) {});
        for (const std::string& cell : m_colored) {
            for (const char* extension : {".color", ".metal"}) {
                const std::string path = m_places.cellDir + "/" + cell + extension;
                if (fs::exists(path)) { // one that is not placed may have none
                    set.addCopy(folder + cell + extension, path);
                }
            }
        }
    }

    /// The placement's, with the paths that hold when the files in between are gone.
    std::string resultJson() const
    {
        Json json = Json::parse(readFile(m_places.result + ".json"));
        Json& options = json["options"];
        options["base"] = nullptr;
        options["out"] = fs::absolute(m_options.out).lexically_normal().string();
        options["cell_path"] = fs::path(m_options.out).filename().string() + LIBRARY;
        if (json.contains("refine")) {
            json["refine"]["options"]["input"] = nullptr;
        }
        json["flow"] = Json{{"status", m_status}, {"steps", m_steps}};
        return json.dump(1);
    }

    /// A step at work.
    struct Running {
        Step step;
        std::vector<std::string> words;     ///< what is run
        std::unique_ptr<MemoryFile> errors; ///< says that the disk is full even then
        std::future<process::Ending> ending;
    };

    Running started(const Step& step) const
    {
        Running running{step, {process::ownPath()}, std::make_unique<MemoryFile>(), {}};
        running.words.insert(running.words.end(), step.words.begin(), step.words.end());
        running.ending = std::async(std::launch::async, [words = running.words, log = logOf(step.name),
                                                         errors = running.errors->path()] {
            return process::run(words, log, errors);
        });
        return running;
    }

    /// Runs a step and writes its line. @return whether to go on
    bool runStep(const Step& step)
    {
        Running running = started(step);
        return finish(running);
    }

    /// Waits for the end of a step, and writes its line. @return whether to go on
    bool finish(Running& running)
    {
        const Step& step = running.step;
        const std::string log = logOf(step.name);
        m_ending = running.ending.get();
        const std::string messages = readFile(running.errors->path());
        const std::string resultPath = step.result.empty() ? log : step.result;
        m_result = fs::exists(resultPath) ? Json::tryParse(readFile(resultPath)).value_or(nullptr) : nullptr;
        const bool good = m_ending.signal == 0 && m_ending.status <= step.goodStatus &&
                          (step.needs.empty() || !m_result[step.needs].isNull());
        const std::string summary = good || m_result.isObject() ? step.summary(m_result) : "";
        writeLine(step.name, (good ? "" : summary.empty() ? "FAILED" : "FAILED: ") + summary);
        if (!good) {
            m_errors << "\n";
        }
        if (!good || step.tellsMessages) {
            m_errors << messages;
        }
        if (!good) {
            tellErrors(m_result["findings"], log);
            tellFailure(step, running.words,
                        messages.empty() && !summary.empty() ? step.name + ": " + summary
                                                             : lastLine(messages));
        }
        writeFile(messagesOf(step.name), messages);
        return good;
    }

    std::string messagesOf(const std::string& step) const
    {
        return m_places.folder + "/" + step + ".messages";
    }

    std::string logOf(const std::string& step) const { return m_places.folder + "/" + step + ".log"; }

    void writeLine(const std::string& name, const std::string& result)
    {
        std::array<char, 64> numbers{};
        std::snprintf(numbers.data(), numbers.size(), "%-8s %7.2f %8.1f  ", name.c_str(), m_ending.seconds,
                      static_cast<double>(m_ending.peakKib) / 1024);
        m_out << numbers.data() << result << std::endl;
        m_steps.push_back({{"name", name},
                           {"status", m_ending.status},
                           {"seconds", m_ending.seconds},
                           {"peak_memory_kib", m_ending.peakKib},
                           {"result", result}});
    }

    /// Where a file is that a step has named: results have their own names by the time they are told of.
    std::string placeNow(std::string file) const
    {
        if (m_status == NOT_CLEAN && file.starts_with(m_places.result)) {
            file.replace(0, m_places.result.size(), m_options.out);
        }
        return file;
    }

    /// Shows the errors among the findings of lint or verify, so many that they can be read.
    void tellErrors(const Json& findings, const std::string& log)
    {
        int64_t errors = 0;
        for (size_t i = 0; i < findings.size(); ++i) {
            const Json& each = findings[i];
            if (each["severity"] == "error" && ++errors <= MOST_TOLD) {
                m_errors << lineOf({.code = each["code"].asString(),
                                    .file = placeNow(each["file"].asString()),
                                    .line = each["line"].asInteger(),
                                    .what = each["what"].asString(),
                                    .advice = each.contains("advice") ? each["advice"].asString() : ""});
            }
        }
        if (errors > MOST_TOLD) {
            m_errors << "... and " << counted(errors - MOST_TOLD, "more error") << ", in " << log << "\n";
        }
    }

    void tellFailure(const Step& step, const std::vector<std::string>& words, const std::string& cause)
    {
        m_errors << "\nWhat went wrong: ";
        if (m_ending.signal != 0) {
            m_errors << "the step was ended by signal " << m_ending.signal;
        } else if (cause.empty()) {
            m_errors << "exit status " << m_ending.status << ", and no message";
        } else {
            m_errors << cause;
        }
        m_errors << "\nWhat was run: " << process::shellText(words) << "\nWhat to do: " << step.advice
                 << "\n";
    }

    /// Takes the design in. The steps that follow are given the layer and the cells that it found.
    bool import()
    {
        if (!runStep(importStep(m_options, m_places))) {
            return false;
        }
        m_options.layer = m_result["layer"].asString();
        std::istringstream list(readFile(m_places.base + ".cells"));
        std::string name;
        for (list >> name; list >> name;) {
            m_cells.push_back(name);
        }
        m_colored = m_cells;
        addColored(m_result["fixed_masters"]);
        if (!m_options.noFill) {
            addColored(m_result["filler_masters"]);
        }
        OutputFile colored(m_places.colored);
        placer::writeCellList(colored, m_colored);
        colored.commit();
        return true;
    }

    /// Adds those masters that are not coloured yet.
    void addColored(const Json& masters)
    {
        for (const Json& master : masters.items()) {
            if (std::ranges::find(m_colored, master.asString()) == m_colored.end()) {
                m_colored.push_back(master.asString());
            }
        }
    }

    /// The size of a site that import found, W,H in micrometres.
    std::string siteFound() const
    {
        Findings findings;
        const design::NameMap map = design::readNameMap(m_places.base + ".map", findings);
        return lefdef::micrometres(map.siteWidth) + "," + lefdef::micrometres(map.siteHeight);
    }

    /// Colours the cells in use, those that stay where they are, and the fillers, unless that was done
    /// before.
    bool colour()
    {
        const std::string site = siteFound();
        if (m_options.cellPath.empty()) {
            m_places.cellDir = cachedFolder(m_options, site, m_colored);
        }
        if (!m_options.cellPath.empty() || fs::exists(m_places.cellDir)) {
            m_ending = {};
            writeLine("color", m_options.cellPath.empty() ? "known from before: " + m_places.cellDir
                                                          : "given: " + m_places.cellDir);
            return requireCells();
        }
        // A folder of the cache is whole: it is made beside and then given its name.
        removeOldParts(m_places.cellDir);
        const std::string part = makePart(m_places.cellDir);
        const FolderRemoval removal(part); // unless it was given its name
        if (!runStep(colorStep(m_options, m_places, site, part))) {
            return false;
        }
        writeFile(part + "/log", readFile(logOf("color")));
        writeFile(part + "/messages", readFile(messagesOf("color")));
        std::error_code error; // if another run was faster
        fs::rename(part, m_places.cellDir, error);
        return requireCells();
    }

    /// Shows the errors of `color` about cells in use.
    void tellErrorsOfCells(const std::string& messages)
    {
        std::istringstream lines(messages);
        for (std::string line; std::getline(lines, line);) {
            const size_t error = line.find(": error: ");
            const std::string what = error == std::string::npos ? "" : line.substr(error + 9);
            if (std::ranges::find(m_cells, what.substr(0, what.find(' '))) != m_cells.end()) {
                m_errors << line << "\n";
            }
        }
    }

    /// Whether every cell in use has a colour file.
    bool requireCells()
    {
        std::string missing;
        for (const std::string& name : m_cells) {
            missing += fs::exists(m_places.cellDir + "/" + name + ".color") ? "" : " " + name;
        }
        if (missing.empty()) {
            return true;
        }
        m_errors << "\nCells in use without a colouring:" << missing << "\n";
        const std::string messages = m_places.cellDir + "/messages";
        if (fs::exists(messages)) {
            tellErrorsOfCells(readFile(messages));
            m_errors << "Why is in " << messages << "\n";
        }
        m_errors
            << "What to do: give "
            << (m_options.cellPath.empty()
                    ? "--allow-conflicts to take their least bad colouring, or a smaller --mindp\n"
                    : "the folder that has them with --cell-path, or leave it out to colour the library\n");
        return false;
    }

    std::string results() const
    {
        std::string text;
        for (const char* extension : {".def", ".gds", ".lyp", ".lyrdb", ".html", ".json"}) {
            text += (text.empty() ? "" : ", ") + m_options.out + extension;
        }
        return text + (m_options.keep ? "; all other files in " + m_places.folder : "");
    }

    Options m_options;
    std::ostream& m_out;    ///< the table
    std::ostream& m_errors; ///< messages and failures
    Places m_places;
    std::vector<std::string> m_cells;   ///< names of those in use
    std::vector<std::string> m_colored; ///< and of those that stay where they are, and that the gaps may get
    process::Ending m_ending;           ///< of the last step
    Json m_result;                      ///< of the last step, null if it gave none
    Json m_steps = Json::array();       ///< what each took and gave
    int m_status = 0;                   ///< of the placement
};

} // namespace

int flow(const Options& options, std::ostream& out, std::ostream& errors)
{
    return Flow(options, out, errors).run();
}

} // namespace kit::flow
