// The untyped core of the ordered container: growth, removal and sorting of object pointers.
// Internal; ZmBaseList is its typed face.
#ifndef ZM_BASE_LIST_ARRAY_H
#define ZM_BASE_LIST_ARRAY_H

#include "ZmExport.h"

// Holds pointers and never looks behind them. Elements stand in slots first..last.
class ZM_EXPORT ZmBaseListArray {
 public:
  ZmBaseListArray() = default;
  ZmBaseListArray(const ZmBaseListArray&) = delete;
  ZmBaseListArray& operator=(const ZmBaseListArray&) = delete;
  ~ZmBaseListArray();

  int length() const { return last_ - first_ + 1; }
  // Null outside 0..length()-1.
  void* get(int i) const { return i < 0 || i > last_ - first_ ? nullptr : items_[first_ + i]; }
  // Whether there is room for one more now; nothing changes when no larger array can be had.
  bool room() { return last_ + 1 < capacity_ || grow(); }
  // False when no larger array can be had; the elements held so far are then lost.
  bool push(void* item) {
    if (!room()) {
      lose();
      return false;
    }
    items_[++last_] = item;
    return true;
  }
  void* pop() { return length() > 0 ? items_[last_--] : nullptr; }
  void* top() const { return length() > 0 ? items_[last_] : nullptr; }
  void* remove(int i);
  // Forgets the elements and keeps the slots.
  void release() {
    first_ = 0;
    last_ = -1;
  }
  // The slots from the first element on, lent until the next change.
  void** data() const { return items_ + first_; }

 private:
  bool grow();  // to twice the slots and one more
  void lose();

  void** items_ = nullptr;
  int capacity_ = 0;  // slots
  int last_ = -1;
  int first_ = 0;
};

// One step of the quicksort: the element in the middle goes to the place it keeps, which is
// returned; what is not above it stands before, what is not below it behind.
template <class Item, class Compare>
int zm_partition(Item* items, int length, Compare compare) {
  const int middle = (length - 1) / 2;
  Item pivot = items[middle];
  items[middle] = items[0];
  int i = 0;
  int j = length - 1;
  while (i < j) {
    while (i < j && compare(items[j], pivot) >= 0) --j;
    if (i != j) items[i++] = items[j];
    while (i < j && compare(items[i], pivot) <= 0) ++i;
    if (i != j) items[j--] = items[i];
  }
  items[i] = pivot;
  return i;
}

// Quicksort in place, not stable. Which of several equal elements comes first is part of the
// contract, so every step must stay exactly as it is. The two sides don't touch, so their order is
// free: the smaller is sorted by recursion and the stack stays logarithmic. A range still unsorted
// after `levels` steps goes to give_up(items, length).
template <class Item, class Compare, class GiveUp>
void zm_quicksort(Item* items, int length, Compare compare, int levels, GiveUp give_up) {
  for (; length > 1; --levels) {
    if (levels == 0) return give_up(items, length);
    const int at = zm_partition(items, length, compare);
    const int behind = length - at - 1;
    if (at < behind) {
      zm_quicksort(items, at, compare, levels - 1, give_up);
      items += at + 1;
      length = behind;
    } else {
      zm_quicksort(items + at + 1, behind, compare, levels - 1, give_up);
      length = at;
    }
  }
}

#endif
