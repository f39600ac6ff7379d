#include "ZmConfigCheck.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <new>
#include <utility>

#include "ZmConfigCheckRules.h"
#include "ZmConfigGraph.h"
#include "ZmConfigHistory.h"
#include "ZmConfigSurvey.h"
#include "ZmFileReader.h"
#include "ZmText.h"

namespace {

using Place = ZmConfigCheck::Place;
using Survey = ZmConfigSurvey;

Place placed(const ZmConfigPosition& at, std::size_t length) {
  return {at.line, at.column, at.offset, std::max<std::size_t>(length, 1)};
}

Place placed(const Survey& survey, std::size_t at, std::size_t length) {
  return placed(survey.places().at(at), survey.places().length(at, length));
}

// What stands behind the text of a finding.
std::string where(const Survey::Found& found) {
  const std::size_t more = found.sections - 1;
  std::string text;
  if (found.sections == 1 && found.lenient) text = ", in section " + zm_shown(found.section);
  if (found.sections > 1)
    text = ", in " + zm_shown(found.section) + " and " + std::to_string(more) + " more section" +
           (more > 1 ? "s" : "");
  if (found.lenient) text += ", but not in all";
  return text;
}

// Places are numbers of 32 bits.
std::string fitting(std::string text) {
  if (text.size() >= INT_MAX) throw std::bad_alloc();
  return text;
}

}  // namespace

// Pointers into the one table, as findings have them: programs may compare these.
const std::vector<const ZmConfigCheck::Rule*>& ZmConfigCheck::rules() {
  static const auto rules = [] {
    std::vector<const Rule*> all;
    for (const ZmConfigCheckRule& rule : zm_config_check_rules()) all.push_back(&rule.rule);
    return all;
  }();
  return rules;
}

const ZmConfigCheck::Rule* ZmConfigCheck::rule(std::string_view name) {
  const auto at = std::ranges::find(rules(), name, [](const Rule* rule) { return rule->name; });
  return at == rules().end() ? nullptr : *at;
}

std::unique_ptr<ZmConfigCheck> ZmConfigCheck::frompath(const std::string& path,
                                                       unsigned char lowercase) {
  const ZmOpenFile file(std::fopen(path.c_str(), "rb"));
  return file ? fromfile(file.get(), lowercase) : nullptr;
}

std::unique_ptr<ZmConfigCheck> ZmConfigCheck::fromfile(std::FILE* file, unsigned char lowercase) {
  std::string text;
  // The size saves copies while the text grows, and no more: that of a pipe is 0, and part of the
  // file may have been read.
  struct stat status {};
  if (::fstat(::fileno(file), &status) == 0 && status.st_size > 0 && status.st_size < INT_MAX)
    text.reserve(static_cast<std::size_t>(status.st_size) + 1);
  char block[65536];
  for (std::size_t n; (n = std::fread(block, 1, sizeof block, file)) > 0;) {
    text.append(block, n);
    if (text.size() >= INT_MAX) return nullptr;
  }
  // A directory can be opened, but fails here.
  if (std::ferror(file)) return nullptr;
  return std::make_unique<ZmConfigCheck>(std::move(text), lowercase);
}

// The survey borrows the text, which must not move from then on.
ZmConfigCheck::ZmConfigCheck(std::string text, unsigned char lowercase)
    : text_(fitting(std::move(text))),
      survey_(std::make_unique<ZmConfigSurvey>(text_, zm_config_check_rules())),
      lowercase_(lowercase) {
  std::vector<Survey::Found> all = survey_->run(lowercase != 0);
  findings_.reserve(all.size());
  for (Survey::Found& found : all) {
    const bool error = found.rule->rule.severity == Severity::kError && !found.lenient;
    Finding& finding = findings_.emplace_back();
    finding.rule = &found.rule->rule;
    finding.severity = error ? Severity::kError : Severity::kWarning;
    finding.place = found.source == ZmConfigScanner::kNone
                        ? placed(*survey_, found.mark.at, found.mark.length)
                        : placed(survey_->places().source(found.source), 1);
    finding.text = std::move(found.mark.text) + where(found);
    finding.section = std::move(found.section);
    finding.sections = found.sections;
    for (Survey::Mark& note : found.notes)
      finding.notes.push_back({placed(*survey_, note.at, note.length), std::move(note.text)});
  }
  consistent_ = survey_->consistent();
}

ZmConfigCheck::~ZmConfigCheck() = default;

std::string_view ZmConfigCheck::line(const Place& place) const {
  return survey_->places().line(place.line);
}

long ZmConfigCheck::letter(std::size_t offset) const { return survey_->places().letter(offset); }

const ZmConfigHash& ZmConfigCheck::sections() const { return survey_->sections(); }

ZmConfigCheck::Origin ZmConfigCheck::origin(const ZmConfig& section, int label) const {
  const Survey::Source& source = survey_->source(section, label);
  const Survey::Written& written = survey_->written(source.written);
  const std::size_t length = written.end - written.value_at;
  return {placed(*survey_, written.label_at, written.label.size()),
          placed(*survey_, written.value_at, length), written.raw,
          written.heading == Survey::kNone ? std::string_view()
                                           : survey_->headings()[written.heading].name,
          source.parent};
}

// A reading of its own, as in graph(): checking alone does not pay for what only these need.
ZmConfigCheck::History ZmConfigCheck::history(std::string_view section,
                                              std::string_view label) const {
  return ZmConfigHistory::of(text_, lowercase_ != 0, {std::string(section), std::string(label)});
}

std::string ZmConfigCheck::graph(unsigned char connected) const {
  ZmConfigGraph graph(text_);
  return graph.run(lowercase_ != 0, connected != 0);
}

ZmConfigCheck::Place ZmConfigCheck::place(const ZmConfig& section) const {
  return placed(*survey_, survey_->beginning(section), 1);
}
