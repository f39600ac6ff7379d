#ifndef ZM_STRING_LIST_H
#define ZM_STRING_LIST_H

/// @file
/// ZmStringList, and a function for sorting.

#include "ZmList.h"
#include "ZmString.h"

/// A list of texts.
class ZM_EXPORT ZmStringList : public ZmList<ZmString> {
 public:
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

#endif
