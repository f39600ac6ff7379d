#include "ZmConfigHistory.h"

#include <set>

#include "ZmText.h"
#include "ZmTextCursor.h"

namespace {

using Name = ZmConfigHistory::Name;
using Names = ZmConfigHistory::Names;
using Steps = ZmConfigHistory::Steps;
constexpr std::size_t kDeepest = 32;  // readings: a chain of references may be as long as the file

// What is known of an option in a scope. A result that does not depend on the scope is remembered,
// and one that was stored before is copied: then it was read in another one.
const std::pair<const std::string, Steps>* known(const Names& watched, const Name& name,
                                                 const std::string& scope) {
  const auto at = watched.find(name);
  if (at == watched.end() || at->second.scopes.empty()) return nullptr;
  const auto& scopes = at->second.scopes;
  const auto here = scopes.find(scope);
  return here == scopes.end() ? &*scopes.find(at->second.last) : &*here;
}

// All steps to the value of an option, those of one option where it is met first: options that
// refer twice to the next one would double the list at each level.
Steps followed(const Names& watched, const Name& name) {
  struct Level {
    const std::string& scope;
    const Steps& steps;
    std::size_t next;
  };
  Steps all;
  std::set<Name> met{name};
  std::vector<Level> levels;
  if (const auto* first = known(watched, name, name.first))
    levels.push_back({first->first, first->second, 0});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.steps.size()) {
      levels.pop_back();
      continue;
    }
    auto& step = all.emplace_back(level.steps[level.next++]);
    step.depth = levels.size() - 1;
    const Name to{step.section, step.option};
    if (step.circle || !met.insert(to).second) continue;
    if (const auto* more = known(watched, to, level.scope))
      levels.push_back({more->first, more->second, 0});
  }
  return all;
}

}  // namespace

// Which options matter is known only when the references of those before have been read: each
// reading watches what the last one led to, and tells everything anew.
ZmConfigCheckTypes::History ZmConfigHistory::of(std::string_view source, bool lowercase,
                                                const Name& name) {
  Names watched{{name, {}}};
  std::size_t before = 0;
  for (std::size_t pass = 0; pass < kDeepest && before < watched.size(); ++pass) {
    before = watched.size();
    for (auto& [known, value] : watched) value = {};
    ZmConfigHistory(source, watched).run(lowercase);
    for (const auto& step : followed(watched, name))
      watched.try_emplace({step.section, step.option});
  }
  ZmConfigCheckTypes::History history = std::move(watched[name].history);
  history.references = followed(watched, name);
  return history;
}

ZmConfigHistory::Watched* ZmConfigHistory::watched(std::string_view section,
                                                   std::string_view label) {
  // The section first: there may be very many, and few of them are watched.
  const auto near = watched_.lower_bound({std::string(section), std::string()});
  if (near == watched_.end() || near->first.first != section) return nullptr;
  const auto at = watched_.find({near->first.first, std::string(label)});
  return at == watched_.end() ? nullptr : &at->second;
}

ZmConfigCheckTypes::Place ZmConfigHistory::place(std::size_t at, std::size_t length) const {
  const ZmConfigPosition here = places().at(at);
  return {here.line, here.column, here.offset, places().length(at, length)};
}

// Of an option with references.
std::string_view ZmConfigHistory::label(const ZmString& option) const {
  return written(referring(option).written).label;
}

void ZmConfigHistory::stored(const ZmConfig& section, int label, const ZmConfig* parent,
                             std::size_t number) {
  // First, since source() knows what the survey has been told.
  ZmConfigSurvey::stored(section, label, parent, number);
  Watched* watch = watched(zm_view(section.name()), zm_view(section.label(label)));
  if (!watch) return;
  watch->history.value = zm_view(section.value(label));
  const Written& line = written(source(section, label).written);
  auto& assignments = watch->history.assignments;
  // A header may name a section twice.
  const ZmConfigCheckTypes::Place label_at = place(line.label_at, line.label.size());
  if (!parent && !assignments.empty() && assignments.back().label.offset == label_at.offset &&
      assignments.back().parent.empty())
    assignments.pop_back();
  ZmConfigCheckTypes::Assignment& set = assignments.emplace_back();
  set.label = label_at;
  set.value = place(line.value_at, line.end - line.value_at);
  set.raw = line.raw;
  set.qualified = line.qualifier_at != kNone;
  if (parent) set.parent = zm_view(parent->name());
  // What is inherited came by the header at hand. kNone is beyond all headers.
  const std::size_t count = headings().size();
  const std::size_t at = parent ? count - 1 : line.heading;
  if (at >= count) return;
  set.header = headings()[at].name;
  set.sections = headings()[at].sections;
  set.line = places().at(headings()[at].at).line;
}

// When a circle turns up, an option is read once more from its first reference on. What is left of
// the reading before, open references as well as steps, is dropped then. An option that has been
// expanded is no longer the text that is to be explained.
void ZmConfigHistory::use(const ZmConfigUse& use) {
  ZmConfigSurvey::use(use);
  open_.resize(use.depth, {nullptr, 0});
  Watched* watch =
      referring(*use.option).expanded ? nullptr : watched(use.home, label(*use.option));
  Steps* steps = nullptr;
  if (watch) {
    watch->last = use.scope;
    steps = &watch->scopes[watch->last];
    steps->resize(use.number);
    auto& step = steps->emplace_back();
    step.section = use.piece.section;
    step.option = use.piece.label;
    step.value = use.result;
    step.circle = use.circle;
    if (use.piece.value) {
      const ZmConfig& to = *section(use.piece.section);
      const Written& line = written(source(to, to.position(use.piece.label)).written);
      step.place = place(line.label_at, line.label.size());
    }
  }
  if (use.nested) open_.push_back({steps, use.number});
}

void ZmConfigHistory::leave(std::string_view result) {
  const Open open = open_.back();
  open_.pop_back();
  if (open.steps) (*open.steps)[open.step].value = result;
}

// The value as its pieces and the results of its references make it.
std::string ZmConfigHistory::joined(const ZmConfig& section, const ZmString& value) const {
  const std::string_view name = zm_view(section.name());
  const ZmConfigScope scope{sections(), name, &section};
  const auto* found =
      known(watched_, {std::string(name), std::string(label(value))}, std::string(name));
  std::string text;
  std::size_t next = 0;
  for (ZmTextCursor in(zm_view(value)); !in.eof();) {
    const bool reference = in.is('$');
    const ZmConfigPiece piece = scope.next(in, name);
    if (!reference) text += piece.text;
    if (reference && found && next < found->second.size()) text += found->second[next++].value;
  }
  return text;
}

void ZmConfigHistory::expanded(const ZmConfig& section, const ZmString& value,
                               std::string_view result) {
  open_.clear();
  if (Watched* watch = watched(zm_view(section.name()), label(value))) {
    watch->history.value = result;
    watch->history.consistent = joined(section, value) == result;
  }
  ZmConfigSurvey::expanded(section, value, result);
}
