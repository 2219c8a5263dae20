// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/flow/flow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <sstream>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/memoryFile.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/files/readFile.h"
#include "kit/base/process/childProcess.h"
#include "kit/base/text/escape.h"
#include "kit/design/nameMap.h"
#include "kit/formats/lefdef/units.h"
#include "kit/tools/flow/cache.h"
#include "kit/tools/flow/steps.h"

namespace kit::flow {

namespace fs = std::filesystem;

namespace {

constexpr int NOT_CLEAN = 1;
constexpr int FAILED = 2;

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
        if (status == 0) {
            m_out << "Done: " << results() << "\n";
        } else {
            m_errors << "Stopped; the files so far are in " << m_places.folder << "\n";
        }
        if (status == 0 && !m_options.keep) {
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
            requireOutside(input);
        }
        clearFolder();
        m_out << "step     seconds  peak MB  result\n";
    }

    /// The folder is emptied in the end.
    void requireOutside(const std::string& input) const
    {
        const fs::path folder = fs::weakly_canonical(m_places.folder);
        const fs::path path = input.empty() ? fs::path() : fs::weakly_canonical(input);
        if (std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end()) {
            throw Fault(input + " is in " + m_places.folder +
                        ", which flow fills and removes: choose another -o");
        }
    }

    /// Makes the folder anew; one that an earlier run has left is known by its mark.
    void clearFolder() const
    {
        const std::string mark = m_places.folder + "/" + MARK;
        if (fs::exists(m_places.folder)) {
            if (!m_options.force || !fs::exists(mark)) {
                throw Fault(m_places.folder + " exists" +
                            (fs::exists(mark) ? ": choose another -o, or --force to replace it"
                                              : ", and no run of flow has made it: choose another -o"));
            }
            fs::remove_all(m_places.folder);
        }
        makeFolder(m_places.folder);
        writeFile(mark, "");
    }

    int runSteps()
    {
        if (!runStep(importStep(m_options, m_places)) || !colour() ||
            !runStep(lintStep(m_options, m_places))) {
            return FAILED;
        }
        if (!runStep(placeStep(m_options, m_places)) || !runStep(verifyStep(m_options, m_places))) {
            return m_ending.status == NOT_CLEAN ? NOT_CLEAN : FAILED;
        }
        if (!runStep(exportStep(m_options, m_places)) || !runStep(viewStep(m_options, m_places))) {
            return FAILED;
        }
        writeResults();
        return 0;
    }

    void writeResults() const
    {
        OutputSet set;
        for (const std::string extension : RESULTS) {
            set.addCopy(m_options.out + extension,
                        (extension == ".json" ? m_places.placed : m_places.result) + extension);
        }
        set.commit();
        for (const char* extension : RESULTS) {
            fs::remove(m_places.result + extension); // once is enough
        }
    }

    /// Runs a step and writes its line. @return whether to go on
    bool runStep(const Step& step)
    {
        const std::string log = logOf(step.name);
        const MemoryFile errors; // says that the disk is full even then
        std::vector<std::string> words{process::ownPath()};
        words.insert(words.end(), step.words.begin(), step.words.end());
        m_ending = process::run(words, log, errors.path());
        const std::string messages = readFile(errors.path());
        const bool good = m_ending.signal == 0 && m_ending.status <= step.goodStatus;
        const bool finished = m_ending.signal == 0 && m_ending.status <= NOT_CLEAN;
        const std::string summary = finished ? step.summary(readFile(log)) : "";
        writeLine(step.name, (good ? "" : finished ? "FAILED: " : "FAILED") + summary);
        if (good && step.tellsMessages) {
            m_errors << messages;
        } else if (!good) {
            tellFailure(step, words, messages, readFile(log));
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
    }

    void tellFailure(const Step& step, const std::vector<std::string>& words, const std::string& messages,
                     const std::string& log)
    {
        m_errors << "\n" << messages << (step.name == "place" ? "" : log);
        m_errors << "\nWhat went wrong: ";
        if (m_ending.signal != 0) {
            m_errors << "the step was ended by signal " << m_ending.signal;
        } else {
            const std::string last = lastLine(messages.empty() ? log : messages);
            m_errors << (last.empty() ? "exit status " + std::to_string(m_ending.status) + ", and no message"
                                      : last);
        }
        m_errors << "\n";
        m_errors << "What was run: " << process::shellText(words) << "\nWhat to do: " << step.advice << "\n";
    }

    /// The size of a site that import found, W,H in micrometres.
    std::string siteFound() const
    {
        Findings findings;
        const design::NameMap map = design::readNameMap(m_places.base + ".map", findings);
        return lefdef::micrometres(map.siteWidth) + "," + lefdef::micrometres(map.siteHeight);
    }

    /// Colours the library, unless that was done before.
    bool colour()
    {
        const std::string site = siteFound();
        if (m_options.cellPath.empty()) {
            m_places.cellDir = cachedFolder(m_options, site);
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
        if (!runStep(colorStep(m_options, site, part))) {
            return false;
        }
        writeFile(part + "/log", readFile(logOf("color")));
        writeFile(part + "/messages", readFile(messagesOf("color")));
        std::error_code error; // if another run was faster
        fs::rename(part, m_places.cellDir, error);
        return requireCells();
    }

    /// Whether every cell in use has a colour file.
    bool requireCells()
    {
        std::istringstream list(readFile(m_places.base + ".cells"));
        std::string name;
        std::string missing;
        for (list >> name; list >> name;) {
            missing += fs::exists(m_places.cellDir + "/" + name + ".color") ? "" : " " + name;
        }
        if (missing.empty()) {
            return true;
        }
        m_errors << "\nCells in use without a colouring:" << missing << "\n";
        const std::string messages = m_places.cellDir + "/messages";
        if (fs::exists(messages)) {
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
        for (const char* extension : RESULTS) {
            text += (text.empty() ? "" : ", ") + m_options.out + extension;
        }
        return text + (m_options.keep ? "; all other files in " + m_places.folder : "");
    }

    const Options& m_options;
    std::ostream& m_out;    ///< the table
    std::ostream& m_errors; ///< messages and failures
    Places m_places;
    process::Ending m_ending; ///< of the last step
};

} // namespace

int flow(const Options& options, std::ostream& out, std::ostream& errors)
{
    return Flow(options, out, errors).run();
}

} // namespace kit::flow
