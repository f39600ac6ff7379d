#ifndef ZM_STRING_LIST_H
#define ZM_STRING_LIST_H

/// @file
/// ZmStringList, and a function for sorting.

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "ZmList.h"
#include "ZmString.h"

/// A list of texts.
class ZM_EXPORT ZmStringList : public ZmList<ZmString> {
 public:
  ZmStringList() = default;                                      ///< Empty.
  ZmStringList(const ZmStringList& other) = default;             ///< A deep copy.
  ZmStringList& operator=(const ZmStringList& other) = default;  ///< A deep copy.

  int type() const override { return 55; }                     ///< The type code.
  ZmString typeXML() const override { return "string_list"; }  ///< The XML element name.

  /// The elements with `separator` between them; undefined for an empty list.
  ZmString join(const ZmString& separator) const;
  /// The position of the first element equal to s, or -1. An empty s finds an empty element.
  int find(const ZmString& s) const;
  /// Sorts ascending with zm_string_sort_func. Equal texts may come in another order than
  /// sort(zm_string_sort_func) would give them; no list takes quadratic time.
  void sort();
  /// Sorts in place by quicksort, not stably. Quadratic on many equal elements.
  void sort(int (*compare)(const ZmString*, const ZmString*)) { ZmList<ZmString>::sort(compare); }
};

/// Byte order: 1 when *a > *b, -1 when *a < *b, else 0. Empty and undefined texts come first.
ZM_EXPORT int zm_string_sort_func(const ZmString* a, const ZmString* b);

// Internal: an item to be sorted by its text. The text's first bytes, up to its zero byte, are at
// hand, since most comparisons need no more and texts lie scattered in memory.
template <class Item>
struct ZmSorted {
  ZmSorted(const ZmString& by, Item sorted) : text(&by), item(sorted) {
    const char* at = by.value();
    for (std::uint64_t& bytes : first)
      for (int i = 0; i < 8; ++i) {
        bytes = bytes << 8 | static_cast<unsigned char>(*at);
        if (*at) ++at;
      }
  }
  // As zm_string_sort_func.
  static int compare(const ZmSorted& a, const ZmSorted& b) {
    if (a.first != b.first) return a.first < b.first ? -1 : 1;
    return zm_string_sort_func(a.text, b.text);
  }

  std::array<std::uint64_t, 2> first{};
  const ZmString* text;
  Item item;
};

// Internal: ZmStringList::sort() for any items, each with the text that text(item) points to.
//
// An order made to defeat the quicksort, or many equal texts, would take quadratic time. Equal
// texts read the same (undefined ones as empty ones), so in a long list another sort may take over
// where it goes wrong.
template <class Item, class Text>
void zm_sort_texts(Item* items, int length, Text text) {
  constexpr int kComparisons = 1 << 24;  // that may always be made: 4096 texts in any order
  if (length < 2) return;
  std::vector<ZmSorted<Item>> sorted;
  sorted.reserve(static_cast<std::size_t>(length));
  for (int i = 0; i < length; ++i) sorted.emplace_back(*text(items[i]), items[i]);
  const int usual = 4 * static_cast<int>(std::bit_width(static_cast<unsigned>(length))) + 16;
  zm_quicksort(sorted.data(), length, ZmSorted<Item>::compare,
               std::max(usual, kComparisons / length), [](ZmSorted<Item>* rest, int count) {
                 const auto less = [](const auto& a, const auto& b) {
                   return ZmSorted<Item>::compare(a, b) < 0;
                 };
                 std::make_heap(rest, rest + count, less);
                 std::sort_heap(rest, rest + count, less);
               });
  for (int i = 0; i < length; ++i) items[i] = sorted[static_cast<std::size_t>(i)].item;
}

#endif
