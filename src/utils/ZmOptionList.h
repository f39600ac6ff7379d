#ifndef ZM_OPTION_LIST_H
#define ZM_OPTION_LIST_H

#include "ZmList.h"
#include "ZmOption.h"

/// A list of options.
class ZM_EXPORT ZmOptionList : public ZmList<ZmOption> {
 public:
  int type() const override { return 54; }                     ///< The type code.
  ZmString typeXML() const override { return "option_list"; }  ///< The XML element name.
};

#endif
