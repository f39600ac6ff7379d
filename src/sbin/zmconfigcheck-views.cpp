#include "zmconfigcheck-views.h"

#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ZmText.h"
#include "zmconfigcheck-options.h"

namespace {

const ZmConfig* section(const ZmConfigCheck& check, std::string_view name) {
  return check.sections().get(zm_string(name));
}

const ZmConfig& known(const std::string& file, const ZmConfigCheck& check,
                      const std::string& name) {
  const ZmConfig* found = section(check, name);
  if (!found) fail(file + " has no section \"" + name + "\"");
  return *found;
}

// A value in quotes, on one line.
std::string quoted(std::string_view value) {
  std::string text = "\"";
  for (const char c : value) {
    if (c == '"' || c == '\\') text += '\\';
    if (c == '\n') text += "\\n";
    if (c == '\r') text += "\\r";
    if (c != '\n' && c != '\r') text += c;
  }
  return text + '"';
}

std::string where(const std::string& file, const ZmConfigCheck::Place& place) {
  return file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

// A qualified option knows the header that was read last, too, but has nothing to do with it: hence
// the order of the tests.
std::string how(const ZmConfigCheck::Assignment& set) {
  const std::string line = " at line " + std::to_string(set.line);
  if (!set.parent.empty()) return "inherited from " + set.parent + line;
  if (set.qualified) return "set by its qualified name";
  if (set.line == 0) return "written above the first header";
  std::string text = "written under [" + set.header + "]" + line;
  if (set.sections > 1) text += ", which stands for " + std::to_string(set.sections) + " sections";
  return text;
}

std::string followed(const std::string& file, const ZmConfigCheck::Reference& reference) {
  std::string text(2 * reference.depth + 2, ' ');
  text += "-> " + reference.section;
  if (!reference.option.empty()) text += "." + reference.option;
  // No line sets a "_", so it has no place, but always a value.
  const bool set = reference.place.line > 0;
  text += set || reference.option == "_" ? " = " + quoted(reference.value) : ": undefined";
  if (reference.circle) text += ", it leads back to itself";
  if (set) text += " (" + where(file, reference.place) + ")";
  return text + "\n";
}

void print(const std::string& file, const ZmConfigCheck::History& history) {
  const bool only = history.assignments.size() == 1;
  for (const auto& set : history.assignments) {
    const bool last = &set == &history.assignments.back();
    output().write("  " + where(file, set.label) + ": " + quoted(set.raw) + "\n    " + how(set) +
                   (only   ? ""
                    : last ? "; this one counts"
                           : "; replaced below") +
                   "\n");
  }
  for (const auto& reference : history.references) output().write(followed(file, reference));
}

int explain_option(const std::string& file, const ZmConfigCheck& check, std::string_view section,
                   std::string_view label) {
  const ZmConfigCheck::History history = check.history(section, label);
  // Better no answer than one that sends somebody to the wrong line.
  if (!history.consistent) fail(file + ": the history of a value leads to another value");
  output().write(std::string(section) + "." + std::string(label) + " = " + quoted(history.value) +
                 "\n");
  print(file, history);
  return 0;
}

int explain_section(const std::string& file, const ZmConfigCheck& check, const ZmConfig& section) {
  for (int i = 0; i < section.length(); ++i) {
    const ZmConfigCheck::Origin origin = check.origin(section, i);
    output().write(file + ":" + std::to_string(origin.label.line) + ": " +
                   section.label(i).value() + " = " + quoted(zm_view(section.value(i))) + "\n");
  }
  return 0;
}

// The lines of one side of a difference.
void print(const std::string& file, const ZmConfigCheck& check, const ZmConfig& section, int label,
           char sign) {
  const ZmConfigCheck::Origin origin = check.origin(section, label);
  std::string text = std::string(1, sign) + section.label(label).value() + " = " +
                     quoted(zm_view(section.value(label))) + "\n" + sign + "  " +
                     where(file, origin.label);
  if (origin.parent) text += std::string(", inherited from ") + origin.parent->name().value();
  output().write(text + "\n");
}

}  // namespace

// Names of sections and options may hold periods: the longest section that has the rest counts.
int explain(const std::string& file, const ZmConfigCheck& check, const std::string& name) {
  if (const ZmConfig* whole = section(check, name)) return explain_section(file, check, *whole);
  for (std::size_t at = name.rfind('.'); at != std::string::npos && at > 0;
       at = name.rfind('.', at - 1)) {
    const std::string_view first = std::string_view(name).substr(0, at);
    const std::string_view label = std::string_view(name).substr(at + 1);
    const ZmConfig* found = section(check, first);
    if (found && found->find(label)) return explain_option(file, check, first, label);
  }
  fail(file + " has no section and no option \"" + name + "\"");
}

// As diff(1) has it, nothing and 0 when there is no difference. Labels of b are found by a map:
// linear in what both sections hold.
int diff(const std::string& file, const ZmConfigCheck& check, const std::string& first,
         const std::string& second) {
  const ZmConfig& a = known(file, check, first);
  const ZmConfig& b = known(file, check, second);
  std::unordered_map<std::string_view, int> labels;  // of b
  for (int i = 0; i < b.length(); ++i) labels.emplace(zm_view(b.label(i)), i);
  std::vector<std::pair<int, int>> blocks;  // positions in a and b; -1: it has none
  for (int i = 0; i < a.length(); ++i) {
    const auto at = labels.find(zm_view(a.label(i)));
    const int other = at == labels.end() ? -1 : at->second;
    if (other < 0 || a.value(i) != b.value(other)) blocks.emplace_back(i, other);
  }
  for (int i = 0; i < b.length(); ++i)
    if (!a.find(zm_view(b.label(i)))) blocks.emplace_back(-1, i);
  if (blocks.empty()) return 0;
  output().write("--- " + first + "\n+++ " + second + "\n");
  for (const auto& [in_a, in_b] : blocks) {
    output().write("@@ " + std::string((in_a < 0 ? b.label(in_b) : a.label(in_a)).value()) +
                   " @@\n");
    if (in_a >= 0) print(file, check, a, in_a, '-');
    if (in_b >= 0) print(file, check, b, in_b, '+');
  }
  return 1;
}
