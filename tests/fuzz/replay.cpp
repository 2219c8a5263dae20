// SPDX-License-Identifier: BSD-3-Clause
// Gives every file of some folders to a fuzz target: what was found once stays found, with any compiler.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "check.h"

namespace {

size_t replay(const std::string& folder)
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) {
        std::cout << path << std::endl; // before the run, which may end the program
        std::ifstream file(path, std::ios::binary);
        const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return paths.size();
}

} // namespace

int main(int argc, char** argv)
{
    try {
        size_t count = 0;
        for (int i = 1; i < argc; ++i) {
            count += replay(argv[i]);
        }
        std::cout << count << " inputs\n";
        return count > 0 ? 0 : 1;
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << '\n';
        return 1;
    }
}
