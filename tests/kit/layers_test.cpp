// SPDX-License-Identifier: BSD-3-Clause
// The layers of the kit, as its sources are.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// From the lowest to the highest.
const std::vector<std::string> LAYERS{"base", "geometry", "formats", "design", "engines", "tools"};

/// What a source includes from the kit, both as paths inside kit/.
struct Include {
    std::string from;
    std::string to;
};

/// Texts of the lines that include a header, between the signs around its name.
std::vector<std::string> includedBy(const fs::path& source)
{
    std::vector<std::string> names;
    std::ifstream in(source);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("#include ")) {
            const size_t begin = line.find_first_of("\"<") + 1;
            names.push_back(line.substr(begin, line.find_first_of("\">", begin) - begin));
        }
    }
    return names;
}

std::vector<fs::path> sources()
{
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(VIRELOCE_KIT_SOURCES)) {
        if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
            paths.push_back(entry.path());
        }
    }
    return paths;
}

std::vector<Include> includes()
{
    const std::string prefix = "kit/";
    std::vector<Include> all;
    for (const fs::path& source : sources()) {
        for (const std::string& name : includedBy(source)) {
            if (name.starts_with(prefix)) {
                all.push_back(
                    {source.lexically_relative(VIRELOCE_KIT_SOURCES).string(), name.substr(prefix.size())});
            }
        }
    }
    return all;
}

std::string layerOf(const std::string& path)
{
    return path.substr(0, path.find('/'));
}

/// The folder of a file.
std::string roomOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

TEST(KitLayers, EachKnowsOnlyItselfAndThoseBelow)
{
    const std::vector<Include> all = includes();
    EXPECT_GT(all.size(), 500U);
    for (const Include& include : all) {
        const auto from = std::find(LAYERS.begin(), LAYERS.end(), layerOf(include.from));
        const auto to = std::find(LAYERS.begin(), LAYERS.end(), layerOf(include.to));
        EXPECT_NE(from, LAYERS.end()) << include.from;
        EXPECT_LE(to - from, 0) << include.from << " includes " << include.to;
    }
}

TEST(KitLayers, RoomsOfFormatsAndEnginesKnowNoOtherButTheJudge)
{
    for (const Include& include : includes()) {
        const std::string layer = layerOf(include.from);
        if ((layer == "formats" || layer == "engines") && layerOf(include.to) == layer &&
            roomOf(include.from) != roomOf(include.to)) {
            EXPECT_EQ(roomOf(include.to), "engines/verify") << include.from;
            EXPECT_TRUE(roomOf(include.from) == "engines/place" || roomOf(include.from) == "engines/refine")
                << include.from;
        }
    }
}

TEST(KitLayers, LargeLibrariesAreIncludedByOneSourceEach)
{
    std::map<std::string, std::set<std::string>> users;
    for (const fs::path& source : sources()) {
        for (const std::string& name : includedBy(source)) {
            const std::string library = name.substr(0, name.find('/'));
            if (library == "CLI" || library == "nlohmann" || library == "sqlite3.h") {
                users[library].insert(source.lexically_relative(VIRELOCE_KIT_SOURCES).string());
            }
        }
    }
    const std::map<std::string, std::set<std::string>> expected{{"CLI", {"base/commandLine.cpp"}},
                                                                {"nlohmann", {"base/text/json.cpp"}},
                                                                {"sqlite3.h", {"tools/sweep/sqlite.cpp"}}};
    EXPECT_EQ(users, expected);
}

} // namespace
