#ifndef ZM_BASE_H
#define ZM_BASE_H

#include "ZmExport.h"

/// The root of the value classes: no data, and a virtual destructor so that containers can destroy
/// what they own through a base pointer.
class ZM_EXPORT ZmBase {
 public:
  ZmBase() = default;
  ZmBase(const ZmBase&) = default;             ///< Nothing to copy.
  ZmBase& operator=(const ZmBase&) = default;  ///< Nothing to copy.
  virtual ~ZmBase() = default;                 ///< Slot 0 of every value class.
};

#endif
