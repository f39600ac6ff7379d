#include "ZmConfigGraph.h"

#include "ZmStringList.h"
#include "ZmText.h"

namespace {

std::string quoted(std::string_view text, std::string_view below = {}) {
  std::string all = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') all += '\\';
    all += c == '\n' || c == '\r' ? ' ' : c;
  }
  // Behind the escaping, since this "\n" is one of DOT's own escapes.
  if (!below.empty()) all.append("\\n").append(below);
  return all + '"';
}

}  // namespace

// The name of the header that a section was first of.
std::string ZmConfigGraph::node(const ZmConfig& section) const {
  const Heading* home = heading(section);
  return home ? home->name : std::string(zm_view(section.name()));
}

void ZmConfigGraph::parent(const ZmConfigToken& token, const ZmConfig* found) {
  ZmConfigSurvey::parent(token, found);
  const std::string to = found ? node(*found) : known_as(token);
  arrows_.insert({headings().back().name, to, false, found == nullptr});
}

// An arrow from the header that the reference is written under.
void ZmConfigGraph::use(const ZmConfigUse& use) {
  ZmConfigSurvey::use(use);
  // An unqualified reference stays in its section.
  if (!use.piece.qualified) return;
  const Written& line = written(referring(*use.option).written);
  const ZmConfig* to = section(use.piece.section);
  // A qualified line is not one of the header that happens to stand above it.
  const bool headed = line.heading != kNone && line.qualifier_at == kNone;
  const std::string from = headed ? headings()[line.heading].name : node(*section(use.home));
  const std::string target = to ? node(*to) : std::string(use.piece.section);
  const bool wrong = use.circle || (!use.piece.value && use.piece.label != "_");
  if (from != target || use.circle) arrows_.insert({from, target, true, wrong});
}

// Headers and how many sections they stand for, and sections without one.
std::map<std::string, std::size_t> ZmConfigGraph::nodes() const {
  std::map<std::string, std::size_t> nodes;
  for (const Heading& heading : headings()) {
    std::size_t& size = nodes[heading.name];
    size = std::max(size, heading.sections);
  }
  ZmStringList names;
  sections().copykeys(names);
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig* known = section(zm_view(*names.get(i)));
    if (!heading(*known)) nodes[std::string(zm_view(*names.get(i)))] = 1;
  }
  return nodes;
}

std::string ZmConfigGraph::run(bool lowercase, bool connected) {
  ZmConfigSurvey::run(lowercase);
  std::set<std::string> met;
  for (const Arrow& arrow : arrows_) met.insert({arrow.from, arrow.to});
  // From the bottom to the top, as arrows lead to parents: these stand above their children.
  std::string text = "digraph farm {\n  rankdir=BT;\n  node [shape=box];\n";
  const auto known = nodes();
  for (const auto& [name, size] : known) {
    if (connected && !met.contains(name)) continue;
    text += "  " + quoted(name);
    if (size > 1) text += " [label=" + quoted(name, std::to_string(size) + " sections") + "]";
    text += ";\n";
  }
  for (const std::string& name : met)
    if (!known.contains(name)) text += "  " + quoted(name) + " [color=red];\n";
  for (const Arrow& arrow : arrows_) {
    // A right one would lie upon the wrong one.
    if (!arrow.wrong && arrows_.contains({arrow.from, arrow.to, arrow.reference, true})) continue;
    text += "  " + quoted(arrow.from) + " -> " + quoted(arrow.to) + " [style=";
    text += arrow.reference ? "dashed" : "solid";
    text += arrow.wrong ? ", color=red];\n" : "];\n";
  }
  return text + "}\n";
}
