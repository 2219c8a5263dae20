// SPDX-License-Identifier: BSD-3-Clause
// The program as a user starts it: standard output and exit status.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/commandLine.h"
#include "db/designFiles.h"

namespace {

using test::DesignFiles;

/// How a run of the program went.
struct Outcome {
    std::string output; ///< standard output and error, with stars for the times
    int status;         ///< as of wait()
};

/// Runs the program in a folder.
///
/// @param options  in shell words
Outcome runIn(const std::string& folder, const std::string& options)
{
    const std::string command = "cd '" + folder + "' && exec '" VIRELOCE_PROGRAM "' " + options + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 4096> chunk;
    for (size_t n = 0; (n = fread(chunk.data(), 1, chunk.size(), pipe)) > 0;) {
        output.append(chunk.data(), n);
    }
    return {test::withoutTimes(output), pclose(pipe)};
}

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

struct StatusCase {
    const char* name;
    const char* options;  ///< in the folder of the small design
    const char* removed;  ///< a file to be removed before, or an empty text
    const char* lastLine; ///< end of what is printed
};

void PrintTo(const StatusCase& row, std::ostream* out)
{
    *out << row.options;
}

class ExitStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(ExitStatus, IsZeroHoweverTheRunEnds)
{
    const DesignFiles files;
    if (GetParam().removed[0] != '\0') {
        files.remove(GetParam().removed);
    }
    const Outcome outcome = runIn(files.path(""), GetParam().options);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(endsWith(outcome.output, GetParam().lastLine)) << outcome.output;
}

const char* const LAST_LINE = "\n\nSTAT | Virelocer CPU time       = * s\n\n";
const char* const LAST_USAGE_LINES =
    "(default: 10)\n===================================================================\n\n";

const StatusCase STATUS_CASES[] = {
    {"WholeRun", "-inlib d -cellPath lib", "", LAST_LINE},
    {"WholeRunWithTrailingDot", "-inlib d. -cellPath lib/ -algo 1", "", LAST_LINE},
    {"UnknownOption", "-x 1", "", LAST_USAGE_LINES},
    {"OddNumberOfArguments", "-inlib d -cellPath", "", LAST_USAGE_LINES},
    {"NoArguments", "", "", "\nERROR| cannot open file: sparc_exu_alu.place\n"},
    {"EmptyDesignPath", "-inlib ''", "", "\nERROR| cannot open file: .place\n"},
    {"NoCellList", "-inlib d -cellPath lib", "d.cells",
     "\nERROR| component u0: its cell A is not in the library\n"},
    {"NoColourFile", "-inlib d -cellPath lib", "lib/A.color", "\nERROR| cannot open file lib/A.color\n"},
    {"NoPlacementFile", "-inlib d -cellPath lib", "d.place", "\nERROR| cannot open file: d.place\n"},
    {"NoPinFile", "-inlib d -cellPath lib", "d.pins", "\nERROR| cannot open file: d.pins\n"},
    {"NoNetlistFile", "-inlib d -cellPath lib", "d.netlist", "\nERROR| cannot open file: d.netlist\n"},
    {"NoSiteWidth", "-inlib d -cellPath lib -siteW 0", "",
     "\nERROR| the site width is 0: -siteW must be positive\n"},
};

INSTANTIATE_TEST_SUITE_P(Program, ExitStatus, testing::ValuesIn(STATUS_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Program, WithoutArgumentsRunsTheDefaultDesignInTheWorkingFolder)
{
    const DesignFiles files;
    for (const char* extension : {".cells", ".place", ".pins", ".netlist"}) {
        std::filesystem::create_directories(files.path("work"));
        std::filesystem::rename(files.base() + extension, files.path("work/sparc_exu_alu") + extension);
    }
    std::filesystem::rename(files.lib(), files.path("benchNangate_shifted"));
    const Outcome outcome = runIn(files.path("work"), "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("\nSTAT | Parameters: \nSTAT | cell type #              = 2\n"),
              std::string::npos)
        << outcome.output;
    EXPECT_TRUE(endsWith(outcome.output, LAST_LINE)) << outcome.output;
}

TEST(Program, StreamedAndFormattedTextComeOutInProgramOrder)
{
    const DesignFiles files;
    const std::string output = runIn(files.path(""), "-inlib d -cellPath lib -algo -1").output;
    size_t at = 0;
    for (const char* part : {"Version 3.1", "STAT | Parameters: ", "STAT | stitch # lowerB ",
                             "STAT | LUT CPU time ", "STAT | final HPWL ", "STAT | HPWL increases ",
                             "STAT | final stitch ", "STAT | Virelocer CPU time "}) {
        const size_t found = output.find(part);
        ASSERT_NE(found, std::string::npos) << part;
        EXPECT_GE(found, at) << part;
        at = found;
    }
}

} // namespace
