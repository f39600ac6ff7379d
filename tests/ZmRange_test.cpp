#include "ZmRange.h"

#include <climits>
#include <new>

#include "ZmTest.h"

namespace {

static_assert(sizeof(ZmRange) == sizeof(void*) * 2 + sizeof(int) * 2);  // values, count, padding

std::string held(const ZmRange& range) {
  ZmStringList values;
  for (int i = 0; i < range.length(); ++i) values.push(new ZmString(range.get(i)));
  return joined(values);
}

std::string values(const char* source) { return held(ZmRange(source)); }

std::string value(const char* source) { return text(ZmRange(source).value()); }

// The first byte is the size.
std::string chunked(const char* row) {
  ZmStringList out;
  ZmRange(row + 1).chunk(row[0] - '0', out);
  return joined(out);
}

// The first byte is the order.
std::string expanded(const char* row) {
  ZmStringList out;
  ZmRange::patternsplit(row[0] - '0', row + 1, out);
  return joined(out);
}

std::string parts(const char* source) {
  int start = 7, end = 8, step = 9;
  ZmRange::patternsplit(source, start, end, step);
  return held(ZmRange(ZmString(start) + "," + ZmString(end) + "," + ZmString(step)));
}

}  // namespace

TEST(ZmRange, AddReadsEveryItemForm) {
  // "X" keeps what "x" drops, and never the first value. "\r" is no blank. A sign stands at its
  // digits. Numbers wrap.
  check({" => ", "- => ", "1-3 => 1 2 3", "3-1 => 3 2 1", "1-9x3 => 1 4 7", "4-4X2,4X2 => 4",
         "1\r,2 => 1", "1- - 2,4 => ", "1- => ", "9,1-5x => 9", "1-3x0 => 1 2 3", "1,,2 => 1"},
        values);
  check({"1-10x3 => 1 4 7 10", "10-1x4 => 10 6 2", "7-1X3 => 6 5 3 2", "1-8X3 => 2 3 5 6 8",
         "1-4X20 => 2 3 4", "2,9,4-6 => 2 9 4 5 6", "0-2000000000X1,5 => 5", "-3--1 => -3 -2 -1",
         "\t01 - 3x\n2 , 7 => 1 3 7", "1-5x-2 => 1 3 5", "1-3 junk => 1 2 3", "4294967297 => 1"},
        values);
  check({"2147483646-2147483647 => 2147483646 2147483647",
         "-2147483647-2147483648 => -2147483647 -2147483648",
         "-2147483648-2147483647x2147483648 => -2147483648 0",
         "2147483647-0x2147483646 => 2147483647 1"},
        values);
  check({" => 0", "- => 0", " 001-2000 => 3", "-07 => 2", "007- => 3"},
        [](const char* source) { return std::to_string(ZmRange(source).padding()); });
}

TEST(ZmRange, TooManyValuesAreAFailedAllocation) {
  static bool asked;  // the system, for memory that it didn't have
  std::set_new_handler([] {
    asked = true;
    throw std::bad_alloc();
  });
  for (const char* source :
       {"-2147483648-2147483647", "1,0-2147483647", "1-1999999999,1-999999999", "0-2147483645"}) {
    ZmRange range("1,2");
    EXPECT_THROW(range.add(source), std::bad_alloc) << source;
    EXPECT_TRUE(held(range) == "1 2" && !asked) << source;
  }
  std::set_new_handler(nullptr);
}

TEST(ZmRange, KeepsOrderAndDuplicatesUntilStripped) {
  ZmRange range("05-3");
  range.add(4);
  range.add("x");
  const ZmRange copy(range);
  EXPECT_EQ(held(copy), "5 4 3 4");
  EXPECT_TRUE(range.has(3) && !range.has(6) && range.has("5-3x2,4,4") && range.has(""));
  EXPECT_FALSE(range.has("3-6"));
  EXPECT_EQ(range.get(-1) + range.get(4), 0);
  EXPECT_STREQ(range.value().value(), "03-5");
  range.reverse();
  EXPECT_EQ(held(range), "5 4 3");
  range.clear();
  EXPECT_EQ(held(range), "");
  EXPECT_EQ(range.padding(), 2);  // outlives the values
  EXPECT_EQ(range.value().length(), 0);
  range = copy;
  range.sort();
  EXPECT_EQ(held(range) + "/" + held(copy), "3 4 4 5/5 4 3 4");
}

