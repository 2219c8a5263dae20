// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/collect.h"

#include <iostream>

#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/escape.h"
#include "kit/tools/sweep/result.h"

namespace kit::sweep {

namespace {

std::vector<Column> columnsFor(bool times)
{
    std::vector<Column> columns{{"id", "TEXT"}, {"design", "TEXT"}, {"components", "INTEGER"}};
    for (const NumberOption& option : NUMBER_OPTIONS) {
        columns.push_back({option.name, option.whole ? "INTEGER" : "REAL"});
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        columns.push_back({option.name, "INTEGER"});
    }
    columns.insert(columns.end(), {{"status", "TEXT"}, {"exit_status", "INTEGER"}, {"signal", "INTEGER"}});
    for (const Metric& metric : METRICS) {
        columns.push_back({metric.name, metric.type});
    }
    if (times) {
        columns.insert(columns.end(), {{"seconds", "REAL"},
                                       {"cpu_seconds", "REAL"},
                                       {"peak_kib", "INTEGER"},
                                       {"host", "TEXT"},
                                       {"message", "TEXT"}});
    }
    return columns;
}

/// All that is known of a run by the names of the columns.
Json valuesOf(const Task& task, const std::optional<Result>& result)
{
    Json values{{"id", task.id}, {"design", task.design}, {"status", "missing"}};
    if (result.has_value()) {
        values.update(toJson(task, *result));
    }
    values.update(toJson(task.options));
    for (const FlagOption& option : FLAG_OPTIONS) {
        values[option.name] = task.options.*option.member ? 1 : 0;
    }
    values["components"] = task.components;
    if (result.has_value() && result->metrics.isObject()) {
        values.update(result->metrics);
    }
    return values;
}

std::string optionsText(const Task& task)
{
    std::string text;
    for (const std::string& word : argumentsOf(task.options)) {
        text += " " + word;
    }
    return text;
}

std::string troubleOf(const Task& task, const std::optional<Result>& result)
{
    const std::string run = task.id + " (" + task.design + optionsText(task) + ")";
    return result.has_value() ? run + " " + std::string(nameOf(result->status)) + ": " + result->message
                              : run + " missing";
}

std::string csvText(const Json& value)
{
    if (value.isNull()) {
        return "";
    }
    return escapedForCsv(value.isString() ? value.asString() : value.dump());
}

/// As comma-separated values (RFC 4180, with line ends of one character), the names first.
std::string toCsv(const Table& table)
{
    std::string text;
    for (const Column& column : table.columns) {
        text += (text.empty() ? "" : ",") + column.name;
    }
    text += '\n';
    for (const auto& row : table.rows) {
        for (size_t i = 0; i < row.size(); ++i) {
            text += (i == 0 ? "" : ",") + csvText(row[i]);
        }
        text += '\n';
    }
    return text;
}

/// As a JSON object per line.
std::string toJsonLines(const Table& table)
{
    std::string text;
    for (const auto& row : table.rows) {
        Json object;
        for (size_t i = 0; i < row.size(); ++i) {
            object[table.columns[i].name] = row[i];
        }
        text += object.dump() + "\n";
    }
    return text;
}

} // namespace

Table tableOf(const std::string& dir, bool times)
{
    const Folder folder(dir);
    Table table{columnsFor(times), {}, {}};
    for (const Task& task : readTasks(dir)) {
        const std::optional<Result> result = readResult(folder, task.id);
        const Json values = valuesOf(task, result);
        std::vector<Json>& row = table.rows.emplace_back();
        for (const Column& column : table.columns) {
            row.push_back(values[column.name]);
        }
        if (!result.has_value() || !isDone(result->status)) {
            table.troubles.push_back(troubleOf(task, result));
        }
    }
    return table;
}

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
