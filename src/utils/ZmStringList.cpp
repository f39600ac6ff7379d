#include "ZmStringList.h"

int zm_string_sort_func(const ZmString* a, const ZmString* b) {
  const int order = a->cmp(*b);
  if (order != 0) return order < 0 ? -1 : 1;
  // Texts that differ only behind a zero byte are not less and not equal: greater either way.
  return *a != *b;
}

ZmString ZmStringList::join(const ZmString& separator) const {
  ZmString joined;
  for (int i = 0; i < length(); ++i) {
    if (i > 0) joined += separator;
    joined += *get(i);
  }
  return joined;
}

int ZmStringList::find(const ZmString& s) const {
  for (int i = 0; i < length(); ++i)
    if (*get(i) == s) return i;
  return -1;
}

void ZmStringList::sort() {
  zm_sort_texts(_array().data(), length(),
                [](const void* item) { return static_cast<const ZmString*>(item); });
}
