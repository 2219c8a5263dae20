// SPDX-License-Identifier: BSD-3-Clause
// What one run of the placer reads: its files and its options.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace mutation {

/// All bytes of a file; none if it cannot be read.
std::string readFile(const std::filesystem::path& path);

/// A file as a run finds it.
struct InputFile {
    std::string bytes;
    bool isFolder = false; ///< a folder stands in its place
};

/// The files and options of one run.
struct Inputs {
    std::map<std::string, InputFile> files; ///< by path in the working folder of the run
    std::vector<std::string> options;       ///< the words behind the program's name
};

/// A good design with the command lines that are known for it.
struct GoodCase {
    std::string name;
    std::map<std::string, InputFile> files;
    std::vector<std::vector<std::string>> commands; ///< options of each command line
};

/// Reads all good designs, in the order of their names.
///
/// @param golden    folder with a folder per design, which holds `args`, one command line a line
/// @param examples  folder in which the commands of the design "gcd" are run
std::vector<GoodCase> readGoodCases(const std::filesystem::path& golden,
                                    const std::filesystem::path& examples);

/// Writes the files under a folder, which is emptied before.
void writeFiles(const std::filesystem::path& folder, const std::map<std::string, InputFile>& files);

/// The options as a line of shell words, with bytes that do not print as "\xNN".
std::string commandLine(const std::vector<std::string>& options);

} // namespace mutation
