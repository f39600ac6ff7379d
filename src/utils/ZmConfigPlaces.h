// Where tokens stand in the text of a macro configuration file as it is. Internal.
#ifndef ZM_CONFIG_PLACES_H
#define ZM_CONFIG_PLACES_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// A byte of UTF-8 that is not the first one of its letter.
inline bool zm_goes_on(char c) { return (static_cast<unsigned char>(c) & 0xc0U) == 0x80; }

// A place in the source: lines and columns count from 1, columns in bytes.
struct ZmConfigPosition {
  long line = 1;
  long column = 1;
  std::size_t offset = 0;
};

// Every question but line() costs the logarithm of the lines or of the runs of dropped bytes.
class ZmConfigPlaces {
 public:
  // Borrows the source. Lines end with "\n", "\r" or both.
  explicit ZmConfigPlaces(std::string_view source);

  // Of a token: an offset in the cleaned text.
  ZmConfigPosition at(std::size_t cleaned) const;
  ZmConfigPosition source(std::size_t offset) const;
  // How many bytes of the source a piece of the cleaned text takes, those dropped inside included.
  std::size_t length(std::size_t cleaned, std::size_t length) const;
  // The column of a byte of the source, counted in code points of UTF-8.
  long letter(std::size_t offset) const;
  std::size_t size() const { return source_.size(); }
  long lines() const { return static_cast<long>(lines_.size()); }
  // The line without its end.
  std::string_view line(long number) const;
  // The first dropped byte of the line; nothing, as npos, when it has none.
  std::size_t dropped(long number) const;
  // The offset of a source byte in the cleaned text.
  std::size_t cleaned(std::size_t offset) const;

 private:
  // Bytes that are dropped one behind the other. Line ends are kept, so they are all of one line.
  struct Run {
    std::uint32_t start;
    std::uint32_t end;
    std::uint32_t dropped;  // bytes up to the end, those of the runs before included,
    std::uint32_t inner;    // and those of them that go on with a letter
  };
  std::size_t offset(std::size_t cleaned) const;
  std::size_t inner(std::size_t offset) const;
  std::size_t end(std::size_t line) const {
    return line + 1 < lines_.size() ? lines_[line + 1] : source_.size();
  }

  std::string_view source_;
  std::vector<std::uint32_t> lines_;  // where they start
  std::vector<Run> runs_;
};

#endif
