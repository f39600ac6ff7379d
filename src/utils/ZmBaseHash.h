#ifndef ZM_BASE_HASH_H
#define ZM_BASE_HASH_H

#include <new>
#include <string_view>
#include <type_traits>

#include "ZmBaseHashTable.h"
#include "ZmBaseList.h"
#include "ZmString.h"

/// Maps text keys to owned object pointers, in an open-addressing table.
///
/// Owns keys and values: set() takes both, remove() destroys the key and hands the value back,
/// clear() and the destructor destroy all, release() forgets the values, keys() lends the keys.
/// Keys compare as ZmString does, with case, and the empty key is a key. Key order is slot order:
/// it follows hash values and table size, so callers that need an order sort.
///
/// The table starts with 17 slots and never shrinks; it grows to four times its size, one and a
/// random 0 to 99 (rand()) when the places of a new key are all taken. Where no growth would help,
/// for some thirty keys of one hash value, the pair is kept outside the slots: it is found as any
/// other, and listed last, such keys in the order of their bytes.
///
/// What finds no memory throws std::bad_alloc: set() then takes nothing, and a hash that was to
/// become a copy is empty. T has a default constructor, a virtual destructor and copy(const T&).
/// One thread at a time.
template <class T>
class ZM_EXPORT ZmBaseHash {
 public:
  ZmBaseHash() = default;  ///< Empty, 17 slots.
  /// A deep copy.
  ZmBaseHash(const ZmBaseHash& other) : ZmBaseHash() { copy(other); }
  /// copy(other).
  ZmBaseHash& operator=(const ZmBaseHash& other) {
    copy(other);
    return *this;
  }
  virtual ~ZmBaseHash() { clear(); }  ///< The only virtual slot.

  /// The hash of a key: each byte, as a signed number, times 7 to the power of its position; wraps.
  unsigned int _key(const ZmString& key) const {
    return static_cast<unsigned int>(ZmBaseHashTable::hash(zm_view(key)));
  }
  /// The value stored under the key, lent; null when there is none.
  T* get(const ZmString& key) const { return static_cast<T*>(table_.get(key)); }
  /// get() for a key that is no ZmString.
  T* find(std::string_view key) const {
    return static_cast<T*>(table_.get(key, ZmBaseHashTable::hash(key)));
  }
  /// Stores the pair and owns both; an earlier pair of an equal key is destroyed. The value may be
  /// null. 0 when the key is null, which takes nothing.
  ///
  /// A key that was moved on by another one, and is set again after that one's removal, gets a
  /// second entry in the freed slot. Lookups find the newer entry and both are listed; removing the
  /// newer one uncovers the older, and growth keeps one of them.
  unsigned char set(T* value, ZmString* key) { return table_.set(value, key, _destroy); }
  /// The same with a copy of the key.
  unsigned char set(T* value, const ZmString& key) {
    ZmOwned<ZmString> copied(ZmString::_exact(key));
    set(value, copied.get());
    copied.release();
    return 1;
  }
  /// The same for owned ones, which are destroyed when it throws.
  void set(ZmOwned<T> value, ZmOwned<ZmString> key) {
    set(value.get(), key.get());
    value.release();
    key.release();
  }
  /// The value stored under the key, now the caller's; null when there is none.
  T* remove(const ZmString& key) { return static_cast<T*>(table_.remove(key)); }
  /// Clears the list, then lends it the hash's own keys: empty it with release(), never clear().
  /// The list is empty when this throws.
  void keys(ZmBaseList<ZmString>& out) const {
    out.clear();
    table_.each([&out](const ZmBaseHashTable::Entry& entry) {
      if (!out.push(entry.key)) throw std::bad_alloc();
    });
  }
  /// Clears the list, then gives it copies of the keys.
  void copykeys(ZmBaseList<ZmString>& out) const {
    out.clear();
    table_.each(
        [&out](const ZmBaseHashTable::Entry& entry) { out._push(ZmString::_exact(*entry.key)); });
  }
  /// Destroys what is held, then copies every pair into the slot it has in the other hash, texts
  /// without room to grow. Entries that the other hash placed beyond a removed one are listed by
  /// the copy but not found.
  void copy(const ZmBaseHash& other) {
    if (this == &other) return;
    clear();
    table_.copy(other.table_, _copied, _destroy);
  }

  /// @name By position
  /// Every pair, from 0 to length() - 1, in the order in which the keys were first set; no other
  /// position may be asked for. Where a key has two entries, both are among them. The first
  /// question after a removal but from the end goes through the whole table: before removing many,
  /// take the keys.
  /// @{

  int length() const { return table_.entries(); }                    ///< The number of pairs.
  const ZmString& key(int i) const { return *table_.entry(i).key; }  ///< A key, lent.
  /// Its value, lent; may be null.
  T* value(int i) const { return static_cast<T*>(table_.entry(i).value); }
  /// @}

  void clear() { table_.clear(_destroy); }    ///< Destroys all pairs; keeps the slots.
  void release() { table_.clear(nullptr); }   ///< Destroys the keys and forgets the values.
  void resize() { table_.resize(_destroy); }  ///< Grows the table; set() does so when it must.

 protected:
  /// The pairs in their slots, for derived classes.
  const ZmBaseHashTable& _table() const { return table_; }
  /// To change them.
  ZmBaseHashTable& _table() { return table_; }

 private:
  static void _destroy(void* value) { delete static_cast<T*>(value); }
  // Texts are copied without room to grow.
  static void* _copied(const void* value) {
    if (!value) return nullptr;
    if constexpr (std::is_same_v<T, ZmString>)
      return ZmString::_exact(*static_cast<const ZmString*>(value));
    ZmOwned<T> object(new T);
    object->copy(*static_cast<const T*>(value));
    return object.release();
  }

  ZmBaseHashTable table_;
};

#endif
