#include "ZmConfigSurvey.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

#include "ZmConfigReader.h"
#include "ZmText.h"
#include "ZmTextCursor.h"

namespace {

using Part = ZmConfigPart;
constexpr ZmCharSet kBlank(" \t");
constexpr std::string_view kLineEnd = "\r\n";

// No file of INT_MAX bytes is read, and what stands for none has all bits set in both widths.
std::uint32_t narrow(std::size_t n) { return static_cast<std::uint32_t>(n); }

}  // namespace

ZmConfigSurvey::ZmConfigSurvey(std::string_view source, std::span<const Rule> rules)
    : scanner_(source), places_(source), rules_(rules) {
  for (const Rule& rule : rules) kinds_[rule.find.index()].push_back(&rule);
}

// ---- For rules ----

void ZmConfigSurvey::report(std::size_t at, std::size_t length, std::string text,
                            std::vector<Mark> notes) {
  found_.push_back({asked_, false, {at, length, std::move(text)}, std::move(notes), {}, 0});
}

void ZmConfigSurvey::report_dropped(std::size_t at, std::size_t source, std::string text) {
  report(at, 1, std::move(text));
  found_.back().source = source;
}

const ZmConfig* ZmConfigSurvey::section(std::string_view name) const {
  return sections_.find(name);
}

std::size_t ZmConfigSurvey::line_end(std::size_t at) const {
  return std::min(text().find_first_of(kLineEnd, at), text().size());
}

std::uint32_t ZmConfigSurvey::first(std::string_view label) const {
  const auto met = labels_.find(label);
  return met == labels_.end() ? kNone : met->second;
}

bool ZmConfigSurvey::braced(const ZmString& option) const {
  return starts(written_[referring(option).written].value_at, '{');
}

// Whether a place of the cleaned text is in a comment.
bool ZmConfigSurvey::commented(std::size_t at) const {
  const auto after = std::ranges::upper_bound(comments_, at);
  return after != comments_.begin() && line_end(*(after - 1)) >= at && *(after - 1) < at;
}

// ---- Reading ----

template <class Find, class... Thing>
void ZmConfigSurvey::ask(const Thing&... thing) {
  for (const Rule* rule : rules_of<Find>()) {
    asked_ = rule;
    std::get<Find>(rule->find)(*this, thing...);
  }
}

std::vector<ZmConfigSurvey::Found> ZmConfigSurvey::run(bool lowercase) {
  const ZmString home("default");
  lowercase_ = lowercase;
  ZmConfigReader(sections_, home, lowercase, text(), this).run();
  ask<ZmEndRule>();
  verdicts();
  std::erase_if(found_, [this](const Found& found) { return silenced(found); });
  // A byte that was dropped shares the place of the one behind it, and comes first. Rules are
  // elements of one array: their addresses have the order of the table.
  const auto place = [](const Found& f) {
    return std::tuple(f.mark.at, f.source == ZmConfigScanner::kNone, f.rule);
  };
  if (!std::ranges::is_sorted(found_, {}, place)) std::ranges::stable_sort(found_, {}, place);
  return std::move(found_);
}

void ZmConfigSurvey::token(const ZmConfigToken& token, const ZmConfigScanner& scanner) {
  if (scanner.comment() != comment_) comment(comment_ = scanner.comment());
  unclosed_ = scanner.unclosed();
  // The token before decides first: the content of quotes may begin with a brace or a quote.
  Part part{token, Part::kPlain};
  if (last_ == Part::kOpen) {
    part.kind = Part::kContent;
  } else if (last_ == Part::kContent) {
    part.kind = Part::kClose;
  } else if (starts(token.offset, '{')) {
    part.kind = Part::kBraced;
  } else if (starts(token.offset, '"')) {
    part.kind = Part::kOpen;
  }
  last_ = part.kind;
  if (last_ == Part::kOpen) quote_ = token.offset;
  // Of line ends in a row two are needed: a value that is one, and the token behind it.
  const std::size_t size = pieces_.size();
  if (size > 1 && token.endsline() && pieces_[size - 1].token.endsline() &&
      pieces_[size - 2].token.endsline())
    pieces_.pop_back();  // there may be many empty lines
  pieces_.push_back(part);
  if (last_ != Part::kPlain) ask<ZmTokenRule>(part);
}

// The token at hand is what the next line begins with, or the line end before it.
void ZmConfigSurvey::next() { pieces_.erase(pieces_.begin(), pieces_.end() - 1); }

