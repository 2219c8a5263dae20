// SPDX-License-Identifier: BSD-3-Clause
// Runs the program as a user does and compares its whole report with the known-good one.
//
// A folder of tests/golden holds `args`, one command line a line in shell words, and the report of line k in
// expected-k.txt, in which the two CPU times are stars. The command runs in the folder itself; that of the
// real design, gcd, in examples/.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/pattern.h"

namespace {

namespace fs = std::filesystem;

struct GoldenRun {
    fs::path folder; ///< where args and the reports are
    int line;        ///< line of args, from 1
    std::string args;
};

std::string readFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << path;
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<GoldenRun> findRuns()
{
    std::vector<GoldenRun> runs;
    for (const auto& entry : fs::directory_iterator(VIRELOCE_GOLDEN)) {
        std::ifstream args(entry.path() / "args");
        std::string line;
        for (int k = 1; std::getline(args, line); ++k) {
            runs.push_back({entry.path(), k, line});
        }
    }
    return runs;
}

/// Standard output and exit status of a shell command.
std::pair<std::string, int> runShell(const std::string& command)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> chunk;
    for (size_t n = 0; (n = fread(chunk.data(), 1, chunk.size(), pipe)) > 0;) {
        output.append(chunk.data(), n);
    }
    return {output, pclose(pipe)};
}

void PrintTo(const GoldenRun& run, std::ostream* out)
{
    *out << run.args;
}

class Golden : public testing::TestWithParam<GoldenRun> {};

TEST_P(Golden, ReportIsExactToTheByte)
{
    const GoldenRun& run = GetParam();
    const fs::path folder = run.folder.filename() == "gcd" ? fs::path(VIRELOCE_EXAMPLES) : run.folder;
    const auto [output, status] =
        runShell("cd '" + folder.string() + "' && exec '" VIRELOCE_PROGRAM "' " + run.args);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::replaced(output, "(CPU time +=) [0-9]+\\.[0-9]{3} s\n", "$1 * s\n"),
              readFile(run.folder / ("expected-" + std::to_string(run.line) + ".txt")));
}

INSTANTIATE_TEST_SUITE_P(Run, Golden, testing::ValuesIn(findRuns()), [](const auto& golden) {
    std::string name = golden.param.folder.filename().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name + "_" + std::to_string(golden.param.line);
});

} // namespace
