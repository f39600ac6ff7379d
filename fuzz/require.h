#ifndef ZM_REQUIRE_H
#define ZM_REQUIRE_H

// What has to hold for any input: where it doesn't, the fuzzer stops with the input that it found.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

#endif
