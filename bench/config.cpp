// The reader and what stands under it; the argument is the size that the label names.
#include <benchmark/benchmark.h>

#include <string>

#include "ZmConfigFile.h"
#include "ZmRange.h"
#include "ZmStringHash.h"

namespace {

ZmString text(const std::string& s) { return {s.data(), static_cast<int>(s.size())}; }

std::string section(int number) {
  std::string lines = "[worker" + std::to_string(number) + "]\n";
  for (int i = 0; i < 10; ++i) {
    lines +=
        "option" + std::to_string(i) + " = /srv/farm/value" + std::to_string(number * i) + '\n';
  }
  return lines;
}

void parse(benchmark::State& state, const std::string& source) {
  const ZmString file = text(source);
  for (auto _ : state) {
    ZmConfigFile reader;
    reader.parse(file);
    benchmark::DoNotOptimize(&reader);
  }
  state.SetBytesProcessed(state.iterations() * file.length());
  state.SetComplexityN(state.range(0));
}

void BM_ParseSections(benchmark::State& state) {
  std::string source;
  for (int i = 0; i < state.range(0); ++i) source += section(i);
  parse(state, source);
}
BENCHMARK(BM_ParseSections)->RangeMultiplier(8)->Range(8, 32768)->Complexity(benchmark::oN);

void BM_ParsePattern(benchmark::State& state) {
  parse(state, "[base]\nroot = /srv\nlabel = \"a b\"\nlog = $base.root\n[node[1-" +
                   std::to_string(state.range(0)) + "]] : base\nowner = $_\nthreads = 8\n");
}
BENCHMARK(BM_ParsePattern)->RangeMultiplier(8)->Range(8, 32768)->Complexity(benchmark::oN);

void BM_ExpandChain(benchmark::State& state) {
  std::string source = "[a]\n";
  for (int i = 0; i < state.range(0); ++i)
    source += "o" + std::to_string(i) + " = $a.o" + std::to_string(i + 1) + '\n';
  parse(state, source + "o" + std::to_string(state.range(0)) + " = end\n");
}
BENCHMARK(BM_ExpandChain)->RangeMultiplier(8)->Range(8, 32768)->Complexity(benchmark::oN);

void BM_HostPattern(benchmark::State& state) {
  const ZmString pattern = ZmString("node[00001-") + static_cast<int>(state.range(0)) + "].farm";
  for (auto _ : state) {
    ZmStringList names;
    ZmRange::patternsplit(0, pattern, names);
    benchmark::DoNotOptimize(&names);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_HostPattern)->Range(8, 32768);

void BM_HashSetAndGet(benchmark::State& state) {
  ZmStringList keys;
  for (int i = 0; i < state.range(0); ++i) keys.push(new ZmString(ZmString("node") + i));
  for (auto _ : state) {
    ZmStringHash hash;
    for (int i = 0; i < keys.length(); ++i) hash.set(new ZmString("value"), *keys.get(i));
    for (int i = 0; i < keys.length(); ++i) benchmark::DoNotOptimize(hash.get(*keys.get(i)));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_HashSetAndGet)->Range(8, 32768);

void BM_SortNames(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    ZmStringList names;
    for (int i = 0; i < state.range(0); ++i)
      names.push(new ZmString(ZmString("node") +
                              static_cast<int>(static_cast<unsigned>(i) * 2654435761U >> 8)));
    state.ResumeTiming();
    names.sort();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SortNames)->Range(8, 32768);

void BM_AppendBytes(benchmark::State& state) {
  for (auto _ : state) {
    ZmString s;
    for (int i = 0; i < state.range(0); ++i) s += 'x';
    benchmark::DoNotOptimize(s.value());
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_AppendBytes)->Range(8, 32768);

}  // namespace
