#include "ZmParam.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A command line of words between blanks ('' is the empty word) for one option of every kind.
struct Line {
  explicit Line(const char* text) {
    param.setHelp([] { std::cerr << "help"; });
    param.setVersion([] { std::cerr << "version"; });
    param.defineStringOption("name");
    param.defineIntegerOption("count");
    param.defineDiffOption("diff");
    for (const char* flag : {"ver", "verbose", "verbatim", ""}) param.defineFlag(flag);
    std::istringstream words(text);
    while (words >> buffer) args.push(new ZmString(buffer == "''" ? "" : buffer.c_str()));
  }
  // The error; what was given; the positional arguments behind "|".
  std::string result() {
    std::ostringstream out;
    if (!param.parse(args)) out << param.error();
    ZmString text;
    if (param.get("ver", text)) out << "ver ";
    if (param.get("name", text)) out << "name=" << text << " ";
    if (param.get("count", number)) out << "count=" << number << " ";
    if (param.get("diff", number, sign)) out << "diff" << sign << number << " ";
    for (int i = 0; i < param.length(); ++i) out << "|" << param.arg(i);
    return out.str();
  }

  ZmParam param;
  ZmStringList args;
  std::string buffer;
  int number = 0;
  char sign = 0;
};

void check(const std::vector<std::string>& rows) {
  for (const auto& row : rows) {
    const std::string line = row.substr(0, row.find(" => "));
    EXPECT_EQ(line + " => " + Line(line.c_str()).result(), row);
  }
}

}  // namespace

TEST(ZmParam, ReadsCommandLines) {
  // The first positional argument ends the options. A lone "-" counts as an integer.
  check({"a -ver -- => |a|-ver|--", "'' -ver => ||-ver", "-5 -x => |-5|-x", "- -x => |-|-x",
         "---verbo --ver a => ver |a", "-n '' -name -x => name=-x ", "-c 1-2 => count=1 ",
         "-c -- => count=0 ", "-d +5 => diff+5 ", "-d -3 => diff-3 ", "-d 7 => diff=7 ",
         "-d +-5 => diff+-5 ", "-d +- => diff+0 "});
  check({"-- a => ERROR: unknown option --\n", "-help -names a => ERROR: unknown option -names\n",
         "--verb => ERROR: ambiguous option '--verb'\n\tcould be:\n\t\t-verbose\n\t\t-verbatim\n",
         "-ver --n => ERROR: parameter '--n' missing input\nver ",
         "-c '' => ERROR: option expects an integer '-c'",
         "-c +1 => ERROR: parameter '+1' is not an integer\n",
         "-d '' => ERROR: parameter '-d' is blank\n"});
  for (const std::string line : {"-d -", "-d 5a", "-d ++5"})
    check({line + " => ERROR: parameter '-d' is not an integer\n"});
}

TEST(ZmParam, HelpAndVersionEndTheProcess) {
  EXPECT_EXIT(Line("-h a").result(), testing::ExitedWithCode(0), "^help$");
  EXPECT_EXIT(Line("-vers -help").result(), testing::ExitedWithCode(0), "^help$");
  EXPECT_EXIT(Line("-vers").result(), testing::ExitedWithCode(0), "^version$");
}

TEST(ZmParam, MissesLeaveTheOutputAlone) {
  ZmParam param;
  std::string words[] = {"prog", "-h", "-nope"};
  char* argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  EXPECT_FALSE(param.parse(3, argv));
  unsigned char flag = 7;
  EXPECT_FALSE(param.get("x", flag) || param.get("Help", flag));
  EXPECT_EQ(flag, 7);
  EXPECT_TRUE(param.get("version", flag) && flag == 0);
  EXPECT_TRUE(param.get("help", flag) && flag == 1);  // stands before the error
  for (const int i : {param.length(), -1}) EXPECT_STREQ(param.arg(i).value(), "prog");
  EXPECT_TRUE(ZmParam().parse(0, argv + 3));
}

TEST(ZmOption, CopiesLeaveTheValueOut) {
  ZmOption option(2, "name"), other;
  option.value("typed");
  other.value("own");
  other = option;
  EXPECT_EQ(other.name() + "=" + other.value(), "name=own");
  EXPECT_TRUE(ZmOption(option).value().isundef());
}
