#include "ZmEvaluation.h"

#include "ZmNumber.h"
#include "ZmText.h"

std::atomic<std::uint64_t> ZmEvaluation::now_{1};

void ZmEvaluation::run(ZmScalar& result) {
  const Value value = _tree();
  switch (value.kind) {
    case kNothing:
      return;
    case kInteger:
      result._set(value.integer);
      break;
    case kFloat:
      result._set(value.real);
      break;
    case kText:
      // Only a leaf's text is taken over: a unary operator leaves the text of a string alone.
      result.kind_ = ZmScalar::kString;
      if (value.text) result.string_ = *value.text;
      return;
  }
  if (fixed_) _keep(root_, value);
  if (fixed_) root_.foldedat_ = now_.load(std::memory_order_relaxed);
}

ZmEvaluation::Value ZmEvaluation::_tree() {
  ZmStack<Pending> pending;
  for (ZmExpression* node = &root_;;) {
    for (;; node = node->b_) {
      node->folded_ |= fixed_;
      if (node->name_.length() > 0 || !node->b_) break;
      pending.push({node, Value(), false});
    }
    Value value = node->name_.length() > 0 ? _leaf(*node) : Value();
    for (node = nullptr; !node;) {
      if (pending.empty()) return value;
      Pending& top = pending.top();
      if (top.second) {
        value = _binary(*top.node, value, top.b);
      } else if (top.node->operator_ && top.node->operator_->unary()) {
        value = _unary(top.node->operator_->operation, value);
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

ZmEvaluation::Value ZmEvaluation::_leaf(ZmExpression& node) {
  if (node.value_.length() > 0) return _constant(node, node.value_);
  if (node.reference_ || node.valuereq_) return _asked(node);
  return _constant(node, node.name_);
}

ZmEvaluation::Value ZmEvaluation::_asked(ZmExpression& node) {
  fixed_ = false;
  if (answer_.secure()) answer_.wipe();
  answer_.secure(0);
  answer_.clear();
  if (node.reference_) {
    node.reference_->value(node.name_, answer_);
  } else {
    node.valuereq_(node.name_, answer_);
  }
  const Value value = _read(answer_);
  if (value.kind != kText) return value;
  texts_.push_back(std::make_unique<ZmString>(answer_));
  return Value(texts_.back().get());
}

ZmEvaluation::Value ZmEvaluation::_constant(ZmExpression& node, const ZmString& text) {
  switch (node.constant_) {
    case ZmExpression::kInteger:
      return {kInteger, node.integer_};
    case ZmExpression::kFloat:
      return Value(node.float_);
    case ZmExpression::kString:
      return Value(&text);
    case ZmExpression::kUnread:
      break;
  }
  const Value value = _read(text);
  _keep(node, value);
  return value;
}

void ZmEvaluation::_keep(ZmExpression& node, Value value) {
  node.constant_ = static_cast<ZmExpression::Constant>(value.kind);
  if (value.kind == kInteger) node.integer_ = value.integer;
  if (value.kind == kFloat) node.float_ = value.real;
}

ZmEvaluation::Value ZmEvaluation::_read(const ZmString& text) {
  ZmCursor in(zm_view(text));
  const ZmDigits digits = zm_digits(in);
  if (in.eof() && digits.count > 0 && digits.count < 10)  // the usual number, which can't overflow
    return {kInteger, static_cast<int>(digits.value)};
  const ZmScalar scalar(text);
  if (scalar.kind_ == ZmScalar::kInteger) return {kInteger, scalar.integer_};
  return scalar.kind_ == ZmScalar::kFloat ? Value(scalar.float_) : Value(&text);
}

ZmEvaluation::Value ZmEvaluation::_unary(ZmOperation operation, Value b) {
  if (b.kind == kText) return Value(nullptr);
  if (b.kind == kFloat) return Value(zm_unary(operation, b.real));
  return {kInteger, zm_unary(operation, b.integer)};
}

ZmEvaluation::Value ZmEvaluation::_binary(const ZmExpression& node, Value a, Value b) {
  const Kind kind = a.kind > b.kind ? a.kind : b.kind;
  if (kind == kText) return _mixed(node.op_, a, b);
  const ZmOperation operation = node.operator_ ? node.operator_->operation : ZmOperation::kNone;
  if (kind == kFloat) return Value(zm_binary(operation, _real(a), _real(b)));
  return {kInteger, zm_binary(operation, a.integer, b.integer)};
}

// Strings are rare, and the scalars know their rules.
ZmEvaluation::Value ZmEvaluation::_mixed(const ZmString& op, Value a, Value b) {
  ZmScalar left(_scalar(a));
  ZmScalar right(_scalar(b));
  ZmScalar result;
  ZmScalar::eval(op, left, right, result);
  return {kInteger, result.integervalue()};
}

ZmScalar ZmEvaluation::_scalar(Value value) {
  if (value.kind == kFloat) return ZmScalar(value.real);
  if (value.kind != kText) return ZmScalar(value.integer);
  return ZmScalar(value.text ? *value.text : ZmString());
}

float ZmEvaluation::_real(Value value) {
  return value.kind == kFloat ? value.real : static_cast<float>(value.integer);
}
