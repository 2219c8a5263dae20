// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/base/fault.h"
#include "kit/base/process/childProcess.h"
#include "kit/tools/sweep/collect.h"
#include "kit/tools/sweep/plan.h"
#include "kit/tools/sweep/plot.h"
#include "kit/tools/sweep/run.h"

namespace kit::sweep {

namespace {

constexpr const char* FOOTER = R"(Example:
  vireloce-kit sweep plan study.json -o out/study
  vireloce-kit sweep run out/study --jobs 4
  vireloce-kit sweep collect out/study -o table.csv

By GNU parallel:  parallel vireloce-kit sweep run out/study --shard {}/8 ::: {1..8}
By Slurm, in an array of 1-8:  vireloce-kit sweep run out/study --shard $SLURM_ARRAY_TASK_ID/8)";

/// What the file system says is for the user.
template <typename Work>
int guarded(const Work& work)
{
    try {
        return work();
    } catch (const std::filesystem::filesystem_error& error) {
        throw Fault(error.path1().string() + ": " + error.code().message());
    }
}

void addPlan(const Command& parent)
{
    const Command command = parent.subcommand("plan", "Make the list of runs of a study");
    const auto options = std::make_shared<PlanOptions>();
    command.add("STUDY", options->study, "JSON file: designs and what to run on them").required();
    command.add("-o,--output", options->dir, "folder of the study's runs").required();
    command.add("--shard-minutes", options->shardMinutes, "say how many shards take so long each")
        .within(0.001, 1e6);
    command.flag("--force", options->force, "replace the list of runs; results stay");
    command.does([options] {
        return guarded([&] {
            plan(*options, std::cout);
            return 0;
        });
    });
}

void addRun(const Command& parent)
{
    struct Words {
        SweepOptions options;
        std::string shard = "1/1";
        int64_t memoryMb = 0;
    };
    constexpr int64_t MOST_MEMORY = 1'000'000'000; // MB
    constexpr int32_t MOST_JOBS = 4096;
    const Command command = parent.subcommand("run", "Make the runs, each in a process of its own");
    const auto words = std::make_shared<Words>();
    SweepOptions& options = words->options;
    command.add("DIR", options.dir, "folder of the study's runs").required();
    command.add("--shard", words->shard, "part I of N parts of about equal time, I/N with I from 1");
    command.add("--jobs", options.jobs, "runs at a time (default: 1)").between(1, MOST_JOBS);
    command.flag("--resume", options.resume, "go on: leave out runs that have a result");
    command.flag("--retry", options.retry, "go on, and make runs that failed again");
    command.flag(
        "--wait", options.wait,
        "wait for runs in the hands of other processes, and make those of processes that are no more");
    command.add("--timeout", options.setting.timeout, "longest time of a run, seconds").within(0.001, 1e9);
    command.add("--memory", words->memoryMb, "largest memory of a run, MB").between(1, MOST_MEMORY);
    command.flag("--keep-placements", options.setting.keepPlacements,
                 "keep what place writes, in DIR/placements/ID");
    command.flag("--quiet", options.quiet, "no progress");
    command.footer("Exit status: 0 all runs have a placement; 1 some failed, or are in the hands of another "
                   "process; 2 bad usage or input.");
    command.does([words] {
        words->options.shard = parseShard(words->shard);
        words->options.resume = words->options.resume || words->options.retry;
        words->options.setting.memoryKib = words->memoryMb * 1024;
        words->options.setting.program = process::ownPath();
        return guarded([&] { return run(words->options); });
    });
}

void addCollect(const Command& parent)
{
    const Command command = parent.subcommand("collect", "Put all results into one table");
    const auto options = std::make_shared<CollectOptions>();
    command.add("DIR", options->dir, "folder of the study's runs").required();
    command.add("-o,--output", options->csv, "table as comma-separated values (default: printed)");
    command.add("--jsonl", options->jsonl, "table as a JSON object per line");
    command.add("--sqlite", options->sqlite, "table `runs` of an SQLite database");
    command.flag("--no-times", options->noTimes,
                 "leave out times, memory, hosts and messages: equal studies give equal tables");
    command.flag("--force", options->force, "replace files that are there");
    command.footer("Exit status: 0 all runs have a placement; 1 some failed or are missing; 2 bad usage or "
                   "input.");
    command.does([options] { return guarded([&] { return collect(*options, std::cout); }); });
}

void addPlot(const Command& parent)
{
    const Command command = parent.subcommand("plot", "Draw the results");
    const auto options = std::make_shared<PlotOptions>();
    command.add("DIR", options->dir, "folder of the study's runs").required();
    command.add("-o,--output", options->out, "folder of the pictures (SVG)").required();
    command.flag("--force", options->force, "replace pictures that are there");
    command.footer("Writes tradeoff-DESIGN.svg, wirelength against stitches, for each design, and time.svg, "
                   "time against size.");
    command.does([options] { return guarded([&] { return plot(*options); }); });
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("sweep", "Many runs: designs by options, on many machines");
    command.needsSubcommand();
    command.footer(FOOTER);
    addPlan(command);
    addRun(command);
    addCollect(command);
    addPlot(command);
}

} // namespace kit::sweep
