#ifndef ZM_CONFIG_HASH_H
#define ZM_CONFIG_HASH_H

#include "ZmConfig.h"
#include "ZmHash.h"

/// A hash of sections. Its type code and XML name are those of ZmConfigList, which readers of
/// records rely on.
class ZM_EXPORT ZmConfigHash : public ZmHash<ZmConfig> {
 public:
  int type() const override { return 51; }                     ///< The type code.
  ZmString typeXML() const override { return "config_list"; }  ///< The XML element name.
};

#endif
