#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "ZmConfig.h"
#include "ZmFile.h"

namespace {

// Every option as "label=value;".
std::string parsed(const std::string& text) {
  ZmConfig config;
  config.parse(ZmString(text.data(), static_cast<int>(text.size())));
  std::string result;
  for (int i = 0; i < config.optionlist().length(); ++i) {
    const ZmString label = *config.optionlist().get(i);
    result += std::string(label.value()) + "=" + config.option(label).value() + ";";
  }
  return result;
}

ZmConfig sample() {
  ZmConfig config;
  config.parse("threads = 8\ngreeting = 'a b'\nscript = {x\ny}\n");
  return config;
}

std::string used(const std::string& text) { return sample().usetemplate(text.c_str()).value(); }

const std::string kRest = "# these are not included in the template\n";

}  // namespace

TEST(ZmConfigText, ParsesOptions) {
  // A line's end closes quotes. Blanks behind "=" at the end are an empty value, nothing is none.
  const char* const rows[][2] = {{"b=1\na =", "b=1;"},          {"a = 1 # note", "a=1;"},
                                 {"b=1\na = ", "b=1;a=;"},      {"max j\t=\r2", "maxj=2;"},
                                 {"b=1\n= 1\nx", "b=1;=1;"},    {"[a\nb=1]a=1\n[c=2", "a=1;"},
                                 {"a=1\nb=2\na=3", "a=3;b=2;"}, {"a=\"x'y\nb=1", "a=x'y;b=1;"}};
  const char* const longer[][2] = {
      {"a=x{'\nd=x\xe9y", "a=x{';d=x;"},       {"a=\nb=#\n\nc=\xe9", "a=;b=;c=;"},
      {"a='x \"y' z\nb='x", "a=x \"y;b=x;"},   {"# a=1\na # b=1\n\n c=1=2", "c=1=2;"},
      {"a={p {q} r} s\nb={", "a=p {q} r;b=;"}, {"a={\r\n#x\r\n}\nb='\r'", "a=\n#x\n;b=;"}};
  for (const auto& [text, options] : rows) EXPECT_EQ(parsed(text), options) << text;
  for (const auto& [text, options] : longer) EXPECT_EQ(parsed(text), options) << text;
  for (const char* piece : {"{", "=", "[", "a={\n", "'", "a=\n"}) {
    std::string text;
    while (text.size() < 1000000) text += piece;
    EXPECT_LE(parsed(text).size(), text.size() + 3);  // in no time
  }
}

TEST(ZmConfigText, LoadsFiles) {
  const std::string path = testing::TempDir() + "section" + std::to_string(getpid());
  const std::string value(3000, 'v');
  ZmFile::save(path.c_str(), ("a = " + value + "\nb = 2").c_str());
  ZmConfig config(path.c_str());
  EXPECT_TRUE(config.valid() && config.eof() && config.get() == 0);
  EXPECT_STREQ(config.option("a").value(), value.c_str());
  EXPECT_STREQ(config.loadtemplate(path.c_str()).value(), config.convert().value());
  ZmFile::remove(path.c_str());
  config.load(path.c_str());
  EXPECT_FALSE(config.valid());
  EXPECT_STREQ(config.option("b").value(), "2");
  config.parse("c = 3");
  config.load(testing::TempDir().c_str());  // opens, but can't be read
  EXPECT_EQ(config.valid() + config.option("c"), "03");
}

TEST(ZmConfigText, FillsTemplates) {
  const std::string threads = "threads = 8\n", greeting = "greeting = \"a b\"\n";
  const std::string script = "script = {x\ny}\n", all = threads + greeting + script;
  const std::string rows[][2] = {
      {"", kRest + all},
      {"#threads = 2\n\ncolour = red", threads + "\n#colour = red\n" + kRest + greeting + script},
      {"# A threads=1\nthreads=2\nthreads\n", threads + "threads\n" + kRest + greeting + script},
      {"script={a\n}b}\n#Greeting=\n}{\n}",
       script + "#Greeting=\n}{\n}\n" + kRest + threads + greeting},
      {"threads.x = 1\n#x = {1\n}\n##", "threads.x = 1\n#x = {1\n}\n##\n" + kRest + all}};
  for (const auto& [text, result] : rows) {
    EXPECT_EQ(used(text), result) << text;
    const std::string again = used(result);
    EXPECT_EQ(again.find(kRest), std::string::npos) << again;
  }
  ZmConfig lacking;  // the options of its labels, as a record may do
  lacking.unpackXML("<config><labels><item>a</item><item>b</item></labels></config>");
  EXPECT_EQ(lacking.usetemplate("a = 1\n#b = 1\n").value(), "#a = 1\n#b = 1\n" + kRest + "b = \n");
}
