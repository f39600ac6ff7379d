#include "ZmString.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "ZmTest.h"

namespace {

// Virtual table, the smallest buffer, length, and what the flags take.
static_assert(sizeof(ZmString) == sizeof(void*) + 16 + 2 * sizeof(int));

std::string shown(const ZmString& s) { return s.isundef() ? "undefined" : "'" + text(s) + "'"; }

// "capacity/length", as printed.
std::string state(const ZmString& s) {
  int fields[2] = {};
  const std::string all = printed([&] { s._debug_info(); });
  std::sscanf(all.c_str(), "ZmString:\n\tsize: %d\n\tlength: %d", fields, fields + 1);
  return std::to_string(fields[0]) + "/" + std::to_string(fields[1]);
}

template <class... Arguments>
std::string formed(const std::string& format, Arguments... arguments) {
  char out[512];
  std::snprintf(out, sizeof out, format.c_str(), arguments...);
  return out;
}

int sign(int order) { return (order > 0) - (order < 0); }

}  // namespace

TEST(ZmString, UndefinedUntilGivenABuffer) {
  ZmString s;
  s.clear();
  s.copy(nullptr, 3);
  s.copy("x", 0);
  s.append("");
  s += static_cast<ZmString*>(nullptr);
  s = static_cast<const char*>(nullptr);
  s = ZmString();
  EXPECT_EQ(shown(s), "undefined");
  EXPECT_EQ(state(s), "0/0");
  s.copy("");  // the only copy of nothing that defines
  EXPECT_EQ(shown(s), "''");
  EXPECT_EQ(state(s), "16/0");
  EXPECT_EQ(shown(ZmString(s)), "undefined");
  EXPECT_STREQ(std::unique_ptr<char[]>(ZmString().copyvalue()).get(), "");
}

TEST(ZmString, GrowsToFourTimesTheNeed) {
  ZmString s;
  const std::pair<const char*, const char*> rows[] = {
      {"x", "16/1"}, {"yy", "16/3"}, {"123456789012", "16/15"}, {"z", "68/16"}};
  for (const auto& [more, after] : rows) EXPECT_EQ(state(s += more), after);
  EXPECT_EQ(text(s), "xyy123456789012z");
  EXPECT_EQ(state(s = "kept"), "68/4");
  EXPECT_EQ(state(ZmString("12345678901234567890")), "84/20");
  EXPECT_THROW(s.append("x", INT_MAX), std::bad_alloc);
  EXPECT_EQ(state(s), "68/4");
}

TEST(ZmString, TakesItselfAndPiecesOfItself) {
  for (std::size_t n = 2; n < 100; ++n) {
    std::string expected;
    for (std::size_t i = 0; i < n; ++i) expected += static_cast<char>('a' + i % 26);
    ZmString s(expected.c_str());
    s += s;
    s += &s;
    for (int twice = 0; twice < 2; ++twice) expected += expected;
    s.append(s.value() + 1, static_cast<int>(n));
    expected += expected.substr(1, n);
    s.append(s.value() + 2);
    expected += expected.substr(2);
    s = s.value() + 1;
    expected.erase(0, 1);
    s.copy(s.value() + 1, s.length() - 1);
    expected.erase(0, 1);
    s.copy(s.value(), 1);  // its own buffer: ignored
    s = *&s;
    ASSERT_EQ(text(s), expected);
    ASSERT_EQ(text(s.replacevalue(s, s, 1)), expected);
  }
}

TEST(ZmString, ComparesByteOrderWithTheEmptyTextsFirst) {
  const ZmString undefined;
  // Ascending; rows of one rank are equal.
  const struct {
    int rank;
    ZmString s;
  } rows[] = {{0, undefined}, {0, ""}, {1, "A"}, {2, "a"}, {3, "aB"}, {4, "ab"}, {5, "\xe4"}};
  for (const auto& [rank_a, a] : rows) {
    for (const auto& [rank_b, b] : rows) {
      SCOPED_TRACE(shown(a) + " " + shown(b));
      const int order = sign(rank_a - rank_b);
      EXPECT_EQ(sign(a.cmp(b)), order);
      EXPECT_TRUE((a == b) == (order == 0) && (a != b) == (order != 0));
      EXPECT_TRUE((a < b) == (order < 0) && (a <= b) == (order <= 0));
      EXPECT_TRUE((a > b) == (order > 0) && (a >= b) == (order >= 0));
      EXPECT_EQ(a.compare(b, 0), order == 0);
      EXPECT_EQ(a.compare(b, 1), text(a.tolower()) == text(b.tolower()));
      EXPECT_EQ(a.compare(b, 2), rank_a == 0 && rank_b == 0);
    }
  }
  // A comparison ends at a zero byte; the length counts all the same.
  EXPECT_TRUE(zm_string({"a\0b", 3}) == zm_string({"a\0c", 3}));
  EXPECT_FALSE(zm_string({"a\0b", 3}) == ZmString("a"));
  EXPECT_EQ(zm_string({"a\0b", 3}).cmp("a"), 0);
}

