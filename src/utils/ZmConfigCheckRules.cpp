#include "ZmConfigCheckRules.h"

#include <algorithm>

#include "ZmConfigSurvey.h"
#include "ZmRange.h"
#include "ZmText.h"
#include "ZmTextCursor.h"

namespace {

using Survey = ZmConfigSurvey;
using Part = ZmConfigPart;
constexpr auto kError = ZmConfigCheckTypes::Severity::kError;
constexpr auto kSilent = ZmVerdict::kSilent;
constexpr auto kFault = ZmVerdict::kFault;
constexpr auto kWarning = ZmConfigCheckTypes::Severity::kWarning;
constexpr ZmCharSet kSpace(" \t"), kSign(" \t\r.{}\\$"), kDigit("0123456789"), kClose("]"),
    kBehind(" \t\r\n"), kItem(",[");
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kLongest = 256;  // of what is advised: it may be as long as the file
constexpr ZmCharSet kName("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-");

std::string counted(std::size_t n, const std::string& one) {
  return std::to_string(n) + " " + one + (n == 1 ? "" : "s");
}

// ---- Reading ----

// How much of its line a name takes that begins there: in quotes with these, and at least a byte.
std::size_t marked(const Survey& survey, std::size_t at, std::string_view name) {
  const std::size_t quotes = survey.text().substr(at, 1) == "\"" ? 2 : 0;
  const std::string_view text = survey.text().substr(at, name.size() + quotes);
  return std::max<std::size_t>(1, std::min(text.find_first_of(kLineEnd), text.size()));
}

// The words before a "=" that is still to come on the line, when they are plain ones.
std::string_view words(std::string_view line) {
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) return {};
  std::string_view text = line.substr(0, equals);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return std::ranges::all_of(text, [](char c) { return c == ' ' || kName.has(c); }) ? text : "";
}

std::size_t lines_below(const Survey& survey, std::size_t at) {
  const long below = survey.places().lines() - survey.places().at(at).line;
  // A line end at the very end begins a line in which nothing stands.
  const bool last = survey.text().ends_with('\n') || survey.text().ends_with('\r');
  return static_cast<std::size_t>(std::max(0L, below - (last ? 1 : 0)));
}

void reading_stops(Survey& survey, const ZmConfigStop& stop) {
  if (stop.at >= survey.text().size()) return;  // only blanks
  const std::size_t below = lines_below(survey, stop.at);
  std::string text = zm_shown(stop.name) +
                     (stop.equals ? " has no value" : " is not followed by \"=\"") +
                     ": reading stops";
  if (below > 0) {
    text += ", the " + (below == 1 ? "line" : counted(below, "line")) + " below " +
            (below == 1 ? "is" : "are") + " ignored";
  }
  std::vector<Survey::Mark> notes;
  const std::string_view line = survey.text().substr(stop.at, survey.line_end(stop.at) - stop.at);
  const std::string_view name = words(line);
  if (name.find(' ') != std::string_view::npos && name.size() <= kLongest) {
    std::string joined(name);
    std::erase(joined, ' ');
    notes.push_back(
        {stop.at, name.size(), "write " + joined + ", or " + zm_shown(name) + " in quotes"});
  }
  survey.report(stop.at, marked(survey, stop.at, stop.name), text, notes);
}

// A lone line end in quotes or braces is a value. Else it is the first byte of the value, and the
// next line the rest.
void empty_value(Survey& survey, const ZmConfigStatement& it) {
  if (!it.value.front().token.endsline() || it.value.front().kind != Part::kPlain) return;
  std::string_view taken = it.line.value.substr(1);
  survey.report(it.line.label_at, marked(survey, it.line.label_at, it.line.label),
                zm_shown(it.line.label) + " has no value: " +
                    (taken.empty() ? "it gets the line end"
                                   : "the next line, " + zm_shown(taken) + ", is taken for it"));
}

void unclosed_header(Survey& survey, const ZmConfigHeading& it) {
  if (!it.closed)
    survey.report(it.at, 1, "the header is never closed: the rest of the file is its name");
}

