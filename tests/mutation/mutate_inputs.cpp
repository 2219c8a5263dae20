// SPDX-License-Identifier: BSD-3-Clause
// Runs the placer on many randomly damaged copies of the good designs and judges how every run ends. The last
// line sums up; the exit status is 0 only if no run failed.
//
// A run is decided by the seed and its number, so any run can be repeated alone: --seed S --only K.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "app/driver.h"
#include "legalizer/segLegalizer.h"
#include "mutation/childRun.h"
#include "mutation/inputs.h"
#include "mutation/mutator.h"
#include "mutation/verdict.h"
#include "qlib/report.h"

/// The settings that a sanitized build starts with: no piece of memory over 1 GiB, and little freed memory
/// held back, for every run starts with a copy of this process.
extern "C" const char* __asan_default_options() // NOLINT: the name it looks for
{
    return "max_allocation_size_mb=1024:quarantine_size_mb=8:detect_leaks=1";
}

namespace {

namespace fs = std::filesystem;

using mutation::Outcome;

/// Most nodes, edges or states of a segment, so that each run is short.
constexpr int64_t MAX_GRAPH_SIZE = 300'000;

/// What the command line says.
struct Settings {
    uint64_t count = 300;
    uint64_t seed = 1;
    std::string caseName;  ///< empty: all
    std::string keep;      ///< folder for the inputs of failed and timed-out runs; empty: none
    int64_t only = -1;     ///< number of the only run; -1: all
    unsigned seconds = 20; ///< limit of a run
};

/// Reads the command line; ends the program if it cannot.
Settings readSettings(int argc, char** argv)
{
    Settings settings;
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        const std::string value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--count" && !value.empty()) {
            settings.count = std::stoull(value);
        } else if (option == "--seed" && !value.empty()) {
            settings.seed = std::stoull(value);
        } else if (option == "--case" && !value.empty()) {
            settings.caseName = value;
        } else if (option == "--keep" && !value.empty()) {
            settings.keep = value;
        } else if (option == "--only" && !value.empty()) {
            settings.only = std::stoll(value);
        } else if (option == "--seconds" && !value.empty()) {
            settings.seconds = static_cast<unsigned>(std::stoul(value));
        } else {
            std::cerr << "usage: mutate_inputs [--count N] [--seed S] [--case NAME] [--keep DIR] [--only K] "
                         "[--seconds T]\n";
            std::exit(2);
        }
    }
    return settings;
}

/// A folder of its own, removed at the end.
class WorkFolder {
public:
    WorkFolder()
    {
        std::string pattern = (fs::temp_directory_path() / "vireloce-mutation-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::perror(pattern.c_str());
            std::exit(2);
        }
        m_path = pattern;
    }
    ~WorkFolder() { fs::remove_all(m_path); }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

/// Runs the whole placer, every line of its report flushed, so that a run that is stopped shows how far it
/// came.
void place(std::vector<std::string> words)
{
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    std::cout << std::unitbuf;
    SegLegalizer::s_maxGraphSize = MAX_GRAPH_SIZE;
    const int status = vireloce::runPlacer(static_cast<int>(words.size()), argv.data());
    if (status != 0) {
        std::exit(status);
    }
}

/// Runs mutations one by one and keeps count.
class Campaign {
public:
    Campaign(const Settings& settings, std::vector<mutation::GoodCase> cases)
        : m_settings(settings), m_cases(std::move(cases))
    {
    }

    void run(uint64_t number)
    {
        mutation::Random random(m_settings.seed, number);
        const mutation::GoodCase& good = random.pick(m_cases);
        mutation::Inputs inputs{good.files, random.pick(good.commands)};
        const std::vector<std::string> story = mutation::mutate(random, inputs);

        mutation::writeFiles(m_place.folder, inputs.files);
        std::vector<std::string> words{"vireloce"};
        words.insert(words.end(), inputs.options.begin(), inputs.options.end());
        const mutation::ChildEnd end =
            mutation::runChild(m_place, m_settings.seconds, [&words] { place(words); });
        const mutation::Verdict verdict =
            mutation::judge(end, mutation::readFile(m_place.report), mutation::readFile(m_place.errors));

        ++m_runs;
        ++m_outcomes[static_cast<size_t>(verdict.outcome)];
        if (verdict.outcome == Outcome::ERROR_END) {
            ++m_errorKinds[verdict.what];
        }
        if (end.seconds > m_slowest) {
            m_slowest = end.seconds;
            m_slowestRun = number;
        }
        m_peakKiB = std::max(m_peakKiB, end.peakKiB);
        if (verdict.outcome == Outcome::FAILURE || verdict.outcome == Outcome::TIME_OUT) {
            list(number, good.name, inputs, story, verdict);
        }
    }

