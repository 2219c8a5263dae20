// SPDX-License-Identifier: BSD-3-Clause
// A study's folder for tests, and programs that stand in for the placer.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "kit/base/text/json.h"
#include "kit/kitRun.h"
#include "kit/tools/sweep/plan.h"
#include "kit/tools/sweep/run.h"
#include "support/guards.h"

namespace test {

using kit::Json;

inline void writeFile(const std::string& path, const std::string& text)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path) << text;
}

/// Files that pass for a design, where nobody places it.
inline void writeDesign(const std::string& folder, const std::string& name, const std::string& text = "")
{
    writeFile(folder + "/" + name + ".cells", "1\nA\n");
    for (const char* extension : {".place", ".pins", ".netlist"}) {
        writeFile(folder + "/" + name + extension, text);
    }
    writeFile(folder + "/lib/A.color", "colours");
}

/// Runs over a folder, with designs that nobody places and a script as the program.
class SweepCase : public testing::Test {
protected:
    /// A study of one such design with algorithm 0 and these many weights, planned in dir().
    void plan(int weights)
    {
        writeDesign(m_dir.path("designs"), "d");
        Json study{
            {"designs", Json::array({{{"name", "d"}, {"base", "designs/d"}, {"cell_path", "designs/lib"}}})}};
        for (int i = 1; i <= weights; ++i) {
            study["grid"]["weight"].push_back(i);
        }
        writeFile(m_dir.path("study.json"), study.dump());
        const KitOutcome outcome = runKit({"sweep", "plan", m_dir.path("study.json"), "-o", dir()});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    /// Makes a program of shell commands, which find the path of the results in $out and the weight in
    /// $weight. A word `placed` is a command that writes a clean result.
    std::string program(const std::string& commands)
    {
        const std::string path = m_dir.path("program");
        writeFile(
            path,
            "#!/bin/sh\nout=$6\nweight=0\n"
            "for word; do case $word in --weight=*) weight=${word#--weight=};; esac; done\n"
            "placed() { echo '{\"placement\":{\"hpwl\":'$((1000 - weight))',\"stitches\":'$weight"
            "',\"hash\":\"x\",\"dropped_cells\":[\"a\",\"b\"]},\"rescue\":null,\"report\":{\"init HPWL\":7},"
            "\"judge\":{\"errors\":0,\"conflicts\":0}}' >$out.json; }\n" +
                commands + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    kit::sweep::SweepOptions options(const std::string& program) const
    {
        kit::sweep::SweepOptions options;
        options.dir = dir();
        options.quiet = true;
        options.setting.program = program;
        return options;
    }

    int run(const std::string& commands) { return kit::sweep::run(options(program(commands))); }

    int resume(const std::string& commands)
    {
        kit::sweep::SweepOptions again = options(program(commands));
        again.resume = true;
        return kit::sweep::run(again);
    }

    /// The files of results by name, whole.
    std::map<std::string, std::string> results() const { return filesIn(dir() + "/results"); }

    static std::map<std::string, std::string> filesIn(const std::string& folder)
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            files[entry.path().filename().string()] = contentOf(entry.path().string());
        }
        return files;
    }

    /// The result of the run with a weight.
    Json resultOf(int weight) const
    {
        for (const auto& [name, text] : results()) {
            Json result = Json::parse(text);
            if (result["options"]["weight"] == weight) {
                return result;
            }
        }
        return nullptr;
    }

    std::string dir() const { return m_dir.path("sweep"); }

    TempDir m_dir;
};

} // namespace test
