#include "ZmParam.h"

#include <iostream>
#include <sstream>

#include "ZmTest.h"

namespace {

// A command line of words between blanks ('' is the empty word) for one option of every kind.
struct Line {
  explicit Line(const std::string& line) {
    param.setHelp([] { std::cerr << "help"; });
    param.setVersion([] { std::cerr << "version"; });
    param.defineStringOption("name");
    param.defineIntegerOption("count");
    param.defineDiffOption("diff");
    for (const char* flag : {"ver", "verbose", "verbatim", ""}) param.defineFlag(flag);
    std::istringstream words(line);
    while (words >> buffer) args.push(new ZmString(buffer == "''" ? "" : buffer.c_str()));
  }
  // A line each: the error, what was given, the positional arguments.
  std::string result() {
    std::ostringstream out;
    if (!param.parse(args)) out << "<" << param.error() << ">\n";
    ZmString value;
    if (param.get("ver", value)) out << "ver\n";
    if (param.get("name", value)) out << "name=" << value << "\n";
    if (param.get("count", number)) out << "count=" << number << "\n";
    if (param.get("diff", number, sign)) out << "diff" << sign << number << "\n";
    out << "arguments";
    for (int i = 0; i < param.length(); ++i) out << "|" << param.arg(i);
    return out.str();
  }

  ZmParam param;
  ZmStringList args;
  std::string buffer;
  int number = 0;
  char sign = 0;
};

}  // namespace

TEST(ZmParam, ReadsCommandLines) {
  // The first positional argument ends the options. A lone "-" counts as an integer.
  checkcases("commandlines", [](const std::string& line) { return Line(line).result(); });
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
