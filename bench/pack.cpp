// Packs beside others' work on the same data: msgpack writes and reads the same pairs, Expat alone
// reads the same XML. The argument is the number of options; bytes are those of the written form.
#include <benchmark/benchmark.h>
#include <expat.h>

#define MSGPACK_NO_BOOST
#include <msgpack.hpp>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ZmConfig.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs pairs(int64_t count) {
  Pairs all;
  for (int64_t i = 0; i < count; ++i)
    all.emplace_back("option_" + std::to_string(i), "value " + std::to_string(i * 7));
  return all;
}

void fill(ZmConfig& section, int64_t options) {
  for (const auto& [label, value] : pairs(options)) section.option(label.c_str(), value.c_str());
}

std::string contents(const ZmPack& pack) {
  return {pack.packContents(), static_cast<std::size_t>(pack.packSize())};
}

std::string packed(int64_t options, void (ZmPack::*pack)()) {
  ZmConfig section;
  fill(section, options);
  (section.*pack)();
  return contents(section);
}

void bytes(benchmark::State& state, std::size_t size) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

void BM_PackEncode(benchmark::State& state) {
  ZmConfig section;
  fill(section, state.range(0));
  for (auto _ : state) {
    section.pack();
    benchmark::DoNotOptimize(section.packContents());
  }
  bytes(state, static_cast<std::size_t>(section.packSize()));
}

// As the section does, from and to something that is ordered and has a lookup.
struct Section {
  std::vector<std::string> labels;
  std::unordered_map<std::string, std::string> options;
  MSGPACK_DEFINE(labels, options)
};

Section section(int64_t options) {
  Section made;
  for (const auto& [label, value] : pairs(options)) {
    made.labels.push_back(label);
    made.options.emplace(label, value);
  }
  return made;
}

template <class Data>
void encode(benchmark::State& state, const Data& data) {
  std::size_t size = 0;
  for (auto _ : state) {
    msgpack::sbuffer buffer;
    msgpack::pack(buffer, data);
    benchmark::DoNotOptimize(buffer.data());
    size = buffer.size();
  }
  bytes(state, size);
}

template <class Data>
void decode(benchmark::State& state, const Data& data) {
  msgpack::sbuffer buffer;
  msgpack::pack(buffer, data);
  for (auto _ : state) {
    Data read;
    msgpack::unpack(buffer.data(), buffer.size()).get().convert(read);
    benchmark::DoNotOptimize(&read);
  }
  bytes(state, buffer.size());
}

void BM_MsgpackEncodePairs(benchmark::State& state) { encode(state, pairs(state.range(0))); }
void BM_MsgpackEncodeSection(benchmark::State& state) { encode(state, section(state.range(0))); }
void BM_MsgpackDecodePairs(benchmark::State& state) { decode(state, pairs(state.range(0))); }
void BM_MsgpackDecodeMap(benchmark::State& state) {
  decode(state, section(state.range(0)).options);
}
void BM_MsgpackDecodeSection(benchmark::State& state) { decode(state, section(state.range(0))); }

void BM_PackDecode(benchmark::State& state) {
  const std::string record = packed(state.range(0), &ZmPack::pack);
  for (auto _ : state) {
    ZmConfig read;
    read.unpack(record.data(), static_cast<int>(record.size()));
    benchmark::DoNotOptimize(&read);
  }
  bytes(state, record.size());
}

void BM_XMLEncode(benchmark::State& state) {
  ZmConfig section;
  fill(section, state.range(0));
  for (auto _ : state) {
    section.packXML();
    benchmark::DoNotOptimize(section.packContents());
  }
  bytes(state, static_cast<std::size_t>(section.packSize()));
}

void BM_XMLDecode(benchmark::State& state) {
  const std::string text = packed(state.range(0), &ZmPack::packXML);
  for (auto _ : state) {
    ZmConfig read;
    read.unpackXML(text.data(), static_cast<int>(text.size()));
    benchmark::DoNotOptimize(&read);
  }
  bytes(state, text.size());
}

// Handlers that count, so that Expat has somebody to call.
void BM_Expat(benchmark::State& state) {
  const std::string text = packed(state.range(0), &ZmPack::packXML);
  long long seen = 0;
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &seen);
    XML_SetElementHandler(
        parser, [](void* count, const char*, const char**) { ++*static_cast<long long*>(count); },
        [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void* count, const char*, int length) {
      *static_cast<long long*>(count) += length;
    });
    XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
    XML_ParserFree(parser);
  }
  benchmark::DoNotOptimize(seen);
  bytes(state, text.size());
}

BENCHMARK(BM_PackEncode)->Arg(10000);
BENCHMARK(BM_MsgpackEncodePairs)->Arg(10000);
BENCHMARK(BM_MsgpackEncodeSection)->Arg(10000);
BENCHMARK(BM_PackDecode)->Arg(10000);
BENCHMARK(BM_MsgpackDecodePairs)->Arg(10000);
BENCHMARK(BM_MsgpackDecodeMap)->Arg(10000);
BENCHMARK(BM_MsgpackDecodeSection)->Arg(10000);
BENCHMARK(BM_XMLEncode)->Arg(10000);
BENCHMARK(BM_XMLDecode)->RangeMultiplier(10)->Range(1000, 100000);
BENCHMARK(BM_Expat)->RangeMultiplier(10)->Range(1000, 100000);

}  // namespace
