#ifndef ZM_LIST_H
#define ZM_LIST_H

#include "ZmBaseList.h"
#include "ZmPack.h"

/// An owning list that can be packed.
///
/// Its record: tag 1, int, the number of elements; then tag 10 for each element in order, a text
/// for strings and a nested pack for pack-derived elements. Unpacking appends what the record holds
/// to the list. Its XML form: one "item" element for each element in order.
template <class T>
class ZM_EXPORT ZmList : public ZmBaseList<T>, public ZmPack {
 public:
  /// Stores all elements.
  void encode() override {
    store(kCount, this->length());
    for (int i = 0; i < this->length(); ++i) store(kElement, *this->get(i));
  }
  /// Reads the count, and with it as many elements as follow. A field that is none stands for an
  /// empty one; one that can't be read ends the elements.
  void decode() override {
    int count = 0;
    restore(kCount, count);
    if (!_consumed()) return;
    for (int i = 0; i < count && _next(); ++i) {
      ZmOwned<T> element(new T);
      if (!_element(kElement, *element)) break;
      this->_push(element.release());
    }
  }
  /// Stores all elements.
  void encodeXML() override {
    for (int i = 0; i < this->length(); ++i) _storeItem(nullptr, *this->get(i));
  }
  /// Appends every element.
  void decodeXML() override {
    for (int at = 0; ZmPackObj* item = _item(at);)
      if (ZmOwned<T> element = _takeItem(*item, static_cast<T*>(nullptr)))
        this->_push(element.release());
  }

 protected:
  static constexpr int kCount = 1;     ///< The tag of the number of elements.
  static constexpr int kElement = 10;  ///< The tag of an element.
};

#endif
