// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/unpack.h"

#include <lzma.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"

namespace kit {

namespace {

constexpr std::string_view GZIP = "\x1f\x8b";
constexpr std::string_view XZ = {"\xfd"
                                 "7zXZ\0",
                                 6};

constexpr int GZIP_FORMAT = 16 + MAX_WBITS; // as zlib wants it told
constexpr size_t FIRST_ROOM = size_t{1} << 20U;
constexpr uint64_t XZ_MEMORY = uint64_t{1} << 29U; // bytes, for the decoder; xz -9 needs an eighth of it

/// What a step of an unpacker came to.
enum class Step { MORE, END, DAMAGED, NO_MEMORY };

/// Unpacks all of it, step by step.
///
/// @param advance  does a step: takes what is left of the input and the room for output, shortens both, tells
/// how it went
template <typename Advance>
std::string unpackAll(const std::string& path, std::string_view packed, const Advance& advance)
{
    const size_t most = std::max(LEAST_UNPACKED, UNPACKED_PER_BYTE * packed.size());
    std::string text(std::min(std::max(FIRST_ROOM, 8 * packed.size()), most + 1), '\0');
    size_t used = 0;
    std::string_view input = packed;
    for (Step step = Step::MORE; step != Step::END;) {
        if (used == text.size()) {
            text.resize(std::min(2 * used, most + 1));
        }
        char* to = text.data() + used;
        size_t room = text.size() - used;
        const size_t before = room + input.size();
        step = advance(input, to, room);
        used = text.size() - room;
        if (used > most) {
            throw Fault(path + " holds more than " + std::to_string(most) +
                        " bytes, which compressed text of its size does not: unpack it first, if it is good");
        }
        if (step == Step::NO_MEMORY) {
            throw Fault(path + " takes too much memory to unpack: unpack it first");
        }
        if (step == Step::DAMAGED || (step == Step::MORE && room + input.size() == before)) {
            throw Fault(path + (step == Step::DAMAGED ? " is compressed, and damaged"
                                                      : " is compressed, and cut off"));
        }
    }
    text.resize(used);
    return text;
}

/// A part of a text that zlib can take at once.
unsigned int partOf(size_t size)
{
    return static_cast<unsigned int>(std::min<size_t>(size, std::numeric_limits<int>::max()));
}

/// zlib does not write there, but its type does not say so.
unsigned char* bytesOf(const char* text)
{
    return const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(text)); // NOLINT
}

class GzipUnpacker {
public:
    GzipUnpacker()
    {
        if (inflateInit2(&m_stream, GZIP_FORMAT) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~GzipUnpacker() { inflateEnd(&m_stream); }
    GzipUnpacker(const GzipUnpacker&) = delete;
    GzipUnpacker& operator=(const GzipUnpacker&) = delete;

    Step advance(std::string_view& input, char* to, size_t& room)
    {
        m_stream.next_in = bytesOf(input.data());
        m_stream.avail_in = partOf(input.size());
        m_stream.next_out = bytesOf(to);
        m_stream.avail_out = partOf(room);
        const unsigned int given = m_stream.avail_in;
        const unsigned int offered = m_stream.avail_out;
        const int status = inflate(&m_stream, Z_NO_FLUSH);
        input.remove_prefix(given - m_stream.avail_in);
        room -= offered - m_stream.avail_out;
        if (status == Z_STREAM_END) {
            // Several may follow one another, and blocks of tapes are filled up with zeros.
            if (input.find_first_not_of('\0') == std::string_view::npos) {
                return Step::END;
            }
            return input.starts_with(GZIP) && inflateReset(&m_stream) == Z_OK ? Step::MORE : Step::DAMAGED;
        }
        return status == Z_OK || status == Z_BUF_ERROR ? Step::MORE
               : status == Z_MEM_ERROR                 ? Step::NO_MEMORY
                                                       : Step::DAMAGED;
    }

private:
    z_stream m_stream{};
};

class XzUnpacker {
public:
    XzUnpacker()
    {
        if (lzma_stream_decoder(&m_stream, XZ_MEMORY, LZMA_CONCATENATED) != LZMA_OK) {
            throw std::bad_alloc();
        }
    }
    ~XzUnpacker() { lzma_end(&m_stream); }
    XzUnpacker(const XzUnpacker&) = delete;
    XzUnpacker& operator=(const XzUnpacker&) = delete;

    Step advance(std::string_view& input, char* to, size_t& room)
    {
        m_stream.next_in = bytesOf(input.data());
        m_stream.avail_in = input.size();
        m_stream.next_out = bytesOf(to);
        m_stream.avail_out = room;
        const lzma_ret status = lzma_code(&m_stream, LZMA_FINISH);
        input.remove_prefix(input.size() - m_stream.avail_in);
        room = m_stream.avail_out;
        return status == LZMA_STREAM_END                                   ? Step::END
               : status == LZMA_OK || status == LZMA_BUF_ERROR             ? Step::MORE
               : status == LZMA_MEM_ERROR || status == LZMA_MEMLIMIT_ERROR ? Step::NO_MEMORY
                                                                           : Step::DAMAGED;
    }

private:
    lzma_stream m_stream = LZMA_STREAM_INIT;
};

template <typename Unpacker>
std::string unpacked(const std::string& path, std::string_view packed)
{
    Unpacker unpacker;
    return unpackAll(path, packed, [&unpacker](std::string_view& input, char* to, size_t& room) {
        return unpacker.advance(input, to, room);
    });
}

} // namespace

std::string readUnpacked(const std::string& path)
{
    std::string bytes = readBytes(path);
    if (bytes.starts_with(GZIP)) {
        return unpacked<GzipUnpacker>(path, bytes);
    }
    if (bytes.starts_with(XZ)) {
        return unpacked<XzUnpacker>(path, bytes);
    }
    return bytes;
}

bool isPackedName(std::string_view path)
{
    return path.ends_with(".gz");
}

struct GzipPacker::State {
    z_stream stream{};
    std::string ready;
};

GzipPacker::GzipPacker() : m_state(std::make_unique<State>())
{
    constexpr int MEMORY = 8; // zlib's own choice
    if (deflateInit2(&m_state->stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GZIP_FORMAT, MEMORY,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
}

GzipPacker::~GzipPacker()
{
    deflateEnd(&m_state->stream);
}

std::string_view GzipPacker::pack(std::string_view text, bool last)
{
    z_stream& stream = m_state->stream;
    std::string& ready = m_state->ready;
    ready.resize(std::max<size_t>(ready.size(), deflateBound(&stream, text.size())));
    size_t used = 0;
    stream.next_in = bytesOf(text.data());
    stream.avail_in = partOf(text.size());
    do {
        if (used == ready.size()) {
            ready.resize(2 * used);
        }
        stream.next_out = bytesOf(ready.data() + used);
        stream.avail_out = partOf(ready.size() - used);
        deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH);
        used = ready.size() - stream.avail_out;
    } while (stream.avail_out == 0);
    return std::string_view(ready).substr(0, used);
}

} // namespace kit