void unclosed_brace(Survey& survey) {
  if (survey.unclosed() != ZmConfigScanner::kNone)
    survey.report(survey.unclosed(), 1, "the brace is never closed: the rest of the file is in it");
}

// The scanner gives every quoted text a closing quote: only the text tells whether there is one.
void unclosed_quote(Survey& survey, const Part& part) {
  if (part.kind != Part::kClose || survey.text().substr(part.token.offset, 1) == "\"") return;
  survey.report(survey.quote(), 1, "the quote is not closed: the line end closes it");
}

// A "\}" closes one, too.
void nested_brace(Survey& survey, const Part& part) {
  if (part.kind != Part::kBraced || part.token.offset == survey.unclosed()) return;
  std::size_t at = part.token.offset + 1, outer = at;
  int depth = 0;
  for (char last = '{'; survey.text()[at] != '}' || last == '\\'; last = survey.text()[at++]) {
    if (survey.text()[at] == '{' && depth++ == 0) outer = at;
    if (survey.text()[at] == '}' && depth > 0) --depth;
  }
  if (depth > 0) survey.report(outer, 1, "braces don't nest: the value ends at the first \"}\"");
}

// Once a line, but neither behind the end of the reading nor in comments, where nothing is lost.
void dropped_bytes(Survey& survey) {
  const ZmConfigPlaces& places = survey.places();
  const long last = survey.stopped() ? places.at(survey.stop_end()).line : places.lines();
  for (long line = 1; line <= last; ++line) {
    const std::size_t at = places.dropped(line);
    if (at == std::string_view::npos) continue;
    const std::size_t cleaned = places.cleaned(at);
    if (!survey.commented(cleaned))
      survey.report_dropped(cleaned, at, "the reader drops what is no printable ASCII");
  }
}

// ---- Options ----

// Blanks inside of quotes further on in the value are kept, so those before a content or its
// closing quote don't count. A value that begins with the line end is told as an empty one.
void joined_words(Survey& survey, const ZmConfigStatement& it) {
  if (it.quoted() || it.value.front().token.endsline()) return;
  for (const Part& part : it.value.subspan(1)) {
    const bool inside = part.kind == Part::kContent || part.kind == Part::kClose;
    const bool end = part.token.offset >= survey.text().size();  // blanks at the very end
    if (inside || end || !kSpace.has(survey.text()[part.token.offset - 1])) continue;
    return survey.report(
        it.line.value_at, it.end - it.line.value_at,
        "the blanks between the words are lost: the value is " + zm_shown(it.line.value));
  }
}

// Behind a blank, or a value in quotes or braces, a comment is meant as one. A line end before it
// is one that has closed a quote.
void cut_by_comment(Survey& survey, const ZmConfigStatement& it) {
  const std::size_t at = survey.comment();
  const bool plain = it.value.front().kind == Part::kPlain;
  if (!plain || at == ZmConfigScanner::kNone || at <= it.line.value_at) return;
  if (!kBehind.has(survey.text()[at - 1]))
    survey.report(at, survey.line_end(at) - at, "a comment starts here, right behind the value");
}

// An option that is set again under another header is how a host differs from its pattern.
void repeated_option(Survey& survey, const ZmConfigStatement& it) {
  if (it.line.qualifier_at != ZmConfigLine::kNone) return;
  const std::uint32_t number = survey.first(it.line.label);
  if (number == Survey::kNone) return;
  const auto& first = survey.written(number);
  survey.report(
      it.line.label_at, marked(survey, it.line.label_at, it.line.label),
      zm_shown(it.line.label) +
          (survey.headings().empty() ? " has been set above" : " has been set under this header"),
      {{first.label_at, marked(survey, first.label_at, first.label), "it is set here"}});
}