void ZmConfigSurvey::header(const ZmConfigHeading& heading) {
  headings_.push_back({narrow(heading.at), std::string(heading.name)});
  heading_ = true;
  labels_ = decltype(labels_)();  // a table of its first size, too: clearing a large one costs
  ask<ZmHeadingRule>(heading);
  next();
}

// A qualified line is told before the section that it makes: it is the last one written.
void ZmConfigSurvey::section(const ZmConfig& section, bool made) {
  if (heading_) {
    Heading& heading = headings_.back();
    const std::uint32_t number = narrow(headings_.size() - 1);
    Known& known = known_[&section];
    if (!heading.first) heading.first = &section;
    heading.sections += known.counted != number;
    known.counted = number;
    if (known.heading == kNone) known.heading = number;
  } else if (made && written_.back().qualifier_at != kNone) {
    known_[&section].maker = narrow(written_.size() - 1);
  }
}

void ZmConfigSurvey::parent(const ZmConfigToken& token, const ZmConfig* found) {
  if (!found) missing_.push_back({token.offset, keep(known_as(token))});
}

// The name by which the reader looks for a parent.
std::string ZmConfigSurvey::known_as(const ZmConfigToken& token) const {
  const ZmString name = zm_string(token.text);
  return std::string(zm_view(lowercase_ ? name.tolower() : name));
}

std::size_t ZmConfigSurvey::option(const ZmConfigLine& line) {
  heading_ = false;
  const auto value = std::ranges::find_if(
      pieces_, [&](const Part& part) { return part.token.offset >= line.value_at; });
  std::size_t end = pieces_.back().token.offset;
  if (comment_ != ZmConfigScanner::kNone && comment_ > line.value_at) end = comment_;
  while (end > line.value_at + 1 && kBlank.has(text()[end - 1])) --end;
  const ZmConfigStatement statement{line, std::span(value, pieces_.end() - 1), end,
                                    narrow(written_.size())};
  // Before the label is known, or repeated-option would meet the line itself.
  ask<ZmLineRule>(statement);
  const std::string_view label = keep(line.label);
  const bool refers = zm_has_reference(line.value);
  const bool local = refers && (line.value.find("self") != std::string_view::npos ||
                                line.value.find("this") != std::string_view::npos);
  written_.push_back({label, keep(line.value),
                      headings_.empty() ? kNone : narrow(headings_.size() - 1),
                      narrow(line.label_at), narrow(line.qualifier_at), narrow(line.value_at),
                      narrow(end), refers, local});
  if (line.qualifier_at == ZmConfigLine::kNone) {
    labels_.try_emplace(label, statement.number);
    if (label.find('.') != std::string_view::npos) dotted_.push_back(statement.number);
  }
  silence(line, end);
  next();
  return statement.number;
}

// The reader goes no further, but a comment on this line may still ask for silence about it.
void ZmConfigSurvey::stop(const ZmConfigStop& stop) {
  stop_ = line_end(stop.at);
  ZmConfigScanner rest(text().substr(stop.at, stop_ - stop.at));
  for (ZmConfigToken token; rest.next(token);) {
  }
  // The reader may have passed it already, with the token behind the name.
  if (rest.comment() != ZmConfigScanner::kNone && stop.at + rest.comment() != comment_)
    comment(stop.at + rest.comment());
  ask<ZmStopRule>(stop);
}

void ZmConfigSurvey::stored(const ZmConfig& section, int label, const ZmConfig* parent,
                            std::size_t number) {
  std::uint32_t line = narrow(number);
  // An option leads to its line at once, however many parents it came through.
  if (parent) line = source(*parent, static_cast<int>(number)).written;
  std::vector<Source>& options = known_[&section].options;
  const auto at = static_cast<std::size_t>(label);
  if (at >= options.size()) options.resize(at + 1);
  options[at] = {line, parent};
  if (written_[line].refers) referring_[&section.value(label)] = {line, false};
}

// A piece of the cleaned text stays, others are kept here. In a deque they do not move, so views of
// them last.
std::string_view ZmConfigSurvey::keep(std::string_view text) {
  return keeps(text) ? text : kept_.emplace_back(text);
}

// By std::less, which orders pointers of different texts too.
bool ZmConfigSurvey::keeps(std::string_view text) const {
  const std::string_view all = this->text();
  return std::less_equal<>()(all.data(), text.data()) &&
         std::less_equal<>()(text.data() + text.size(), all.data() + all.size());
}

// ---- Comments ----

