#ifndef ZM_BASE_LIST_H
#define ZM_BASE_LIST_H

#include <new>

#include "ZmBaseListArray.h"
#include "ZmOwned.h"

/// The one ordered container: an owning array of object pointers.
///
/// Owns its elements: push() takes one, pop() and remove() hand it back, clear() and the destructor
/// destroy all, release() forgets all undestroyed, get() and top() lend. Positions run from 0 to
/// length()-1; a miss is null. Elements are not null: a list that was given one can only be looked
/// at, emptied and destroyed. T has a default constructor, a virtual destructor and copy(const T&).
///
/// push() tells of missing memory by its result. Copying throws std::bad_alloc when there is none
/// for an element, and passes on what T's copy() throws; the list then holds the copies made so
/// far. Nothing else throws; a Compare may not. One thread at a time.
template <class T>
class ZM_EXPORT ZmBaseList {
 public:
  /// Less than, equal to or greater than 0, as strcmp.
  using Compare = int (*)(const T*, const T*);

  ZmBaseList() = default;  ///< Empty, without slots.
  /// A deep copy.
  ZmBaseList(const ZmBaseList& other) : ZmBaseList() { copy(other); }
  /// copy(other).
  ZmBaseList& operator=(const ZmBaseList& other) {
    copy(other);
    return *this;
  }
  virtual ~ZmBaseList() { clear(); }  ///< The only virtual slot.

  int length() const { return array_.length(); }                  ///< Number of elements.
  T* get(int i) const { return static_cast<T*>(array_.get(i)); }  ///< Lent; null on a miss.
  /// Takes ownership. 0 when no memory could be had: the elements held so far are then lost and the
  /// list is empty; the caller still owns the object.
  unsigned char push(T* object) { return array_.push(object); }
  /// Takes ownership; when no memory could be had the list stays as it was, the object is destroyed
  /// and std::bad_alloc thrown.
  void _push(T* object) {
    ZmOwned<T> owned(object);
    _room();
    push(owned.release());
  }
  /// Makes sure of the room for one more; else throws std::bad_alloc, with the list as it was.
  void _room() {
    if (!array_.room()) throw std::bad_alloc();
  }
  T* pop() { return static_cast<T*>(array_.pop()); }        ///< The last element, now the caller's.
  T* top() const { return static_cast<T*>(array_.top()); }  ///< The last element, lent.
  /// The element at i, now the caller's; later ones move up. Linear in their number.
  T* remove(int i) { return static_cast<T*>(array_.remove(i)); }
  /// Destroys every element, the first one first; keeps the slots.
  void clear() {
    for (int i = 0; i < length(); ++i) delete get(i);
    release();
  }
  void release() { array_.release(); }  ///< Forgets all, destroys nothing.
  /// Destroys what is held, then makes a copy of each element of the other list.
  void copy(const ZmBaseList& other) {
    if (this == &other) return;
    clear();
    for (int i = 0; i < other.length(); ++i) {
      ZmOwned<T> element(new T);
      element->copy(*other.get(i));
      _push(element.release());
    }
  }
  /// Sorts in place by quicksort, not stably; only pointers move. Which of several equal elements
  /// comes first is a promise, and so many equal ones cost quadratic time.
  void sort(Compare compare) {
    zm_quicksort(
        array_.data(), length(),
        [compare](const void* a, const void* b) {
          return compare(static_cast<const T*>(a), static_cast<const T*>(b));
        },
        -1, [](void**, int) {});
  }

 private:
  ZmBaseListArray array_;
};

#endif
