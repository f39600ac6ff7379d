// The evaluation of ZmExpression, without recursion.
#include <memory>
#include <vector>

#include "ZmExpression.h"
#include "ZmExpressionOperator.h"
#include "ZmExpressionStack.h"
#include "ZmText.h"
#include "ZmTextNumber.h"

// Lives for one eval() call. Texts are lent by their leaves or by texts_.
class ZmExpression::Evaluation {
 public:
  explicit Evaluation(ZmExpression& root) : root_(root) {}
  void run(ZmScalar& result);

 private:
  using Value = ZmExpressionValue;
  // An inner node whose operands are being evaluated: first b, then, with b known, a.
  struct Pending {
    ZmExpression* node;
    Value b;
    bool second;
  };

  Value _tree();
  Value _leaf(ZmExpression& node);
  Value _asked(ZmExpression& node);
  static Value _read(const ZmString& text);
  static Value _unary(ZmOperation operation, Value b);
  static Value _binary(const ZmExpression& node, Value a, Value b);
  static Value _mixed(const ZmString& op, Value a, Value b);
  static ZmScalar _scalar(Value value);
  static float _real(Value value);

  ZmExpression& root_;
  ZmString answer_;  // what was asked for last; its buffer serves again
  std::vector<std::unique_ptr<ZmString>> texts_;  // owns the answers that are no numbers
};

void ZmExpression::eval(ZmScalar& result) { Evaluation(*this).run(result); }

// A tree that comes to nothing, for want of an operand, leaves the result as it was.
void ZmExpression::Evaluation::run(ZmScalar& result) {
  const Value value = _tree();
  switch (value.kind) {
    case Value::kNothing:
      break;
    case Value::kInteger:
      result._set(value.integer);
      break;
    case Value::kFloat:
      result._set(value.real);
      break;
    case Value::kText:
      // Only a leaf's text is taken over: a unary operator leaves the text of a string alone.
      result.kind_ = ZmScalar::kString;
      if (value.text) result.string_ = *value.text;
      break;
  }
}

// The right operand first: references and callbacks are asked in this order, which shows.
ZmExpressionValue ZmExpression::Evaluation::_tree() {
  ZmExpressionStack<Pending> pending;
  for (ZmExpression* node = &root_;;) {
    for (; node->name_.length() == 0 && node->b_; node = node->b_)
      pending.push({node, Value(), false});
    Value value = node->name_.length() > 0 ? _leaf(*node) : Value();
    for (node = nullptr; !node;) {
      if (pending.empty()) return value;
      Pending& top = pending.top();
      const ZmExpressionOperator* op = top.node->cache_.op;
      if (top.second) {
        value = _binary(*top.node, value, top.b);
      } else if (op && op->unary()) {
        value = _unary(op->operation, value);
      } else if (top.node->a_) {
        top.second = true;
        top.b = value;
        node = top.node->a_;
        continue;
      } else {
        value = Value();
      }
      pending.pop();
    }
  }
}

// What it is as a number is kept: reading one costs more than an operation, and most trees are
// evaluated more than once.
ZmExpressionValue ZmExpression::Evaluation::_leaf(ZmExpression& node) {
  const bool own = node.value_.length() > 0;
  if (!own && (node.reference_ || node.valuereq_)) return _asked(node);
  Value& constant = node.cache_.constant;
  if (constant.kind == Value::kNothing) constant = _read(own ? node.value_ : node.name_);
  return constant;
}

ZmExpressionValue ZmExpression::Evaluation::_asked(ZmExpression& node) {
  // A source may hand over a secret, which must not outlast its use in the buffer.
  if (answer_.secure()) answer_.wipe();
  answer_.secure(0);
  answer_.clear();
  if (node.reference_) {
    node.reference_->value(node.name_, answer_);
  } else {
    node.valuereq_(node.name_, answer_);
  }
  const Value value = _read(answer_);
  if (value.kind != Value::kText) return value;
  texts_.push_back(std::make_unique<ZmString>(answer_));
  return Value(texts_.back().get());
}

ZmExpressionValue ZmExpression::Evaluation::_read(const ZmString& text) {
  ZmTextCursor in(zm_view(text));
  const ZmDigits digits = zm_digits(in);
  if (in.eof() && digits.count > 0 && digits.count < 10)  // the usual number, which can't overflow
    return Value(static_cast<int>(digits.value));
  const ZmScalar scalar(text);
  if (scalar.kind_ == ZmScalar::kInteger) return Value(scalar.integer_);
  return scalar.kind_ == ZmScalar::kFloat ? Value(scalar.float_) : Value(&text);
}

// Strings have no unary operators: what is left of one is its kind.
ZmExpressionValue ZmExpression::Evaluation::_unary(ZmOperation operation, Value b) {
  if (b.kind == Value::kText) return Value(nullptr);
  if (b.kind == Value::kFloat) return Value(zm_unary(operation, b.real));
  return Value(zm_unary(operation, b.integer));
}

// An operand that came to nothing counts as the integer 0, which a fresh scalar is.
ZmExpressionValue ZmExpression::Evaluation::_binary(const ZmExpression& node, Value a, Value b) {
  const Value::Kind kind = a.kind > b.kind ? a.kind : b.kind;
  if (kind == Value::kText) return _mixed(node.op_, a, b);
  const ZmOperation operation = node.cache_.op ? node.cache_.op->operation : ZmOperation::kNone;
  if (kind == Value::kFloat) return Value(zm_binary(operation, _real(a), _real(b)));
  return Value(zm_binary(operation, a.integer, b.integer));
}

// Strings are rare, and the scalars know their rules.
ZmExpressionValue ZmExpression::Evaluation::_mixed(const ZmString& op, Value a, Value b) {
  ZmScalar left(_scalar(a));
  ZmScalar right(_scalar(b));
  ZmScalar result;
  ZmScalar::eval(op, left, right, result);
  return Value(result.integervalue());
}

ZmScalar ZmExpression::Evaluation::_scalar(Value value) {
  if (value.kind == Value::kFloat) return ZmScalar(value.real);
  if (value.kind != Value::kText) return ZmScalar(value.integer);
  return ZmScalar(value.text ? *value.text : ZmString());
}

float ZmExpression::Evaluation::_real(Value value) {
  return value.kind == Value::kFloat ? value.real : static_cast<float>(value.integer);
}
