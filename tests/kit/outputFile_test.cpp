// SPDX-License-Identifier: BSD-3-Clause
#include "kit/outputFile.h"

#include <limits>

#include "kit/fault.h"
#include "kit/kitRun.h"

namespace {

using kit::OutputFile;
using test::contentOf;
using test::TempDir;

TEST(KitOutputFile, HasTextAndIntegersInOrder)
{
    const TempDir dir;
    OutputFile out(dir.path("f"));
    out << "a " << 0 << " " << -17 << "\n" << std::numeric_limits<int64_t>::min() << size_t{5};
    out.commit();
    EXPECT_EQ(contentOf(dir.path("f")), "a 0 -17\n-92233720368547758085");
}

TEST(KitOutputFile, HoldsMoreThanItsBuffer)
{
    const TempDir dir;
    OutputFile out(dir.path("f"));
    std::string expected;
    for (int i = 0; i < 50'000; ++i) {
        out << i << " ";
        expected += std::to_string(i) + " ";
    }
    const std::string large(200'000, 'x');
    out << large;
    out.commit();
    EXPECT_EQ(contentOf(dir.path("f")), expected + large);
}

TEST(KitOutputFile, ReplacesTheOldFileOnCommitAlone)
{
    const TempDir dir;
    dir.write("f", "old");
    OutputFile out(dir.path("f"));
    out << "new";
    EXPECT_EQ(contentOf(dir.path("f")), "old");
    out.commit();
    EXPECT_EQ(contentOf(dir.path("f")), "new");
    EXPECT_FALSE(std::filesystem::exists(dir.path("f.part")));
}

TEST(KitOutputFile, LeavesNothingWithoutCommit)
{
    const TempDir dir;
    {
        OutputFile out(dir.path("f"));
        out << "half";
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.path("")));
}

TEST(KitOutputFile, SaysWhyItCannotBeWritten)
{
    const TempDir dir;
    try {
        OutputFile out(dir.path("no/f"));
        FAIL() << "no fault";
    } catch (const kit::Fault& fault) {
        EXPECT_EQ(fault.what(), "cannot write " + dir.path("no/f") + ": No such file or directory");
    }
}

TEST(KitOutputFile, AFolderInItsPlaceIsAFault)
{
    const TempDir dir;
    dir.write("f/inside", "");
    OutputFile out(dir.path("f"));
    EXPECT_THROW(out.commit(), kit::Fault);
    EXPECT_FALSE(std::filesystem::exists(dir.path("f.part")));
}

TEST(KitOutputFile, AFullDiskIsAFault)
{
    const TempDir dir;
    std::filesystem::create_symlink("/dev/full", dir.path("f.part"));
    OutputFile out(dir.path("f"));
    out << "text";
    EXPECT_THROW(out.commit(), kit::Fault);
    EXPECT_FALSE(std::filesystem::exists(dir.path("f")));
}

} // namespace
