// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputPaths.h"

#include <sys/stat.h>

#include "kit/base/fault.h"
#include "kit/kitRun.h"

namespace {

namespace fs = std::filesystem;
using test::Words;

class KitOutputPaths : public testing::Test {
protected:
    KitOutputPaths()
    {
        m_dir.write("in", "input");
        m_dir.write("d/old", "old");
        fs::create_hard_link(m_dir.path("in"), m_dir.path("sameFile"));
        fs::create_symlink("in", m_dir.path("link"));
        fs::create_symlink("new", m_dir.path("toNew"));
        fs::create_symlink("d", m_dir.path("e"));
    }

    /// What is wrong with outputs in the folder, without its path; empty if nothing is.
    std::string faultOf(const Words& outputs, bool force = true) const
    {
        Words paths;
        for (const std::string& output : outputs) {
            paths.push_back(output.front() == '/' ? output : m_dir.path(output));
        }
        try {
            kit::checkOutputs(paths, {m_dir.path("in"), m_dir.path("notYet"), ""}, force);
        } catch (const kit::Fault& fault) {
            const std::string text = fault.what();
            return text.substr(text.find(m_dir.path("")) == 0 ? m_dir.path("").size() : 0);
        }
        return "";
    }

    test::TempDir m_dir;
};

TEST_F(KitOutputPaths, AnInputIsKnownByAllItsNames)
{
    for (const std::string name : {"in", "d/../in", "e/../in", "sameFile", "link", "notYet", "e/../notYet"}) {
        EXPECT_EQ(faultOf({name}), name + " is an input: choose another name for the result");
    }
    EXPECT_EQ(faultOf({"new", "d/old"}), "");
}

TEST_F(KitOutputPaths, TwoResultsHaveTwoNamesHoweverTheyAreWritten)
{
    for (const Words& names :
         {Words{"new", "new"}, Words{"new", "toNew"}, Words{"d/new", "e/new"}, Words{"d/old", "e/old"}}) {
        EXPECT_EQ(faultOf(names), names[1] + " is the name of two results: choose different ones");
    }
}

TEST_F(KitOutputPaths, AFileThatIsThereNeedsForce)
{
    EXPECT_EQ(faultOf({"d/old"}, /*force=*/false),
              "d/old exists: choose another name, or --force to replace it");
    EXPECT_EQ(faultOf({"new"}, /*force=*/false), "");
}

TEST_F(KitOutputPaths, WhatLosesNothingNeedsNoForce)
{
    ASSERT_EQ(mkfifo(m_dir.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(faultOf({"pipe", "/dev/null", "/dev/stdout"}, /*force=*/false), "");
    EXPECT_EQ(faultOf({"/dev/null", "/dev/null"}, /*force=*/false), "");
    EXPECT_NE(faultOf({"pipe", "pipe"}, /*force=*/false), "");
}

TEST_F(KitOutputPaths, FoldersAndNothingAreNoNames)
{
    for (const std::string name : {"d", "d/", ".hidden"}) {
        EXPECT_EQ(faultOf({name}), name + " is no name for a file");
    }
    EXPECT_NE(faultOf({std::string(300, 'x')}).find("File name too long"), std::string::npos);
}

} // namespace
