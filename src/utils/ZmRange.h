#ifndef ZM_RANGE_H
#define ZM_RANGE_H

#include <cstdint>

#include "ZmBase.h"
#include "ZmString.h"
#include "ZmStringList.h"

/// An ordered list of 32-bit integers with a compact text form, such as "1-10", "1-100x5" or
/// "3,7,20-22"; and the expansion of host patterns such as "node[001-004]".
///
/// A range text is a list of items separated by ",":
///
/// | item | values |
/// |---|---|
/// | N | N |
/// | N-M | every integer from N to M, downwards when N is greater than M |
/// | N-MxS | N, N+S, N+2S, ... (downwards N-S, ...) up to M, which counts only when it is met |
/// | N-MXS | the rest: every integer from N to M whose distance from N is no multiple of S |
///
/// A number is an optional "-" and decimal digits, taken modulo 2^32 as a signed number. The sign
/// of S is ignored and an S of 0 counts as 1. Spaces, tabs and newlines may stand before a number,
/// "-", "x", "X" or ",", but not between a sign and its digits. Reading stops silently at the first
/// thing that does not fit; the items before it count.
///
/// Values keep the order in which they were added, and duplicates stay, except where an operation
/// says that it *strips* the range: it sorts ascending and keeps one of each value. A range that
/// would need more than 2,147,483,647 values fails as an allocation failure does (std::bad_alloc),
/// with the values left as they were. One thread at a time.
class ZM_EXPORT ZmRange : public ZmBase {
 public:
  ZmRange() = default;                       ///< Empty, padding 0.
  ZmRange(const ZmString& text);             ///< parse(text).
  ZmRange(const ZmRange& other);             ///< A deep copy.
  ZmRange& operator=(const ZmRange& other);  ///< A deep copy.
  ~ZmRange() override;                       ///< Slot 0.

  virtual int type() const;  ///< Slot 1. The type code, 89.

  /// @name Values
  /// @{
  void parse(const ZmString& text);  ///< clear(), then add(text).
  /// Appends the values of a range text, in one allocation. The digits of its first number, leading
  /// zeros counted and the sign not, become the padding; without a number the padding stays.
  void add(const ZmString& text);
  void add(int value);                   ///< Appends one value. Copies the others: meant for few.
  void clear();                          ///< Forgets all values; the padding stays.
  int length() const { return count_; }  ///< Number of values.
  /// The value at position i (from 0); 0 outside 0..length()-1.
  int get(int i) const { return i >= 0 && i < count_ ? values_[i] : 0; }
  int padding() const { return padding_; }  ///< Least number of digits of an expanded value.
  unsigned char has(int value) const;       ///< Whether the value is held. Linear.
  /// Whether every value of the range text is held; 1 when it has none.
  unsigned char has(const ZmString& text) const;
  /// @}

  /// @name Order
  /// @{
  void sort();     ///< Ascending; duplicates stay.
  void reverse();  ///< Last value first.
  /// Reorders for bisection: the first and the last value, then again and again the value in the
  /// middle between two neighbouring positions taken before, so that the first values always cover
  /// the whole span evenly: 1 to 9 become 1 9 5 3 7 2 4 6 8. Goes by position, not by value. Leaves
  /// fewer than 4 values as they are.
  void binary();
  /// @}

  /// @name Texts
  /// @{

  /// A short range text of the values; empty when there are none. Strips the range. From the lowest
  /// value on, three or more at one distance become a run, "1-9x2"; only its first value is padded:
  /// "001-10,15".
  ZmString value();
  /// Appends to `out` the texts of consecutive pieces of at most `size` values, unpadded. Strips
  /// the range. Pieces don't reach beyond a run, and a value outside every run is one by itself,
  /// but for a range of two values, which may be one piece, "1-5x4". Nothing when `size` is below 1
  /// or the range is empty.
  void chunk(int size, ZmStringList& out);
  /// chunk() with length() / parts as the size, rounded up; duplicates count for the length.
  /// Nothing when `parts` is below 1.
  void partition(int parts, ZmStringList& out);
  /// @}

  /// @name Patterns
  /// @{

  /// Whether the text could be a range text: only digits, "x", "X", "-", ",", spaces, tabs and
  /// newlines, not all of it blank, and no "x", "X" or "," as the very first character.
  static unsigned char isrange(const ZmString& text);
  /// Appends to `out` the names that a host pattern stands for: "node[001-003].farm,gpu[1,3]" gives
  /// node001.farm, node002.farm, node003.farm, gpu1 and gpu3.
  ///
  /// Only the first bracket of an item is expanded, with its values padded; an item without one is
  /// a name as it stands, and a bracket without a value gives no name. White space outside brackets
  /// is dropped. The order of each range's values: 0 (or any other number) as written, 1 sorted,
  /// then binary(); 2 sorted; 3 sorted, then reversed; 4 binary(); 5 reversed.
  ///
  /// A pattern that is a range text itself (isrange()) gives its values, unpadded: "2024-01-15" is
  /// no name but the range 2024-01, the numbers from 2024 down to 1. White space ends the range in
  /// a bracket: of "a[1, 3]b" only the 1 is read, the 3 is dropped as if it were the bracket's end,
  /// and the name is "a1]b". Write no blanks inside brackets.
  static void patternsplit(int order, const ZmString& pattern, ZmStringList& out);
  /// Reads one item N-MxS (or N-MXS). Outputs from the first part that is missing on are left
  /// alone; the step is given as written, whatever its sign.
  static void patternsplit(const ZmString& text, int& start, int& end, int& step);
  /// @}

 private:
  int* _begin() const { return values_; }
  int* _end() const { return values_ + count_; }
  int* _extend(std::int64_t n);
  void _strip();
  void _arrange(int order);
  static void _expand(int order, const ZmString& item, ZmStringList& out);
  std::int64_t _gap(int i) const;
  int _run(int from) const;

  int* values_ = nullptr;  // null until the first value, and after clear()
  int count_ = 0;
  int padding_ = 0;
};

#endif
