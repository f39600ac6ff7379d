// Watches one reading of a macro configuration file, keeps what is known of each option and each
// header, and asks the rules about everything that comes by. Internal, under ZmConfigCheck.
#ifndef ZM_CONFIG_SURVEY_H
#define ZM_CONFIG_SURVEY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "ZmConfigCheckRule.h"
#include "ZmConfigHash.h"
#include "ZmConfigObserver.h"
#include "ZmConfigPlaces.h"
#include "ZmConfigScanner.h"

class ZmConfigSurvey : public ZmConfigObserver {
 public:
  using Rule = ZmConfigCheckRule;
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  // A header, or what stands for one above the first.
  struct Heading {
    std::uint32_t at;
    std::string name;
    const ZmConfig* first = nullptr;  // of its sections
    std::size_t sections = 0;
  };
  // An option as it is written.
  struct Written {
    std::string_view label;
    std::string_view raw;
    std::uint32_t heading;
    std::uint32_t label_at;
    std::uint32_t qualifier_at;
    std::uint32_t value_at;
    std::uint32_t end;  // of the value
    bool refers;        // the value holds a "$"
    bool local;         // and maybe "self" or "this", for each section its own name
  };
  // What an option of a section comes from.
  struct Source {
    std::uint32_t written = kNone;
    const ZmConfig* parent = nullptr;  // that it was copied from
  };
  struct Mark {
    std::size_t at;
    std::size_t length;
    std::string text;  // of a note
  };
  struct Found {
    const Rule* rule;
    bool lenient;  // a warning, although the rule is one about errors
    Mark mark;
    std::vector<Mark> notes;
    std::string section;
    std::size_t sections;
    std::size_t source = ZmConfigScanner::kNone;  // place of a byte that is not in the text
  };

  // Borrows both. Without rules it watches, and finds nothing.
  explicit ZmConfigSurvey(std::string_view source, std::span<const Rule> rules = {});

  // For rules: what they find goes to the rule that is being asked.
  void report(std::size_t at, std::size_t length, std::string text, std::vector<Mark> notes = {});
  std::string_view text() const { return scanner_.text(); }
  const ZmConfigPlaces& places() const { return places_; }
  const ZmConfigHash& sections() const { return sections_; }
  const ZmConfig* section(std::string_view name) const;
  const std::vector<Heading>& headings() const { return headings_; }
  const Written& written(std::uint32_t number) const { return written_[number]; }
  std::size_t comment() const { return comment_; }  // the last one, or ZmConfigScanner::kNone
  std::size_t line_end(std::size_t at) const;
  // The first line of the same header that set the label; kNone without one.
  std::uint32_t first(std::string_view label) const;

  struct Missing {
    std::size_t at;
    std::string_view name;
  };
  const std::vector<Missing>& missing() const { return missing_; }      // parents
  const std::vector<std::uint32_t>& dotted() const { return dotted_; }  // "." in the label
  const auto& grown() const { return grown_; }  // lines with a large value, and its length
  const std::vector<Missing>& unknown() const { return unknown_; }  // rules to be ignored
  std::size_t unclosed() const { return unclosed_; }                // a brace
  std::size_t quote() const { return quote_; }                      // the last one that opened
  bool stopped() const { return stop_ != ZmConfigScanner::kNone; }
  std::size_t stop_end() const { return stop_; }  // of the line that ended the reading
  bool commented(std::size_t at) const;
  void report_dropped(std::size_t at, std::size_t source, std::string text);
  // Whether the option, one with references, is written in braces.
  bool braced(const ZmString& option) const;
  void loops();  // reports circles

  // Reads the text, asks all rules and gives everything found, in the order of the text.
  std::vector<Found> run(bool lowercase);
  bool consistent() const;
  const Source& source(const ZmConfig& section, int label) const {
    return known_.at(&section).options[static_cast<std::size_t>(label)];
  }
  // The sections without a header that a qualifier made, and the lines where it did.
  std::vector<std::pair<const ZmConfig*, std::uint32_t>> made() const;
  // The heading that a section was first of; null without one.
  const Heading* heading(const ZmConfig& section) const;
  // Where the section begins: its first header, else the line that made it.
  std::size_t beginning(const ZmConfig& section) const;

  void token(const ZmConfigToken& token, const ZmConfigScanner& scanner) override;
  void header(const ZmConfigHeading& heading) override;
  void section(const ZmConfig& section, bool made) override;
  void parent(const ZmConfigToken& token, const ZmConfig* found) override;
  std::size_t option(const ZmConfigLine& line) override;
  void stop(const ZmConfigStop& stop) override;
  void stored(const ZmConfig& section, int label, const ZmConfig* parent,
              std::size_t number) override;
  void use(const ZmConfigUse& use) override;
  void circle(const ZmString& option) override;
  void expanded(const ZmConfig& section, const ZmString& value, std::string_view result) override;

