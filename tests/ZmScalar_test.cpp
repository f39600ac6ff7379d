#include "ZmScalar.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <sstream>

#include "ZmTest.h"

namespace {

// "i7", "f3.500000" or "s" and the text. The kind shows in a unary result: kinds keep to
// themselves.
std::string shown(ZmScalar& scalar) {
  ZmScalar negated;
  ZmScalar one(1);
  ZmScalar::eval("-", scalar, negated);
  const std::string value = text(scalar.stringvalue());
  if (negated.stringvalue() == ZmString()) return "s" + value;
  ZmScalar::eval("==", scalar, one, negated);
  return (negated.stringvalue().haschar('.') ? "f" : "i") + value;
}

// "a op b" or "op a"; "_" stands for a blank and "~" for the empty text.
std::string evaluated(const char* source) {
  std::istringstream in(source);
  std::vector<ZmString> all;
  for (std::string field; in >> field;) {
    std::replace(field.begin(), field.end(), '_', ' ');
    all.emplace_back(field == "~" ? "" : field.c_str());
  }
  ZmScalar a(all[all.size() == 3 ? 0 : 1]), b(all.back()), result{ZmString("stale")};
  if (all.size() == 3) ZmScalar::eval(all[1], a, b, result);
  if (all.size() == 2) ZmScalar::eval(all[0], a, result);
  return shown(result);
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
  const std::pair<float, int> rows[] = {{3e9F, INT_MAX},
                                        {2147483648.0F, INT_MAX},
                                        {2147483520.0F, 2147483520},
                                        {-INFINITY, INT_MIN},
                                        {NAN, 0}};
  for (const auto& [value, kept] : rows) EXPECT_EQ(ZmScalar(value).integervalue(), kept) << value;
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

TEST(ZmScalar, Evaluates) { checklines("operators", evaluated); }

TEST(ZmScalar, FloatsMeetNoNumber) {
  ZmScalar none(std::nanf("")), zero(0.0F), result;
  ZmScalar::eval("!=", none, none, result);
  EXPECT_EQ(result.floatvalue(), 1.0F);
  ZmScalar::eval("and", none, none, result);
  EXPECT_EQ(result.floatvalue(), 1.0F);
  ZmScalar::eval("max", zero, none, result);
  EXPECT_TRUE(std::isnan(result.floatvalue()));
}
