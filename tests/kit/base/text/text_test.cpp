// SPDX-License-Identifier: BSD-3-Clause
// Files as they are read, and texts as they are shown.
#include <sys/stat.h>

#include <thread>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/kitRun.h"

namespace {

using kit::lastLine;
using kit::printable;
using kit::readFile;
using test::TempDir;

std::string readingFault(const std::string& path)
{
    try {
        readFile(path);
    } catch (const kit::Fault& fault) {
        return fault.what();
    }
    return "";
}

TEST(KitReadFile, GivesAllBytes)
{
    const TempDir dir;
    for (const size_t size : {0U, 1U, 65'535U, 65'536U, 65'537U, 300'000U}) {
        std::string text(size, 'x');
        if (size > 2) {
            text[1] = '\0';
            text.back() = '\n';
        }
        EXPECT_EQ(readFile(dir.write("f", text)), text) << size;
    }
}

TEST(KitReadFile, ReadsWhatDoesNotTellItsLength)
{
    const TempDir dir;
    ASSERT_EQ(mkfifo(dir.path("pipe").c_str(), 0600), 0);
    const std::string text(200'000, 'x');
    std::thread writer([&] { std::ofstream(dir.path("pipe")) << text; });
    EXPECT_EQ(readFile(dir.path("pipe")), text);
    writer.join();
    EXPECT_EQ(readFile("/proc/self/comm").substr(0, 5), "test_");
}

TEST(KitReadFile, SaysWhyAFileCannotBeRead)
{
    const TempDir dir;
    EXPECT_EQ(readingFault(dir.path("none")),
              "cannot open file " + dir.path("none") + ": No such file or directory");
    EXPECT_EQ(readingFault("/dev/null/f"), "cannot open file /dev/null/f: Not a directory");
    EXPECT_EQ(readingFault(dir.path("")), "cannot read file " + dir.path("") + ": Is a directory");
}

TEST(KitReadFile, ACompressedFileIsCalledThat)
{
    const TempDir dir;
    EXPECT_EQ(readingFault(dir.write("d.def.gz", "\x1f\x8b\x08 whatever")),
              dir.path("d.def.gz") + " is gzip-compressed: unpack it first");
}

TEST(KitPrintable, WhatATerminalShowsStays)
{
    for (const std::string text : {"", "u1/a[3] ~ \\x1b", "Gr\u00f6\u00dfe", "\u20ac", "\U0001f600"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(KitPrintable, WhatATerminalObeysIsEscaped)
{
    EXPECT_EQ(printable("a\x1b[2Jb"), "a\\x1b[2Jb");
    EXPECT_EQ(printable("tab\tline\nend\r"), "tab\\x09line\\x0aend\\x0d");
    EXPECT_EQ(printable(std::string("\0\x7f", 2)), "\\x00\\x7f");
    EXPECT_EQ(printable("\u009b1m"), "\\xc2\\x9b1m") << "a control character of two bytes";
}

TEST(KitText, LastLineIsTheLastThatIsNotBlank)
{
    EXPECT_EQ(lastLine("a\nb\n\n \t\r\n"), "b");
    EXPECT_EQ(lastLine("a\n  b"), "  b");
    EXPECT_EQ(lastLine("a"), "a");
    EXPECT_EQ(lastLine(" \n"), "");
    EXPECT_EQ(lastLine(""), "");
}

TEST(KitPrintable, BytesThatAreNoTextAreEscaped)
{
    EXPECT_EQ(printable("\xff\xfe"), "\\xff\\xfe");
    EXPECT_EQ(printable("a\x80z"), "a\\x80z") << "the rest of a character alone";
    EXPECT_EQ(printable("\xc3"), "\\xc3") << "half a character";
    EXPECT_EQ(printable("\xc3("), "\\xc3(");
    EXPECT_EQ(printable("\xc0\xaf"), "\\xc0\\xaf") << "a character in more bytes than it needs";
    EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "half a pair";
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "beyond the last character";
}

} // namespace
