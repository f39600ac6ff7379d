#ifndef ZM_PACK_OBJ_LIST_H
#define ZM_PACK_OBJ_LIST_H

#include "ZmBaseList.h"
#include "ZmPackObj.h"

/// A list of parsed elements.
class ZM_EXPORT ZmPackObjList : public ZmBaseList<ZmPackObj> {};

#endif
