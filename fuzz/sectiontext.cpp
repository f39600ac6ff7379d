// Section text and templates: a byte 1 cuts the input into a section's text and a template.
#include <cstdint>
#include <string_view>

#include "ZmConfig.h"
#include "ZmText.h"
#include "require.h"

namespace {

bool has(std::string_view text, std::string_view any) {
  return text.find_first_of(any) != std::string_view::npos;
}

// Whether section text can express the value: nothing in it is escaped. Bytes above 127 end a value
// on every machine, whatever sign its plain char has.
bool writable(const ZmString& value) {
  for (const char c : zm_view(value))
    if (static_cast<signed char>(c) <= 0) return false;
  return !has(zm_view(value), "\"'{}#\r");
}

// A template knows no label with a period, and counts braces wherever they stand.
bool mentionable(const ZmString& label, const ZmString& value) {
  return !has(zm_view(label), ".{}") && !has(zm_view(value), "{}");
}

// The lines of a template whose braces are closed don't run into what is put behind them.
bool closed(std::string_view text) {
  int depth = 0;
  for (const char c : text) depth += c == '{' ? 1 : c == '}' && depth > 0 ? -1 : 0;
  return depth == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t cut = input.find('\1');
  const std::string_view model = cut == input.npos ? "" : input.substr(cut + 1);
  ZmConfig config;
  require(config.parse(zm_string(input.substr(0, cut))) && config.valid() && config.eof());

  const ZmStringList labels = config.optionlist();
  // Labels that differ behind a zero byte only are equal, but not found alike.
  const bool zero = input.find('\0') != input.npos;
  bool all_writable = !zero;
  bool all_mentionable = !zero && closed(model);
  for (int i = 0; i < labels.length(); ++i) {
    const ZmString& value = config.option(*labels.get(i));
    all_writable = all_writable && writable(value);
    all_mentionable = all_mentionable && mentionable(*labels.get(i), value);
  }

  ZmConfig again;
  const ZmString text = config.convert();
  again.parse(text);
  if (all_writable) require(again.convert() == text && again.matchsubset(config));

  // A template that was filled mentions every option: nothing is left to be put behind it.
  constexpr std::string_view block = "# these are not included in the template";
  const ZmString filled = config.usetemplate(zm_string(model));
  const ZmString refilled = config.usetemplate(filled);
  if (all_mentionable && model.find(block) == model.npos && zm_view(text).find(block) == input.npos)
    require(zm_view(refilled).find(block) == input.npos);
  return 0;
}
