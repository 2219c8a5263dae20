// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputFile.h"

#include <map>

#include "kit/base/fault.h"
#include "kit/base/files/limits.h"
#include "kit/kitRun.h"

namespace {

namespace fs = std::filesystem;
using kit::OutputFile;
using kit::OutputSet;
using test::contentOf;

class KitOutputSet : public testing::Test {
protected:
    void add(const std::string& name, const std::string& text)
    {
        m_set.add(m_dir.path(name), [&text](OutputFile& file) { file << text; });
    }

    /// All files in the folder with their texts.
    std::map<std::string, std::string> files() const
    {
        std::map<std::string, std::string> texts;
        for (const auto& entry : fs::recursive_directory_iterator(m_dir.path(""))) {
            if (entry.is_regular_file()) {
                texts[fs::relative(entry.path(), m_dir.path("")).string()] = contentOf(entry.path().string());
            }
        }
        return texts;
    }

    using Files = std::map<std::string, std::string>;

    test::TempDir m_dir;
    OutputSet m_set;
};

TEST_F(KitOutputSet, AppearsWhole)
{
    m_dir.write("a", "old");
    m_dir.write("c", "earlier");
    add("a", "new");
    add("b", "new too");
    m_set.addCopy(m_dir.path("d"), m_dir.path("a"));
    m_set.remove(m_dir.path("c"));
    m_set.remove(m_dir.path("e"));
    EXPECT_EQ(contentOf(m_dir.path("a")), "old");
    EXPECT_FALSE(fs::exists(m_dir.path("b")));
    EXPECT_EQ(contentOf(m_set.partPath(m_dir.path("b"))), "new too");
    m_set.commit();
    EXPECT_EQ(files(), (Files{{"a", "new"}, {"b", "new too"}, {"d", "old"}}));
}

TEST_F(KitOutputSet, OfManyFilesNoneStaysOpen)
{
    const auto numOpen = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = numOpen();
    Files expected;
    for (int i = 0; i < 30; ++i) {
        add("f" + std::to_string(i), std::to_string(i));
        expected["f" + std::to_string(i)] = std::to_string(i);
        EXPECT_EQ(numOpen(), before);
    }
    m_set.commit();
    EXPECT_EQ(files(), expected);
}

TEST_F(KitOutputSet, LeavesNothingOfAFileThatFails)
{
    m_dir.write("a", "old");
    {
        OutputSet set;
        const test::FileSizeLimit limit(100'000);
        set.add(m_dir.path("a"), [](OutputFile& file) { file << "new"; });
        EXPECT_THROW(set.add(m_dir.path("b"), [](OutputFile& file) { file << std::string(200'000, 'x'); }),
                     kit::Fault);
    }
    EXPECT_EQ(files(), (Files{{"a", "old"}}));
}

TEST_F(KitOutputSet, BringsAllBackIfANameCannotBeGiven)
{
    m_dir.write("a", "old");
    m_dir.write("gone", "earlier");
    {
        OutputSet set;
        set.remove(m_dir.path("gone"));
        for (const char* name : {"a", "b", "c"}) {
            set.add(m_dir.path(name), [](OutputFile& file) { file << "new"; });
        }
        m_dir.write("c/inside", ""); // somebody makes a folder of that name
        EXPECT_THROW(set.commit(), kit::Fault);
        EXPECT_FALSE(fs::exists(m_dir.path("b")));
    }
    EXPECT_EQ(files(), (Files{{"a", "old"}, {"c/inside", ""}, {"gone", "earlier"}}));
}

} // namespace
