// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/inputs.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

namespace mutation {

namespace {

namespace fs = std::filesystem;

/// Whether the placer reads files of this name.
bool isInput(const fs::path& path)
{
    const std::string extension = path.extension().string();
    return extension == ".place" || extension == ".netlist" || extension == ".pins" ||
           extension == ".cells" || extension == ".color";
}

/// The words of a line; two quotes are an empty word.
std::vector<std::string> splitWords(const std::string& line)
{
    std::istringstream in(line);
    std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
    std::replace(words.begin(), words.end(), std::string("''"), std::string());
    return words;
}

std::map<std::string, InputFile> readInputFiles(const fs::path& folder)
{
    std::map<std::string, InputFile> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && isInput(entry.path())) {
            files[entry.path().lexically_relative(folder).string()].bytes = readFile(entry.path());
        }
    }
    return files;
}

/// Drops the colour files of cells that the design does not list.
void keepListedCells(std::map<std::string, InputFile>& files, const std::string& list)
{
    const std::vector<std::string> cells = splitWords(list);
    std::erase_if(files, [&cells](const auto& file) {
        const fs::path path(file.first);
        return path.extension() == ".color" &&
               std::find(cells.begin(), cells.end(), path.stem().string()) == cells.end();
    });
}

} // namespace

std::string readFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<GoodCase> readGoodCases(const fs::path& golden, const fs::path& examples)
{
    std::vector<GoodCase> cases;
    for (const auto& entry : fs::directory_iterator(golden)) {
        GoodCase good;
        good.name = entry.path().filename().string();
        if (good.name == "gcd") {
            good.files = readInputFiles(examples);
            keepListedCells(good.files, good.files["gcd/gcd.cells"].bytes);
        } else {
            good.files = readInputFiles(entry.path());
        }
        std::ifstream args(entry.path() / "args");
        for (std::string line; std::getline(args, line);) {
            good.commands.push_back(splitWords(line));
        }
        cases.push_back(std::move(good));
    }
    std::sort(cases.begin(), cases.end(),
              [](const GoodCase& a, const GoodCase& b) { return a.name < b.name; });
    return cases;
}

void writeFiles(const fs::path& folder, const std::map<std::string, InputFile>& files)
{
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const auto& [name, file] : files) {
        const fs::path path = folder / name;
        fs::create_directories(file.isFolder ? path : path.parent_path());
        if (!file.isFolder) {
            std::ofstream(path, std::ios::binary) << file.bytes;
        }
    }
}

std::string commandLine(const std::vector<std::string>& options)
{
    std::string line;
    for (const std::string& option : options) {
        line += line.empty() ? "'" : " '";
        for (const char c : option) {
            if (c == '\'' || c == '\\' || std::isprint(static_cast<unsigned char>(c)) == 0) {
                char code[8];
                std::snprintf(code, sizeof code, "\\x%02X",
                              static_cast<unsigned>(static_cast<unsigned char>(c)));
                line += code;
            } else {
                line += c;
            }
        }
        line += '\'';
    }
    return line;
}

} // namespace mutation
