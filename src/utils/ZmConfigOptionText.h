// How section text writes an option, for the conversion of a section and for templates. Internal.
#ifndef ZM_CONFIG_OPTION_TEXT_H
#define ZM_CONFIG_OPTION_TEXT_H

#include "ZmString.h"

// Appends "label = value" and a newline: a multi-line value in braces, another with a space in
// double quotes, any other as it is. Nothing is escaped.
inline void zm_append_option(ZmString& text, const ZmString& label, const ZmString& value) {
  const char* open = "";
  const char* close = "";
  if (value.multiline()) {
    open = "{";
    close = "}";
  } else if (value.hasspace()) {
    open = close = "\"";
  }
  text += label;
  text += " = ";
  text += open;
  text += value;
  text += close;
  text += '\n';
}

#endif
