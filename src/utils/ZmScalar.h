#ifndef ZM_SCALAR_H
#define ZM_SCALAR_H

#include "ZmBase.h"
#include "ZmString.h"

/// The value of an expression: an integer (32-bit signed), a float (IEEE single precision) or a
/// string, and the operators of the expression language.
///
/// Operators work in the wider kind of their operands: integer, then float, then string. Nothing
/// fails: an operator that the kind doesn't have gives 0, and a text that is no number counts as
/// what its leading digits say. One thread at a time.
class ZM_EXPORT ZmScalar : public ZmBase {
 public:
  ZmScalar() = default;                                      ///< The integer 0.
  ZmScalar(const ZmString& text) { value(text); }            ///< value(text).
  ZmScalar(int number) : integer_(number) {}                 ///< An integer.
  ZmScalar(float number) : kind_(kFloat), float_(number) {}  ///< A float.
  /// A new scalar of the same kind and value: the one way to double a scalar, since assignment
  /// copies nothing.
  ZmScalar(const ZmScalar& other) = default;
  ~ZmScalar() override = default;          ///< Slot 0.
  virtual int type() const { return 73; }  ///< Slot 1. The type code.

  /// Copies nothing, deliberately: the scalar stays as it is.
  void copy(const ZmScalar& other);
  /// Copies nothing, deliberately: the scalar stays as it is. Callers that need a copy construct a
  /// new scalar.
  ZmScalar& operator=(const ZmScalar& other);

  /// Takes a text: an integer when it is not empty and isinteger(), else a float when it is not
  /// empty and isfloat(), else the string itself.
  void value(const ZmString& text);

  /// The value as an integer. A float is truncated toward zero, to the nearest limit when it is out
  /// of range, a NaN to 0; a string is read by ZmString::integervalue().
  int integervalue() const;
  /// The value as a float. A string is read by ZmString::floatvalue().
  float floatvalue() const;
  /// The value as a text ("%d", "%f"), which the scalar owns and the next call may change. The kind
  /// stays.
  ZmString& stringvalue();

  /// Unary operators: "!" and "not" give 1 for 0 and else 0; "-" and "--" negate; others give 0.
  /// The result is of a's kind; for a string only the result's kind is set, not its text.
  static void eval(const ZmString& op, ZmScalar& a, ZmScalar& result);

  /// Binary operators, exact names. Division by zero divides by 1, integers wrap in 32 bits, and
  /// shift counts are taken modulo 32.
  ///
  /// | Names | integers | floats | strings |
  /// |---|---|---|---|
  /// | "/" "div", "*" "mul", "+" "add", "-" "sub" | yes | yes | |
  /// | "%" "mod", "^" "xor", "&", "\|", "<<" "ls", ">>" "rs" | yes | | |
  /// | "&&" "and" | yes | yes | both integervalue()s |
  /// | "\|\|" "or" | yes | yes | |
  /// | "=" "==" "eq", "!=" "ne" | yes | yes | the texts |
  /// | "<>" | yes | | |
  /// | "<" "lt", ">" "gt", "<=" "le", ">=" "ge", "max", "min" | yes | yes | |
  /// | "in": a is an element of b; "has": b is one of a | equal | equal | comma lists |
  ///
  /// Truth values are 1 and 0. The result is a float for floats, else an integer. a and b may get
  /// their text filled in as stringvalue() does; the result may be one of them.
  static void eval(const ZmString& op, ZmScalar& a, ZmScalar& b, ZmScalar& result);

 private:
  friend class ZmExpression;                      // its evaluation
  enum Kind : int { kInteger, kFloat, kString };  // a wider kind wins

  void _set(int number) {
    kind_ = kInteger;
    integer_ = number;
  }
  void _set(float number) {
    kind_ = kFloat;
    float_ = number;
  }

  Kind kind_ = kInteger;
  int integer_ = 0;
  float float_ = 0;
  ZmString string_;
};

#endif
