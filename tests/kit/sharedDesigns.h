// SPDX-License-Identifier: BSD-3-Clause
// Real designs that are no part of the project, where they are beside it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "kit/base/process/childProcess.h"
#include "kit/base/text/json.h"
#include "kit/kitRun.h"

namespace test {

/// Path of one of their files.
inline std::string sharedFile(const std::string& name)
{
    return VIRELOCE_SHARED_FOLDER "/data/designs/" + name;
}

/// A test that is skipped where they are not.
class WithSharedDesigns : public testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(sharedFile("list.json"))) {
            GTEST_SKIP() << "skipped: there is no " << sharedFile("list.json");
        }
    }
};

/// A design, and what imports it.
struct ListedDesign {
    std::string def;
    Words lefs;
    std::string layer;
};

/// A design of the list by its name; none where there is no such folder.
inline std::optional<ListedDesign> listedDesign(const std::string& name)
{
    if (!std::filesystem::exists(sharedFile("list.json"))) {
        return {};
    }
    const kit::Json list = kit::Json::parse(contentOf(sharedFile("list.json")));
    for (const kit::Json& design : list.items()) {
        if (design["name"] == name) {
            ListedDesign found{.def = sharedFile(design["def"].asString()), .lefs = {}, .layer = "metal1"};
            for (const kit::Json& lef : design["lef"].items()) {
                found.lefs.push_back(sharedFile(lef.asString()));
            }
            if (design.contains("layer")) {
                found.layer = design["layer"].asString();
            }
            return found;
        }
    }
    ADD_FAILURE() << "the list has no " << name;
    return {};
}

/// What the independent judge says of a DEF file of a design.
inline kit::Json measured(const ListedDesign& design, const std::string& def, const TempDir& dir,
                          const Words& options = {})
{
    Words words{"/usr/bin/env", "python3", VIRELOCE_SHARED_FOLDER "/tools/hpwl.py"};
    words.insert(words.end(), design.lefs.begin(), design.lefs.end());
    words.insert(words.end(), {def, "--json"});
    words.insert(words.end(), options.begin(), options.end());
    const auto ending = kit::process::run(words, dir.path("judge.out"), dir.path("judge.err"));
    EXPECT_EQ(ending.status, 0) << contentOf(dir.path("judge.err"));
    return kit::Json::tryParse(contentOf(dir.path("judge.out"))).value_or(nullptr);
}

} // namespace test
