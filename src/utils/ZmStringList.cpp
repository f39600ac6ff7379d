#include "ZmStringList.h"

#include <algorithm>
#include <bit>

namespace {

constexpr int kComparisons = 1 << 24;  // that sorting may always take: 4096 texts in any order

int compared(const void* a, const void* b) {
  return zm_string_sort_func(static_cast<const ZmString*>(a), static_cast<const ZmString*>(b));
}

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

void ZmStringList::sort() {
  // An order made to defeat the quicksort, or many equal texts, would take quadratic time. Equal
  // texts read the same (undefined ones as empty ones), so in a long list another sort may take
  // over where it goes wrong.
  if (length() < 2) return;
  const int usual = 4 * static_cast<int>(std::bit_width(static_cast<unsigned>(length()))) + 16;
  const int levels = std::max(usual, kComparisons / length());
  zm_quicksort(_array().data(), length(), compared, levels, [](void** items, int count) {
    const auto less = [](const void* a, const void* b) { return compared(a, b) < 0; };
    std::make_heap(items, items + count, less);
    std::sort_heap(items, items + count, less);
  });
}
