// The operators of the expression language: names, binding strength, meaning for numbers. Internal.
#ifndef ZM_EXPRESSION_OPERATOR_H
#define ZM_EXPRESSION_OPERATOR_H

#include <cstdint>
#include <string_view>

// Where the operators of an expression stand: the numbers that parse() takes for it.
inline constexpr int kZmInfix = 0, kZmPostfix = 1, kZmPrefix = 2;

// Names of one meaning share a code. "-" and "sub" have one each, since only "-" is unary as well;
// "!=" and "<>" too, since "<>" compares integers only.
enum class ZmOperation : unsigned char {
  kNone,
  kOpen,
  kClose,
  kNot,
  kNegate,
  kMinus,
  kSubtract,
  kAdd,
  kMultiply,
  kDivide,
  kModulo,
  kBitXor,
  kBitAnd,
  kBitOr,
  kAnd,
  kOr,
  kShiftLeft,
  kShiftRight,
  kEqual,
  kUnequal,
  kUnequalIntegers,
  kLess,
  kGreater,
  kLessEqual,
  kGreaterEqual,
  kIn,
  kHas,
  kMaximum,
  kMinimum
};

struct ZmExpressionOperator {
  std::string_view name;
  ZmOperation operation;
  int precedence;  // higher binds tighter
  bool token;      // whether the parsers take the name as an operator

  bool unary() const { return operation == ZmOperation::kNot || operation == ZmOperation::kNegate; }
};

// The operator of a name, in static memory; for any other name one without operation.
const ZmExpressionOperator* zm_operator(std::string_view name);

// Truncated toward zero; the nearest limit when out of range, 0 for a NaN.
int zm_integer(float value);

// The arithmetic of both kinds of numbers. Integers wrap in 32 bits; division by zero divides by 1.
inline std::uint32_t zm_bits(int value) { return static_cast<std::uint32_t>(value); }
inline int zm_wrapped(std::uint32_t value) { return static_cast<int>(value); }
inline int zm_negative(int a) { return zm_wrapped(0U - zm_bits(a)); }
inline int zm_sum(int a, int b) { return zm_wrapped(zm_bits(a) + zm_bits(b)); }
inline int zm_difference(int a, int b) { return zm_wrapped(zm_bits(a) - zm_bits(b)); }
inline int zm_product(int a, int b) { return zm_wrapped(zm_bits(a) * zm_bits(b)); }
inline int zm_quotient(int a, int b) { return b == 0 ? a : b == -1 ? zm_negative(a) : a / b; }
inline float zm_negative(float a) { return -a; }
inline float zm_sum(float a, float b) { return a + b; }
inline float zm_difference(float a, float b) { return a - b; }
inline float zm_product(float a, float b) { return a * b; }
inline float zm_quotient(float a, float b) { return b == 0.0F ? a : a / b; }

// What only integers have; 0 for an operation that is none.
inline int zm_binary_bits(ZmOperation operation, int a, int b) {
  using enum ZmOperation;
  switch (operation) {
    case kModulo:
      return b == 0 || b == -1 ? 0 : a % b;
    case kBitXor:
      return a ^ b;
    case kBitAnd:
      return a & b;
    case kBitOr:
      return a | b;
    case kShiftLeft:
      return zm_wrapped(zm_bits(a) << (zm_bits(b) & 31U));
    case kShiftRight:
      return a >> (zm_bits(b) & 31U);
    case kUnequalIntegers:
      return a != b;
    default:
      return 0;
  }
}
inline float zm_binary_bits(ZmOperation, float, float) { return 0.0F; }

// What an operation gives for two numbers of one kind; 0 for one that they don't have.
template <class Number>
Number zm_unary(ZmOperation operation, Number a) {
  using enum ZmOperation;
  if (operation == kNot) return a == Number{};
  return operation == kNegate || operation == kMinus ? zm_negative(a) : Number{};
}

template <class Number>
Number zm_binary(ZmOperation operation, Number a, Number b) {
  using enum ZmOperation;
  switch (operation) {
    case kDivide:
      return zm_quotient(a, b);
    case kMultiply:
      return zm_product(a, b);
    case kAdd:
      return zm_sum(a, b);
    case kMinus:
    case kSubtract:
      return zm_difference(a, b);
    case kAnd:
      return a != Number{} && b != Number{};
    case kOr:
      return a != Number{} || b != Number{};
    case kUnequal:
      return a != b;
    case kLess:
      return a < b;
    case kGreater:
      return a > b;
    case kLessEqual:
      return a <= b;
    case kGreaterEqual:
      return a >= b;
    case kEqual:
    case kIn:
    case kHas:
      return a == b;
    case kMaximum:
      return a > b ? a : b;
    case kMinimum:
      return a > b ? b : a;
    default:
      return zm_binary_bits(operation, a, b);
  }
}

#endif
