#ifndef ZM_REFERENCE_H
#define ZM_REFERENCE_H

#include "ZmPack.h"
#include "ZmString.h"

/// A shared, counted source of variables for expression trees. Derive from it and supply at least
/// valid() and variable().
///
/// The count is the number of tree nodes that hold the object; the last of them destroys it with
/// delete, so it has to come from new. It is never serialised. One thread at a time, together with
/// all the trees that share it.
class ZM_EXPORT ZmReference : public ZmPack {
 public:
  ZmReference() = default;                                  ///< Count 0.
  ZmReference(const ZmReference& other) : ZmPack(other) {}  ///< Count 0: nothing holds the copy.
  /// Copies nothing: the count stays.
  ZmReference& operator=(const ZmReference& other);

  int type() const override { return 180; }                  ///< Slot 1. The type code.
  void encode() override {}                                  ///< Slot 2. Nothing, deliberately.
  void decode() override {}                                  ///< Slot 3. Nothing, deliberately.
  ZmString typeXML() const override { return "reference"; }  ///< Slot 4. The XML element name.
  void encodeXML() override {}                               ///< Slot 5. Nothing, deliberately.
  void decodeXML() override {}                               ///< Slot 6. Nothing, deliberately.

  /// Slot 7. Puts the variable's value into `out`, which evaluation hands over fresh and empty.
  /// This version copies the name.
  virtual void value(const ZmString& name, ZmString& out);
  /// Slot 8. 1 when the name has a value; asked for every leaf, numbers included.
  virtual unsigned char valid(const ZmString& name) = 0;
  /// Slot 9. 1 when the name is one that ZmExpression::variables() should list.
  virtual unsigned char variable(const ZmString& name) = 0;
  /// Slot 10. For the use of derived classes; the library never calls it.
  virtual void update() {}

  void copy(const ZmReference& other);  ///< Copies nothing, deliberately.
  void increment() { ++count_; }        ///< One more node holds it.
  void decrement() { --count_; }        ///< One node less; destroys nothing by itself.
  int count() const { return count_; }  ///< The number of nodes that hold it.

 private:
  int count_ = 0;
};

#endif
