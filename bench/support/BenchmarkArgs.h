#pragma once

#include "support/GeneratedDesigns.h"

#include <benchmark/benchmark.h>

namespace kvr::netlistdb::bench {

/// Shape as a benchmark argument, after the size.
inline Shape shapeArgument(const benchmark::State &state)
{
    return state.range(1) == 0 ? Shape::Flat : Shape::Hierarchical;
}

inline std::size_t sizeArgument(const benchmark::State &state)
{
    return static_cast<std::size_t>(state.range(0));
}

/// The three sizes, each in both shapes.
inline void sizesAndShapes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgNames({"leaves", "hierarchical"})->ArgsProduct({{10000, 100000, 1000000}, {0, 1}});
    benchmark->Unit(benchmark::kMillisecond);
}

/// The three sizes, flat.
inline void sizesFlat(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgNames({"leaves", "hierarchical"})->ArgsProduct({{10000, 100000, 1000000}, {0}});
    benchmark->Unit(benchmark::kMillisecond);
}

/// Reports the time per leaf instance, in nanoseconds.
inline void reportPerLeaf(benchmark::State &state, double seconds)
{
    state.counters["ns_per_leaf"] = seconds * 1e9 / static_cast<double>(state.range(0));
}

} // namespace kvr::netlistdb::bench
