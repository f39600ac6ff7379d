// The parsers of ZmExpression.
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmExpression.h"
#include "ZmExpressionOperator.h"
#include "ZmText.h"
#include "ZmTextSplit.h"

// Makes the nodes and keeps those that have no parent yet, in the order of the text. Lives for one
// parse.
class ZmExpression::Builder {
 public:
  // New nodes get the callbacks and the reference of the root.
  explicit Builder(ZmExpression& root) : root_(root) {}

  void leaf(std::string_view token);
  // An inner node. What infix notation wrote last is b, and what is missing stays null.
  void infix(const ZmExpressionOperator* op);
  // The next token in postfix notation, or of prefix notation read from its end.
  void postfix(std::string_view token);
  // Puts the result into the root. True for exactly one tree.
  bool finish();

 private:
  using Node = std::unique_ptr<ZmExpression>;

  Node _node() const;
  Node _inner(const ZmExpressionOperator* op) const;
  ZmExpression* _pop();

  ZmExpression& root_;
  std::vector<Node> operands_;
  bool missing_ = false;  // a second operand, in prefix and postfix notation
};

// Brings the tokens of infix notation into the order in which a tree is built, by operator
// precedence.
class ZmExpression::Infix {
 public:
  explicit Infix(Builder& tree) : tree_(tree) {}

  // The next token. True when it was a unary minus.
  bool take(std::string_view token);
  void finish();

 private:
  void _operator(const ZmExpressionOperator* op);
  void _close();
  void _reduce();
  bool _open() const { return operators_.back()->operation == ZmOperation::kOpen; }

  Builder& tree_;
  std::vector<const ZmExpressionOperator*> operators_;  // those whose operands are not known yet
  bool operandexpected_ = true;
};

ZmExpression::Builder::Node ZmExpression::Builder::_node() const {
  auto node = std::make_unique<ZmExpression>();
  node->_sources(root_);
  return node;
}

ZmExpression::Builder::Node ZmExpression::Builder::_inner(const ZmExpressionOperator* op) const {
  Node node = _node();
  zm_append(node->op_, op->name);
  node->cache_.op = op;
  return node;
}

// Null when there is none.
ZmExpression* ZmExpression::Builder::_pop() {
  if (operands_.empty()) return nullptr;
  ZmExpression* node = operands_.back().release();
  operands_.pop_back();
  return node;
}

void ZmExpression::Builder::leaf(std::string_view token) {
  Node node = _node();
  zm_append(node->name_, token);
  operands_.push_back(std::move(node));
}

void ZmExpression::Builder::infix(const ZmExpressionOperator* op) {
  Node node = _inner(op);
  node->b_ = _pop();
  if (!op->unary()) node->a_ = _pop();
  operands_.push_back(std::move(node));
}

// The first operand popped is a, so postfix has a binary operator's operands in reverse.
void ZmExpression::Builder::postfix(std::string_view token) {
  const ZmExpressionOperator* op = zm_operator(token);
  if (!op->token) return leaf(token);
  Node node = _inner(op);
  node->a_ = _pop();
  if (!op->unary()) {
    node->b_ = _pop();
    if (!node->b_) missing_ = true;
  }
  operands_.push_back(std::move(node));
}

// The root's own children are overwritten and not destroyed: they belong to whoever took them by
// a() and b(). Of several trees the first is put there all the same.
bool ZmExpression::Builder::finish() {
  if (operands_.empty()) return false;
  ZmExpression& first = *operands_.front();
  root_.op_._swap(first.op_);
  root_.a_ = std::exchange(first.a_, nullptr);
  root_.b_ = std::exchange(first.b_, nullptr);
  root_.value_._swap(first.value_);
  root_.name_._swap(first.name_);
  root_.cache_ = {first.cache_.op, {}};
  return operands_.size() == 1 && !missing_;
}

// A binary operator where an operand must stand is one: "min" or "in" may be a name there.
bool ZmExpression::Infix::take(std::string_view token) {
  const ZmExpressionOperator* op = zm_operator(token);
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
    tree_.leaf(token);
    operandexpected_ = false;
  }
  return false;
}

void ZmExpression::Infix::_reduce() {
  tree_.infix(operators_.back());
  operators_.pop_back();
}

// A ")" without its "(" closes all.
void ZmExpression::Infix::_close() {
  while (!operators_.empty() && !_open()) _reduce();
  if (!operators_.empty()) operators_.pop_back();
  operandexpected_ = false;
}

// Only strictly stronger operators are reduced, so equals group to the right: stored expressions
// rely on it.
void ZmExpression::Infix::_operator(const ZmExpressionOperator* op) {
  while (!operators_.empty() && !_open() && operators_.back()->precedence > op->precedence)
    _reduce();
  operators_.push_back(op);
  operandexpected_ = true;
}

// An unmatched "(" becomes a binary node.
void ZmExpression::Infix::finish() {
  while (!operators_.empty()) _reduce();
}

// Without a list: infix and postfix take the tokens as they come.
bool ZmExpression::_parse(ZmTokens& tokens, int notation) {
  Builder tree(*this);
  Infix infix(tree);
  for (std::string_view token; tokens.next(token);) {
    if (notation == kZmPostfix) {
      tree.postfix(token);
    } else {
      infix.take(token);
    }
  }
  infix.finish();
  return tree.finish();
}

// The caller's list shows which minus signs were taken for unary ones.
unsigned char ZmExpression::_parse(ZmStringList& tokens, int notation) {
  Builder tree(*this);
  Infix infix(tree);
  const int n = tokens.length();
  for (int i = 0; i < n; ++i) {
    ZmString& token = *tokens.get(notation == kZmPrefix ? n - 1 - i : i);
    if (notation == kZmPrefix || notation == kZmPostfix) {
      tree.postfix(zm_view(token));
    } else if (infix.take(zm_view(token))) {
      token = "--";
    }
  }
  infix.finish();
  return tree.finish();
}