void ZmConfigSurvey::comment(std::size_t at) {
  constexpr std::string_view kMark = "zmconfigcheck:", kIgnore = "ignore";
  constexpr ZmCharSet kBehind(" \t,\r\n");
  if (text().size() < places_.size()) comments_.push_back(at);
  ZmTextCursor in(text().substr(at + 1));
  in.skip(kBlank);
  if (in.rest().starts_with(kMark)) {
    in.take(kMark.size());
    in.skip(kBlank);
    const std::string_view rest = in.rest();
    if (rest.starts_with(kIgnore) && (rest == kIgnore || kBehind.has(rest[kIgnore.size()])))
      return silence(at, named(text().size() - in.left() + kIgnore.size(), line_end(at)));
  }
  // On a silenced line a comment of any other kind may still pass the silence on.
  if (!silences_.empty() && silences_.back().to > at) silence(at, 0);
}

// The rules that a comment names.
std::uint32_t ZmConfigSurvey::named(std::size_t from, std::size_t to) {
  constexpr ZmCharSet kBetween(" \t,");
  std::uint32_t named = 0;
  ZmTextCursor in(text().substr(from, to - from));
  for (in.skip(kBetween); !in.eof(); in.skip(kBetween)) {
    const std::size_t place = to - in.left();
    const std::string_view name = in.until(kBetween);
    const auto rule = std::ranges::find(rules_, name, [](const Rule& r) { return r.rule.name; });
    if (rule == rules_.end()) {
      unknown_.push_back({place, name});
    } else {
      named |= 1U << (rule - rules_.begin());
    }
  }
  return named;
}

// On the line of the comment, or on the next one when nothing else stands there. Where that holds
// a comment only, too, the one behind it counts: comments may stand one above the other.
void ZmConfigSurvey::silence(std::size_t at, std::uint32_t rules) {
  const std::size_t start = text().find_last_of(kLineEnd, at) + 1;  // without one: from 0 on
  const bool alone =
      text().substr(start, at - start).find_first_not_of(" \t") == std::string_view::npos;
  const std::size_t end = line_end(at);
  if (!alone) return silences_.push_back({start, end, rules});
  const std::size_t next = end + (text().substr(end, 2) == kLineEnd ? 2 : 1);
  const std::size_t behind = line_end(next);
  if (silences_.empty() || silences_.back().to != end)
    return silences_.push_back({next, behind, rules});
  silences_.back().to = behind;
  silences_.back().rules |= rules;
}

// A value of several lines, in which no comment can stand, is silenced as one line.
void ZmConfigSurvey::silence(const ZmConfigLine& line, std::size_t end) {
  const std::size_t at = std::min(line.label_at, line.qualifier_at);
  const std::string_view written = text().substr(at, end - at);
  if (silences_.empty() || written.find_first_of(kLineEnd) == written.npos) return;
  const std::size_t last = line_end(end);
  const std::size_t start = text().find_last_of(kLineEnd, at) + 1;
  for (auto silence = silences_.rbegin(); silence != silences_.rend() && silence->to >= at;
       ++silence) {
    if (silence->from > last) continue;
    silence->from = std::min(silence->from, start);
    silence->to = std::max(silence->to, last);
  }
}

bool ZmConfigSurvey::silenced(const Found& found) const {
  const std::uint32_t bit = 1U << (found.rule - rules_.data());
  const auto after = std::ranges::upper_bound(silences_, found.mark.at, {}, &Silence::from);
  // Of two comments, one above the line and one on it, both count.
  for (auto at = after; at != silences_.begin() && after - at < 2;) {
    --at;
    if (found.mark.at <= at->to && (at->rules & bit)) return true;
  }
  return false;
}

// ---- Expanding ----

// Fibonacci hashing (D. Knuth, "The Art of Computer Programming", vol. 3, 6.4): std::hash may leave
// numbers as they are, and those of one file differ in few bits.
std::size_t ZmConfigSurvey::SpotHash::operator()(const Spot& spot) const {
  const auto place = std::uint64_t{spot.written} << 32 | spot.number;
  return std::hash<std::uint64_t>()((place ^ reinterpret_cast<std::uintptr_t>(spot.rule)) *
                                    0x9e3779b97f4a7c15U);
}

void ZmConfigSurvey::use(const ZmConfigUse& use) {
  const auto met = referring_.find(use.option);
  if (met == referring_.end() || met->second.expanded) return;
  std::uint32_t& judged = met->second.judged;
  if (!use.piece.qualified || use.number >= judged)
    for (const Rule* rule : rules_of<ZmUseRule>()) judge(*rule, use, met->second.written);
  if (use.piece.qualified) judged = std::max(judged, narrow(use.number) + 1);
  if (!use.circle) return;
  std::vector<Edge>& edges = edges_[use.option];
  if (!edges.empty() && edges.back().number >= use.number) return;  // it is read once more
  edges.push_back({use.piece.value, narrow(use.number), std::string(use.home),
                   std::string(use.piece.section) + "." + std::string(use.piece.label)});
}

