// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/table.h"

#include "kit/base/text/escape.h"
#include "kit/tools/sweep/result.h"

namespace kit::sweep {

namespace {

std::vector<Column> columnsFor(bool times)
{
    std::vector<Column> columns{
        {"id", Kind::TEXT},       {"design", Kind::TEXT},         {"components", Kind::INTEGER},
        {"algo", Kind::INTEGER},  {"weight", Kind::REAL},         {"move_range", Kind::INTEGER},
        {"mindp", Kind::INTEGER}, {"site_width", Kind::INTEGER},  {"rescue", Kind::INTEGER},
        {"status", Kind::TEXT},   {"exit_status", Kind::INTEGER}, {"signal", Kind::INTEGER}};
    for (const Metric& metric : METRICS) {
        const std::string name = metric.name;
        columns.push_back({name, name == "hash"                ? Kind::TEXT
                                 : name == "mean_displacement" ? Kind::REAL
                                                               : Kind::INTEGER});
    }
    if (times) {
        for (const Column& column :
             {Column{"seconds", Kind::REAL}, Column{"cpu_seconds", Kind::REAL},
              Column{"peak_kib", Kind::INTEGER}, Column{"host", Kind::TEXT}, Column{"message", Kind::TEXT}}) {
            columns.push_back(column);
        }
    }
    return columns;
}

/// All that is known of a run by the names of the columns.
Json valuesOf(const Task& task, const std::optional<Result>& result)
{
    Json values = toJson(task.options);
    values["rescue"] = task.options.rescue ? 1 : 0;
    values["id"] = task.id;
    values["design"] = task.design;
    values["components"] = task.components;
    values["status"] = result.has_value() ? nameOf(result->status) : "missing";
    if (result.has_value()) {
        values["exit_status"] = result->ending.status;
        values["signal"] = result->ending.signal;
        values["seconds"] = result->ending.seconds;
        values["cpu_seconds"] = result->ending.cpuSeconds;
        values["peak_kib"] = result->ending.peakKib;
        values["host"] = result->host;
        values["message"] = result->message;
        if (result->metrics.isObject()) {
            values.update(result->metrics);
        }
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

} // namespace kit::sweep
