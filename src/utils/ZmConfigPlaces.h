// Where tokens stand in the text of a macro configuration file as it is. Internal.
#ifndef ZM_CONFIG_PLACES_H
#define ZM_CONFIG_PLACES_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// A place in the source: lines and columns count from 1, columns in bytes.
struct ZmConfigPosition {
  long line = 1;
  long column = 1;
  std::size_t offset = 0;
};

class ZmConfigPlaces {
 public:
  // Borrows the source. Lines end with "\n", "\r" or both.
  explicit ZmConfigPlaces(std::string_view source);

  // Of a token: an offset in the cleaned text. Asked in ascending order, all answers together take
  // one pass; in another one, each takes a pass over its line when that holds dropped bytes.
  ZmConfigPosition at(std::size_t cleaned) const;
  ZmConfigPosition source(std::size_t offset) const;
  std::size_t size() const { return source_.size(); }
  long lines() const { return static_cast<long>(lines_.size()); }
  // The line without its end.
  std::string_view line(long number) const;
  // The first dropped byte of the line; nothing, as npos, when it has none.
  std::size_t dropped(long number) const;
  // The offset of a source byte in the cleaned text.
  std::size_t cleaned(std::size_t offset) const;

 private:
  struct Line {
    std::uint32_t source;   // where it starts
    std::uint32_t cleaned;  // and in the cleaned text
  };
  bool whole(std::size_t index) const;
  const Line& next(std::size_t index) const {
    return index + 1 < lines_.size() ? lines_[index + 1] : end_;
  }

  std::string_view source_;
  std::vector<Line> lines_;
  Line end_{};
  mutable Line here_{};  // the last place that was walked to
};

#endif
