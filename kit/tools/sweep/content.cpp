// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/content.h"

#include <set>
#include <sstream>

#include "kit/base/files/readFile.h"
#include "kit/base/hash.h"
#include "kit/formats/placer/reader.h"

namespace kit::sweep {

namespace {

/// Goes on with a part whose end must be told: "a" and "bc" are not "ab" and "c".
void addPart(Hash& hash, const std::string& text)
{
    hash.add(std::to_string(text.size()) + ":");
    hash.add(text);
}

/// The cells of a cell list, each once, by name.
std::set<std::string> cellsIn(const std::string& list)
{
    std::istringstream words(list);
    std::string word;
    words >> word; // their number
    std::set<std::string> names;
    while (words >> word) {
        names.insert(word);
    }
    return names;
}

} // namespace

Content contentOf(const std::string& base, const std::string& cellPath)
{
    Hash hash;
    const std::string cells = readFile(base + ".cells");
    addPart(hash, cells);
    for (const char* extension : {".place", ".pins", ".netlist"}) {
        addPart(hash, readFile(base + extension));
    }
    for (const std::string& name : cellsIn(cells)) {
        addPart(hash, name);
        std::string path = cellPath;
        path.append("/").append(name).append(".color");
        addPart(hash, readFile(path));
    }
    placer::Design design;
    Findings findings; // of form; the run will tell them
    placer::readPlacement(base + ".place", design, findings);
    return {hash.text(), static_cast<int64_t>(design.components.size())};
}

} // namespace kit::sweep
