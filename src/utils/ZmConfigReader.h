// One reading of a text into the sections of a ZmConfigFile. Internal.
#ifndef ZM_CONFIG_READER_H
#define ZM_CONFIG_READER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ZmConfigExpander.h"
#include "ZmConfigHash.h"
#include "ZmConfigScanner.h"
#include "ZmString.h"

// Lives for one parse() call and borrows everything it is given.
class ZmConfigReader {
 public:
  ZmConfigReader(ZmConfigHash& sections, const ZmString& default_section, bool lowercase,
                 std::string_view text)
      : sections_(sections),
        default_section_(default_section),
        lowercase_(lowercase),
        scanner_(text) {}

  // Reads up to the end, or to the first line that is no option, and expands what it has read.
  void run();

 private:
  static constexpr std::size_t kNone = ~std::size_t{0};
  // A section that receives options.
  struct Target {
    ZmConfig* config;
    std::size_t created;    // its index among the created ones, or kNone: it was there before
    std::string_view name;  // under which the file knows it, whatever it is called by now
  };
  // An option on its way into sections.
  struct Option {
    Option(std::string_view label, std::string_view value);
    std::string_view label;
    std::string_view value;
    ZmBaseHashTable::Hash hash;  // of the label
    bool references;             // whether the value holds any
    bool local;                  // whether they name "self" or "this"
  };
  // A section made by this reading.
  struct Created {
    ZmConfig* config;
    std::size_t reference = kNone;  // the last one stored in it
  };
  // A new option with references, at position `label` of its section.
  struct Reference {
    int label;
    std::size_t before;  // the one stored in the same section before, or kNone
  };

  void advance() { more_ = scanner_.next(token_); }
  bool skiplines();
  void header();
  void parents(std::string_view header);
  void inherit(const ZmConfig& parent);
  bool option();
  std::string_view name(std::string& longer);
  std::string_view joined(bool quoted, std::string& longer);
  void flush();
  void spread(const std::vector<Option>& options, const ZmConfig* lender);
  void store(const Target& target, const Option& option);
  Target section(const ZmString& name);
  void expand();
  std::vector<int> positions(const Created& created) const;
  void expand(ZmConfigExpander& expander, ZmConfig& config, int label);

  ZmConfigHash& sections_;
  const ZmString& default_section_;
  const bool lowercase_;
  ZmConfigScanner scanner_;
  ZmConfigToken token_;  // the token at hand, while more_
  bool more_ = false;
  bool headed_ = false;          // a header has been read
  std::vector<Target> current_;  // the sections of the last header
  // Labels and values for several current sections, until something else may look at these.
  std::vector<std::pair<std::string, std::string>> waiting_;
  std::vector<Created> created_;
  // Where the references stand, so that the many options without any are not looked at again; but
  // sections that got some in another way are read through.
  std::vector<Reference> references_;
  std::unordered_set<const ZmConfig*> mixed_;
};

#endif
