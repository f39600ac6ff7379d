// Reads a borrowed text from left to right, never past its end. Internal; under every tokenizer.
#ifndef ZM_TEXT_CURSOR_H
#define ZM_TEXT_CURSOR_H

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

// A set of bytes as 256 flags, made at compile time.
struct ZmCharSet {
  consteval ZmCharSet(std::string_view chars) {
    for (const char c : chars) in[static_cast<unsigned char>(c)] = true;
  }
  // End of text (-1) is in no set.
  constexpr bool has(int c) const { return c >= 0 && in[static_cast<std::size_t>(c)]; }
  constexpr bool has(char c) const { return in[static_cast<unsigned char>(c)]; }

  std::array<bool, 256> in{};
};

// White space wherever this and not another set of blanks is meant.
inline constexpr ZmCharSet kZmSpace(" \t\r\n");

inline std::string_view zm_trimmed(std::string_view text) {
  while (!text.empty() && kZmSpace.has(text.front())) text.remove_prefix(1);
  while (!text.empty() && kZmSpace.has(text.back())) text.remove_suffix(1);
  return text;
}

class ZmTextCursor {
 public:
  explicit ZmTextCursor(std::string_view text)
      : at_(text.data()), end_(text.data() + text.size()) {}

  bool eof() const { return at_ == end_; }
  // The byte n places ahead (0 to 255), or -1 at and after the end.
  int peek(std::size_t n = 0) const { return n < left() ? static_cast<unsigned char>(at_[n]) : -1; }
  bool is(char c) const { return at_ != end_ && *at_ == c; }
  std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }
  std::string_view rest() const { return {at_, left()}; }
  // Takes n bytes, or what is left.
  std::string_view take(std::size_t n = 1) {
    const std::string_view taken(at_, n < left() ? n : left());
    at_ += taken.size();
    return taken;
  }
  // Takes c when it is next.
  bool accept(char c) {
    if (!is(c)) return false;
    ++at_;
    return true;
  }
  std::string_view skip(const ZmCharSet& set) {
    const char* from = at_;
    const char* to = from;
    while (to != end_ && set.has(*to)) ++to;
    at_ = to;
    return between(from);
  }
  // What stands before the first byte of the set; may be empty.
  std::string_view until(const ZmCharSet& stop) {
    const char* from = at_;
    const char* to = from;
    while (to != end_ && !stop.has(*to)) ++to;
    at_ = to;
    return between(from);
  }

  // The same for a few stops that are far apart: one search each, in windows that keep the search
  // for a stop that is missing from running to the end again and again.
  std::string_view until_far(std::string_view stops) {
    constexpr std::size_t kWindow = 512;
    const char* from = at_;
    for (bool found = false; !found && at_ != end_;) {
      std::size_t clear = left() < kWindow ? left() : kWindow;
      for (const char stop : stops) {
        if (const void* at = std::memchr(at_, stop, clear)) {
          clear = static_cast<std::size_t>(static_cast<const char*>(at) - at_);
          found = true;
        }
      }
      at_ += clear;
    }
    return between(from);
  }

 private:
  std::string_view between(const char* from) const {
    return {from, static_cast<std::size_t>(at_ - from)};
  }

  const char* at_;
  const char* end_;
};

#endif
