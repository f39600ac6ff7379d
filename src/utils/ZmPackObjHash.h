#ifndef ZM_PACK_OBJ_HASH_H
#define ZM_PACK_OBJ_HASH_H

#include "ZmBaseHash.h"
#include "ZmPackObj.h"

/// A hash of parsed elements.
class ZM_EXPORT ZmPackObjHash : public ZmBaseHash<ZmPackObj> {};

#endif
