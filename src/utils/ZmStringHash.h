#ifndef ZM_STRING_HASH_H
#define ZM_STRING_HASH_H

#include "ZmHash.h"
#include "ZmString.h"

/// A hash of texts.
class ZM_EXPORT ZmStringHash : public ZmHash<ZmString> {
 public:
  int type() const override { return 56; }                     ///< The type code.
  ZmString typeXML() const override { return "string_hash"; }  ///< The XML element name.
};

#endif
