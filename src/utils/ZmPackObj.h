#ifndef ZM_PACK_OBJ_H
#define ZM_PACK_OBJ_H

#include "ZmBase.h"
#include "ZmOwned.h"
#include "ZmString.h"

/// One element of an XML text that has been read: a name, perhaps a key, and either a text or the
/// elements inside it, in their order. unpackXML() reads a text into a tree of these.
///
/// Owns what is inside. Copying and destruction take any depth without recursion. One thread at a
/// time.
class ZM_EXPORT ZmPackObj : public ZmBase {
 public:
  ZmPackObj() = default;                                         ///< Without name, key and text.
  ZmPackObj(const ZmPackObj& other) : ZmBase() { copy(other); }  ///< A deep copy.
  /// copy(other).
  ZmPackObj& operator=(const ZmPackObj& other) {
    copy(other);
    return *this;
  }
  ~ZmPackObj() override;                    ///< Slot 0.
  virtual int type() const { return 156; }  ///< Slot 1. The type code.
  void copy(const ZmPackObj& other);        ///< A deep copy.

  /// @name What was read; lent until the next change
  /// @{
  const ZmString& name() const { return name_; }  ///< The element's name.
  /// The key under which it stands in a hash; null when it has none.
  const ZmString* key() const { return key_.get(); }
  /// The text; null when the element holds elements, or when its encoding can't be read.
  const ZmString* text() const { return text_.get(); }
  int length() const;           ///< Number of elements directly inside.
  ZmPackObj* get(int i) const;  ///< The one at i, from 0; null on a miss.
  /// The last one of that name inside; null on a miss. Where many are searched often they get an
  /// index: names inside must not change after the first search.
  ZmPackObj* find(const ZmString& name) const;
  /// @}

  /// @name Building and taking apart
  /// @{
  void name(const ZmString& name);    ///< Sets the name.
  void key(ZmOwned<ZmString> key);    ///< Sets the key; null: none.
  void text(ZmOwned<ZmString> text);  ///< Sets the text; null: none.
  ZmOwned<ZmString> takekey();        ///< The key, now the caller's.
  ZmOwned<ZmString> taketext();       ///< The text, now the caller's.
  /// Puts an element behind those inside and owns it; the text is given up. Null is ignored. Takes
  /// nothing when it throws.
  void push(ZmPackObj* element);
  /// @}

 private:
  struct Inside;

  void _clear();
  void _forget() const;  // drops the index
  ZmPackObj* _indexed(const ZmString& name) const;

  ZmString name_;
  ZmOwned<ZmString> key_;
  ZmOwned<ZmString> text_;
  Inside* inside_ = nullptr;  // null while empty
};

#endif
