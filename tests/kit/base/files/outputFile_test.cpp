// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/files/limits.h"
#include "kit/kitRun.h"

namespace {

namespace fs = std::filesystem;
using kit::OutputFile;
using kit::writeFile;
using test::contentOf;
using test::TempDir;

mode_t modeOf(const std::string& path)
{
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777U;
}

std::string writingFault(const std::string& path, const std::string& text)
{
    try {
        writeFile(path, text);
    } catch (const kit::Fault& fault) {
        return fault.what();
    }
    return "";
}

size_t numFilesIn(const TempDir& dir)
{
    return static_cast<size_t>(std::distance(fs::directory_iterator(dir.path("")), fs::directory_iterator()));
}

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

TEST(KitOutputFile, TakesFilesInWhole)
{
    const TempDir dir;
    for (const size_t size : {0U, 5U, 65'533U, 65'536U, 200'000U}) {
        const std::string large(size, 'x');
        dir.write("from", large);
        OutputFile out(dir.path("f"));
        out << "<> ";
        out.appendFile(dir.path("from"));
        out << "end";
        out.commit();
        EXPECT_EQ(contentOf(dir.path("f")), "<> " + large + "end") << size;
    }
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
    EXPECT_EQ(numFilesIn(dir), 1U);
}

TEST(KitOutputFile, LeavesNothingWithoutCommit)
{
    const TempDir dir;
    {
        OutputFile out(dir.path("f"));
        out << "half";
        EXPECT_EQ(numFilesIn(dir), 1U);
    }
    EXPECT_EQ(numFilesIn(dir), 0U);
}

TEST(KitOutputFile, FilesOfTheUserAreNotTakenForItsOwn)
{
    const TempDir dir;
    dir.write("f.part", "mine");
    writeFile(dir.path("f"), "text");
    EXPECT_EQ(contentOf(dir.path("f.part")), "mine");
}

TEST(KitOutputFile, TwoWritersOfOneFileDoNotMeet)
{
    const TempDir dir;
    OutputFile one(dir.path("f"));
    OutputFile two(dir.path("f"));
    one << "one";
    two << "two";
    two.commit();
    one.commit();
    EXPECT_EQ(contentOf(dir.path("f")), "one");
    EXPECT_EQ(numFilesIn(dir), 1U);
}

TEST(KitOutputFile, SaysWhyItCannotBeWritten)
{
    const TempDir dir;
    EXPECT_EQ(writingFault(dir.path("no/f"), ""),
              "cannot write " + dir.path("no/f") + ": No such file or directory");
    dir.write("d/inside", "");
    EXPECT_EQ(writingFault(dir.path("d"), ""), "cannot write " + dir.path("d") + ": Is a directory");
}

TEST(KitOutputFile, AFullDeviceIsAFault)
{
    EXPECT_EQ(writingFault("/dev/full", "text"), "cannot write /dev/full: No space left on device");
}

TEST(KitOutputFile, AFileThatMayNotGetSoLongLeavesTheOldOne)
{
    const TempDir dir;
    dir.write("f", "old");
    const test::FileSizeLimit limit(100'000);
    EXPECT_EQ(writingFault(dir.path("f"), std::string(200'000, 'x')),
              "cannot write " + dir.path("f") + ": File too large");
    EXPECT_EQ(contentOf(dir.path("f")), "old");
    EXPECT_EQ(numFilesIn(dir), 1U);
}

TEST(KitOutputFile, LinksAreFollowedAndStay)
{
    const TempDir dir;
    dir.write("d/target", "old");
    fs::create_symlink("d/target", dir.path("link"));
    fs::create_symlink("link", dir.path("linkOfALink"));
    fs::create_symlink(dir.path("d/new"), dir.path("toNothing"));
    writeFile(dir.path("linkOfALink"), "new");
    writeFile(dir.path("toNothing"), "made");
    for (const char* name : {"link", "linkOfALink", "toNothing"}) {
        EXPECT_TRUE(fs::is_symlink(dir.path(name))) << name;
    }
    EXPECT_FALSE(fs::is_symlink(dir.path("d/target")));
    EXPECT_EQ(contentOf(dir.path("d/target")), "new");
    EXPECT_EQ(contentOf(dir.path("d/new")), "made");
}

TEST(KitOutputFile, PipesAreWrittenThrough)
{
    const TempDir dir;
    const std::string pipe = dir.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string got;
    std::thread reader([&] { got = contentOf(pipe); });
    writeFile(pipe, "text");
    reader.join();
    EXPECT_EQ(got, "text");
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(KitOutputFile, AnOpenFileIsWrittenWhereItStands)
{
    const TempDir dir;
    const int file = open(dir.path("f").c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(write(file, "before ", 7), 7);
    writeFile("/dev/fd/" + std::to_string(file), "text");
    ASSERT_EQ(write(file, " after", 6), 6) << "it is still open";
    close(file);
    EXPECT_EQ(contentOf(dir.path("f")), "before text after");
}

TEST(KitOutputFile, PermissionsAreThoseOfTheOldFileOrTheUsers)
{
    const TempDir dir;
    const mode_t before = umask(027);
    dir.write("f", "old");
    fs::permissions(dir.path("f"), fs::perms{0604});
    writeFile(dir.path("f"), "new");
    writeFile(dir.path("g"), "new");
    umask(before);
    EXPECT_EQ(modeOf(dir.path("f")), 0604U);
    EXPECT_EQ(modeOf(dir.path("g")), 0640U);
}

TEST(KitOutputFile, WhatIsSecretIsSoWhileItIsMade)
{
    const TempDir dir;
    dir.write("f", "old");
    fs::permissions(dir.path("f"), fs::perms{0600});
    const OutputFile out(dir.path("f"));
    EXPECT_EQ(modeOf(out.partPath()), 0600U);
}

TEST(KitOutputFile, LongestNamesHaveRoom)
{
    const TempDir dir;
    const std::string name(255, 'x');
    writeFile(dir.path(name), "text");
    EXPECT_EQ(contentOf(dir.path(name)), "text");
}

TEST(KitOutputFile, NamesOfTemporaryFilesTellWhoseTheyAre)
{
    EXPECT_EQ(kit::nameOfPart(kit::partNameOf("out.gds")), "out.gds");
    for (const char* other :
         {"", "out.gds", "out.part", "out.part-abc", "out.part-abcdefg", "out.part-ABCDEF"}) {
        EXPECT_EQ(kit::nameOfPart(other), "") << other;
    }
}

} // namespace
