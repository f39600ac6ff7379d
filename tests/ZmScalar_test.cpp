#include "ZmScalar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "ZmText.h"

namespace {

// "i7", "f3.500000" or "s" and the text. The kind shows in a unary result: kinds keep to
// themselves.
std::string shown(ZmScalar& scalar) {
  ZmScalar negated;
  ZmScalar one(1);
  ZmScalar::eval("-", scalar, negated);
  const std::string value(zm_view(scalar.stringvalue()));
  if (negated.stringvalue() == ZmString()) return "s" + value;
  ZmScalar::eval("==", scalar, one, negated);
  return (negated.stringvalue().haschar('.') ? "f" : "i") + value;
}

std::vector<ZmString> fields(const char* row) {
  std::vector<ZmString> all;
  std::istringstream in(row);
  for (std::string field; in >> field;) {
    std::replace(field.begin(), field.end(), '_', ' ');
    all.emplace_back(field == "~" ? "" : field.c_str());
  }
  return all;
}

}  // namespace

TEST(ZmScalar, ConvertsBetweenKinds) {
  ZmScalar text{ZmString("12ab")}, whole(-3), real(-2.75F);
  EXPECT_EQ(text.integervalue(), 12);
  EXPECT_FLOAT_EQ(text.floatvalue(), 12.0F);
  EXPECT_FLOAT_EQ(whole.floatvalue(), -3.0F);
  EXPECT_EQ(whole.stringvalue(), ZmString("-3"));
  EXPECT_EQ(real.integervalue(), -2);
  EXPECT_EQ(real.stringvalue(), ZmString("-2.750000"));
  const float big = std::numeric_limits<float>::infinity();
  EXPECT_EQ(ZmScalar(3e9F).integervalue(), INT_MAX);
  EXPECT_EQ(ZmScalar(2147483648.0F).integervalue(), INT_MAX);
  EXPECT_EQ(ZmScalar(2147483520.0F).integervalue(), 2147483520);
  EXPECT_EQ(ZmScalar(-big).integervalue(), INT_MIN);
  EXPECT_EQ(ZmScalar(std::nanf("")).integervalue(), 0);
}

TEST(ZmScalar, AssignmentCopiesNothing) {
  ZmScalar target(5), source{ZmString("text")};
  EXPECT_EQ(&(target = source), &target);
  target.copy(source);
  EXPECT_EQ(target.integervalue(), 5);
  ZmScalar constructed(source);
  EXPECT_EQ(constructed.stringvalue(), ZmString("text"));
  EXPECT_EQ(constructed.type(), 73);
}

// "a op b result"; "_" stands for a blank and "~" for the empty text.
TEST(ZmScalar, BinaryOperators) {
  const char* const rows[] = {
      "7 / 2 i3", "-7 div 2 i-3", "-7 % 2 i-1", "5 / 0 i5", "5 mod 0 i0",
      "-2147483648 / -1 i-2147483648", "-2147483648 % -1 i0", "65536 * 65537 i65536",
      "2147483647 add 1 i-2147483648", "-2147483648 sub 1 i2147483647", "6 ^ 3 i5", "6 xor 3 i5",
      "6 & 3 i2", "6 | 3 i7", "1 << 33 i2", "-8 >> 1 i-4", "1 ls -1 i-2147483648", "-1 rs 31 i-1",
      "2 && 0 i0", "2 and 3 i1", "0 || 3 i1", "0 or 0 i0", "3 = 3 i1", "3 <> 4 i1", "3 ne 3 i0",
      "3 lt 4 i1", "3 ge 4 i0", "3 has 3 i1", "3 max 4 i4", "3 min 4 i3", "3 =~ 3 i0", "3 : 3 i0",
      "3 AND 3 i0",
      // The wider kind decides, for the result too.
      "7 / 2.0 f3.500000", "3 < 4.5 f1.000000", "1.5 / 0 f1.500000", "1.5 in 1.5 f1.000000",
      "0.5 && 1 f1.000000", "1.5 max 2 f2.000000", "0.0 max -0.0 f-0.000000",
      "0.0 min -0.0 f0.000000", "1.5 min 2 f1.500000", "7.0 % 2 f0.000000", "1.0 <> 2 f0.000000",
      "1.0 << 2 f0.000000", "1.0 ^ 2 f0.000000", "2.5 != 2 f1.000000",
      // Strings know few operators, and give integers.
      "abc == abc i1", "abc < abd i0", "abc + 1 i0", "abc or 1 i0", "abc <> abd i0",
      "abc ne abd i1", "1x and 2 i1", "1x and 0.5 i0", "~ == ~ i1", "b in a,b,c i1",
      "b in a,_b_,c i1", "b in 'b' i0", "a,b,c has b i1", "a,b,c in b i0", "2 in 1,2 i1",
      "2.5 in 1,2.500000 i1", "~ in a,,b i1", "{a,b},c has {a,b} i1"};
  for (const char* row : rows) {
    const auto field = fields(row);
    ZmScalar a(field[0]), b(field[2]), result{ZmString("stale")};
    ZmScalar::eval(field[1], a, b, result);
    EXPECT_EQ(shown(result), field[3].value()) << row;
  }
}

// "op a result".
TEST(ZmScalar, UnaryOperators) {
  const char* const rows[] = {"! 0 i1", "not 5 i0", "- 5 i-5", "-- -5 i5", "sub 5 i0", "# 5 i0",
                              "- -2147483648 i-2147483648",
                              // Floats; of a string only the kind is set.
                              "! 0.0 f1.000000", "not .5 f0.000000", "-- 1.5 f-1.500000",
                              "- 0.0 f-0.000000", "+ 1.5 f0.000000", "not abc sstale"};
  for (const char* row : rows) {
    const auto field = fields(row);
    ZmScalar a(field[1]), result{ZmString("stale")};
    ZmScalar::eval(field[0], a, result);
    EXPECT_EQ(shown(result), field[2].value()) << row;
  }
}

TEST(ZmScalar, FloatsMeetNoNumber) {
  ZmScalar none(std::nanf("")), zero(0.0F), result;
  ZmScalar::eval("!=", none, none, result);
  EXPECT_EQ(result.floatvalue(), 1.0F);
  ZmScalar::eval("and", none, none, result);
  EXPECT_EQ(result.floatvalue(), 1.0F);
  ZmScalar::eval("max", zero, none, result);
  EXPECT_TRUE(std::isnan(result.floatvalue()));
}
