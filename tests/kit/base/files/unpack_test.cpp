// SPDX-License-Identifier: BSD-3-Clause
// Compressed files: read by their content, written by their name.
#include "kit/base/files/unpack.h"

#include <lzma.h>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"

namespace {

using test::contentOf;
using test::TempDir;

std::string gzip(const std::string& text)
{
    kit::GzipPacker packer;
    return std::string(packer.pack(text, /*last=*/true));
}

std::string xz(const std::string& text)
{
    std::string packed(lzma_stream_buffer_bound(text.size()), '\0');
    size_t size = 0;
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    EXPECT_EQ(lzma_easy_buffer_encode(0, LZMA_CHECK_CRC32, nullptr, bytes, text.size(),
                                      reinterpret_cast<uint8_t*>(packed.data()), &size, packed.size()),
              LZMA_OK);
    return packed.substr(0, size);
}

/// The text of a file with these bytes, or what is wrong with it.
std::string readOf(const std::string& bytes)
{
    const TempDir dir;
    dir.write("f", bytes);
    try {
        return kit::readUnpacked(dir.path("f"));
    } catch (const kit::Fault& fault) {
        const std::string what = fault.what();
        return "fault:" + what.substr(what.find(dir.path("f")) + dir.path("f").size());
    }
}

/// More than a megabyte that is not easy to compress.
std::string longText()
{
    std::string text;
    for (uint32_t i = 1; text.size() < 1'200'000; ++i) {
        text += std::to_string(i * 2'654'435'761U) + "\n";
    }
    return text;
}

TEST(KitUnpack, GzipAndXzAreKnownByTheirContent)
{
    for (const std::string& text : {std::string("VERSION 5.8 ;\n"), std::string(), longText()}) {
        EXPECT_EQ(readOf(text), text);
        EXPECT_EQ(readOf(gzip(text)), text);
        EXPECT_EQ(readOf(xz(text)), text);
    }
}

TEST(KitUnpack, SeveralStreamsAreOneText)
{
    EXPECT_EQ(readOf(gzip("a\n") + gzip("b\n") + std::string(512, '\0')), "a\nb\n");
    EXPECT_EQ(readOf(xz("a\n") + xz("b\n")), "a\nb\n");
}

TEST(KitUnpack, WhatIsCutOffIsNoText)
{
    for (const std::string& packed : {gzip("some text\n"), xz("some text\n")}) {
        for (size_t size = 6; size < packed.size(); ++size) {
            EXPECT_EQ(readOf(packed.substr(0, size)), "fault: is compressed, and cut off") << size;
        }
    }
}

TEST(KitUnpack, WhatIsDamagedIsNoText)
{
    for (std::string packed : {gzip(longText()), xz(longText())}) {
        packed[packed.size() / 2] = static_cast<char>(packed[packed.size() / 2] ^ 1);
        EXPECT_EQ(readOf(packed), "fault: is compressed, and damaged");
    }
    EXPECT_EQ(readOf(gzip("a") + "b"), "fault: is compressed, and damaged");
}

TEST(KitUnpack, WhatFillsTheMemoryIsRefused)
{
    const std::string zeros(kit::LEAST_UNPACKED + 1, '\0');
    for (const std::string& packed : {gzip(zeros), xz(zeros)}) {
        EXPECT_EQ(readOf(packed),
                  "fault: holds more than 67108864 bytes, which compressed text of its size does not: "
                  "unpack it first, if it is good");
    }
    EXPECT_EQ(readOf(gzip(zeros.substr(1))).size(), kit::LEAST_UNPACKED);
}

TEST(KitUnpack, FileNamedGzIsWrittenCompressedAndTheSameEachTime)
{
    const TempDir dir;
    const std::string text = longText();
    for (const char* const name : {"a.gz", "b.gz", "c"}) {
        test::writeOutput(dir.path(name), [&](kit::OutputFile& file) { file << text << 17; });
    }
    EXPECT_EQ(contentOf(dir.path("c")), text + "17");
    EXPECT_EQ(kit::readUnpacked(dir.path("a.gz")), text + "17");
    EXPECT_EQ(contentOf(dir.path("a.gz")), contentOf(dir.path("b.gz")));
    EXPECT_LT(contentOf(dir.path("a.gz")).size(), text.size() / 2);
}

} // namespace
