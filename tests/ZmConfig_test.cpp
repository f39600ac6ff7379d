#include "ZmConfigHash.h"
#include "ZmConfigList.h"
#include "ZmTest.h"

namespace {

using Options = std::initializer_list<std::pair<const char*, const char*>>;

ZmConfig made(Options options) {
  ZmConfig config;
  for (const auto& [label, value] : options) config.option(label, value);
  return config;
}

}  // namespace

TEST(ZmConfig, KeepsLabelsInTheOrderOfTheirFirstSetting) {
  ZmConfig config = made({{"b", "1"}, {"a", "2"}, {"", "3"}, {"b", "4"}, {"A", ""}, {"a", ""}});
  EXPECT_EQ(held(config), "b=4;a=;=3;A=;");
  EXPECT_TRUE(config.option("missing").length() == 0 && !config.exists("missing"));
  EXPECT_EQ(config.remove("missing"), 0);
  EXPECT_EQ(config.remove("a"), 1);
  config.option("a", "last");
  config.option("b", config.option("a"));
  config.option(config.option("b"), config.option("b"));
  EXPECT_EQ(held(config), "b=last;=3;A=;a=last;last=last;");
  for (const char* label : {"b", "", "A", "a", "last"}) EXPECT_EQ(config.remove(label), 1);
  config.option("new", "1");
  EXPECT_EQ(held(config), "new=1;");
}

TEST(ZmConfig, HoldsManyLabelsThroughReplacementsAndRemovals) {
  ZmConfig config;
  std::string expected;
  constexpr int kLabels = 70000;  // whose numbers need more than two bytes
  for (int i = 0; i < kLabels; ++i) config.option(i, i);
  ZmConfig emptied(config);
  for (int i = kLabels; i-- > 0;) EXPECT_EQ(emptied.remove(i), 1);  // in linear time
  EXPECT_EQ(emptied.length(), 0);
  for (int i = 0; i < kLabels; i += 3) config.remove(i);
  for (int i = 1; i < kLabels; i += 3) config.option(i, -i);
  for (int i = 0; i < kLabels; ++i)
    if (i % 3) expected += std::to_string(i) + "=" + std::to_string(i % 3 == 1 ? -i : i) + ";";
  EXPECT_EQ(held(config), expected);
}

// "70" and "01" have one hash: the second one stands a probe further.
TEST(ZmConfig, ListsLabelsWhoseOptionsAreHiddenOrNotFound) {
  ZmConfig config = made({{"70", "1"}, {"x", "2"}, {"01", "old"}, {"y", "3"}});
  config.remove("70");
  ZmConfig copy(config);
  EXPECT_STREQ(copy.convert().value(), "x = 2\n01 = \ny = 3\n");
  copy.option("01", "new");
  EXPECT_STREQ(copy.convert().value(), "x = 2\n01 = new\ny = 3\n01 = new\n");
  config.option("01", "new");
  EXPECT_EQ(held(config), "x=2;01=new;y=3;");
  ZmConfig read;
  EXPECT_EQ(unpackxml(read, xml(config)), 0);
  EXPECT_EQ(held(read), "x=2;01=new;y=3;");
  config.remove("01");
  EXPECT_EQ(held(config), "x=2;y=3;");
  EXPECT_STREQ(config.option("01").value(), "old");
}

TEST(ZmConfig, WipesASecureValueThatIsReplaced) {
  ZmConfig config;
  ZmString secret("hidden");
  secret.secure(1);
  config.option("key", secret);
  const ZmString* const stored = &config.option("key");
  EXPECT_EQ(stored->secure(), 1);
  config.option("key", "open");
  EXPECT_NE(&config.option("key"), stored);  // not written over, which wipes nothing
  EXPECT_EQ(config.option("key").secure(), 0);
  EXPECT_EQ(held(config), "key=open;");
}

TEST(ZmConfig, CopiesDeeply) {
  ZmConfig config = made({{"z", "1"}, {"a", "2"}});
  config.name("node1");
  ZmConfig other(config);
  config.option("a", "changed");
  EXPECT_EQ(held(other), "z=1;a=2;");
  EXPECT_STREQ(other.name().value(), "node1");
  other.parse("valid = 1");
  config = other;
  config = *&config;
  EXPECT_TRUE(held(config) == "z=1;a=2;valid=1;" && !config.valid());
  config = ZmConfig();
  EXPECT_EQ(held(config), "");
}

TEST(ZmConfig, InheritsAndMatches) {
  ZmConfig child = made({{"own", "1"}, {"both", "2"}});
  const ZmConfig parent = made({{"new", "3"}, {"both", "4"}, {"none", ""}});
  EXPECT_FALSE(child.matchsubset(parent));
  EXPECT_TRUE(child.matchsubset(ZmConfig()) && child.matchsubset(made({{"absent", ""}})));
  child.inherit(parent);
  child.inherit(child);
  EXPECT_EQ(held(child), "own=1;both=4;new=3;none=;");
  EXPECT_TRUE(child.matchsubset(parent) && !parent.matchsubset(child));
}

TEST(ZmConfig, ConvertsAndDisplays) {
  const ZmConfig config =
      made({{"a", "x"}, {"b", "a \"b\""}, {"c", "1\n2"}, {"d", "\r"}, {"e", ""}});
  EXPECT_STREQ(config.convert().value(), "a = x\nb = \"a \"b\"\"\nc = {1\n2}\nd = {\r}\ne = \n");
  EXPECT_EQ(ZmConfig().convert().length(), 0);
  EXPECT_EQ(printed([] {
              made({{"a", "x"}, {"b", "c d"}}).display();
            }),
            "items: 2\n0: a=x\n1: b=c d\n");
}

TEST(ZmConfig, Packs) {
  ZmConfig config = made({{"z", "1"}, {"a", "2 3"}, {"", ""}});
  config.name("node1");
  config.address(ZmAddress("10.0.0.7"));
  ZmConfig other = made({{"old", "1"}});
  EXPECT_EQ(unpack(other, record(config)), 0);
  EXPECT_EQ(held(other), "z=1;a=2 3;=;");
  EXPECT_STREQ(other.name().value(), "node1");
  EXPECT_EQ(other.address().value(), config.address().value());
  EXPECT_EQ(config.type() + ZmConfigList().type() + ZmConfigHash().type(), 50 + 51 + 51);
}
