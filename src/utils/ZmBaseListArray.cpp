#include "ZmBaseListArray.h"

#include <climits>
#include <cstring>
#include <new>
#include <utility>

namespace {

std::size_t bytes(int slots) { return static_cast<std::size_t>(slots) * sizeof(void*); }

}  // namespace

ZmBaseListArray::~ZmBaseListArray() { delete[] items_; }

// Positions stay, and with them what lies before first_, though nothing in this library moves it.
bool ZmBaseListArray::grow() {
  if (capacity_ > (INT_MAX - 1) / 2) return false;
  const int capacity = capacity_ * 2 + 1;
  void** items = new (std::nothrow) void*[static_cast<std::size_t>(capacity)];
  if (!items) return false;
  if (last_ >= first_) std::memcpy(items + first_, items_ + first_, bytes(length()));
  delete[] std::exchange(items_, items);
  capacity_ = capacity;
  return true;
}

// What becomes of a push without memory is part of its contract. Whoever must not lose anything
// asks for room() first.
void ZmBaseListArray::lose() {
  delete[] std::exchange(items_, nullptr);
  capacity_ = 0;
  release();
}

void* ZmBaseListArray::remove(int i) {
  if (i < 0 || i >= length()) return nullptr;
  void* item = items_[first_ + i];
  std::memmove(items_ + first_ + i, items_ + first_ + i + 1, bytes(length() - 1 - i));
  --last_;
  return item;
}
