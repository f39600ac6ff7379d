#ifndef ZM_CONFIG_CHECK_TYPES_H
#define ZM_CONFIG_CHECK_TYPES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class ZmConfig;

/// The types of what ZmConfigCheck gives, known to programs by its name: ZmConfigCheck::Finding.
struct ZmConfigCheckTypes {
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
    /// A section where it holds, as a rule the first of the file; empty: it is about the text.
    std::string section;
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
};

#endif
