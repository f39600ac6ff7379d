// One reading of a text into the sections of a ZmConfigFile. Internal.
#ifndef ZM_CONFIG_READER_H
#define ZM_CONFIG_READER_H

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ZmConfigExpander.h"
#include "ZmConfigHash.h"
#include "ZmConfigObserver.h"
#include "ZmConfigScanner.h"
#include "ZmString.h"

// Lives for one parse() call and borrows everything it is given.
class ZmConfigReader {
 public:
  ZmConfigReader(ZmConfigHash& sections, const ZmString& default_section, bool lowercase,
                 std::string_view text, ZmConfigObserver* observer = nullptr)
      : sections_(sections),
        default_section_(default_section),
        lowercase_(lowercase),
        observer_(observer),
        scanner_(text) {}

  // Reads up to the end, or to the first line that is no option, and expands what it has read.
  void run();

 private:
  static constexpr std::size_t kNone = ~std::size_t{0};
  // A section that receives options.
  struct Target {
    ZmConfig* config;
    std::size_t created;  // its index among the created ones, or kNone: it was there before
  };
  // An option on its way into sections.
  struct Option {
    Option(std::string_view label, std::string_view value);
    ZmConfigLabel label;
    std::string_view value;
    bool refers;                       // whether the value holds references
    bool local;                        // whether they name "self" or "this"
    const ZmConfig* parent = nullptr;  // that lends it
    std::size_t number = 0;            // its place there, or what the observer calls its line
  };
  // A new option with references, at this position of a created section.
  struct Referring {
    std::size_t created;
    int label;
    auto operator<=>(const Referring&) const = default;
  };

  void advance() {
    more_ = scanner_.next(token_);
    if (observer_) [[unlikely]]
      observer_->token(token_, scanner_);
  }
  bool skiplines();
  void header();
  void parents(std::string_view header);
  void inherit(const ZmConfig& parent);
  bool option();
  bool stop(std::size_t at, std::string_view name, bool equals);
  std::string_view name(std::string& longer);
  std::string_view joined(bool quoted, std::string& longer);
  void flush();
  void spread(const std::vector<Option>& options, const ZmConfig* lender);
  void store(const Target& target, const Option& option);
  void told(const Target& target, int label, const Option& option);
  Target section(const ZmString& name);
  void expand();
  std::string_view known(const ZmConfig& section) const;
  void expand(ZmConfigExpander& expander, ZmConfig& config, int label);

  ZmConfigHash& sections_;
  const ZmString& default_section_;
  const bool lowercase_;
  ZmConfigObserver* const observer_;  // null: nobody wants to know
  ZmConfigScanner scanner_;
  ZmConfigToken token_;  // the token at hand, while more_
  bool more_ = false;
  bool headed_ = false;          // a header has been read
  std::vector<Target> current_;  // the sections of the last header
  // Labels and values for several current sections, until something else may look at these.
  std::vector<std::pair<std::string, std::string>> waiting_;
  std::size_t waiting_from_ = 0;    // what the observer calls the first of these
  std::vector<ZmConfig*> created_;  // the sections made by this reading
  // Which options refer to others, so that the many without a "$" are not looked at again; but
  // sections that got some in another way are read through.
  std::vector<Referring> referring_;
  std::unordered_set<const ZmConfig*> mixed_;
};

#endif
