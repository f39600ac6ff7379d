// The one way to put a new text on a list. Internal.
#ifndef ZM_TEXT_LIST_H
#define ZM_TEXT_LIST_H

#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "ZmStringList.h"

// Throws std::bad_alloc when the list can't grow, and then leaks nothing of the new text.
inline void zm_push(ZmStringList& list, std::unique_ptr<ZmString> text) {
  if (!list.push(text.get())) throw std::bad_alloc();
  static_cast<void>(text.release());
}

inline void zm_push(ZmStringList& list, std::string_view text) {
  zm_push(list, std::make_unique<ZmString>(text.data(), static_cast<int>(text.size())));
}

#endif