// The text costs more than the verdict, and there may be thousands of sections with the same line:
// it is made for the first one, and again only where each has a text of its own.
void ZmConfigSurvey::judge(const Rule& rule, const ZmConfigUse& use, std::uint32_t written) {
  const auto find = std::get<ZmUseRule>(rule.find);
  const Spot spot{written, narrow(use.number), &rule};
  const std::string_view section = use.piece.qualified ? use.home : use.scope;
  const ZmVerdict found = find(*this, use, nullptr);
  if (found == ZmVerdict::kFine) verdicts_[spot].resolved = true;
  if (found != ZmVerdict::kFault) return;
  Verdict& verdict = verdicts_[spot];
  if (verdict.failed == 0) {
    verdict.first = section;
  } else if (verdict.last == section) {
    return;
  }
  if (verdict.failed == 0 || written_[written].local) find(*this, use, &verdict.text);
  ++verdict.failed;
  verdict.last = section;
}

void ZmConfigSurvey::circle(const ZmString& option) { circles_.push_back(&option); }

void ZmConfigSurvey::expanded(const ZmConfig&, const ZmString& value, std::string_view result) {
  constexpr std::size_t kLarge = std::size_t{1} << 20, kTimes = 100;
  Referring& option = referring_.at(&value);
  option.expanded = true;
  if (result.size() <= kLarge || result.size() / kTimes < written_[option.written].raw.size())
    return;
  std::size_t& grown = grown_[option.written];
  grown = std::max(grown, result.size());
}

// ---- Findings about references ----

// Where each byte of a value stands in the cleaned text. Made anew for lines with findings: kept
// for all lines, it would take up to four times the memory of the file.
std::vector<std::uint32_t> ZmConfigSurvey::offsets(const Written& written) const {
  std::vector<std::uint32_t> offsets;
  offsets.reserve(written.raw.size() + 1);
  const auto walk = [&](std::string_view token, std::size_t at) {
    for (const char c : token) {
      while (at + 1 < written.end && text()[at] != c) ++at;  // a backslash that goes
      offsets.push_back(narrow(at++));
    }
  };
  if (keeps(written.raw)) {
    walk(written.raw, static_cast<std::size_t>(written.raw.data() - text().data()));
  } else {
    ZmConfigScanner scanner(text().substr(written.value_at, written.end - written.value_at));
    ZmConfigToken token;
    // Tokens of a quoted text that are still to come, content and closing quote: "{" is no brace
    // there.
    int quoted = starts(written.value_at, '"') && scanner.next(token) ? 2 : 0;
    while (offsets.size() < written.raw.size() && scanner.next(token)) {
      const std::size_t at = written.value_at + token.offset;
      walk(token.text, at + (quoted == 0 && starts(at, '{')));
      quoted = quoted > 0 ? quoted - 1 : starts(at, '"') ? 2 : 0;
    }
  }
  offsets.resize(written.raw.size() + 1, written.end);
  return offsets;
}

// Where the references of a line stand, in their order.
std::vector<ZmConfigSurvey::Mark> ZmConfigSurvey::references(const Written& written,
                                                             std::string_view home) const {
  std::vector<Mark> marks;
  const std::vector<std::uint32_t> at = offsets(written);
  const ZmConfigScope scope{sections_, home, section(home)};
  for (ZmTextCursor in(written.raw); !in.eof();) {
    const std::size_t from = written.raw.size() - in.left();
    const ZmConfigPiece piece = scope.next(in, home);
    if (written.raw[from] != '$') continue;
    const std::size_t last = written.raw.size() - in.left() - piece.lost.size() - 1;
    marks.push_back({at[from], at[last] + 1 - at[from], {}});
  }
  return marks;
}

void ZmConfigSurvey::verdicts() {
  std::vector<std::pair<Spot, Verdict*>> failed;
  for (auto& [spot, verdict] : verdicts_)
    if (verdict.failed > 0) failed.emplace_back(spot, &verdict);
  // By lines, so that the references of each are looked for once.
  std::ranges::sort(failed, {}, [](const auto& f) {
    return std::tuple(f.first.written, f.first.number, f.first.rule);
  });
  std::vector<Mark> marks;
  std::uint32_t known = kNone;
  for (auto& [spot, verdict] : failed) {
    const Written& written = written_[spot.written];
    if (spot.written != known) marks = references(written, verdict->first);
    known = spot.written;
    Mark mark = spot.number < marks.size() ? marks[spot.number] : Mark{written.value_at, 1, {}};
    mark.text = std::move(verdict->text);
    found_.push_back({spot.rule,
                      verdict->resolved,
                      std::move(mark),
                      {},
                      std::move(verdict->last),
                      verdict->failed});
  }
}

