// The operators of the expression language: names, binding strength, meaning for numbers. Internal.
#ifndef ZM_EXPRESSION_OPERATOR_H
#define ZM_EXPRESSION_OPERATOR_H

#include <cstdint>
#include <string_view>

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

// What an operation gives for floats; 0 for one that they don't have.
float zm_unary(ZmOperation operation, float a);
float zm_binary(ZmOperation operation, float a, float b);

// Truncated toward zero; the nearest limit when out of range, 0 for a NaN.
int zm_integer(float value);

inline std::uint32_t zm_bits(int value) { return static_cast<std::uint32_t>(value); }
inline int zm_wrapped(std::uint32_t value) { return static_cast<int>(value); }

// The same for integers, which wrap in 32 bits.
inline int zm_unary(ZmOperation operation, int a) {
  using enum ZmOperation;
  if (operation == kNot) return a == 0;
  return operation == kNegate || operation == kMinus ? zm_wrapped(0U - zm_bits(a)) : 0;
}

// Division by zero divides by 1.
inline int zm_binary(ZmOperation operation, int a, int b) {
  using enum ZmOperation;
  switch (operation) {
    case kDivide:
      return b == 0 ? a : b == -1 ? zm_wrapped(0U - zm_bits(a)) : a / b;
    case kModulo:
      return b == 0 || b == -1 ? 0 : a % b;
    case kMultiply:
      return zm_wrapped(zm_bits(a) * zm_bits(b));
    case kBitXor:
      return a ^ b;
    case kAdd:
      return zm_wrapped(zm_bits(a) + zm_bits(b));
    case kMinus:
    case kSubtract:
      return zm_wrapped(zm_bits(a) - zm_bits(b));
    case kBitAnd:
      return a & b;
    case kBitOr:
      return a | b;
    case kAnd:
      return a != 0 && b != 0;
    case kOr:
      return a != 0 || b != 0;
    case kShiftLeft:
      return zm_wrapped(zm_bits(a) << (zm_bits(b) & 31U));
    case kShiftRight:
      return a >> (zm_bits(b) & 31U);
    case kUnequal:
    case kUnequalIntegers:
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
      return 0;
  }
}

#endif
