// SPDX-License-Identifier: BSD-3-Clause
#include "kit/sweep/command.h"

#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/fault.h"
#include "kit/process/childProcess.h"
#include "kit/sweep/collect.h"
#include "kit/sweep/plan.h"
#include "kit/sweep/plot.h"
#include "kit/sweep/run.h"

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

void addPlan(CLI::App& sweep, int& exitStatus)
{
    CLI::App& command = *sweep.add_subcommand("plan", "Make the list of runs of a study");
    const auto options = std::make_shared<PlanOptions>();
    command.add_option("STUDY", options->study, "JSON file: designs and what to run on them")->required();
    command.add_option("-o,--output", options->dir, "folder of the study's runs")->required();
    command.add_option("--shard-minutes", options->shardMinutes, "say how many shards take so long each")
        ->check(CLI::Range(0.001, 1e6));
    command.add_flag("--force", options->force, "replace the list of runs; results stay");
    command.callback([options, &exitStatus] {
        exitStatus = guarded([&] {
            plan(*options, std::cout);
            return 0;
        });
    });
}

void addRun(CLI::App& sweep, int& exitStatus)
{
    struct Words {
        SweepOptions options;
        std::string shard = "1/1";
        int64_t memoryMb = 0;
    };
    constexpr int64_t MOST_MEMORY = 1'000'000'000; // MB
    constexpr int32_t MOST_JOBS = 4096;
    CLI::App& command = *sweep.add_subcommand("run", "Make the runs, each in a process of its own");
    const auto words = std::make_shared<Words>();
    SweepOptions& options = words->options;
    command.add_option("DIR", options.dir, "folder of the study's runs")->required();
    command.add_option("--shard", words->shard, "part I of N parts of about equal time, I/N with I from 1");
    command.add_option("--jobs", options.jobs, "runs at a time (default: 1)")
        ->check(CLI::Range(1, MOST_JOBS));
    command.add_flag("--resume", options.resume, "go on: leave out runs that have a result");
    command.add_flag("--retry", options.retry, "go on, and make runs that failed again");
    command.add_flag(
        "--wait", options.wait,
        "wait for runs in the hands of other processes, and make those of processes that are no more");
    command.add_option("--timeout", options.setting.timeout, "longest time of a run, seconds")
        ->check(CLI::Range(0.001, 1e9));
    command.add_option("--memory", words->memoryMb, "largest memory of a run, MB")
        ->check(CLI::Range(int64_t{1}, MOST_MEMORY));
    command.add_flag("--keep-placements", options.setting.keepPlacements,
                     "keep what place writes, in DIR/placements/ID");
    command.add_flag("--quiet", options.quiet, "no progress");
    command.footer("Exit status: 0 all runs have a placement; 1 some failed, or are in the hands of another "
                   "process; 2 bad usage or input.");
    command.callback([words, &exitStatus] {
        words->options.shard = parseShard(words->shard);
        words->options.resume = words->options.resume || words->options.retry;
        words->options.setting.memoryKib = words->memoryMb * 1024;
        words->options.setting.program = process::ownPath();
        exitStatus = guarded([&] { return run(words->options); });
    });
}

void addCollect(CLI::App& sweep, int& exitStatus)
{
    CLI::App& command = *sweep.add_subcommand("collect", "Put all results into one table");
    const auto options = std::make_shared<CollectOptions>();
    command.add_option("DIR", options->dir, "folder of the study's runs")->required();
    command.add_option("-o,--output", options->csv, "table as comma-separated values (default: printed)");
    command.add_option("--jsonl", options->jsonl, "table as a JSON object per line");
    command.add_option("--sqlite", options->sqlite, "table `runs` of an SQLite database");
    command.add_flag("--no-times", options->noTimes,
                     "leave out times, memory, hosts and messages: equal studies give equal tables");
    command.add_flag("--force", options->force, "replace files that are there");
    command.footer("Exit status: 0 all runs have a placement; 1 some failed or are missing; 2 bad usage or "
                   "input.");
    command.callback(
        [options, &exitStatus] { exitStatus = guarded([&] { return collect(*options, std::cout); }); });
}

void addPlot(CLI::App& sweep, int& exitStatus)
{
    CLI::App& command = *sweep.add_subcommand("plot", "Draw the results");
    const auto options = std::make_shared<PlotOptions>();
    command.add_option("DIR", options->dir, "folder of the study's runs")->required();
    command.add_option("-o,--output", options->out, "folder of the pictures (SVG)")->required();
    command.add_flag("--force", options->force, "replace pictures that are there");
    command.footer("Writes tradeoff-DESIGN.svg, wirelength against stitches, for each design, and time.svg, "
                   "time against size.");
    command.callback([options, &exitStatus] { exitStatus = guarded([&] { return plot(*options); }); });
}

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("sweep", "Many runs: designs by options, on many machines");
    command.require_subcommand(1);
    command.footer(FOOTER);
    addPlan(command, exitStatus);
    addRun(command, exitStatus);
    addCollect(command, exitStatus);
    addPlot(command, exitStatus);
}

} // namespace kit::sweep
