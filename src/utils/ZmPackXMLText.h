// How texts of any bytes stand in XML 1.0. Internal; under the XML form of packs.
#ifndef ZM_PACK_XML_TEXT_H
#define ZM_PACK_XML_TEXT_H

#include <string_view>

#include "ZmString.h"

// Whether the text can stand in XML at all, markup escaped: UTF-8 (RFC 3629) of nothing but the
// characters that XML 1.0 allows (section 2.2).
bool zm_xml_text(std::string_view text);

// Whether the name can be that of an element everywhere: an ASCII letter or "_", then letters,
// digits, "_", "-" and ".". No ":", which readers take for the end of a namespace's prefix.
bool zm_xml_name(std::string_view name);

// Base64 in one line (RFC 4648, section 4), with padding.
ZmString zm_base64(std::string_view bytes);

// Reads base64 with its padding; white space may stand anywhere. False, with `bytes` in an unknown
// state, when the text is nothing of the kind.
bool zm_from_base64(std::string_view text, ZmString& bytes);

#endif
