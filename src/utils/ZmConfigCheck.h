#ifndef ZM_CONFIG_CHECK_H
#define ZM_CONFIG_CHECK_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZmConfigHash.h"
#include "ZmExport.h"

class ZmConfigSurvey;

/// Tells what is wrong in a macro configuration file, where, and where each value comes from.
///
/// The format is silent: a line without "=" ends the file, an empty value takes the next line, a
/// misspelt reference reads as empty. This class watches ZmConfigFile's own reader at work and
/// judges what it sees by a table of rules:
///
///     if (const auto check = ZmConfigCheck::open("farm.conf"))
///       for (const auto& finding : check->findings())
///         std::cout << finding.place.line << ": " << finding.text << '\n';
///
/// There is one finding for each place of the text, however many sections share it. Lines and
/// columns count from 1, columns in bytes, in the text as it was given. One thread at a time.
class ZM_EXPORT ZmConfigCheck {
 public:
  /// How much a finding matters.
  enum class Severity { kWarning, kError };

  /// What may be wrong. The texts are for people.
  struct Rule {
    std::string_view name;      ///< As in "[reading-stops]".
    Severity severity;          ///< Of its findings, at most.
    std::string_view sentence;  ///< What is wrong.
    std::string_view example;   ///< A file that shows it.
    std::string_view remedy;    ///< What to do about it.
  };
  /// A part of one line of the text.
  struct Place {
    long line = 0;           ///< 0: the value has no place of its own.
    long column = 0;         ///< Of the first byte.
    std::size_t offset = 0;  ///< Of that byte in the text, from 0.
    std::size_t length = 0;  ///< In bytes; at least 1 is marked.
  };
  /// What helps to understand a finding.
  struct Note {
    Place place;       ///< Where to look.
    std::string text;  ///< What for.
  };
  /// One thing that is wrong.
  struct Finding {
    const Rule* rule;         ///< Of rules().
    Severity severity;        ///< The rule's, or less.
    Place place;              ///< The part of the text that it is about.
    std::string text;         ///< What is wrong there.
    std::vector<Note> notes;  ///< In the order in which they are read.
    std::string section;  ///< The first section met where it holds; empty: it is about the text.
    std::size_t sections = 0;  ///< In how many.
  };
  /// Where the value of an option comes from.
  struct Origin {
    Place label;                   ///< Where its name stands.
    Place value;                   ///< Where its value stands.
    std::string_view raw;          ///< The value as written, without quotes or braces.
    std::string_view written_for;  ///< The header, or the qualifier, that it stands under.
    const ZmConfig* parent;  ///< From which the section inherited it; null: it was written for it.
  };

  /// One setting of an option, and how it came to the section.
  struct Assignment {
    Place label;               ///< Where its name stands.
    Place value;               ///< Where its value stands.
    std::string raw;           ///< The value as written, without quotes or braces.
    std::string header;        ///< That was read last; empty above the first one.
    std::size_t sections = 0;  ///< For which it stands.
    std::string parent;        ///< From which the option was inherited; else empty.
    long line = 0;             ///< Of that header.
    bool qualified = false;    ///< The section stands before the option.
  };
  /// A reference that a value was made with.
  struct Reference {
    std::size_t depth = 0;  ///< 0: it stands in the value itself, else in one that that refers to.
    std::string section;    ///< To which it leads,
    std::string option;     ///< and to which option there; "_" stands for the section's name.
    Place place;            ///< Where that option is set; its line is 0 when it isn't.
    std::string value;      ///< What came of it.
    bool circle = false;    ///< It leads back to itself and gives nothing.
  };
  /// How an option got its value.
  struct History {
    std::string value;                    ///< As the section has it in the end.
    std::vector<Assignment> assignments;  ///< The oldest first; the last one counts.
    std::vector<Reference> references;    ///< In the order in which they are followed.
    unsigned char consistent = 1;         ///< As in consistent().
  };

  /// Every rule, in a fixed order.
  static const std::vector<const Rule*>& rules();
  /// The rule of this name; null when there is none.
  static const Rule* rule(std::string_view name);

  /// Reads and judges a file; null when it can't be opened or read to its end, or is too large for
  /// ZmConfigFile (see ZmFile). Pipes are read, too.
  static std::unique_ptr<ZmConfigCheck> open(const std::string& path, unsigned char lowercase = 0);
  /// The same for what is left of an open file, as standard input, which stays open.
  static std::unique_ptr<ZmConfigCheck> read(std::FILE* file, unsigned char lowercase = 0);
  /// Reads and judges the text, as ZmConfigFile would read it, `lowercase` included.
  explicit ZmConfigCheck(std::string text, unsigned char lowercase = 0);
  ~ZmConfigCheck();
  ZmConfigCheck(const ZmConfigCheck&) = delete;
  ZmConfigCheck& operator=(const ZmConfigCheck&) = delete;

  /// What was found, in the order of the text. Comments "# zmconfigcheck: ignore RULE" have been
  /// obeyed.
  const std::vector<Finding>& findings() const { return findings_; }
  /// The line that the place stands on, without its end.
  std::string_view line(const Place& place) const;
  /// Whether every option here is what its origin says. When not, there is a fault in this class.
  unsigned char consistent() const { return consistent_; }

  /// The sections as ZmConfigFile gives them; lent.
  const ZmConfigHash& sections() const;
  /// Where the option at this position of a section comes from.
  Origin origin(const ZmConfig& section, int label) const;
  /// How the option got its value. The text is read once more for it, and again for each level
  /// of references: 32 of them, deeper ones are not followed.
  History history(std::string_view section, std::string_view label) const;
  /// Who inherits from and refers to whom, in the DOT language: a node a header, solid arrows to
  /// parents and dashed ones to the sections that values refer to, in red what is missing and what
  /// leads back to itself. With `connected` only the nodes with arrows.
  ///
  /// @image html farm.svg "What dot draws of examples/farm.conf"
  std::string graph(unsigned char connected) const;
  /// Where the section begins: its first header, or the option that made it.
  Place place(const ZmConfig& section) const;

 private:
  std::string text_;
  std::unique_ptr<ZmConfigSurvey> survey_;
  std::vector<Finding> findings_;
  unsigned char lowercase_;
  unsigned char consistent_ = 1;
};

#endif
