#include "ZmConfigHistory.h"

#include <set>
#include <string>
#include <utility>

#include "ZmExpander.h"
#include "ZmText.h"

namespace {

using Name = ZmConfigHistory::Name;
using Watched = ZmConfigHistory::Watched;
constexpr int kDeepest = 32;  // readings: a chain of references may be as long as the file

// The references of one value, as they are followed.
class Followed : public ZmConfigObserver {
 public:
  struct Step {
    ZmConfigCheck::Reference reference;
    const ZmString* option;
  };
  std::vector<Step> steps;

 private:
  void use(const ZmConfigUse& use) override {
    if (use.depth == 0 && use.number == 0) {  // a circle turned up: it is read once more
      steps.clear();
      open_.clear();
    }
    const ZmConfigPiece& piece = use.piece;
    if (use.nested) open_.push_back(steps.size());
    steps.push_back({{use.depth,
                      std::string(piece.section),
                      std::string(piece.label),
                      {},
                      std::string(use.result),
                      use.circle},
                     piece.value});
  }
  void leave(std::string_view result) override {
    steps[open_.back()].reference.value = result;
    open_.pop_back();
  }

  std::vector<std::size_t> open_;  // those whose option is being expanded
};

// The history of one option with those of what it leads to, each where it is met first.
ZmConfigCheck::History joined(const std::map<Name, Watched>& watched, const Name& name) {
  ZmConfigCheck::History whole = watched.at(name).history;
  whole.references.clear();
  struct Level {
    const Watched* at;
    std::size_t next;
    std::size_t depth;
  };
  std::set<Name> met{name};
  std::vector<Level> levels{{&watched.at(name), 0, 0}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.at->later.size()) {
      levels.pop_back();
      continue;
    }
    const std::size_t i = level.next++;
    auto& reference = whole.references.emplace_back(level.at->history.references[i]);
    reference.depth += level.depth;
    const Name& later = level.at->later[i];
    if (watched.contains(later) && met.insert(later).second)
      levels.push_back({&watched.at(later), 0, reference.depth + 1});
  }
  return whole;
}

}  // namespace

// What an option that was expanded before was made with is only seen by watching that one.
ZmConfigCheck::History ZmConfigHistory::of(std::string_view source, bool lowercase,
                                           const Name& name) {
  std::map<Name, Watched> watched{{name, {}}};
  std::size_t before = 0;
  for (int pass = 0; pass < kDeepest && before < watched.size(); ++pass) {
    before = watched.size();
    for (auto& [known, value] : watched) value = {};
    ZmConfigHistory(source, watched).run(lowercase);
    std::set<Name> later;
    for (const auto& [known, value] : watched) later.insert(value.later.begin(), value.later.end());
    later.erase(Name());
    for (const Name& more : later) watched.try_emplace(more);
  }
  return joined(watched, name);
}

ZmConfigHistory::Watched* ZmConfigHistory::watched(const ZmConfig& section, const ZmString& value) {
  // Names are compared first for one section: there may be very many.
  const auto near = watched_.lower_bound({section.name().value(), std::string()});
  if (near == watched_.end() || near->first.first != zm_view(section.name())) return nullptr;
  const auto at =
      watched_.find({near->first.first, std::string(written(source(value).written).label)});
  return at == watched_.end() ? nullptr : &at->second;
}

ZmConfigCheck::Place ZmConfigHistory::place(std::size_t at, std::size_t length) const {
  const ZmConfigPosition here = places().at(at);
  return {here.line, here.column, here.offset, length};
}

void ZmConfigHistory::stored(const ZmConfig& section, const ZmString& value, const ZmConfig* parent,
                             std::size_t number) {
  ZmConfigSurvey::stored(section, value, parent, number);
  Watched* watch = watched(section, value);
  if (!watch) return;
  watch->history.value = zm_view(value);
  const Written& line = written(source(value).written);
  ZmConfigCheck::Assignment& set = watch->history.assignments.emplace_back();
  set.label = place(line.label_at, line.label.size());
  set.value = place(line.value_at, line.end - line.value_at);
  set.raw = line.raw;
  set.qualified = line.qualifier_at != kNone;
  if (parent) set.parent = zm_view(parent->name());
  const std::size_t last = headings().size() - 1;
  const std::size_t at = parent ? last : line.heading;
  if (headings().empty() || at > last) return;
  set.header = headings()[at].name;
  set.sections = headings()[at].sections;
  set.line = places().at(headings()[at].at).line;
}

// Whether what the option was made with can't be seen any more.
bool ZmConfigHistory::gone(const ZmString& option) const {
  const Source& from = source(option);
  return zm_has_reference(written(from.written).raw) && !zm_has_reference(zm_view(option));
}

// Followed from the start, so that nothing that is remembered hides a step.
void ZmConfigHistory::expand(const ZmConfig& section, const ZmString& value) {
  Watched* watch = watched(section, value);
  if (!watch) return;
  const std::string_view name = zm_view(section.name());
  Followed followed;
  ZmExpander expander(sections(), &followed);
  watch->history.value = expander.expand(name, name, zm_view(value), &value);
  for (Followed::Step& step : followed.steps) {
    Name later;
    if (step.option) {
      const Written& line = written(source(*step.option).written);
      step.reference.place = place(line.label_at, line.label.size());
      if (gone(*step.option)) later = {step.reference.section, step.reference.option};
    }
    watch->history.references.push_back(std::move(step.reference));
    watch->later.push_back(std::move(later));
  }
}

void ZmConfigHistory::expanded(const ZmConfig& section, const ZmString& value,
                               std::string_view result) {
  Watched* watch = watched(section, value);
  if (watch && watch->history.value != result) watch->history.consistent = 0;
  ZmConfigSurvey::expanded(section, value, result);
}
