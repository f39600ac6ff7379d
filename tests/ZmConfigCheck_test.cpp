#include "ZmConfigCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "ZmConfigFile.h"
#include "ZmText.h"

namespace {

// "line:column length rule" of each finding.
std::string found(const ZmConfigCheck& check) {
  std::string all;
  for (const auto& [rule, severity, place, text, notes, section, sections] : check.findings())
    all += std::to_string(place.line) + ":" + std::to_string(place.column) + " " +
           std::to_string(place.length) + " " + std::string(rule->name) + ";";
  return all;
}

}  // namespace

TEST(ZmConfigCheck, EveryRulesExampleShowsIt) {
  for (const auto* rule : ZmConfigCheck::rules()) {
    const ZmConfigCheck check{std::string(rule->example)};
    EXPECT_TRUE(std::ranges::any_of(check.findings(), [&](const auto& f) {
      return f.rule == rule;
    })) << rule->name;
  }
}

// Places inside values of several tokens, with escapes, behind dropped bytes, and where the signs
// of a quoted text mislead.
TEST(ZmConfigCheck, FindsPlacesInsideValues) {
  const struct {
    const char* text;
    const char* findings;
  } rows[] = {{"a = \"\\\"\\\\ $self.b\"", "1:11 7 undefined-option;"},
              {"a = {\\}\n$self.b}", "2:1 7 undefined-option;"},
              {"a = x:$self.b:\\$c", "1:7 8 undefined-option;1:16 2 undefined-option;"},
              {"\xe9\r\na = \x01\"$nosuch.b\"",
               "1:1 1 dropped-bytes;2:5 1 dropped-bytes;2:7 7 undefined-section;"},
              {"a = x:{\\}$self.b}", "1:10 7 undefined-option;"},
              {"a = \"\\\"\"\n", "1:8 1 reading-stops;"},
              {"a = 1\r\r\n# x\r\nb =\r\nc = \"$x\"", "4:1 1 empty-value;5:6 2 undefined-option;"}};
  for (const auto& [text, findings] : rows) EXPECT_EQ(found(ZmConfigCheck(text)), findings) << text;
}

TEST(ZmConfigCheck, ReadsFiles) {
  EXPECT_EQ(ZmConfigCheck::frompath("/nonexistent"), nullptr);
  EXPECT_EQ(ZmConfigCheck::frompath("/"), nullptr);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  std::fputs("passed over\n[A] : a\n[B] : A\nc = d e", file.get());
  std::fseek(file.get(), 12, SEEK_SET);
  const auto check = ZmConfigCheck::fromfile(file.get(), 1);
  ASSERT_TRUE(check);
  EXPECT_EQ(found(*check), "3:5 3 joined-words;");
}

TEST(ZmConfigCheck, KnowsWhereValuesComeFrom) {
  const std::string text = "[base]\na = 1\nb = \"$_\"\n[x, y] : base\na = 2\nz . b = 3\n";
  const ZmConfigCheck check(text);
  EXPECT_TRUE(check.consistent());
  std::string all;
  for (const char* name : {"base", "y", "z"}) {
    const ZmConfig& section = *check.sections().get(name);
    for (int i = 0; i < section.length(); ++i) {
      const auto origin = check.origin(section, i);
      all += std::string(name) + "." + section.label(i).value() + "=" + std::string(origin.raw) +
             "@" + std::to_string(origin.label.line) + ":" + std::to_string(origin.value.column) +
             (origin.parent ? origin.parent->name().value() : "") + " ";
    }
  }
  EXPECT_EQ(all, "base.a=1@2:5 base.b=$_@3:5 y.a=2@5:5 y.b=$_@3:5base z.b=3@6:9 ");
}