 protected:
  // An option with references.
  struct Referring {
    std::uint32_t written;
    bool expanded = false;  // its text is no longer the one that was written
    // Of its qualified references, those up to this one have been judged: they mean the same in
    // every scope that the text is read in. Unqualified ones are judged in each.
    std::uint32_t judged = 0;
  };
  const Referring& referring(const ZmString& option) const { return referring_.at(&option); }
  std::string known_as(const ZmConfigToken& token) const;

 private:
  // Where references are judged: a "$" of a line.
  struct Spot {
    std::uint32_t written;
    std::uint32_t number;  // of the reference
    const Rule* rule;
    bool operator==(const Spot&) const = default;
  };
  struct SpotHash {
    std::size_t operator()(const Spot& spot) const;
  };
  struct Verdict {
    std::size_t failed = 0;  // in how many sections
    bool resolved = false;   // in some
    std::string text;
    std::string first;
    std::string last;  // section that was counted: as a rule the first of the file in the end
  };
  struct Edge {  // a reference that stays in a circle
    const ZmString* to;
    std::uint32_t number;
    std::string home;
    std::string label;
  };
  struct Known {                    // of a section
    std::uint32_t heading = kNone;  // the first one that it is of
    std::uint32_t counted = kNone;  // the last one: a header may name a section twice
    std::uint32_t maker = kNone;    // the line that made it by a qualifier
    std::vector<Source> options;    // by their positions
  };
  struct Silence {  // the lines between two places
    std::size_t from;
    std::size_t to;
    std::uint32_t rules;
  };

  template <class Find>
  const std::vector<const Rule*>& rules_of() const {
    return kinds_[decltype(Rule::find)(Find()).index()];
  }
  template <class Find, class... Thing>
  void ask(const Thing&... thing);
  void next();
  bool starts(std::size_t at, char c) const { return at < text().size() && text()[at] == c; }
  std::string_view keep(std::string_view text);
  bool keeps(std::string_view text) const;
  void comment(std::size_t at);
  void silence(std::size_t at, std::uint32_t rules);
  void silence(const ZmConfigLine& line, std::size_t end);
  std::uint32_t named(std::size_t from, std::size_t to);
  void judge(const Rule& rule, const ZmConfigUse& use, std::uint32_t written);
  void verdicts();
  struct Step;
  std::vector<Step> loop(const ZmString* first, std::unordered_set<const ZmString*>& done) const;
  void tell(const std::vector<Step>& steps);
  std::vector<std::uint32_t> offsets(const Written& written) const;
  std::vector<Mark> references(const Written& written, std::string_view home) const;
  bool silenced(const Found& found) const;

  ZmConfigHash sections_;
  ZmConfigScanner scanner_;  // gives the cleaned text
  ZmConfigPlaces places_;
  std::deque<std::string> kept_;  // texts that are no piece of the cleaned one
  std::span<const Rule> rules_;
  // The same by their kinds: most are asked about few things, and few about every token.
  std::array<std::vector<const Rule*>, std::variant_size_v<decltype(Rule::find)>> kinds_;
  const Rule* asked_ = nullptr;
  bool lowercase_ = false;

  std::vector<Heading> headings_;
  std::vector<Written> written_;
  std::unordered_map<const ZmConfig*, Known> known_;
  std::unordered_map<const ZmString*, Referring> referring_;
  bool heading_ = false;  // sections told are those of the last header

  std::vector<ZmConfigPart> pieces_;  // tokens since the last header or line
  ZmConfigPart::Kind last_ = ZmConfigPart::kPlain;
  std::size_t quote_ = 0;
  std::size_t comment_ = ZmConfigScanner::kNone;
  std::vector<std::size_t> comments_;  // only when bytes are dropped
  std::size_t unclosed_ = ZmConfigScanner::kNone;
  std::size_t stop_ = ZmConfigScanner::kNone;
  std::unordered_map<std::string_view, std::uint32_t> labels_;  // under the last header

  std::vector<Missing> missing_;
  std::vector<std::uint32_t> dotted_;
  std::vector<Missing> unknown_;
  std::vector<Silence> silences_;
  std::vector<Found> found_;
  std::unordered_map<Spot, Verdict, SpotHash> verdicts_;
  std::unordered_map<const ZmString*, std::vector<Edge>> edges_;
  std::vector<const ZmString*> circles_;
  std::unordered_map<std::uint32_t, std::size_t> grown_;  // lines, and sections with a grown value
};

#endif
