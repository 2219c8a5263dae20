// SPDX-License-Identifier: BSD-3-Clause
// Files that gzip or xz have made smaller.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace kit {

/// So much a compressed file may hold in any case, bytes; one of N bytes may hold UNPACKED_PER_BYTE * N. A
/// file with more in it is none of text, but made to fill the memory.
inline constexpr size_t LEAST_UNPACKED = size_t{64} << 20U;
inline constexpr size_t UNPACKED_PER_BYTE = 250;

/// Reads a whole text file. One that gzip or xz has compressed is unpacked, whatever its name.
///
/// Errors: as of InputFile; throws Fault for compressed data that are damaged, are cut off or hold too much.
std::string readUnpacked(const std::string& path);

/// Whether a file of this name is to be compressed by gzip: it ends with ".gz".
bool isPackedName(std::string_view path);

/// Compresses a stream as gzip does. Equal texts give equal bytes.
class GzipPacker {
public:
    GzipPacker();
    ~GzipPacker();
    GzipPacker(const GzipPacker&) = delete;
    GzipPacker& operator=(const GzipPacker&) = delete;

    /// The compressed bytes that are ready after more text; all that are left with the last.
    ///
    /// @return a view that is good until the next call
    std::string_view pack(std::string_view text, bool last);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace kit