// ---- Circles ----

// One reference of a loop, and the option that holds it.
struct ZmConfigSurvey::Step {
  const ZmString* from;
  const Edge* edge;
};

// Each circle by a shortest loop through the option that was met first. Many sections may have the
// same ones: one finding for each place.
void ZmConfigSurvey::loops() {
  std::unordered_set<const ZmString*> done;
  std::unordered_map<std::uint64_t, std::size_t> told;  // places and their findings
  for (auto first = circles_.rbegin(); first != circles_.rend(); ++first) {  // as in the file
    if (done.contains(*first)) continue;
    const std::vector<Step> steps = loop(*first, done);
    if (steps.empty()) continue;
    const Step& closing = steps.back();
    const std::uint32_t line = referring(*closing.from).written;
    const auto [at, made] =
        told.try_emplace(std::uint64_t{line} << 32 | closing.edge->number, found_.size());
    if (made) {
      tell(steps);
    } else {
      ++found_[at->second].sections;
    }
  }
}

// The steps from an option back to itself; what was met on the way is done. Breadth first: no loop
// through it is shorter than the first one that is found.
std::vector<ZmConfigSurvey::Step> ZmConfigSurvey::loop(
    const ZmString* first, std::unordered_set<const ZmString*>& done) const {
  std::unordered_map<const ZmString*, Step> came;
  std::deque<const ZmString*> next{first};
  done.insert(first);
  for (; !next.empty() && !came.contains(first); next.pop_front()) {
    const auto edges = edges_.find(next.front());
    if (edges == edges_.end()) continue;
    for (const Edge& edge : edges->second) {
      if (came.try_emplace(edge.to, Step{next.front(), &edge}).second) next.push_back(edge.to);
      done.insert(edge.to);
    }
  }
  std::vector<Step> steps;
  for (auto at = came.find(first); at != came.end(); at = came.find(steps.back().from)) {
    steps.push_back(at->second);
    if (steps.back().from == first) break;
  }
  std::ranges::reverse(steps);
  return steps;
}

void ZmConfigSurvey::tell(const std::vector<Step>& steps) {
  std::vector<Mark> notes;
  for (const Step& step : steps) {
    const Written& written = written_[referring(*step.from).written];
    const std::vector<Mark> marks = references(written, step.edge->home);
    Mark mark =
        step.edge->number < marks.size() ? marks[step.edge->number] : Mark{written.value_at, 1, {}};
    mark.text = zm_shown(step.edge->home + "." + std::string(written.label)) + " refers to " +
                zm_shown(step.edge->label);
    notes.push_back(std::move(mark));
  }
  const Edge& last = *steps.back().edge;
  const Mark closing{notes.back().at, notes.back().length,
                     zm_shown(last.label) + " leads back to itself: the references give nothing"};
  found_.push_back({asked_, false, closing, std::move(notes), last.home, 1});
}

// ---- What is known ----

// Whether every option without references is what its line says. The others have been expanded: a
// history checks what came of one.
bool ZmConfigSurvey::consistent() const {
  for (const auto& [section, known] : known_) {
    if (known.options.size() != static_cast<std::size_t>(section->length())) return false;
    int label = 0;
    for (const Source& source : known.options) {
      const Written& line = written_[source.written];
      if (!line.refers && line.raw != zm_view(section->value(label))) return false;
      ++label;
    }
  }
  return true;
}

const ZmConfigSurvey::Heading* ZmConfigSurvey::heading(const ZmConfig& section) const {
  const auto known = known_.find(&section);
  const bool headed = known != known_.end() && known->second.heading != kNone;
  return headed ? &headings_[known->second.heading] : nullptr;
}

std::vector<std::pair<const ZmConfig*, std::uint32_t>> ZmConfigSurvey::made() const {
  std::vector<std::pair<const ZmConfig*, std::uint32_t>> all;
  for (const auto& [section, known] : known_)
    if (known.heading == kNone && known.maker != kNone) all.emplace_back(section, known.maker);
  return all;
}

std::size_t ZmConfigSurvey::beginning(const ZmConfig& section) const {
  if (const Heading* home = heading(section)) return home->at;
  const auto known = known_.find(&section);
  if (known != known_.end() && known->second.maker != kNone)
    return written_[known->second.maker].qualifier_at;
  return written_.empty() ? 0 : written_.front().label_at;  // the default section
}
