// One reading of a text into the sections of a ZmConfigFile. Internal.
#ifndef ZM_CONFIG_READER_H
#define ZM_CONFIG_READER_H

#include <compare>
#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ZmConfigHash.h"
#include "ZmConfigScanner.h"
#include "ZmExpander.h"
#include "ZmString.h"

// Lives for one parse() call and borrows everything it is given.
class ZmConfigReader {
 public:
  ZmConfigReader(ZmConfigHash& sections, const ZmString& default_section, bool lowercase,
                 std::string_view text);

  // Reads up to the end, or to the first line that is no option, and expands what it has read.
  void run();

 private:
  // A section that receives options.
  struct Target {
    ZmConfig* config;
    std::size_t created;  // its index among the created ones, or kOld
  };
  // An option that waits for being stored in the current sections.
  struct Option {
    std::string_view label;
    std::string_view value;
    ZmSlotTable::Hash hash;  // of the label
    bool references;         // whether the value holds any
    bool local;              // whether they name "self" or "this"
  };
  // An option of a created section that holds references.
  struct Reference {
    std::size_t created;
    int label;  // its position, or -1: any of the section's labels
    auto operator<=>(const Reference&) const = default;
  };
  static constexpr std::size_t kOld = ~std::size_t{0};
  static constexpr std::size_t kWaiting = 1024;  // options at most

  void advance() { more_ = scanner_.next(token_); }
  bool skiplines();
  void header();
  void parents(std::string_view header);
  void inherit(const ZmConfig& parent);
  bool option();
  std::string_view name();
  std::string_view joined(bool quoted);
  std::string_view kept(std::string&& text) { return texts_.emplace_front(std::move(text)); }
  void flush();
  void store(const Target& target, const Option& option);
  Target section(const ZmString& name);
  void expand();
  void expand(ZmExpander& expander, ZmConfig& config, int label);

  ZmConfigHash& sections_;
  const ZmString& default_section_;
  const bool lowercase_;
  ZmConfigScanner scanner_;
  ZmConfigToken token_;  // the token at hand, while more_
  bool more_ = false;
  bool headed_ = false;          // a header has been read
  std::vector<Target> current_;  // the sections of the last header
  // Options go to one section after the other, not to all sections one after the other: with
  // thousands of sections that is what keeps each of them in the cache.
  std::vector<Option> waiting_;
  std::forward_list<std::string> texts_;  // of waiting options, where they are no single token
  std::vector<ZmConfig*> created_;        // the sections made by this reading
  std::vector<Reference> references_;
  std::unordered_set<const ZmConfig*> reopened_;  // got references under a later header
};

// A value with the words "self" and "this" behind a "$" replaced by the section's name.
std::string zm_local_value(std::string_view section, std::string_view value);

#endif
