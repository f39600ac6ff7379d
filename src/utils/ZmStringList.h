#ifndef ZM_STRING_LIST_H
#define ZM_STRING_LIST_H

/// @file
/// ZmStringList, and a function for sorting.

#include <algorithm>
#include <bit>

#include "ZmList.h"
#include "ZmString.h"

/// A list of texts.
class ZmStringList : public ZmList<ZmString> {
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
int zm_string_sort_func(const ZmString* a, const ZmString* b);

// Internal: ZmStringList::sort() for any items, each with the text that text(item) points to.
//
// An order made to defeat the quicksort, or many equal texts, would take quadratic time. Equal
// texts read the same (undefined ones as empty ones), so in a long list another sort may take over
// where it goes wrong.
template <class Item, class Text>
void zm_sort_texts(Item* items, int length, Text text) {
  constexpr int kComparisons = 1 << 24;  // that may always be made: 4096 texts in any order
  const auto compare = [text](const Item& a, const Item& b) {
    return zm_string_sort_func(text(a), text(b));
  };
  if (length < 2) return;
  const int usual = 4 * static_cast<int>(std::bit_width(static_cast<unsigned>(length))) + 16;
  zm_quicksort(items, length, compare, std::max(usual, kComparisons / length),
               [compare](Item* rest, int count) {
                 const auto less = [compare](const Item& a, const Item& b) {
                   return compare(a, b) < 0;
                 };
                 std::make_heap(rest, rest + count, less);
                 std::sort_heap(rest, rest + count, less);
               });
}

#endif
