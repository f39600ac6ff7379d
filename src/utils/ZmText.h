// Where the library's text type meets std::string_view. Internal.
#ifndef ZM_TEXT_H
#define ZM_TEXT_H

#include <string_view>

#include "ZmString.h"

// The whole text, zero bytes included; lent until the string changes.
inline std::string_view zm_view(const ZmString& s) {
  return {s.value(), static_cast<std::size_t>(s.length())};
}

// A new string; an empty text stays undefined.
inline ZmString zm_string(std::string_view text) {
  return {text.data(), static_cast<int>(text.size())};
}

inline void zm_append(ZmString& to, std::string_view text) {
  to.append(text.data(), static_cast<int>(text.size()));
}

// What is lent where there is no text.
inline const ZmString& zm_no_text() {
  static const ZmString none;
  return none;
}

#endif
