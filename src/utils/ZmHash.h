#ifndef ZM_HASH_H
#define ZM_HASH_H

#include <utility>

#include "ZmBaseHash.h"
#include "ZmPack.h"

/// An owning hash that can be packed.
///
/// Its record: tag 1, int, the number of entries; then for each entry in key order of the hash tag
/// 10, text, the key, and tag 30 the value, a text for strings and a nested pack for pack-derived
/// values. The number may be too high, by the entries that a growth had placed before it had to
/// start anew: who reads takes what follows, up to that number.
///
/// Unpacking sets what the record holds on top of what the hash holds. A record has every entry: of
/// two of one key (see set()) it may bring back the one that lookups did not find. The XML form has
/// those that get() finds: one "item" element each, with the key, sorted by the keys' bytes.
template <class T>
class ZM_EXPORT ZmHash : public ZmBaseHash<T>, public ZmPack {
 public:
  /// Stores all entries; a null value as a new T.
  void encode() override {
    store(kCount, this->_table().count());
    T none;
    this->_table().each([&](const ZmBaseHashTable::Entry& entry) {
      store(kKey, *entry.key);
      store(kValue, entry.value ? *static_cast<T*>(entry.value) : none);
    });
  }
  /// Reads the count, and with it the keys and values of as many entries as follow. A field that is
  /// none stands for an empty one; one that can't be read ends the entries.
  void decode() override {
    int count = 0;
    restore(kCount, count);
    if (!_consumed()) return;
    for (int i = 0; i < count && _next(); ++i) {
      ZmOwned<ZmString> key(new ZmString);
      ZmOwned<T> value(new T);
      if (!_element(kKey, *key) || !_next() || !_element(kValue, *value)) break;
      this->set(std::move(value), std::move(key));
    }
  }
  /// Stores the entries that get() finds, in the order of their keys, whatever their slots; a null
  /// value as a new T.
  void encodeXML() override {
    T none;
    this->_table().each_found([&](const ZmBaseHashTable::Entry& entry) {
      _storeItem(entry.key, entry.value ? *static_cast<T*>(entry.value) : none);
    });
  }
  /// Sets every entry.
  void decodeXML() override {
    for (int at = 0; ZmPackObj* item = _item(at);) {
      ZmOwned<ZmString> key = _takeKey(*item);
      ZmOwned<T> value = _takeItem(*item, static_cast<T*>(nullptr));
      if (key && value) this->set(std::move(value), std::move(key));
    }
  }

 private:
  static constexpr int kCount = 1;
  static constexpr int kKey = 10;
  static constexpr int kValue = 30;
};

#endif
