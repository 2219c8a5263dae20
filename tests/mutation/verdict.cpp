// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/verdict.h"

#include <algorithm>
#include <sys/wait.h>

#include <csignal>
#include <string_view>

namespace mutation {

namespace {

/// What a whole report holds, in this order.
constexpr std::string_view LABELS[] = {
    "Vireloce - Version 3.1",
    "\nSTAT | Parameters: ",
    "\nSTAT | cell type #              = ",
    "\nSTAT | LUTable item #           = ",
    "\nSTAT | net #                    = ",
    "\nSTAT | row #                    = ",
    "\nSTAT | segment #                = ",
    "\nSTAT | component #              = ",
    "\nSTAT | macro #                  = ",
    "\nSTAT | max solution # for cells = ",
    "\nSTAT | max site # on rows       = ",
    "\nSTAT | max componnet # on rows  = ",
    "\nSTAT | init HPWL                = ",
    "\nSTAT | stitch # lowerB          = ",
    "\n\nSTAT | LUT CPU time             = ",
    "\nSTAT | final HPWL               = ",
    "\nSTAT | HPWL increases           = ",
    "\nSTAT | final stitch   #         = ",
    "\nSTAT | final conflict #         = ",
    "\n\nSTAT | Virelocer CPU time       = ",
};

constexpr std::string_view SET_UP_DONE = "\n\nSTAT | LUT CPU time             = ";

/// A kind of line that ends a run: how it begins, and what it holds behind that.
struct ErrorKind {
    const char* name;
    std::string_view begin;
    std::string_view inside;
};

constexpr ErrorKind ERROR_KINDS[] = {
    {"unknown net member", "WARNING| invalid compID and pinID, pname = ", ""},
    {"file missing", "ERROR| cannot open file", ""},
    {"segment too large", "ERROR| the segment at (", "is too large to solve"},
    {"stretch too long", "ERROR| row ", "is too long for 32-bit coordinates"},
    {"site width", "ERROR| the site width is ", ""},
    {"component of unknown cell", "ERROR| component ", "is not in the library"},
    {"component without solutions", "ERROR| component ", "has no colour solution"},
    {"no room, greedy", "ERROR| cannot solve the placement through greedy algorithm", ""},
    {"no room", "ERROR| can NOT solve the placement through global moving", ""},
    {"library too large", "ERROR| the library is too large for a spacing table: ", ""},
    {"out of memory", "ERROR| out of memory", ""},
    {"placement file", "ERROR| ", ".place:"},
    {"pin file", "ERROR| ", ".pins:"},
    {"cell list", "ERROR| ", ".cells:"},
    {"colour file", "ERROR| ", ".color:"},
};

/// Kind of the line that ended a run, nullptr if it is none.
const char* kindOfError(std::string_view line)
{
    for (const ErrorKind& kind : ERROR_KINDS) {
        if (line.starts_with(kind.begin) && line.find(kind.inside, kind.begin.size()) != line.npos) {
            return kind.name;
        }
    }
    return nullptr;
}

bool isUsage(std::string_view report)
{
    return report.find("\nERROR| can NOT parse: ") != report.npos &&
           report.find("Vireloce Usage") != report.npos && report.ends_with("====\n\n");
}

bool isWhole(const std::string& report)
{
    size_t at = 0;
    for (const std::string_view label : LABELS) {
        at = report.find(label, at);
        if (at == std::string::npos) {
            return false;
        }
    }
    std::string last = report.substr(at);
    std::replace_if(
        last.begin(), last.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    while (last.find("00.") != std::string::npos) { // any number of them before the point
        last.erase(last.find("00."), 1);
    }
    return last == "\n\nSTAT | Virelocer CPU time       = 0.000 s\n\n";
}

/// Judges the report of a run that has ended by itself.
Verdict judgeReport(const std::string& report)
{
    if (report.empty() || report.back() != '\n') {
        return {Outcome::FAILURE, "the report does not end with a complete line"};
    }
    if (isWhole(report)) {
        return {Outcome::FINAL_REPORT, ""};
    }
    if (isUsage(report)) {
        return {Outcome::USAGE, ""};
    }
    const std::string_view lines(report.data(), report.size() - 1);
    const std::string_view last = lines.substr(lines.rfind('\n') + 1);
    const char* const kind = kindOfError(last);
    if (kind == nullptr) {
        return {Outcome::FAILURE, "the report is not whole, and its last line is no error: " +
                                      std::string(last.substr(0, 200))};
    }
    return {Outcome::ERROR_END, kind};
}

} // namespace

Verdict judge(const ChildEnd& end, const std::string& report, const std::string& errors)
{
    if (!errors.empty()) {
        return {Outcome::FAILURE, "something on standard error: " + errors.substr(0, 2000)};
    }
    if (end.peakKiB > MOST_MEMORY / 1024) {
        return {Outcome::FAILURE, "it took " + std::to_string(end.peakKiB / 1024) + " MiB of memory"};
    }
    if (WIFSIGNALED(end.status) && (WTERMSIG(end.status) == SIGPROF || WTERMSIG(end.status) == SIGALRM)) {
        if (report.find(SET_UP_DONE) != std::string::npos) {
            return {Outcome::TIME_OUT, ""};
        }
        return {Outcome::FAILURE, "it hung before the set-up was done"};
    }
    if (WIFSIGNALED(end.status)) {
        return {Outcome::FAILURE, "signal " + std::to_string(WTERMSIG(end.status))};
    }
    if (WEXITSTATUS(end.status) != 0) {
        return {Outcome::FAILURE, "exit status " + std::to_string(WEXITSTATUS(end.status))};
    }
    return judgeReport(report);
}

} // namespace mutation
