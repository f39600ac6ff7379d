#include "ZmExpression.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <string_view>
#include <utility>

#include "ZmExpressionOperator.h"
#include "ZmExpressionStack.h"
#include "ZmText.h"
#include "ZmTextSplit.h"

namespace {

void indentation(long long n) {
  constexpr std::string_view blanks =
      "                                                                ";
  constexpr auto size = static_cast<long long>(blanks.size());
  for (; n > 0; n -= size)
    std::cout.write(blanks.data(), static_cast<std::streamsize>(std::min(n, size)));
}

}  // namespace

// Visits a tree, parents first; children may not change.
template <class Node, class Visit>
void ZmExpression::_each(Node* root, Visit visit) {
  ZmExpressionStack<Node*> pending;
  for (pending.push(root); !pending.empty();) {
    Node* node = pending.pop();
    visit(*node);
    if (node->b_) pending.push(node->b_);
    if (node->a_) pending.push(node->a_);
  }
}

// Needs neither recursion nor memory: each first child is turned above its parent, until the tree
// is a chain of second children. The leaves go first: so blocks are given back in the order in
// which a parser takes them, and trees that are made again and again don't get scattered.
void ZmExpression::_destroy(ZmExpression* tree) {
  for (ZmExpression** link = &tree; *link;) {
    ZmExpression* node = *link;
    ZmExpression* a = node->a_;
    if (!a) {
      link = &node->b_;
    } else if (!a->a_ && !a->b_) {
      delete std::exchange(node->a_, nullptr);
    } else {
      node->a_ = std::exchange(a->b_, node);
      *link = a;
    }
  }
  while (tree) delete std::exchange(tree, std::exchange(tree->b_, nullptr));
}

ZmExpression::ZmExpression(const ZmExpression& other) : ZmPack(other) { copy(other); }

ZmExpression& ZmExpression::operator=(const ZmExpression& other) {
  copy(other);
  ZmPack::operator=(other);
  return *this;
}

// The last node that holds a source of values destroys it: many trees share one.
ZmExpression::~ZmExpression() {
  _destroy(a_);
  _destroy(b_);
  if (!reference_) return;
  reference_->decrement();
  if (reference_->count() < 1) delete reference_;
}

// Into a temporary: the other may be a part of this tree, or memory may end halfway.
void ZmExpression::copy(const ZmExpression& other) {
  if (this == &other) return;
  struct Pair {
    const ZmExpression* from;
    ZmExpression* to;
  };
  ZmExpression tree;
  ZmExpressionStack<Pair> pending;
  for (pending.push({&other, &tree}); !pending.empty();) {
    const auto [from, to] = pending.pop();
    to->_fill(*from);
    if (from->a_) pending.push({from->a_, to->a_ = new ZmExpression});
    if (from->b_) pending.push({from->b_, to->b_ = new ZmExpression});
  }
  // What was held here goes with the temporary. Nothing fails from here on.
  op_._swap(tree.op_);
  value_._swap(tree.value_);
  name_._swap(tree.name_);
  cache_ = tree.cache_;
  valuereq_ = tree.valuereq_;
  validreq_ = tree.validreq_;
  std::swap(a_, tree.a_);
  std::swap(b_, tree.b_);
  std::swap(reference_, tree.reference_);
}

// Everything but the children, and what a leaf's text was read as: that may be lent by the text.
void ZmExpression::_fill(const ZmExpression& other) {
  op_ = other.op_;
  value_ = other.value_;
  name_ = other.name_;
  cache_.op = other.cache_.op;
  _sources(other);
}

void ZmExpression::_sources(const ZmExpression& other) {
  valuereq_ = other.valuereq_;
  validreq_ = other.validreq_;
  _hold(other.reference_);
}

void ZmExpression::_hold(ZmReference* reference) {
  reference_ = reference;
  if (reference) reference->increment();
}

