// The one way to put a new text on a list. Internal.
#ifndef ZM_TEXT_LIST_H
#define ZM_TEXT_LIST_H

#include <string_view>

#include "ZmStringList.h"

// Throws std::bad_alloc when the list can't grow.
inline void zm_push(ZmStringList& list, std::string_view text) {
  list._push(new ZmString(text.data(), static_cast<int>(text.size())));
}

#endif
