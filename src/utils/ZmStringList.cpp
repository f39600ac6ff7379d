#include "ZmStringList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace {

// A text to be sorted. Its first bytes, up to its zero byte, are at hand, since most comparisons
// need no more and texts lie scattered in memory.
struct Sorted {
  explicit Sorted(ZmString* sorted) : text(sorted) {
    const char* at = text->value();
    for (std::uint64_t& bytes : first)
      for (int i = 0; i < 8; ++i) {
        bytes = bytes << 8 | static_cast<unsigned char>(*at);
        if (*at) ++at;
      }
  }
  // As zm_string_sort_func.
  static int compare(const Sorted& a, const Sorted& b) {
    if (a.first != b.first) return a.first < b.first ? -1 : 1;
    return zm_string_sort_func(a.text, b.text);
  }
  bool operator<(const Sorted& other) const { return compare(*this, other) < 0; }

  std::array<std::uint64_t, 2> first{};
  ZmString* text;
};

}  // namespace

int zm_string_sort_func(const ZmString* a, const ZmString* b) {
  const int order = a->cmp(*b);
  if (order != 0) return order < 0 ? -1 : 1;
  // Texts that differ only behind a zero byte are not less and not equal: greater either way.
  return *a != *b;
}

ZmString ZmStringList::join(const ZmString& separator) const {
  ZmString joined;
  for (int i = 0; i < length(); ++i) {
    if (i > 0) joined += separator;
    joined += *get(i);
  }
  return joined;
}

int ZmStringList::find(const ZmString& s) const {
  for (int i = 0; i < length(); ++i)
    if (*get(i) == s) return i;
  return -1;
}

// An order made to defeat the quicksort, or many equal texts, would take quadratic time. Equal
// texts read the same (undefined ones as empty ones), so in a long list another sort may take over
// where the quicksort goes wrong.
void ZmStringList::sort() {
  constexpr int kComparisons = 1 << 24;  // that may always be made: 4096 texts in any order
  if (length() < 2) return;
  std::vector<Sorted> texts;
  texts.reserve(static_cast<std::size_t>(length()));
  for (int i = 0; i < length(); ++i) texts.emplace_back(get(i));
  const int usual = 4 * static_cast<int>(std::bit_width(static_cast<unsigned>(length()))) + 16;
  zm_quicksort(texts.data(), length(), Sorted::compare, std::max(usual, kComparisons / length()),
               [](Sorted* rest, int count) {
                 std::make_heap(rest, rest + count);
                 std::sort_heap(rest, rest + count);
               });
  release();
  for (const Sorted& text : texts) push(text.text);
}
