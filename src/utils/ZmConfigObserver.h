// What the reader of macro configuration files tells of its work to whoever wants to know: nobody
// in normal use, a checker otherwise. Internal.
#ifndef ZM_CONFIG_OBSERVER_H
#define ZM_CONFIG_OBSERVER_H

#include <cstddef>
#include <string_view>

#include "ZmConfig.h"
#include "ZmConfigReference.h"
#include "ZmConfigScanner.h"
#include "ZmStringList.h"

// Offsets are those of tokens. Views and references are lent for the call, but those of tokens for
// the reading, and sections with their texts for as long as they are there.

struct ZmConfigHeading {
  std::size_t at;         // of the "["
  bool closed;            // with a "]"
  std::string_view name;  // as it is expanded
  const ZmStringList& names;
};

// An option as it is written.
struct ZmConfigLine {
  static constexpr std::size_t kNone = ~std::size_t{0};
  std::size_t label_at;
  std::size_t qualifier_at;    // kNone: it is for the sections at hand
  std::size_t value_at;        // of the first token behind the "="
  std::string_view label;      // lent for the call, as several tokens may make it up,
  std::string_view qualifier;  // and so are these
  std::string_view value;
};

// A line that ends the reading.
struct ZmConfigStop {
  std::size_t at;         // of the name
  std::string_view name;  // empty: nothing but blanks is left
  bool equals;            // it is followed by "=", but the text ends there
};

// A reference as it is expanded. Where a circle turns up the option is read once more from its
// start, and a remembered result is not read again.
struct ZmConfigUse {
  const ZmString* option;  // whose text holds it; null: a text that is no option
  std::string_view home;   // the section of that option
  std::string_view scope;  // the section that is being expanded
  std::size_t number;      // references before it in that text
  std::size_t depth;       // options between that text and the one that was asked for
  const ZmConfigPiece& piece;
  bool circle;              // it stays in a circle and gives nothing
  bool nested;              // its option is expanded next; leave() tells the result
  std::string_view result;  // otherwise
};

class ZmConfigObserver {
 public:
  virtual ~ZmConfigObserver() = default;

  // Reading, in the order of the text. A token is told before what it is part of, the one behind
  // as well; at the end there is one more, empty one.
  virtual void token(const ZmConfigToken&, const ZmConfigScanner&) {}
  virtual void header(const ZmConfigHeading&) {}
  // A section that gets options: of the header just told, the default one, or one of a qualifier.
  virtual void section(const ZmConfig&, bool /*made*/) {}
  virtual void parent(const ZmConfigToken&, const ZmConfig* /*found*/) {}
  // Gives the number by which stored() names the line: one above that of the line before.
  virtual std::size_t option(const ZmConfigLine&) { return 0; }
  virtual void stop(const ZmConfigStop&) {}
  // The section stores a value for its label at this position: that of the line `number`, or, when
  // there is a parent, that of its label `number`. Lines for several sections may be stored much
  // later.
  virtual void stored(const ZmConfig&, int /*label*/, const ZmConfig* /*parent*/,
                      std::size_t /*number*/) {}

  // Expanding.
  virtual void expand(const ZmConfig&, const ZmString& /*value*/) {}
  virtual void use(const ZmConfigUse&) {}
  virtual void leave(std::string_view /*result*/) {
  }  // the option entered last, but the one asked for
  virtual void circle(const ZmString& /*option*/) {}  // the first of a circle that is reached
  // The result is about to take the place of the value.
  virtual void expanded(const ZmConfig&, const ZmString& /*value*/, std::string_view /*result*/) {}
};

#endif
