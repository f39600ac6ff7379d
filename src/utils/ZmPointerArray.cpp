#include "ZmPointerArray.h"

#include <climits>
#include <cstring>
#include <new>

#include "ZmMemory.h"

namespace {

std::size_t bytes(int slots) { return static_cast<std::size_t>(slots) * sizeof(void*); }

void** slots(int count) {
  try {
    return static_cast<void**>(zm_allocate(bytes(count)));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

ZmPointerArray::~ZmPointerArray() {
  if (capacity_ > 0) zm_release(items_, bytes(capacity_));
}

bool ZmPointerArray::grow() {
  if (capacity_ > (INT_MAX - 1) / 2) return false;
  const int capacity = capacity_ * 2 + 1;
  void** items = slots(capacity);
  if (items && last_ >= first_) std::memcpy(items + first_, items_ + first_, bytes(length()));
  zm_release(items_, bytes(capacity_));
  items_ = items;
  if (items) {
    capacity_ = capacity;
  } else {
    capacity_ = 0;
    release();
  }
  return items != nullptr;
}

void* ZmPointerArray::remove(int i) {
  if (i < 0 || i >= length()) return nullptr;
  void* item = items_[first_ + i];
  std::memmove(items_ + first_ + i, items_ + first_ + i + 1, bytes(length() - 1 - i));
  --last_;
  return item;
}
