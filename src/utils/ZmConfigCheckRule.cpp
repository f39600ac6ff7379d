#include "ZmConfigCheckRule.h"

// Cut, since a name may be as long as the file and be in thousands of findings.
std::string zm_shown(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::string shown = "\"";
  for (const char c : text.substr(0, kLongest)) shown += c < 32 || c > 126 ? '?' : c;
  return shown + (text.size() > kLongest ? "...\"" : "\"");
}
