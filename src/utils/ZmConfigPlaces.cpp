#include "ZmConfigPlaces.h"

#include <algorithm>

#include "ZmConfigScanner.h"

// A pair of CR and LF ends one line, as editors count.
ZmConfigPlaces::ZmConfigPlaces(std::string_view source) : source_(source), lines_(1) {
  std::uint32_t at = 0, dropped = 0, inner = 0;
  for (const char c : source) {
    if (!ZmConfigScanner::kept(c)) {
      if (runs_.empty() || runs_.back().end != at) runs_.push_back({at, at, 0, 0});
      inner += zm_goes_on(c);
      runs_.back() = {runs_.back().start, at + 1, ++dropped, inner};
    }
    ++at;
    const bool pair = c == '\r' && source_.substr(at, 1) == "\n";
    if (c == '\n' || (c == '\r' && !pair)) lines_.push_back(at);
  }
}

// In the source. A run stands before the kept byte with which it shares its place.
std::size_t ZmConfigPlaces::offset(std::size_t cleaned) const {
  const auto place = [](const Run& run) { return run.end - run.dropped; };
  const auto after = std::ranges::upper_bound(runs_, cleaned, {}, place);
  return cleaned + (after == runs_.begin() ? 0 : (after - 1)->dropped);
}

ZmConfigPosition ZmConfigPlaces::at(std::size_t cleaned) const { return source(offset(cleaned)); }

ZmConfigPosition ZmConfigPlaces::source(std::size_t offset) const {
  // The first line begins at 0, so there is one before this.
  const auto after = std::ranges::upper_bound(lines_, offset);
  return {static_cast<long>(after - lines_.begin()), static_cast<long>(offset - *(after - 1)) + 1,
          offset};
}

std::size_t ZmConfigPlaces::length(std::size_t cleaned, std::size_t length) const {
  return length == 0 ? 0 : offset(cleaned + length - 1) + 1 - offset(cleaned);
}

long ZmConfigPlaces::letter(std::size_t offset) const {
  const long column = source(offset).column;
  const std::size_t start = offset - static_cast<std::size_t>(column - 1);
  return column - static_cast<long>(inner(offset) - inner(start));
}

// How many bytes before this one go on with a letter.
std::size_t ZmConfigPlaces::inner(std::size_t offset) const {
  const auto after = std::ranges::upper_bound(runs_, offset, {}, &Run::start);
  if (after == runs_.begin()) return 0;
  const Run& run = *(after - 1);
  if (run.end <= offset) return run.inner;
  const std::string_view behind = source_.substr(offset, run.end - offset);
  return run.inner - static_cast<std::size_t>(std::ranges::count_if(behind, zm_goes_on));
}

std::string_view ZmConfigPlaces::line(long number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  std::string_view text = source_.substr(lines_[index], end(index) - lines_[index]);
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

std::size_t ZmConfigPlaces::dropped(long number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  const auto run = std::ranges::lower_bound(runs_, lines_[index], {}, &Run::start);
  return run != runs_.end() && run->start < end(index) ? run->start : std::string_view::npos;
}

// A byte that was dropped has the place of the next one that was not.
std::size_t ZmConfigPlaces::cleaned(std::size_t offset) const {
  const auto after = std::ranges::upper_bound(runs_, offset, {}, &Run::start);
  if (after == runs_.begin()) return offset;
  const Run& run = *(after - 1);
  return std::max<std::size_t>(offset, run.end) - run.dropped;
}
