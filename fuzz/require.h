#ifndef ZM_REQUIRE_H
#define ZM_REQUIRE_H

#include <string_view>

// What has to hold for any input: where it doesn't, the fuzzer stops with the input that it found.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

// Whether a configuration file is worth reading: references can ask for exponential results, and
// brackets for many sections, whose numbers may hold blanks and bytes that are dropped.
inline bool modestfile(std::string_view text) {
  int references = 0, brackets = 0, digits = 0;
  for (const char c : text) {
    references += c == '$';
    brackets += c == '[';
    digits = c >= '0' && c <= '9' ? digits + 1 : c > 32 && c <= 126 ? 0 : digits;
    if (digits > 2) return false;
  }
  return text.size() <= 1024 && references <= 24 && brackets <= 12;
}

#endif
