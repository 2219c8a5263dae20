// SPDX-License-Identifier: BSD-3-Clause
#include "kit/sweep/collect.h"

#include <filesystem>
#include <iostream>

#include "kit/fault.h"
#include "kit/outputFile.h"
#include "kit/sweep/sqlite.h"
#include "kit/sweep/table.h"

namespace kit::sweep {

namespace {

void write(const std::string& path, const std::string& text)
{
    OutputFile file(path);
    file << text;
    file.commit();
}

} // namespace

int collect(const CollectOptions& options, std::ostream& out)
{
    for (const std::string& path : {options.csv, options.jsonl, options.sqlite}) {
        if (!options.force && !path.empty() && std::filesystem::exists(path)) {
            throw Fault(path + " exists: choose another name, or --force to replace it");
        }
    }
    const Table table = tableOf(options.dir, !options.noTimes);
    if (!options.csv.empty()) {
        write(options.csv, toCsv(table));
    }
    if (!options.jsonl.empty()) {
        write(options.jsonl, toJsonLines(table));
    }
    if (!options.sqlite.empty()) {
        writeSqlite(table, options.sqlite);
    }
    if (options.csv.empty() && options.jsonl.empty() && options.sqlite.empty()) {
        out << toCsv(table);
        out.flush();
    }
    for (const std::string& trouble : table.troubles) {
        std::cerr << trouble << '\n';
    }
    return table.troubles.empty() ? 0 : 1;
}

} // namespace kit::sweep