// Asked at the end, as the next one and missing_parent() are: the section may stand further down.
void dotted_name(Survey& survey) {
  for (const std::uint32_t number : survey.dotted()) {
    const auto& written = survey.written(number);
    const std::string_view label = written.label.substr(0, kLongest);
    std::size_t period = label.find('.');
    while (period != label.npos && !survey.section(label.substr(0, period)))
      period = label.find('.', period + 1);
    if (period == label.npos) continue;
    survey.report(written.label_at, marked(survey, written.label_at, written.label),
                  zm_shown(written.label) + " is the name of an option, not an option of section " +
                      zm_shown(label.substr(0, period)));
  }
}

void created_by_qualifier(Survey& survey) {
  for (const auto& [section, number] : survey.made()) {
    const std::string_view name = zm_view(section->name());
    survey.report(survey.written(number).qualifier_at, name.size(),
                  "no header names section " + zm_shown(name) + ": it is made here");
  }
}

void growth(Survey& survey) {
  for (const auto& [number, size] : survey.grown()) {
    const auto& written = survey.written(number);
    survey.report(written.label_at, written.label.size(),
                  zm_shown(written.label) + " grows from " + counted(written.raw.size(), "byte") +
                      " to " + std::to_string(size));
  }
}

// ---- Sections ----

void missing_parent(Survey& survey) {
  for (const auto& [at, name] : survey.missing())
    survey.report(at, name.size(),
                  survey.section(name)
                      ? "parent " + zm_shown(name) + " stands further down: it has no options yet"
                      : "there is no section " + zm_shown(name) + " to inherit from");
}

// Blanks in the header are missing in the name, and so in the length of what is marked.
void empty_pattern(Survey& survey, const ZmConfigHeading& it) {
  if (it.names.length() == 0)
    survey.report(it.at, it.name.size() + 2,
                  "the header stands for no section: its options are lost");
}

// What is odd about the name of a section; empty when nothing is.
std::string odd(std::string_view name) {
  if (name.find_first_of("[]") != std::string_view::npos)
    return "section " + zm_shown(name) + " still has a bracket in its name";
  if (name == "_") return "\"$_\" is no reference to section \"_\"";
  const bool blank = name.find_first_not_of(" \t\r\n") == std::string_view::npos;
  return blank || name == "self" || name == "this"
             ? "no reference can name section " + zm_shown(name)
             : "";
}

void odd_section_name(Survey& survey, const ZmConfigHeading& it) {
  for (int i = 0; i < it.names.length(); ++i) {
    std::string text = odd(zm_view(*it.names.get(i)));
    if (!text.empty()) return survey.report(it.at, it.name.size() + 2, std::move(text));
  }
}

bool padded(std::string_view number) { return number.size() > 1 && number[0] == '0'; }

// The numbers of a range, but for steps. It ends where no range goes on.
std::vector<std::string_view> numbers(std::string_view text) {
  std::vector<std::string_view> found;
  std::string_view before;
  text = text.substr(0, text.find_first_not_of("0123456789-,xX \t\r\n"));
  for (ZmTextCursor in(text); !in.eof(); before = in.take()) {
    const std::string_view digits = in.skip(kDigit);
    if (!digits.empty() && before != "x" && before != "X") found.push_back(digits);
  }
  return found;
}

// Past the comma behind an item of a list. Brackets behind its first ones are not expanded.
void skip_item(ZmTextCursor& in) {
  for (in.until(kItem); in.accept('['); in.until(kItem)) in.until(kClose);
  in.accept(',');
}

void lost_padding(Survey& survey, const ZmConfigHeading& it) {
  if (it.name.find_first_of("[0") == std::string_view::npos) return;
  const std::size_t length = it.name.size() + 2;
  if (ZmRange::isrange(zm_string(it.name))) {
    if (std::ranges::any_of(numbers(it.name), padded))
      survey.report(it.at, length, "bare numbers lose their leading zeros");
    return;
  }
  for (ZmTextCursor in(it.name); !in.eof(); skip_item(in)) {
    in.until(kItem);
    if (!in.accept('[')) continue;
    const auto range = numbers(in.until(kClose));
    const auto wider = std::ranges::find_if(range, [&](std::string_view number) {
      return padded(number) && number.size() > range.front().size();
    });
    if (wider == range.end()) continue;
    return survey.report(it.at, length,
                         "names are padded like the first number, " + zm_shown(range.front()) +
                             ", not like " + zm_shown(*wider));
  }
}

