#include "ZmConfigPlaces.h"

#include <algorithm>

#include "ZmConfigScanner.h"

namespace {

bool kept(char c) { return ZmConfigScanner::kept(c); }

}  // namespace

// For each line where it starts, before and after bytes are dropped. A pair of CR and LF ends one
// line, as editors count.
ZmConfigPlaces::ZmConfigPlaces(std::string_view source) : source_(source), lines_(1) {
  for (const char c : source) {
    ++end_.source;
    end_.cleaned += kept(c);
    const bool pair = c == '\r' && source_.substr(end_.source, 1) == "\n";
    if (c == '\n' || (c == '\r' && !pair)) lines_.push_back(end_);
  }
}

// Whether no byte of the line is dropped.
bool ZmConfigPlaces::whole(std::size_t index) const {
  const Line& behind = next(index);
  return behind.source - lines_[index].source == behind.cleaned - lines_[index].cleaned;
}

// Only a line that lost bytes is walked. Places are mostly asked for in the order of the text, so
// the walk goes on from the last one: a line of megabytes is not walked for each of its findings.
ZmConfigPosition ZmConfigPlaces::at(std::size_t cleaned) const {
  // The first line begins at 0, so there is one before this.
  const auto after = std::ranges::upper_bound(lines_, cleaned, {}, &Line::cleaned);
  const auto index = static_cast<std::size_t>(after - lines_.begin() - 1);
  const Line& line = lines_[index];
  std::size_t offset = line.source + (cleaned - line.cleaned);
  if (!whole(index)) {
    if (here_.source < line.source || here_.cleaned > cleaned) here_ = line;
    while (here_.source < source_.size()) {
      const bool keeps = kept(source_[here_.source]);
      if (keeps && here_.cleaned == cleaned) break;
      here_.cleaned += keeps;
      ++here_.source;
    }
    offset = here_.source;
  }
  return {static_cast<long>(index) + 1, static_cast<long>(offset - line.source) + 1, offset};
}

ZmConfigPosition ZmConfigPlaces::source(std::size_t offset) const {
  const auto after = std::ranges::upper_bound(lines_, offset, {}, &Line::source);
  const auto index = static_cast<std::size_t>(after - lines_.begin() - 1);
  return {static_cast<long>(index) + 1, static_cast<long>(offset - lines_[index].source) + 1,
          offset};
}

std::string_view ZmConfigPlaces::line(long number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  const std::size_t from = lines_[index].source;
  std::string_view text = source_.substr(from, next(index).source - from);
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

std::size_t ZmConfigPlaces::dropped(long number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  if (whole(index)) return std::string_view::npos;
  const std::string_view text = line(number);
  const auto* at = std::ranges::find_if_not(text, kept);
  return at == text.end() ? std::string_view::npos
                          : lines_[index].source + static_cast<std::size_t>(at - text.begin());
}

// A byte that was dropped has the place of the next one that was not.
std::size_t ZmConfigPlaces::cleaned(std::size_t offset) const {
  const ZmConfigPosition place = source(offset);
  const Line& line = lines_[static_cast<std::size_t>(place.line) - 1];
  const std::string_view before = source_.substr(line.source, offset - line.source);
  return line.cleaned + static_cast<std::size_t>(std::ranges::count_if(before, kept));
}
