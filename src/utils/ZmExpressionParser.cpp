#include "ZmExpressionParser.h"

#include <utility>

#include "ZmText.h"

ZmExpressionParser::Node ZmExpressionParser::_node() const {
  auto node = std::make_unique<ZmExpression>();
  node->_sources(root_);
  return node;
}

// Null when there is none, which the infix parser takes as it is.
ZmExpressionParser::Node ZmExpressionParser::_pop() {
  if (operands_.empty()) return nullptr;
  Node node = std::move(operands_.back());
  operands_.pop_back();
  return node;
}

void ZmExpressionParser::_operand(std::string_view token) {
  Node leaf = _node();
  zm_append(leaf->name_, token);
  operands_.push_back(std::move(leaf));
  operandexpected_ = false;
}

void ZmExpressionParser::_reduce() {
  const ZmOperator* op = operators_.back();
  operators_.pop_back();
  Node node = _node();
  node->_operator(op);
  node->b_ = _pop().release();
  if (!op->unary()) node->a_ = _pop().release();
  operands_.push_back(std::move(node));
}

bool ZmExpressionParser::infix(std::string_view token) {
  const ZmOperator* op = zm_operator(token);
  if (op->operation == ZmOperation::kOpen) {
    operators_.push_back(op);
    operandexpected_ = true;
  } else if (op->operation == ZmOperation::kClose) {
    _close();
  } else if (operandexpected_ && op->operation == ZmOperation::kMinus) {
    _operator(zm_operator("--"));
    return true;
  } else if (op->token && (!operandexpected_ || op->unary())) {
    _operator(op);
  } else {
    _operand(token);
  }
  return false;
}

// A ")" without its "(" closes all.
void ZmExpressionParser::_close() {
  while (!operators_.empty() && operators_.back()->operation != ZmOperation::kOpen) _reduce();
  if (!operators_.empty()) operators_.pop_back();
  operandexpected_ = false;
}

// Only strictly stronger operators are reduced, so equals group to the right.
void ZmExpressionParser::_operator(const ZmOperator* op) {
  while (!operators_.empty() && operators_.back()->operation != ZmOperation::kOpen &&
         operators_.back()->precedence > op->precedence)
    _reduce();
  operators_.push_back(op);
  operandexpected_ = true;
}

// The first operand popped is a, so postfix has a binary operator's operands in reverse.
void ZmExpressionParser::postfix(std::string_view token) {
  const ZmOperator* op = zm_operator(token);
  if (!op->token) return _operand(token);
  Node node = _node();
  node->_operator(op);
  node->a_ = _pop().release();
  if (!op->unary()) {
    node->b_ = _pop().release();
    if (!node->b_) missing_ = true;
  }
  operands_.push_back(std::move(node));
}

bool ZmExpressionParser::finish() {
  while (!operators_.empty()) _reduce();  // an unmatched "(" becomes a binary node
  if (operands_.empty()) return false;
  ZmExpression& first = *operands_.front();
  root_._changed();
  root_.op_ = first.op_;
  root_.operator_ = first.operator_;
  root_.a_ = std::exchange(first.a_, nullptr);
  root_.b_ = std::exchange(first.b_, nullptr);
  root_.value_ = first.value_;
  root_.name_ = first.name_;
  return operands_.size() == 1 && !missing_;
}
