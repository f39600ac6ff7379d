// What a node of an expression tree keeps for its evaluation. Internal, held by ZmExpression.
#ifndef ZM_EXPRESSION_CACHE_H
#define ZM_EXPRESSION_CACHE_H

class ZmString;
struct ZmExpressionOperator;

// What a node comes to, small enough for two registers. A text is lent; a null one is empty. As a
// number, nothing counts as the integer 0.
struct ZmExpressionValue {
  enum Kind : unsigned char { kNothing, kInteger, kFloat, kText };  // a wider kind wins

  ZmExpressionValue() : ZmExpressionValue(0) { kind = kNothing; }
  explicit ZmExpressionValue(int number) : integer(number), kind(kInteger) {}
  explicit ZmExpressionValue(float number) : real(number), kind(kFloat) {}
  explicit ZmExpressionValue(const ZmString* lent) : text(lent), kind(kText) {}

  union {
    int integer;
    float real;
    const ZmString* text;
  };
  Kind kind;
};

// None of it shows. Whoever changes a node's operator, or the text of a leaf, changes this with it.
struct ZmExpressionCache {
  const ZmExpressionOperator* op =
      nullptr;                 // what the node's operator names; null for the empty text
  ZmExpressionValue constant;  // the leaf's own text, once it was read; nothing before
};

#endif
