// SPDX-License-Identifier: BSD-3-Clause
// The readers of LEF and DEF files alone, on files of the caller's: bench_readers A.lef D.def
// [--benchmark_...]
#include <benchmark/benchmark.h>

#include <iostream>

#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/lef.h"

namespace {
using kit::Findings;
using kit::lefdef::Source;

void readLefFile(benchmark::State& state, const Source& source)
{
    for (auto _ : state) {
        kit::lefdef::Lef lef;
        Findings findings;
        readLef(source, "metal1", 0, lef, findings);
        benchmark::DoNotOptimize(lef.macros.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(source.text().size()));
}

void readDefFile(benchmark::State& state, const Source& source)
{
    for (auto _ : state) {
        Findings findings;
        const kit::lefdef::Def def = readDef(source, findings);
        benchmark::DoNotOptimize(def.components.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(source.text().size()));
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc != 3) {
        std::cerr << "usage: bench_readers A.lef D.def [--benchmark_...]\n";
        return 2;
    }
    const Source lef(argv[1]);
    const Source def(argv[2]);
    benchmark::RegisterBenchmark("readLef", readLefFile, std::cref(lef));
    benchmark::RegisterBenchmark("readDef", readDefFile, std::cref(def));
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
