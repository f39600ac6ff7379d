#include "zmconfigcheck-text.h"

#include <algorithm>

#include "ZmConfigPlaces.h"

namespace {

constexpr std::string_view kBold = "\33[1m", kRed = "\33[1;31m", kMagenta = "\33[1;35m",
                           kCyan = "\33[1;36m", kGreen = "\33[1;32m", kPlain = "\33[0m";

// What a terminal might take for an order is shown as "?".
char shown(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 32 && c != '\t') || byte == 127 ? '?' : c;
}

}  // namespace

std::string FindingText::text(const ZmConfigCheck::Finding& finding) const {
  const bool error = finding.severity == ZmConfigCheck::Severity::kError;
  std::string text = head(finding.place, error ? "error" : "warning", error ? kRed : kMagenta);
  text += finding.text + " [" + std::string(finding.rule->name) + "]\n" + excerpt(finding.place);
  long line = finding.place.line;
  for (const auto& note : finding.notes) {
    text += head(note.place, "note", kCyan) + note.text + "\n";
    if (note.place.line != line) text += excerpt(note.place);
    line = note.place.line;
  }
  return text;
}

std::string FindingText::head(const ZmConfigCheck::Place& place, std::string_view kind,
                              std::string_view paint) const {
  const std::string where = std::string(file_) + ":" + std::to_string(place.line) + ":" +
                            std::to_string(place.column) + ":";
  return painted(where, kBold) + " " + painted(std::string(kind) + ":", paint) + " ";
}

// The line, or what is around the place in a long one, and a mark below it, where bytes that go on
// with a letter have no place of their own. Letters stay whole at both ends, as half of one is no
// UTF-8, and a tab is a tab in both lines, however wide the terminal makes it.
std::string FindingText::excerpt(const ZmConfigCheck::Place& place) const {
  constexpr std::size_t kWidth = 160, kBefore = 60, kNumber = 5;
  constexpr int kMore = 3;  // bytes of a letter behind its first one
  const std::string_view line = check_.line(place);
  const std::size_t at = static_cast<std::size_t>(place.column) - 1;
  std::size_t from = line.size() > kWidth && at > kBefore ? at - kBefore : 0;
  for (int i = 0; i < kMore && from > 0 && zm_goes_on(line[from]); ++i) --from;
  std::size_t to = std::min(line.size(), from + kWidth);
  for (int i = 0; i < kMore && to < line.size() && zm_goes_on(line[to]); ++i) ++to;
  std::string text;
  std::string below;
  if (from > 0) text = "...", below = "   ";
  for (std::size_t i = from; i < to; ++i) {
    text += shown(line[i]);
    if (i < at && !zm_goes_on(line[i])) below += line[i] == '\t' ? '\t' : ' ';
  }
  std::string mark = "^";
  for (std::size_t i = at + 1; i < std::min(to, at + place.length); ++i)
    if (!zm_goes_on(line[i])) mark += '~';
  if (to < line.size()) text += "...";
  const std::string number = std::to_string(place.line);
  const std::size_t width = std::max(kNumber, number.size());
  return std::string(width - number.size(), ' ') + number + " | " + text + "\n" +
         std::string(width, ' ') + " | " + below + painted(mark, kGreen) + "\n";
}

std::string FindingText::painted(std::string_view text, std::string_view paint) const {
  if (!color_) return std::string(text);
  return std::string(paint) + std::string(text) + std::string(kPlain);
}
