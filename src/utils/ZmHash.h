#ifndef ZM_HASH_H
#define ZM_HASH_H

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "ZmBaseHash.h"
#include "ZmPack.h"
#include "ZmPackObj.h"
#include "ZmText.h"

/// An owning hash that can be packed.
///
/// Its record: tag 1, int, the number of entries; then for each entry in key order of the hash tag
/// 10, text, the key, and tag 30 the value, a text for strings and a nested pack for pack-derived
/// values. Unpacking sets what the record holds on top of what the hash holds. A record has every
/// entry: of two of one key it may bring back the one that lookups did not find. The XML form has
/// those that get() finds: one "item" element each, with the key, sorted by the keys' bytes.
template <class T>
class ZM_EXPORT ZmHash : public ZmBaseHash<T>, public ZmPack {
 public:
  ZmHash() = default;                                              ///< Empty.
  ZmHash(const ZmHash& other) : ZmBaseHash<T>(other), ZmPack() {}  ///< A deep copy.
  ZmHash& operator=(const ZmHash& other) {
    ZmBaseHash<T>::operator=(other);
    ZmPack::operator=(other);
    return *this;
  }  ///< A deep copy.

  /// Stores all entries; a null value as a new T.
  void encode() override {
    store(kCount, this->_table().count());
    this->_table().each([this](ZmString* key, void* value) {
      store(kKey, *key);
      if (value) {
        store(kValue, *static_cast<T*>(value));
      } else {
        T none;
        store(kValue, none);
      }
    });
  }
  /// Reads the count, and with it the keys and values of as many entries as follow. A field that is
  /// none stands for an empty one; one that can't be read ends the entries.
  void decode() override {
    int count = 0;
    restore(kCount, count);
    if (!_consumed()) return;
    for (int i = 0; i < count && _next(); ++i) {
      auto key = std::make_unique<ZmString>();
      auto value = std::make_unique<T>();
      if (!_element(kKey, *key) || !_next() || !_element(kValue, *value)) break;
      this->set(value.get(), key.get());
      static_cast<void>(value.release());
      static_cast<void>(key.release());
    }
  }
  /// Stores the entries that get() finds, in the order of their keys, whatever their slots; a null
  /// value as a new T.
  void encodeXML() override {
    std::vector<std::pair<ZmString*, T*>> entries;
    this->_table().each_found([&entries](ZmString* key, void* value) {
      entries.emplace_back(key, static_cast<T*>(value));
    });
    const auto before = [](const auto& a, const auto& b) {
      return zm_view(*a.first) < zm_view(*b.first);
    };
    std::stable_sort(entries.begin(), entries.end(), before);
    for (const auto& [key, value] : entries) {
      if (value) {
        _storeItem(key, *value);
      } else {
        T none;
        _storeItem(key, none);
      }
    }
  }
  /// Sets every entry.
  void decodeXML() override {
    for (int at = 0; ZmPackObj* item = _item(at);) {
      std::unique_ptr<T> value = _takeItem(*item, static_cast<T*>(nullptr));
      if (value && item->key()) this->set(value.release(), item->takekey().release());
    }
  }

 private:
  static constexpr int kCount = 1;
  static constexpr int kKey = 10;
  static constexpr int kValue = 30;
};

#endif
