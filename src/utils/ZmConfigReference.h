// How values are cut into words, and what the references in them lead to. Internal.
//
// A reference is "$W" or "$W.O", each also in braces, where W and O are words of the value:
// unqualified it leads to option W of the scope section, qualified to option O of section W.
#ifndef ZM_CONFIG_REFERENCE_H
#define ZM_CONFIG_REFERENCE_H

#include <string>
#include <string_view>

#include "ZmConfigHash.h"
#include "ZmTextCursor.h"

// The next word of a value: a run of blanks, one of ". { } \ $" or a carriage return alone, or a
// run of anything else. Empty at the end only. The words of a value join back to it.
std::string_view zm_value_word(ZmTextCursor& in);

// Whether anything in the value may be a reference.
inline bool zm_has_reference(std::string_view value) {
  return value.find('$') != std::string_view::npos;
}

// A value with the words "self" and "this" behind a "$" replaced by the section's name.
std::string zm_local_value(std::string_view section, std::string_view value);

// What stands next in a value. Every view is lent by the value, the scope or the sections.
struct ZmConfigPiece {
  std::string_view text;            // copied as it is
  std::string_view section, label;  // of a reference
  std::string_view lost;            // text that an unqualified reference swallows
  const ZmString* value = nullptr;  // the option that it leads to; null: none
  bool qualified = false;
  bool scoped = false;  // what it gives depends on the scope
  bool known = false;   // a reference with a section
};

// Where the references of a value are looked up.
struct ZmConfigScope {
  // Reads one piece, which takes at least one byte. `self` is what "self" and "this" stand for.
  ZmConfigPiece next(ZmTextCursor& in, std::string_view self) const;
  const ZmConfig* section(std::string_view wanted) const { return sections.find(wanted); }

  const ZmConfigHash& sections;
  std::string_view name;             // of the scope section,
  const ZmConfig* config = nullptr;  // which is null when there is none
};

#endif
