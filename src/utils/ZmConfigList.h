#ifndef ZM_CONFIG_LIST_H
#define ZM_CONFIG_LIST_H

#include "ZmConfig.h"
#include "ZmList.h"

/// A list of sections.
class ZM_EXPORT ZmConfigList : public ZmList<ZmConfig> {
 public:
  int type() const override { return 51; }                     ///< The type code.
  ZmString typeXML() const override { return "config_list"; }  ///< The XML element name.
};

#endif
