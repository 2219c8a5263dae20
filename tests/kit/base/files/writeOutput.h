// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/base/files/outputFile.h"

namespace test {

/// Writes a file as the program does.
///
/// @param write  takes a kit::OutputFile&
template <typename Write>
void writeOutput(const std::string& path, const Write& write)
{
    kit::OutputFile file(path);
    write(file);
    file.commit();
}

} // namespace test