    bool allGood() const { return m_runs > 0 && countOf(Outcome::FAILURE) == 0; }

    void printSummary() const
    {
        std::cout << "seed " << m_settings.seed << ": " << m_runs << " runs, "
                  << countOf(Outcome::FINAL_REPORT) << " final reports, " << countOf(Outcome::USAGE)
                  << " usages, " << countOf(Outcome::ERROR_END) << " error ends (";
        const char* separator = "";
        for (const auto& [kind, count] : m_errorKinds) {
            std::cout << separator << kind << ' ' << count;
            separator = ", ";
        }
        std::cout << "), " << countOf(Outcome::TIME_OUT) << " time-outs, " << countOf(Outcome::FAILURE)
                  << " failures; slowest run " << m_slowestRun << " with " << std::lround(m_slowest * 1000)
                  << " ms, most memory " << m_peakKiB / 1024 << " MiB\n";
    }

private:
    uint64_t countOf(Outcome outcome) const { return m_outcomes[static_cast<size_t>(outcome)]; }

    /// Prints how to repeat a run, and keeps its inputs.
    void list(uint64_t number, const std::string& caseName, const mutation::Inputs& inputs,
              const std::vector<std::string>& story, const mutation::Verdict& verdict) const
    {
        std::cout << (verdict.outcome == Outcome::FAILURE ? "FAILURE" : "time-out") << ": --seed "
                  << m_settings.seed << (m_settings.caseName.empty() ? "" : " --case " + m_settings.caseName)
                  << " --only " << number << " (" << caseName << ")\n"
                  << "  options: " << mutation::commandLine(inputs.options) << '\n';
        for (const std::string& step : story) {
            std::cout << "  " << step << '\n';
        }
        if (!verdict.what.empty()) {
            std::cout << "  " << verdict.what << '\n';
        }
        std::cout << std::flush;
        if (!m_settings.keep.empty()) {
            const fs::path kept =
                fs::path(m_settings.keep) / (std::to_string(m_settings.seed) + "-" + std::to_string(number));
            mutation::writeFiles(kept / "inputs", inputs.files);
            std::ofstream(kept / "args") << mutation::commandLine(inputs.options) << '\n';
            fs::copy_file(m_place.report, kept / "report.txt", fs::copy_options::overwrite_existing);
            fs::copy_file(m_place.errors, kept / "errors.txt", fs::copy_options::overwrite_existing);
        }
    }

    Settings m_settings;
    std::vector<mutation::GoodCase> m_cases;
    WorkFolder m_folder;
    mutation::ChildPlace m_place{m_folder.path() / "inputs", m_folder.path() / "report.txt",
                                 m_folder.path() / "errors.txt"};
    uint64_t m_runs = 0;
    std::array<uint64_t, 5> m_outcomes{};
    std::map<std::string, uint64_t> m_errorKinds;
    double m_slowest = 0.0;
    uint64_t m_slowestRun = 0;
    int64_t m_peakKiB = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const Settings settings = readSettings(argc, argv);
    std::vector<mutation::GoodCase> cases = mutation::readGoodCases(VIRELOCE_GOLDEN, VIRELOCE_EXAMPLES);
    if (!settings.caseName.empty()) {
        std::erase_if(cases, [&settings](const auto& good) { return good.name != settings.caseName; });
    }
    if (cases.empty()) {
        std::cerr << "there is no such design\n";
        return 2;
    }
    Campaign campaign(settings, std::move(cases));
    if (settings.only >= 0) {
        campaign.run(static_cast<uint64_t>(settings.only));
    } else {
        for (uint64_t number = 0; number < settings.count; ++number) {
            campaign.run(number);
        }
    }
    campaign.printSummary();
    return campaign.allGood() ? 0 : 1;
}