// Found once here and not at each evaluation.
void ZmExpression::op(const ZmString& op) {
  op_ = op;
  cache_.op = zm_operator(zm_view(op_));
}

void ZmExpression::value(const ZmString& value) {
  value_ = value;
  cache_.constant = {};
}

void ZmExpression::name(const ZmString& name) {
  name_ = name;
  cache_.constant = {};
}

// The child before is not destroyed: whoever rearranges a tree still holds it.
void ZmExpression::a(ZmExpression* a) { a_ = a; }

void ZmExpression::b(ZmExpression* b) { b_ = b; }

void ZmExpression::validreq(ValidRequest request) {
  _each(this, [request](ZmExpression& node) { node.validreq_ = request; });
}

void ZmExpression::valuereq(ValueRequest request) {
  _each(this, [request](ZmExpression& node) { node.valuereq_ = request; });
}

void ZmExpression::reference(ZmReference* reference) {
  _each(this, [reference](ZmExpression& node) { node._hold(reference); });
}

bool ZmExpression::_unary() const { return cache_.op && cache_.op->unary(); }

// In the order in which evaluation looks for a value. A name without any source is its own value.
bool ZmExpression::_known() const {
  if (value_.length() > 0) return true;
  if (reference_) return reference_->valid(name_);
  return !validreq_ || validreq_(name_);
}

// From the right to the left, the order in which values are asked for. A missing operand is no
// fault: the infix parser leaves it out without complaint.
unsigned char ZmExpression::isvalid() const {
  ZmExpressionStack<const ZmExpression*> pending;
  for (pending.push(this); !pending.empty();) {
    const ZmExpression* node = pending.pop();
    if (node->name_.length() > 0) {
      if (!node->_known()) return 0;
    } else if (node->b_) {
      if (node->a_ && !node->_unary()) pending.push(node->a_);
      pending.push(node->b_);
    }
  }
  return 1;
}

// Once for each place where a variable stands, from the right to the left.
void ZmExpression::variables(ZmStringList& out) const {
  ZmExpressionStack<const ZmExpression*> pending;
  for (pending.push(this); !pending.empty();) {
    const ZmExpression* node = pending.pop();
    if (node->reference_ && node->name_.length() > 0 && node->reference_->variable(node->name_)) {
      out._push(new ZmString(node->name_));
    } else if (node->b_) {
      if (node->a_ && !node->_unary()) pending.push(node->a_);
      pending.push(node->b_);
    }
  }
}

void ZmExpression::display(int indent) const {
  struct Line {
    const ZmExpression* node;
    // No int: with two more a level, a deep tree may go beyond what one holds.
    long long indent;
  };
  ZmExpressionStack<Line> pending;
  for (pending.push({this, indent}); !pending.empty();) {
    const auto [node, at] = pending.pop();
    const bool leaf = node->name_.length() > 0;
    indentation(at);
    std::cout << zm_view(leaf ? node->name_ : node->op_) << '\n';
    if (leaf) continue;
    if (node->b_) pending.push({node->b_, at + 2});
    if (node->a_) pending.push({node->a_, at + 2});
  }
}

unsigned char ZmExpression::parse(const ZmString& text, int notation) {
  // Read from its end, so all tokens have to be there before the first is taken.
  if (notation == kZmPrefix) {
    ZmStringList tokens;
    tokenize(text, tokens);
    return _parse(tokens, notation);
  }
  ZmTokens tokens(zm_view(text), ZmSyntax::kExpression);
  return _parse(tokens, notation);
}

unsigned char ZmExpression::callbackparse(const ZmString& text) {
  ZmTokens tokens(zm_view(text), ZmSyntax::kCallback);
  return _parse(tokens, kZmInfix);
}

unsigned char ZmExpression::valueparse(const ZmString& text) {
  ZmTokens tokens(zm_view(text), ZmSyntax::kValue);
  return _parse(tokens, kZmInfix);
}

int ZmExpression::precedence(const ZmString& op) { return zm_operator(zm_view(op))->precedence; }
