// Builds a tree of expressions from tokens. Internal; lives for one parse.
#ifndef ZM_EXPRESSION_PARSER_H
#define ZM_EXPRESSION_PARSER_H

#include <memory>
#include <string_view>
#include <vector>

#include "ZmExpression.h"
#include "ZmOperator.h"

class ZmExpressionParser {
 public:
  // New nodes get the callbacks and the reference of the root.
  explicit ZmExpressionParser(ZmExpression& root) : root_(root) {}

  // The next token in infix notation, by operator precedence. True when it was a unary minus.
  bool infix(std::string_view token);
  // The next token in postfix notation, or of prefix notation read from its end.
  void postfix(std::string_view token);
  // Puts the result into the root, with what is left of the tokens. True for exactly one tree.
  bool finish();

 private:
  using Node = std::unique_ptr<ZmExpression>;

  void _operand(std::string_view token);
  void _operator(const ZmOperator* op);
  void _close();
  void _reduce();
  Node _node() const;
  Node _pop();

  ZmExpression& root_;
  std::vector<Node> operands_;
  std::vector<const ZmOperator*> operators_;
  bool operandexpected_ = true;
  bool missing_ = false;  // a second operand, in prefix and postfix notation
};

#endif