TEST(ZmString, FindsAsEqualityDoes) {
  // Against its definition: some piece of the length of what is sought equals it. "0" is a zero
  // byte.
  const char* const texts[] = {"", "a", "b", "ab", "aab", "a0b", "a0", "0", "xa0q", "abab0ba"};
  for (std::string in : texts) {
    for (std::string what : texts) {
      std::ranges::replace(in, '0', '\0');
      std::ranges::replace(what, '0', '\0');
      bool found = what.empty();
      for (int i = 0; i < static_cast<int>(in.size()); ++i)
        found |= zm_string(in).substr(i, i + static_cast<int>(what.size())) == zm_string(what);
      EXPECT_EQ(zm_string(in).find(zm_string(what)), found) << in << " " << what;
    }
  }
}

TEST(ZmString, KnowsWhatTextsLookLike) {
  const struct {
    unsigned char (ZmString::*is)() const;
    std::vector<const char*> yes, no;
  } rows[] = {
      {&ZmString::isinteger, {"-", "7", "007", "-12"}, {"", "+7", "7.0", "1-", " 1", "--1"}},
      {&ZmString::isfloat, {"-", "+", ".", "+.5", "-3", "7."}, {"", "1.2.3", ".1.", "1e3", "1-"}},
      {&ZmString::hasspace, {" ", "a\tb", "\n", "a\r"}, {"", "a\v\f\xa0"}},
      {&ZmString::multiline, {"\n", "a\r"}, {"", "a b\t"}}};
  for (const auto& [is, yes, no] : rows) {
    for (const char* s : yes) EXPECT_TRUE((ZmString(s).*is)()) << s;
    for (const char* s : no) EXPECT_FALSE((ZmString(s).*is)()) << s;
  }
  EXPECT_FALSE(ZmString("ab").haschar(0));
  EXPECT_TRUE(zm_string({"a\0", 2}).haschar(0));
}

TEST(ZmString, MakesNewTexts) {
  const ZmString abc("abcdef");
  EXPECT_EQ(shown(abc.substr(2, 4)), "'cd'");
  EXPECT_EQ(shown(abc.substr(4, 99)), "'ef'");
  for (const int start : {4, 6}) EXPECT_TRUE(abc.substr(start, start).isundef());
  EXPECT_EQ(shown(ZmString("a\tb\x01\x63\x7f\xe4").removecontrolchars()), "'a\tbc'");
  EXPECT_EQ(shown(ZmString("\x01").removecontrolchars()), "undefined");
  EXPECT_EQ(shown(ZmString("\na\nb\r\nc\r").LFtoCRLF()), "'\r\na\r\nb\r\nc\r'");
  EXPECT_EQ(shown(ZmString("aB\xe4").tolower()), "'ab\xe4'");
  EXPECT_EQ(shown(ZmString("aB\xe4").toupper()), "'AB\xe4'");
}

TEST(ZmString, ReplacesFromLeftToRight) {
  const char* const rows[][5] = {// text, from, to; with any case, exactly
                                 {"abcAbAB", "AB", "x", "'xcxx'", "'abcAbx'"},
                                 {"aa", "a", "aa", "'aaaa'", "'aaaa'"},
                                 {"aaa", "aa", "b", "'ba'", "'ba'"},
                                 {"aa", "a", "", "undefined", "undefined"},
                                 {"ab", "", "x", "'ab'", "'ab'"},
                                 {"ab", "abc", "x", "'ab'", "'ab'"}};
  for (const auto& [in, from, to, folded, exact] : rows) {
    EXPECT_EQ(shown(ZmString(in).replacevalue(from, to, 0)), folded) << in;
    EXPECT_EQ(shown(ZmString(in).replacevalue(from, to, 1)), exact) << in;
  }
}