// ---- References ----

bool named(std::string_view word) { return !word.empty() && !kSign.has(word[0]); }

// The word of an unqualified reference, or the section of one.
std::string_view word(const ZmConfigPiece& piece) {
  return piece.qualified ? piece.section : piece.label;
}

// Such a reference is told by its own rule only; those about what is undefined or swallowed leave
// it alone.
bool dangling(const ZmConfigPiece& piece) {
  return !named(word(piece)) || (piece.qualified && piece.known && !named(piece.label));
}

ZmVerdict dangling_dollar(const Survey&, const ZmConfigUse& use, std::string* text) {
  if (!dangling(use.piece)) return kSilent;
  if (!text) return kFault;
  *text = "the \"$\" names no option and vanishes";
  const std::string_view lost = use.piece.lost;
  if (lost.find_first_not_of(" \t\r\n") != std::string_view::npos)
    *text += ", and " + zm_shown(lost) + " behind it";
  return kFault;
}

// How much of a word is the name of an option. From the longest name on, and never inside a word:
// "$rooted" is no "$root". Each try hashes a name, hence the limit.
std::size_t known_part(const ZmConfig* section, std::string_view word) {
  word = word.substr(0, kLongest);
  for (std::size_t i = word.size(); section && i > 0; --i) {
    if (i < word.size() && kName.has(word[i]) && word[i] != '-') continue;
    const std::string_view name = word.substr(0, i);
    if (name == "_" || section->find(name)) return i;
  }
  return 0;
}

// How to write a reference that ends before the rest of its word. In a value in braces, which may
// have several lines, a "}" has to be written as "\}".
std::string advised(const Survey& survey, const ZmConfigUse& use, std::string_view name,
                    std::string_view rest) {
  const bool braced = survey.braced(*use.option);
  rest = rest.substr(0, std::min(rest.find_first_of(kLineEnd), kLongest));
  return ": write \"${" + std::string(name) + (braced ? "\\}" : "}") + std::string(rest) +
         (braced ? "\"" : "\" in quotes");
}

ZmVerdict undefined_section(const Survey& survey, const ZmConfigUse& use, std::string* text) {
  if (dangling(use.piece) || use.piece.known) return kSilent;
  if (!text) return kFault;
  *text = "there is no section " + zm_shown(use.piece.section);
  // "$self" in a section with a period in its name, as hosts have them.
  if (use.home.starts_with(std::string(use.piece.section) + "."))
    *text += ": the period in " + zm_shown(use.home) + " ends a name";
  // In "$file.log" the option "file" may be meant, but the period makes it the name of a section.
  const std::string_view name = use.piece.section.substr(0, kLongest);
  if (const std::size_t n = known_part(survey.section(use.scope), name); n > 0)
    *text += advised(survey, use, name.substr(0, n), name.substr(n)) + " for the option";
  return kFault;
}

// Only what is looked up in its own section may be there in one section and not in the next; one
// that is missing in a named section is missing for all.
ZmVerdict undefined_option(const Survey& survey, const ZmConfigUse& use, std::string* text) {
  const ZmConfigPiece& piece = use.piece;
  if (dangling(piece) || !piece.known || piece.label == "_") return kSilent;
  const bool own = !piece.qualified || piece.section == use.home;
  if (piece.value) return own ? ZmVerdict::kFine : kSilent;
  if (!text) return kFault;
  *text = (own ? "the section" : "section " + zm_shown(piece.section)) + " has no option " +
          zm_shown(piece.label);
  const std::size_t n = known_part(survey.section(piece.section), piece.label);
  if (n == 0) return kFault;
  const std::string section(own ? "self" : piece.section);
  *text += advised(survey, use,
                   (piece.qualified ? section + "." : "") + std::string(piece.label.substr(0, n)),
                   piece.label.substr(n));
  return kFault;
}

