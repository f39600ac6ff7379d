// Evaluates a tree of expressions without recursion. Internal; lives for one eval() call.
#ifndef ZM_EVALUATION_H
#define ZM_EVALUATION_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZmExpression.h"
#include "ZmOperator.h"
#include "ZmStack.h"

// A tree of constants comes to the same value each time, so its root keeps a number once it is
// known (folding). A node may be changed through any pointer to it, and doesn't know its parents;
// so every node of a folded tree is marked, and a change of a marked node makes all folded values
// old.
class ZmEvaluation {
 public:
  explicit ZmEvaluation(ZmExpression& root) : root_(root) {}
  void run(ZmScalar& result);

  // Gives the root's folded value. False when there is none, or when it is old.
  static bool recall(const ZmExpression& root, ZmScalar& result) {
    if (root.foldedat_ != now_.load(std::memory_order_relaxed)) return false;
    if (root.constant_ == ZmExpression::kInteger) {
      result._set(root.integer_);
    } else {
      result._set(root.float_);
    }
    return true;
  }

  // Makes the folded values of all trees old.
  static void changed() { now_.fetch_add(1, std::memory_order_relaxed); }

 private:
  enum Kind : unsigned char { kNothing, kInteger, kFloat, kText };  // a wider kind wins

  // An operand, small enough for two registers. A text is lent by its node or by texts_; a null one
  // is empty. As a number, nothing counts as the integer 0.
  struct Value {
    Value() : Value(kNothing, 0) {}
    Value(Kind k, int number) : integer(number), kind(k) {}
    explicit Value(float number) : real(number), kind(kFloat) {}
    explicit Value(const ZmString* lent) : text(lent), kind(kText) {}

    union {
      int integer;
      float real;
      const ZmString* text;
    };
    Kind kind;
  };
  // An inner node whose operands are being evaluated: first b, then, with b known, a.
  struct Pending {
    ZmExpression* node;
    Value b;
    bool second;
  };

  Value _tree();
  Value _leaf(ZmExpression& node);
  Value _asked(ZmExpression& node);
  static Value _constant(ZmExpression& node, const ZmString& text);
  static Value _read(const ZmString& text);
  static Value _unary(ZmOperation operation, Value b);
  static Value _binary(const ZmExpression& node, Value a, Value b);
  static Value _mixed(const ZmString& op, Value a, Value b);
  static ZmScalar _scalar(Value value);
  static float _real(Value value);
  static void _keep(ZmExpression& node, Value value);

  static std::atomic<std::uint64_t> now_;  // counts changes of marked nodes

  ZmExpression& root_;
  bool fixed_ = true;  // whether only constants were met so far
  ZmString answer_;    // what was asked for last; its buffer serves again
  std::vector<std::unique_ptr<ZmString>> texts_;  // owns the answers that are no numbers
};

#endif
