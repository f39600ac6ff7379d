#include "zmconfigcheck-json.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "ZmText.h"
#include "ZmVersion.h"
#include "zmconfigcheck-options.h"

namespace {

// Members stand in the order in which they are set, so that a finding begins with its rule.
using Json = nlohmann::ordered_json;

bool is_error(ZmConfigCheck::Severity severity) {
  return severity == ZmConfigCheck::Severity::kError;
}

std::string_view name(ZmConfigCheck::Severity severity) {
  return is_error(severity) ? "error" : "warning";
}

// Where a place ends on its line. Values in braces run over several lines, and the line end may be
// the place itself, although it is no part of the line.
long end_column(const ZmConfigCheck& check, const ZmConfigCheck::Place& place) {
  const long line_end = static_cast<long>(check.line(place).size()) + 1;
  return std::max(place.column, std::min(line_end, place.column + static_cast<long>(place.length)));
}

Json placed(const ZmConfigCheck& check, const ZmConfigCheck::Place& place) {
  return {{"line", place.line}, {"column", place.column}, {"end_column", end_column(check, place)}};
}

Json finding_json(const ZmConfigCheck& check, const ZmConfigCheck::Finding& finding) {
  Json json{{"rule", finding.rule->name}, {"severity", name(finding.severity)}};
  json.update(placed(check, finding.place));
  json["text"] = finding.text;
  json["notes"] = Json::array();
  for (const auto& note : finding.notes) {
    Json one = placed(check, note.place);
    one["text"] = note.text;
    json["notes"].push_back(std::move(one));
  }
  json["sections"] = {{"first", finding.section}, {"count", finding.sections}};
  return json;
}

// Every option has every member, null where there is nothing to tell:
// docs/zmconfigcheck.schema.json requires them.
Json option_json(const ZmConfigCheck& check, const ZmConfig& section, int label) {
  const ZmConfigCheck::Origin origin = check.origin(section, label);
  Json json{{"name", zm_view(section.label(label))},
            {"value", zm_view(section.value(label))},
            {"raw", origin.raw},
            {"line", origin.label.line},
            {"column", origin.label.column},
            {"inherited_from", nullptr}};
  if (origin.parent) json["inherited_from"] = zm_view(origin.parent->name());
  return json;
}

Json section_json(const ZmConfigCheck& check, const ZmString& key) {
  const ZmConfig& section = *check.sections().get(key);
  Json json{
      {"name", zm_view(key)}, {"line", check.place(section).line}, {"options", Json::array()}};
  for (int i = 0; i < section.length(); ++i)
    json["options"].push_back(option_json(check, section, i));
  return json;
}

// A file name as a part of a URI. Byte by byte, since file names have no encoding, but for the
// unreserved characters of RFC 3986 and slashes. A colon goes, too, as it would end a scheme.
std::string uri(std::string_view file) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string text;
  for (const char c : file) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) || std::string_view("/-._~").find(c) != std::string_view::npos) {
      text += c;
    } else {
      text += {'%', kHex[byte >> 4U], kHex[byte & 15U]};
    }
  }
  return text;
}

// SARIF knows no columns that count bytes.
Json location(const ZmConfigCheck& check, const std::string& file,
              const ZmConfigCheck::Place& place) {
  const std::size_t length = static_cast<std::size_t>(end_column(check, place) - place.column);
  return {{"artifactLocation", {{"uri", uri(file)}}},
          {"region",
           {{"startLine", place.line},
            {"startColumn", check.letter(place.offset)},
            {"endColumn", check.letter(place.offset + length)}}}};
}

// The index of a rule counts in what sarif_rules() writes, which has the order of rules().
Json sarif_result(const ZmConfigCheck& check, const std::string& file,
                  const ZmConfigCheck::Finding& finding) {
  const auto& rules = ZmConfigCheck::rules();
  Json json{{"ruleId", finding.rule->name},
            {"ruleIndex", std::ranges::find(rules, finding.rule) - rules.begin()},
            {"level", name(finding.severity)},
            {"message", {{"text", finding.text}}},
            {"locations", Json::array()}};
  json["locations"].push_back({{"physicalLocation", location(check, file, finding.place)}});
  for (const auto& note : finding.notes)
    json["relatedLocations"].push_back({{"message", {{"text", note.text}}},
                                        {"physicalLocation", location(check, file, note.place)}});
  return json;
}

Json sarif_rules() {
  Json rules = Json::array();
  for (const auto* rule : ZmConfigCheck::rules())
    rules.push_back({{"id", rule->name},
                     {"shortDescription", {{"text", rule->sentence}}},
                     {"help", {{"text", rule->remedy}}},
                     {"defaultConfiguration", {{"level", name(rule->severity)}}}});
  return rules;
}

// File names may hold any byte; without leave to replace it the library throws at what isn't UTF-8.
std::string written(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

JsonReport::JsonReport(bool sarif) : sarif_(sarif) {
  if (!sarif_) {
    output().write("{\"files\": [");
    return;
  }
  const Json driver{{"name", "zmconfigcheck"}, {"version", kZmVersion}, {"rules", sarif_rules()}};
  output().write(
      "{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\", \"version\": \"2.1.0\",\n"
      "\"runs\": [{\"tool\": {\"driver\": " +
      written(driver) + "},\n\"columnKind\": \"unicodeCodePoints\", \"results\": [");
}

// The elements of an array stand on lines of their own.
void JsonReport::piece(const std::string& text) {
  output().write(std::exchange(first_, false) ? "\n" : ",\n");
  output().write(text);
}

// The arrays of a file stand inside an element of the array of files: `first_` is theirs for a
// while, and then tells again that this one has an element.
void JsonReport::tell(const std::string& file, const ZmConfigCheck& check,
                      const Findings& findings) {
  if (sarif_) {
    for (const auto* finding : findings) piece(written(sarif_result(check, file, *finding)));
    return;
  }
  piece("{\"file\": " + written(file) + ", \"findings\": [");
  first_ = true;
  for (const auto* finding : findings) piece(written(finding_json(check, *finding)));
  output().write("],\n\"sections\": [");
  first_ = true;
  // Sorted, as zmconfigfile prints them: the order of the hash says nothing to a reader.
  ZmStringList names;
  check.sections().copykeys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) piece(written(section_json(check, *names.get(i))));
  output().write("]}");
  first_ = false;
}

void JsonReport::complete(std::size_t errors, std::size_t warnings) {
  if (sarif_) return output().write("]}]}\n");
  output().write("],\n\"errors\": " + std::to_string(errors) +
                 ", \"warnings\": " + std::to_string(warnings) + "}\n");
}