TEST(ZmString, Concatenates) {
  const ZmString b("b");
  const ZmString made[] = {b + b,  b + "c", "a" + b,  b + 'c',  'c' + b,       '\xff' + b,
                           -5 + b, b + 7,   1.5F + b, b + 2.0F, b + ZmString()};
  const char* const expected[] = {"bb",  "bc", "ab",        "b99",       "99b", "-1b",
                                  "-5b", "b7", "1.500000b", "b2.000000", "b"};
  for (std::size_t i = 0; i < std::size(made); ++i) EXPECT_EQ(text(made[i]), expected[i]);
  ZmString secret("s");
  secret.secure(1);
  EXPECT_TRUE((secret + b).secure());
  EXPECT_FALSE((b + secret).secure());
}

TEST(ZmString, ReadsNumbers) {
  // Decimal, which wraps; hexadecimal, of the whole and of two bytes.
  check({" => 0 0 0", "x1 => 0 1 1", "1G => 1 10 10", "fF34 => 0 ff34 ff", " -7x => -7 70 0",
         "123456789 => 123456789 23456789 12", "2147483648 => -2147483648 47483648 21",
         "9223372036854775808 => -1 54775808 92"},
        [](const ZmString& s) {
          return formed("%d %x %x", s.integervalue(), s.hexvalue(), s.hexchar());
        });
  EXPECT_EQ(ZmString("-9223372036854775808").longlongvalue(), LLONG_MIN);
  EXPECT_EQ(ZmString("1.5e1x").floatvalue(), 15.0F);
}

TEST(ZmString, WritesNumbersAsPrintf) {
  for (const int value : {0, 7, -7, 12345, INT_MAX, INT_MIN}) {
    EXPECT_EQ(text(value), formed("%d", value));
    for (const int width : {-12, -3, 0, 1, 2, 4, 12, 300}) {
      EXPECT_EQ(text(ZmString::padded_int(value, width)),
                formed("%0" + std::to_string(width) + "d", value));
      ZmString s("x");
      s.integervalue(value, width);
      s.integervalue(value, width, '*');
      std::string digits = formed("%d", value);
      while (static_cast<int>(digits.size()) < width) digits.insert(0, 1, '*');
      EXPECT_EQ(text(s), "x" + text(ZmString::padded_int(value, width)) + digits);
    }
  }
  for (const float value : {-0.0F, 1.5F, 0.0000005F, FLT_MAX, -FLT_MAX, -INFINITY, NAN}) {
    ZmString s("gone");
    s.floatvalue(value);
    EXPECT_EQ(text(s), formed("%f", static_cast<double>(value)));
  }
  ZmString s(LLONG_MIN);
  for (const char c : {'\0', '\x0a', '\x7f', '\xff'}) s.hexvalue(c);
  EXPECT_EQ(text(s), "-9223372036854775808000A7FFF");
}

// The block that a secure string gives up is had again from the allocator. A sanitizer keeps blocks
// apart, and nothing can be seen.
TEST(ZmString, SecureTextsAreWipedOnRelease) {
  constexpr std::size_t kSize = 404;
  for (const bool grow : {true, false}) {
    auto s = std::make_unique<ZmString>(std::string(kSize / 4 - 1, 's').c_str());
    s->secure(1);
    const auto* const buffer = s->value();
    if (grow) *s += ZmString(std::string(kSize, 'x').c_str());
    if (!grow) s.reset();
    const std::unique_ptr<char[]> block(new char[kSize]);
    // The allocator keeps words of its own in the first bytes of a free block.
    if (block.get() == buffer) {
      EXPECT_EQ(std::memchr(block.get() + 16, 's', kSize - 16), nullptr);
    }
  }
  // The smallest buffer: destroyed, and given up for a larger one.
  constexpr std::string_view left = "cret";
  for (const bool grow : {false, true}) {
    alignas(ZmString) char place[sizeof(ZmString)] = {};
    auto* const s = new (place) ZmString;
    s->secure(1);
    s->copy("");
    s->append("secret-secret");
    ASSERT_NE(std::search(place, std::end(place), left.begin(), left.end()), std::end(place));
    if (grow) s->append("more");
    if (!grow) s->~ZmString();
    EXPECT_EQ(std::search(place, std::end(place), left.begin(), left.end()), std::end(place))
        << grow;
    if (grow) s->~ZmString();
  }
  ZmString kept("secret");
  kept.secure(1);
  kept.clear();
  EXPECT_STREQ(kept.value() + 1, "ecret");  // clear() wipes nothing
  kept.wipe();
  EXPECT_STREQ(kept.value() + 1, "");
}
