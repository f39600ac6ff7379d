#include "ZmScalar.h"

#include "ZmExpressionOperator.h"
#include "ZmStringList.h"
#include "ZmText.h"
#include "ZmTextSplit.h"

namespace {

bool haselement(const ZmString& list, const ZmString& element) {
  ZmStringList elements;
  zm_split(zm_view(list), elements);
  return elements.find(element) >= 0;
}

// Strings: a truth value for every operator. Those that strings don't have give 0, as numbers do
// for operators that they don't have.
bool compared(ZmOperation operation, ZmScalar& a, ZmScalar& b) {
  switch (operation) {
    case ZmOperation::kEqual:
      return a.stringvalue() == b.stringvalue();
    case ZmOperation::kUnequal:
      return a.stringvalue() != b.stringvalue();
    case ZmOperation::kAnd:
      return a.integervalue() != 0 && b.integervalue() != 0;
    case ZmOperation::kIn:
      return haselement(b.stringvalue(), a.stringvalue());
    case ZmOperation::kHas:
      return haselement(a.stringvalue(), b.stringvalue());
    default:
      return false;
  }
}

}  // namespace

// Deliberately nothing: a scalar keeps what it was made with, and whoever needs a copy constructs
// it.
void ZmScalar::copy(const ZmScalar&) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
ZmScalar& ZmScalar::operator=(const ZmScalar&) { return *this; }

// The text of a number is not kept: stringvalue() makes the usual form of it when asked.
void ZmScalar::value(const ZmString& text) {
  if (text.isinteger()) {
    _set(text.integervalue());
  } else if (text.isfloat()) {
    _set(text.floatvalue());
  } else {
    kind_ = kString;
    string_ = text;
  }
}

int ZmScalar::integervalue() const {
  if (kind_ == kInteger) return integer_;
  return kind_ == kFloat ? zm_integer(float_) : string_.integervalue();
}

float ZmScalar::floatvalue() const {
  if (kind_ == kInteger) return static_cast<float>(integer_);
  return kind_ == kFloat ? float_ : string_.floatvalue();
}

// The kind stays: a number that has been shown goes on as a number.
ZmString& ZmScalar::stringvalue() {
  if (kind_ == kInteger) string_.copy(integer_);
  if (kind_ == kFloat) string_.copy(float_);
  return string_;
}

// Strings have no unary operators: the result becomes one, with whatever text it held.
void ZmScalar::eval(const ZmString& op, ZmScalar& a, ZmScalar& result) {
  const ZmOperation operation = zm_operator(zm_view(op))->operation;
  if (a.kind_ == kInteger) {
    result._set(zm_unary(operation, a.integer_));
  } else if (a.kind_ == kFloat) {
    result._set(zm_unary(operation, a.float_));
  } else {
    result.kind_ = kString;
  }
}

// Both operands count as the wider of their kinds, and the result has that kind, too, but for
// strings, which give integers.
void ZmScalar::eval(const ZmString& op, ZmScalar& a, ZmScalar& b, ZmScalar& result) {
  const ZmOperation operation = zm_operator(zm_view(op))->operation;
  const Kind kind = a.kind_ > b.kind_ ? a.kind_ : b.kind_;
  if (kind == kInteger) {
    result._set(zm_binary(operation, a.integer_, b.integer_));
  } else if (kind == kFloat) {
    result._set(zm_binary(operation, a.floatvalue(), b.floatvalue()));
  } else {
    result._set(compared(operation, a, b) ? 1 : 0);
  }
}