// Only an unqualified reference copies an option as it is stored; of a qualified one it takes what
// the option expands to.
ZmVerdict unexpanded_value(const Survey&, const ZmConfigUse& use, std::string* text) {
  const ZmConfigPiece& piece = use.piece;
  if (piece.qualified || !piece.value || !zm_has_reference(zm_view(*piece.value))) return kSilent;
  if (text)
    *text = piece.value == use.option
                ? zm_shown(piece.label) + " copies itself: the value still holds a \"$\""
                : zm_shown(piece.label) +
                      " is copied before it is expanded: the value still holds a \"$\"";
  return kFault;
}

// What is undefined has a remedy of its own.
ZmVerdict swallowed_text(const Survey& survey, const ZmConfigUse& use, std::string* text) {
  const ZmConfigPiece& piece = use.piece;
  if (dangling(piece) || piece.lost.empty()) return kSilent;
  if (!text) return kFault;
  *text = "the reference swallows " + zm_shown(piece.lost) + " behind it";
  if (piece.value || piece.label == "_")
    *text += advised(survey, use, piece.label.substr(0, kLongest), {});
  return kFault;
}

void reference_cycle(Survey& survey) { survey.loops(); }

void unknown_rule(Survey& survey) {
  for (const auto& [at, name] : survey.unknown())
    survey.report(at, name.size(), "there is no rule " + zm_shown(name));
}

