// The checker: its sections are those of the reader, what it finds stands in the text and in its
// order, and every value has an origin and a history that leads to it.
#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

#include "ZmConfigCheck.h"
#include "ZmConfigFile.h"
#include "ZmText.h"
#include "require.h"

namespace {

void checkplace(const ZmConfigCheck& check, std::string_view text,
                const ZmConfigCheck::Place& place) {
  require(place.line >= 1 && place.column >= 1 && place.offset <= text.size());
  const auto before = static_cast<std::size_t>(place.column - 1);
  require(place.offset >= before && before <= check.line(place).size() + 2);
  require(text.substr(place.offset - before).starts_with(check.line(place)));
}

void checkfindings(const ZmConfigCheck& check, std::string_view text) {
  std::size_t offset = 0;
  for (const auto& finding : check.findings()) {
    checkplace(check, text, finding.place);
    for (const auto& note : finding.notes) checkplace(check, text, note.place);
    require(finding.place.offset >= offset);
    offset = finding.place.offset;
  }
}

void checksection(const ZmConfigCheck& check, std::string_view text, const ZmConfig& section) {
  checkplace(check, text, check.place(section));
  for (int i = 0; i < section.length(); ++i) {
    const auto origin = check.origin(section, i);
    checkplace(check, text, origin.label);
    checkplace(check, text, origin.value);
    if (i > 2) continue;  // each reads the text anew
    const auto history = check.history(zm_view(section.name()), zm_view(section.label(i)));
    require(history.consistent && history.value == zm_view(section.value(i)));
    require(!history.assignments.empty() && history.assignments.back().raw == origin.raw);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!modestfile(text)) return 0;
  std::cerr.setstate(std::ios::failbit);  // no warnings
  ZmConfigFile file;
  file.parse(zm_string(text));
  std::cerr.clear();
  const ZmConfigCheck check{std::string(text)};
  require(check.consistent());
  checkfindings(check, text);
  ZmStringList names;
  file.keys(names);
  require(names.length() == check.sections().length());
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig* section = check.sections().get(*names.get(i));
    require(section && section->convert() == file.config(*names.get(i))->convert());
    if (i < 4) checksection(check, text, *section);
  }
  require(!check.graph(0).empty());
  return 0;
}
