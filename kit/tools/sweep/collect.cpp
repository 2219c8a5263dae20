// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/collect.h"

#include <iostream>

#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/escape.h"
#include "kit/tools/sweep/result.h"
#include "kit/tools/sweep/sqlite.h"
#include "kit/tools/sweep/table.h"

namespace kit::sweep {

int collect(const CollectOptions& options, std::ostream& out)
{
    std::vector<std::string> paths{options.csv, options.jsonl, options.sqlite};
    std::erase(paths, "");
    checkOutputs(paths, filesOf(options.dir), options.force);
    const Table table = tableOf(options.dir, !options.noTimes);
    OutputSet set;
    if (!options.csv.empty()) {
        set.add(options.csv, [&table](OutputFile& file) { file << toCsv(table); });
    }
    if (!options.jsonl.empty()) {
        set.add(options.jsonl, [&table](OutputFile& file) { file << toJsonLines(table); });
    }
    if (!options.sqlite.empty()) {
        set.add(options.sqlite, [&table](OutputFile& file) { writeSqlite(table, file); });
    }
    set.commit();
    if (paths.empty()) {
        out << toCsv(table);
        out.flush();
    }
    for (const std::string& trouble : table.troubles) {
        std::cerr << printable(trouble) << '\n';
    }
    return table.troubles.empty() ? 0 : 1;
}

} // namespace kit::sweep
