// SPDX-License-Identifier: BSD-3-Clause
// The companion program inside the test's process.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "db/design.h"
#include "db/orientMapGuard.h"
#include "kit/tools/commands.h"
#include "support/guards.h"

namespace test {

using Words = std::vector<std::string>;

/// How a run of the program went.
struct KitOutcome {
    int status;
    std::string output; ///< on standard output
    std::string error;  ///< on standard error
};

/// Runs the program with some arguments, the subcommand first.
inline KitOutcome runKit(Words words)
{
    words.insert(words.begin(), "vireloce-kit");
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = kit::runProgram(static_cast<int>(argv.size()), argv.data(), kit::allCommands());
    const std::string output = testing::internal::GetCapturedStdout();
    return {status, output, testing::internal::GetCapturedStderr()};
}

inline std::string contentOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// A generated design in a folder of its own. What a test leaves open is small: a thousand cells of ten types
/// on rows of 200 sites.
class GeneratedDesign {
public:
    explicit GeneratedDesign(const Words& options = {})
    {
        Words words{"gen", base()};
        const Words small{"--components", "1000", "--cell-types", "10", "--sites-per-row", "200"};
        for (size_t i = 0; i < small.size(); i += 2) {
            if (std::find(options.begin(), options.end(), small[i]) == options.end()) {
                words.insert(words.end(), {small[i], small[i + 1]});
            }
        }
        words.insert(words.end(), options.begin(), options.end());
        const KitOutcome outcome = runKit(words);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
    }

    std::string base() const { return m_dir.path("d"); }
    std::string lib() const { return m_dir.path("d.colors"); }

    /// A path beside them.
    std::string path(const std::string& name) const { return m_dir.path(name); }

    /// All files of the design one after the other, the colour files by name.
    std::string allText() const
    {
        std::string text;
        for (const char* extension : {".cells", ".place", ".pins", ".netlist"}) {
            text += contentOf(base() + extension);
        }
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::directory_iterator(lib())) {
            paths.push_back(entry.path().string());
        }
        std::sort(paths.begin(), paths.end());
        for (const std::string& path : paths) {
            text += contentOf(path);
        }
        return text;
    }

private:
    TempDir m_dir;
};

/// A design as the placer reads it.
class ReadDesign {
public:
    explicit ReadDesign(const GeneratedDesign& files)
    {
        design.placePath = files.base();
        design.cellPath = files.lib();
        report = reportOf([this] { design.initAll(); });
    }

private:
    ParameterGuard m_parameters; // first: the design below may read them
    OrientMapGuard m_orientations;

public:
    Design design;
    std::string report; ///< of the set-up
};

} // namespace test
