// Ranges and host patterns: texts that ask for few values, and arbitrary values.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "ZmRange.h"
#include "ZmText.h"
#include "ZmTextNumber.h"
#include "require.h"

namespace {

std::vector<int> held(const ZmRange& range) {
  std::vector<int> values(static_cast<std::size_t>(range.length()));
  int i = 0;
  for (int& value : values) value = range.get(i++);
  return values;
}

// A few digits can ask for gigabytes.
bool modest(std::string_view text) {
  ZmTextCursor in(text);
  while (!in.eof())
    if (zm_digits(in).count > 3)
      return false;
    else
      in.take();
  return text.size() <= 256;
}

// Pieces have at most `size` values and join to the whole range.
void checkchunks(ZmRange range, int size, const std::vector<int>& all) {
  const bool wide = all.size() == 2 && std::int64_t{all[1]} - all[0] > std::int64_t{1} << 31;
  if (wide && size > 1) return;  // their distance is no 32-bit step
  ZmStringList pieces;
  range.chunk(size, pieces);
  std::vector<int> joined;
  for (int i = 0; i < pieces.length(); ++i) {
    const ZmRange piece(*pieces.get(i));
    require(piece.length() >= 1 && piece.length() <= size);
    for (const int value : held(piece)) joined.push_back(value);
  }
  require(joined == all);
}

void check(ZmRange range) {
  std::vector<int> all = held(range);
  std::sort(all.begin(), all.end());
  range.binary();
  ZmRange sorted(range);
  sorted.sort();
  require(held(sorted) == all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  const ZmString text = range.value();
  require(held(range) == all && range.has(text));
  if (!all.empty()) require(ZmRange::isrange(text));
  ZmRange again(text);
  again.sort();
  require(held(again) == all);
  for (const int size : {1, 2, 3, 7}) checkchunks(range, size, all);
}

// Every order gives the same names.
void checkpattern(const ZmString& pattern) {
  std::vector<std::string> first;
  for (int order = 0; order <= 5; ++order) {
    ZmStringList list;
    ZmRange::patternsplit(order, pattern, list);
    std::vector<std::string> names(static_cast<std::size_t>(list.length()));
    int i = 0;
    for (std::string& name : names) name = zm_view(*list.get(i++));
    std::sort(names.begin(), names.end());
    if (order == 0) first = names;
    require(names == first);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (modest(bytes)) {
    const ZmString text = zm_string(bytes);
    check(ZmRange(text));
    checkpattern(text);
    int start = 0, end = 0, step = 0;
    ZmRange::patternsplit(text, start, end, step);
  }
  std::uint32_t base = 0;
  ZmRange scattered, close;
  for (std::size_t i = 0; i + sizeof base <= std::min<std::size_t>(size, 256); i += sizeof base) {
    std::memcpy(&base, data + i, sizeof base);
    scattered.add(static_cast<int>(base));
  }
  for (const char c : bytes.substr(0, 64))
    close.add(static_cast<int>(base + static_cast<unsigned char>(c)));
  check(scattered);
  check(close);
  return 0;
}