// The names are for options of programs and for comments: they stay as they are. There may be 32, a
// bit each for what a comment silences. Findings at one place have the order of this table.
const ZmConfigCheckRule kRules[] = {
    {{"reading-stops", kError,
      "A line that is no option ends the reading; what follows is ignored.",
      "[farm]\nmax jobs = 2\nroot = /srv\n",
      "Write the name in one word or in quotes, with \"=\" behind it."},
     reading_stops},
    {{"empty-value", kError, "Nothing stands behind \"=\", so the following line is the value.",
      "[farm]\nproxy =\nroot = /srv\n", "Write \"\" for an empty value."},
     empty_value},
    {{"unclosed-header", kError, "A \"[\" that is never closed.", "[farm\nroot = /srv\n",
      "Close the header with \"]\"."},
     unclosed_header},
    {{"unclosed-brace", kError, "A \"{\" that is never closed.",
      "[farm]\nmotd = {Welcome\nroot = /srv\n", "Close the value with \"}\"."},
     unclosed_brace},
    {{"unclosed-quote", kWarning, "A quoted text that its line end closes.",
      "[farm]\nlabel = \"fast box\n", "Close it with a quote; braces may hold several lines."},
     unclosed_quote},
    {{"nested-brace", kWarning, "A \"{\" in a value in braces, which ends at the first \"}\".",
      "[farm]\nmotd = {ask {room 12} first}\n", "Write \"\\}\" for a brace as text."},
     nested_brace},
    {{"missing-parent", kError, "A parent that has no section yet.",
      "[node1] : base\n[base]\nroot = /srv\n", "Define the parent above its children."},
     missing_parent},
    {{"undefined-section", kError, "A qualified reference to a section that does not exist.",
      "[farm]\nlog = $base.log\n", "Name a section of this file."},
     undefined_section},
    {{"undefined-option", kError, "A reference to an option that the section does not have.",
      "[farm]\nroot = /srv\nlog = $root/log\n",
      "Name an option of the section; \"${root}/log\" in quotes shows where it ends."},
     undefined_option},
    {{"reference-cycle", kError, "An option that leads back to itself.",
      "[farm]\na = $farm.b\nb = $farm.a\n", "Give one of them a value of its own."},
     reference_cycle},
    {{"unexpanded-value", kError,
      "A value that still holds a reference: it copied an option expanded later.",
      "[farm]\nlog = $root\nroot = $farm.disk\ndisk = /srv\n",
      "Set the other option above, or qualify the reference: $self.root."},
     unexpanded_value},
    {{"swallowed-text", kWarning, "An unqualified reference that swallows what follows it.",
      "[farm]\na = 1\nb = 2\nboth = \"$a $b\"\n", "Write \"${a} ${b}\" in quotes."},
     swallowed_text},
    {{"dangling-dollar", kWarning, "A \"$\" that names nothing and vanishes.",
      "[farm]\nprice = \"5 $\"\n", "Leave it out: a value can't hold a \"$\"."},
     dangling_dollar},
    {{"joined-words", kWarning, "An unquoted value that loses the blanks between its words.",
      "[farm]\nlabel = fast box\n", "Put the value in quotes."},
     joined_words},
    {{"cut-by-comment", kWarning, "A \"#\" that touches the unquoted value that it ends.",
      "[farm]\nlabel = box#5\n", "Put the value in quotes, or a blank before the comment."},
     cut_by_comment},
    {{"dropped-bytes", kWarning, "Bytes that the reader drops.",
      "[farm]\nlabel = \"caf\xc3\xa9\"\n", "Use printable ASCII."},
     dropped_bytes},
    {{"dotted-name", kWarning, "An option with the name of a section and a period in its name.",
      "[other]\nroot = /srv\n[farm]\nother.key = 1\n",
      "Set the period off by blanks: other . key = 1."},
     dotted_name},
    {{"created-by-qualifier", kWarning, "A qualifier that makes a section no header names.",
      "[farm]\nfram . key = 1\n", "Check the name, or give the section a header."},
     created_by_qualifier},
    {{"repeated-option", kWarning, "The same option twice under one header.",
      "[farm]\nthreads = 4\nthreads = 8\n", "Keep one; the last one counts."},
     repeated_option},
    {{"empty-pattern", kError, "A header that stands for no section, so its options are lost.",
      "[node[]]\nthreads = 4\n", "Give the brackets a range: [node[1-8]]."},
     empty_pattern},
    {{"odd-section-name", kWarning, "A section with a name that references can't use as such.",
      "[rack[1-2]node[1-2]]\nthreads = 4\n",
      "Choose another name; only the first range of a name is expanded."},
     odd_section_name},
    {{"lost-padding", kWarning, "Leading zeros in a header that are not in the names.",
      "[node[1-010]]\nthreads = 4\n", "Pad the first number: [node[001-010]]."},
     lost_padding},
    {{"growth", kWarning, "A value of more than 1 MiB, over 100 times its text.",
      "[farm]\na = 0123456789\n"
      "b = "
      "\"${self.a}${self.a}${self.a}${self.a}${self.a}${self.a}${self.a}${self.a}${self.a}${self.a}"
      "\"\n"
      "c = "
      "\"${self.b}${self.b}${self.b}${self.b}${self.b}${self.b}${self.b}${self.b}${self.b}${self.b}"
      "\"\n"
      "d = "
      "\"${self.c}${self.c}${self.c}${self.c}${self.c}${self.c}${self.c}${self.c}${self.c}${self.c}"
      "\"\n"
      "e = "
      "\"${self.d}${self.d}${self.d}${self.d}${self.d}${self.d}${self.d}${self.d}${self.d}${self.d}"
      "\"\n"
      "f = "
      "\"${self.e}${self.e}${self.e}${self.e}${self.e}${self.e}${self.e}${self.e}${self.e}${self.e}"
      "\"\n"
      "g = "
      "\"${self.f}${self.f}${self.f}${self.f}${self.f}${self.f}${self.f}${self.f}${self.f}${self.f}"
      "\"\n",
      "Check which references double it."},
     growth},
    {{"unknown-rule", kWarning, "A comment that ignores a rule that does not exist.",
      "[farm]\nthreads = 4  # zmconfigcheck: ignore empty-valve\n",
      "zmconfigcheck --rules lists the rules."},
     unknown_rule},
};

}  // namespace

std::span<const ZmConfigCheckRule> zm_config_check_rules() { return kRules; }
