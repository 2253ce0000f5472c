// How long until the first hit of a search by name, and until the last?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include "DataBase.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <regex>

namespace kvr::netlistdb::bench {
namespace {

// Each is found in designs of every size of its shape.
constexpr const char *PLAIN_FLAT = "alu_1";
constexpr const char *PLAIN_HIERARCHICAL = "alu_0";
constexpr const char *REGEX = "alu_[0-9_]+/(data|stage)_.*q";

/// One imported design and the flat list of its full names, shared by all benchmarks of one shape and size in a row.
struct Searched {
    Shape shape = Shape::Flat;
    std::size_t size = 0;
    std::unique_ptr<DesignDatabase> database;
    std::vector<std::string> names;
    std::string listFile;
};

Searched &searched(benchmark::State &state)
{
    static Searched current;
    const Shape shape = shapeArgument(state);
    if (current.shape != shape || current.size != sizeArgument(state)) {
        current = Searched();
        current.shape = shape;
        current.size = sizeArgument(state);
        current.database = std::make_unique<DesignDatabase>(false);
        import(*current.database, shape, restoreDesign(shape, current.size));
        Verific::Libset::Reset();
        current.names = fullNames(*current.database, sourceOf(shape));
        current.listFile = std::filesystem::path(savedFile(shape, current.size)).replace_extension("names").string();
        writeLines(current.names, current.listFile);
    }
    return current;
}

/// A walk over instances, nets and buses; ports, which no net matcher reports, are left out.
VDBSearchParam everything(const Searched &on)
{
    VDBSearchParam param;
    param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS;
    param.startItem = on.database->getRoot(sourceOf(on.shape));
    return param;
}

VDBSearchParam parameters(const Searched &on, const std::string &pattern, bool ignoreCase)
{
    VDBSearchParam param = everything(on);
    param.filterByName = true;
    param.pattern = pattern;
    param.ignoreCase = ignoreCase;
    return param;
}

std::string plainPattern(const Searched &on)
{
    return on.shape == Shape::Flat ? PLAIN_FLAT : PLAIN_HIERARCHICAL;
}

std::string plainPatternInOtherCase(const Searched &on)
{
    std::string pattern = plainPattern(on);
    std::transform(pattern.begin(), pattern.end(), pattern.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return pattern;
}

/// Number of nets and buses found.
std::size_t searchAll(const Searched &on, const VDBSearchParam &param)
{
    SearchResults results(on.database->search(param));
    std::size_t hits = 0;
    while (results.next()) {
        hits += results.getCurrent()->getItemType() != ITEM_INSTANCE ? 1 : 0;
    }
    return hits;
}

/// The same with an expression that is compiled once.
std::size_t searchAllRegex(const Searched &on, const std::regex &expression)
{
    BFSItemIterator items(on.database.get(), everything(on));
    std::size_t hits = 0;
    while (VDBHelper::matchNetRegex(&items, expression)) {
        hits += items.getCurrent()->getItemType() != ITEM_INSTANCE ? 1 : 0;
        items.next();
    }
    return hits;
}

/// Lines that grep counts, and the time of the whole process.
std::pair<std::size_t, double> grep(const std::string &options, const std::string &pattern, const std::string &file)
{
    Stopwatch watch;
    std::FILE *const pipe = popen(fmt::format("LC_ALL=C grep {} -e '{}' '{}'", options, pattern, file).c_str(), "r");
    if (pipe == nullptr) {
        return {0, 0};
    }
    std::array<char, 64> text{};
    const char *const line = std::fgets(text.data(), static_cast<int>(text.size()), pipe);
    const std::size_t count = line == nullptr ? 0 : std::stoul(line);
    pclose(pipe);
    return {count, watch.lap()};
}

void compareWithGrep(benchmark::State &state, bool ignoreCase)
{
    const Searched &on = searched(state);
    const std::string pattern = ignoreCase ? plainPatternInOtherCase(on) : plainPattern(on);
    const VDBSearchParam param = parameters(on, pattern, ignoreCase);
    const char *const options = ignoreCase ? "-cFi" : "-cF";
    const std::size_t expected = grep(options, pattern, on.listFile).first;
    if (const std::size_t hits = searchAll(on, param); hits != expected || hits == 0) {
        state.SkipWithError(fmt::format("{} hits instead of {}", hits, expected).c_str());
    }
    std::vector<double> searchTimes;
    std::vector<double> grepTimes;
    for (auto _ : state) {
        grepTimes.push_back(grep(options, pattern, on.listFile).second);
        Stopwatch watch;
        benchmark::DoNotOptimize(searchAll(on, param));
        searchTimes.push_back(watch.lap());
        state.SetIterationTime(searchTimes.back());
    }
    state.counters["hits"] = static_cast<double>(expected);
    state.counters["names"] = static_cast<double>(on.names.size());
    state.counters["ns_per_name"] = median(searchTimes) * 1e9 / static_cast<double>(on.names.size());
    state.counters["grep_ms"] = median(grepTimes) * 1e3;
    state.counters["ratio"] = median(searchTimes) / median(grepTimes);
}

void plainBesideGrep(benchmark::State &state)
{
    compareWithGrep(state, false);
}
BENCHMARK(plainBesideGrep)->Apply(sizesAndShapes)->UseManualTime();

/// The walk of callers who leave the item types as they are: past every port too.
void plainPastPorts(benchmark::State &state)
{
    const Searched &on = searched(state);
    VDBSearchParam param = parameters(on, plainPattern(on), false);
    const std::size_t expected = searchAll(on, param);
    param.itemTypes = VDBSearchParam().itemTypes;
    if (const std::size_t hits = searchAll(on, param); hits != expected || hits == 0) {
        state.SkipWithError(fmt::format("{} hits instead of {}", hits, expected).c_str());
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(searchAll(on, param));
    }
}
BENCHMARK(plainPastPorts)->Apply(sizesAndShapes);

void ignoreCaseBesideGrep(benchmark::State &state)
{
    compareWithGrep(state, true);
}
BENCHMARK(ignoreCaseBesideGrep)->Apply(sizesAndShapes)->UseManualTime();

/// What the walk itself costs, whatever is then done with the names.
void everyNet(benchmark::State &state)
{
    const Searched &on = searched(state);
    const VDBSearchParam param = everything(on);
    for (auto _ : state) {
        if (const std::size_t hits = searchAll(on, param); hits != on.names.size()) {
            state.SkipWithError(fmt::format("{} nets instead of {}", hits, on.names.size()).c_str());
        }
    }
}
BENCHMARK(everyNet)->Apply(sizesAndShapes);

void regexBesideBareStrings(benchmark::State &state)
{
    const Searched &on = searched(state);
    const std::regex expression(REGEX);
    const auto searchBare = [&] {
        std::smatch match;
        return std::count_if(on.names.begin(), on.names.end(), [&](const std::string &name) {
            return std::regex_search(name, match, expression, std::regex_constants::match_any);
        });
    };
    const auto expected = static_cast<std::size_t>(searchBare());
    if (const std::size_t hits = searchAllRegex(on, expression); hits != expected || hits == 0) {
        state.SkipWithError(fmt::format("{} hits instead of {}", hits, expected).c_str());
    }
    std::vector<double> searchTimes;
    std::vector<double> bareTimes;
    for (auto _ : state) {
        ProcessorStopwatch watch;
        benchmark::DoNotOptimize(searchBare());
        bareTimes.push_back(watch.lap());
        benchmark::DoNotOptimize(searchAllRegex(on, expression));
        searchTimes.push_back(watch.lap());
        state.SetIterationTime(searchTimes.back());
    }
    state.counters["hits"] = static_cast<double>(expected);
    state.counters["bare_ms"] = median(bareTimes) * 1e3;
    state.counters["ratio"] = median(searchTimes) / median(bareTimes);
}
BENCHMARK(regexBesideBareStrings)->Apply(sizesAndShapes)->UseManualTime();

/// The full name of the first net or bus that a search finds; empty when there is none.
std::string firstFound(const Searched &on, const VDBSearchParam &param)
{
    SearchResults results(on.database->search(param));
    do {
        results.next();
    } while (results.status() == RESULT_MATCH && results.getCurrent()->getItemType() == ITEM_INSTANCE);
    if (results.status() != RESULT_MATCH) {
        return {};
    }
    const std::string path = static_cast<IVDBInstance *>(results.getContext())->getPath();
    return (path.empty() ? "" : path + "/") + results.getCurrent()->getName();
}

/// From the call of search until the full name of the first net or bus is there. @p expression finds the same names.
void findFirst(benchmark::State &state, const VDBSearchParam &param, const std::regex &expression)
{
    const Searched &on = searched(state);
    const auto expected = std::find_if(on.names.begin(), on.names.end(),
                                       [&](const std::string &name) { return std::regex_search(name, expression); });
    if (expected == on.names.end()) {
        state.SkipWithError("no hit");
    } else if (const std::string found = firstFound(on, param); found != *expected) {
        state.SkipWithError(fmt::format("{} instead of {}", found, *expected).c_str());
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(firstFound(on, param));
    }
}

void firstHit(benchmark::State &state)
{
    const Searched &on = searched(state);
    findFirst(state, parameters(on, plainPattern(on), false), std::regex(plainPattern(on)));
}
BENCHMARK(firstHit)->Apply(sizesAndShapes);

void firstHitIgnoreCase(benchmark::State &state)
{
    const Searched &on = searched(state);
    findFirst(state, parameters(on, plainPatternInOtherCase(on), true), std::regex(plainPattern(on)));
}
BENCHMARK(firstHitIgnoreCase)->Apply(sizesAndShapes);

void firstHitRegex(benchmark::State &state)
{
    VDBSearchParam param = parameters(searched(state), REGEX, false);
    param.useRegex = true;
    findFirst(state, param, std::regex(REGEX));
}
BENCHMARK(firstHitRegex)->Apply(sizesAndShapes);

} // namespace
} // namespace kvr::netlistdb::bench