TEST(ZmRange, BinaryTakesTheMiddlesInTurn) {
  check({"3,1,2 => 3 1 2", "1-4 => 1 4 2 3", "9,5,7,1 => 9 1 5 7", "1-9 => 1 9 5 3 7 2 4 6 8"},
        [](const char* source) {
          ZmRange range(source);
          range.binary();
          return held(range);
        });
}

TEST(ZmRange, ValueFindsRuns) {
  // What ends a run starts no other. Gaps are compared beyond 32 bits.
  check({"3,3,3 => 3", "4,2,3,1 => 1-4", "1-3,5-9x2 => 1-3,5-9x2", "1,2,3,5,7 => 1-3,5,7",
         "1,3,4,5,9 => 1,3-5,9", "0001-3,-9--1x4 => -009--1x4,0001-3",

         "-2147483648,0,2147483647 => -2147483648,0,2147483647",
         "-2147483647-2147483647x2147483647 => -2147483647-2147483647x2147483647"},
        value);
}

TEST(ZmRange, ChunkCutsRunsIntoPieces) {
  check({"1001-3 => 1 2 3", "25,1 => 1-5x4", "15,1 => 1 5", "01-10 => ", "31-10 => 1-3 4-6 7-9 10",
         "21-9x2,11 => 1-3x2 5-7x2 9-11x2", "91-4,9,20-30x5 => 1-4 9 20-30x5"},
        chunked);
  ZmStringList out;
  ZmRange("1-10").partition(3, out);
  ZmRange("1-10").partition(0, out);
  ZmRange("-2147483648,2147483647").chunk(INT_MAX, out);
  ZmRange("1-3,1-3").partition(2, out);  // duplicates count for the size
  EXPECT_EQ(joined(out), "1-4 5-8 9-10 -2147483648-2147483647x4294967295 1-3");
}

TEST(ZmRange, TellsRangeTexts) {
  for (const char* source : {"1", "-4", " ,", "-", "1-5 X 2\n,\t3"})
    EXPECT_TRUE(ZmRange::isrange(source)) << source;
  for (const char* source : {"", " \n", ",1", "x1", "X", "1\r", "1-3a"})
    EXPECT_FALSE(ZmRange::isrange(source)) << source;
}

TEST(ZmRange, ExpandsHostPatterns) {
  // The token behind the range goes, bracket or not.
  check({"0001-003 => 1 2 3", "00[-02-1x2] => 0-2 000", "0a[1 2]b => a1]b", "0a[07 => a07",
         "0a[],b[x],c[ => c[", "3n[1,3,2] => n3 n2 n1", "23,1,2 => 1 2 3", "44,2,1,3 => 4 3 2 1",
         "53,1,2 => 2 1 3", "6n[3,1] => n3 n1", "0[01-2].x,p => 01.x 02.x p",
         "0n[01-4x3],g[3] => n01 n04 g3", "0a [ 1, 3 ] c,b => a1]c b",
         "0n[009,-12,-3] => n009 n-12 n-03", "0a[1-2]b[3] => a1b[3] a2b[3]",
         "11-9 => 1 9 5 3 7 2 4 6 8"},
        expanded);
}

TEST(ZmRange, ReadsOneItemAsFarAsItGoes) {
  check({"a => 7 8 9", "1 => 1 8 9", "1-x3 => 1 8 9", " 1 - -2  => 1 -2 9", "1-2x => 1 2 9",
         "1-2X-3 => 1 2 -3", "1-2x0,5 => 1 2 0", "4,1-2x3 => 4 8 9"},
        parts);
}
