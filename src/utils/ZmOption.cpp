#include "ZmOption.h"

#include "ZmText.h"

ZmOption::ZmOption(const ZmOption& other) : ZmPack(other) { ZmOption::copy(other); }

ZmOption& ZmOption::operator=(const ZmOption& other) {
  ZmPack::operator=(other);
  copy(other);
  return *this;
}

// A copy is a fresh definition for another run: it never hands on what the user typed.
void ZmOption::copy(const ZmOption& other) {
  name_ = other.name_;
  tag_ = other.tag_;
  exists_ = other.exists_;
}

// 0 for "" as well, though every name begins with it: a lone "--" names no option.
int ZmOption::match(const ZmString& s) const {
  return zm_view(name_).starts_with(zm_view(s)) ? s.length() : 0;
}
