// The one reader of digits and the one writer of numbers. Internal.
#ifndef ZM_TEXT_NUMBER_H
#define ZM_TEXT_NUMBER_H

#include <locale.h>

#include <charconv>
#include <cstdint>
#include <string_view>

#include "ZmTextCursor.h"

inline constexpr ZmCharSet kZmDigits("0123456789");

// A run of decimal digits: how many there were and their value modulo 2^32.
struct ZmDigits {
  std::uint32_t value = 0;
  int count = 0;
};

inline ZmDigits zm_digits(ZmTextCursor& in) {
  ZmDigits digits;
  for (; kZmDigits.has(in.peek()); in.take()) {
    digits.value = digits.value * 10 + static_cast<std::uint32_t>(in.peek() - '0');
    ++digits.count;
  }
  return digits;
}

// A program may have set a locale with another decimal point; texts keep theirs.
inline locale_t zm_plain_locale() {
  static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
  return plain;
}

// The printf forms "%d", "%lld" and "%f" ("%g" in the general format) of a number in the "C"
// locale, held in the object itself.
class ZmNumberText {
 public:
  explicit ZmNumberText(int value) : end_(std::to_chars(text_, text_ + kSize, value).ptr) {}
  explicit ZmNumberText(long long value) : end_(std::to_chars(text_, text_ + kSize, value).ptr) {}
  explicit ZmNumberText(float value, std::chars_format format = std::chars_format::fixed)
      : end_(std::to_chars(text_, text_ + kSize, static_cast<double>(value), format, 6).ptr) {}
  std::string_view view() const { return {text_, static_cast<std::size_t>(end_ - text_)}; }

 private:
  static constexpr int kSize = 64;  // the longest: a sign, 39 digits, the point, 6 digits
  char text_[kSize];
  char* end_;
};

#endif
