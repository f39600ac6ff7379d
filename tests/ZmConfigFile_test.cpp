#include "ZmConfigFile.h"

#include "ZmConfigPlaces.h"
#include "ZmConfigScanner.h"
#include "ZmTest.h"

namespace {

using ZmConfigFileTest = Directory;

// Every section, sorted: "[name]label=value;label=value;".
std::string held(const ZmConfigFile& file) {
  std::string result;
  ZmStringList names;
  file.keys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig& section = *file.config(*names.get(i));
    EXPECT_TRUE(section.name() == *names.get(i));
    result += "[" + text(section.name()) + "]" + held(section);
  }
  return result;
}

// The sections, and what is said on standard error behind them.
std::string sections(const std::string& source) {
  ZmConfigFile file;
  std::string said = warned([&] { file.parse(zm_string(source)); });
  if (!said.empty()) said = "\n" + said.substr(0, said.size() - 1);
  return held(file) + said;
}

std::string circle(const std::string& option) {
  return "WARNING: section a option " + option + " refers to itself... skipping.\n";
}

}  // namespace

TEST(ZmConfigFile, Tokenizes) {
  // A comment leaves nothing, blanks at the end an empty token.
  check({" => ", " a.b\t$c=d # e\n:] => a.b|$c|=|d|\n|:|]", "a # b => a", "a   => a|",
         "{a\\b\\\\}{ \\}c {\n}d} => a\\b\\}{ }c {\n|d|}", "a{open => a|open",
         "a\"\\\"\\\\ \\n#{}\"b => a|\"|\"\\ \\n#{}|\"|b",
         "\"open\n\"open\r\"open => \"|open|\"|\"|open|\"|\"|open|\"",
         "a\\}b\r\n => a|\\|}|b|\r|\n", "\"\\ => \"|\\|\"", "\x01k\x7f\xe9y\x80=\v1 => ky|=|1"},
        [](const char* source) {
          ZmStringList list;
          ZmConfigFile().tokenize(source, list);
          return joined(list, "|");
        });
}

TEST(ZmConfigScanner, KnowsWhereTokensStand) {
  const std::string source("\x01 a\xe9\x62 \"q\\\"\" \r\n{x\r\ny}\rz\n\n#c\n=  ");
  ZmConfigScanner scanner(source);
  const ZmConfigPlaces text(source);
  std::string places;
  ZmConfigToken first, token;
  while (scanner.next(token)) {
    if (places.empty()) first = token;
    const ZmConfigPosition at = text.at(token.offset);
    places += std::to_string(at.line) + ":" + std::to_string(at.column) + " ";
  }
  EXPECT_EQ(places, "1:3 1:7 1:8 1:11 1:13 1:14 2:1 3:3 4:1 4:2 5:1 6:3 7:1 7:4 ");
  EXPECT_EQ(text.at(first.offset).column, 3);
}

TEST(ZmConfigFile, ReadsFiles) {
  for (const char* of : {"values", "headers", "parents", "references", "circles"})
    checkcases(std::string("reader.") + of, sections);
  check({"k=\r\nm=3 => [default]k=\r;m=3;", "k = 1\nk = \t => [default]k=;", " \t\r\n => "},
        sections);
}

TEST_F(ZmConfigFileTest, LowersNamesOfSectionsOnly) {
  const ZmString conf = in("conf");
  std::ofstream(conf.value()) << "[Base]Key=V\n[Node[1-2]] : Base Nope\nX . Y=$Base.Key\n";
  const auto loaded = [&](unsigned char lower) {
    std::string all;
    const std::string said = warned([&] { all = held(ZmConfigFile(conf, lower)); });
    return all + " " + said;
  };
  const std::string said = " WARNING: Node[1-2] missing parent Nope... skipping.\n";
  EXPECT_EQ(loaded(1), "[X]Y=.Key;[base]Key=V;[node1]Key=V;[node2]Key=V;" + said);
  EXPECT_EQ(loaded(0), "[Base]Key=V;[Node1]Key=V;[Node2]Key=V;[X]Y=V;" + said);
  EXPECT_EQ(held(ZmConfigFile(in("missing"), 0)), "");
}

TEST(ZmConfigFile, AddsToWhatItHas) {
  ZmConfigFile file;
  file.parse("x=1\n[a]y=$default.x");
  file.default_section_name("top");
  file.parse("x=2\n[a]z=$default.x\n[b]:a\nw=$a.z");  // only what is new is expanded
  EXPECT_EQ(held(file), "[a]y=1;z=$default.x;[b]y=1;z=1;w=1;[default]x=1;[top]x=2;");
  const ZmConfigHash copy = file.export_hash();
  ZmConfigFile one;
  one.parse("x=\"1 2\"\ny={}");
  EXPECT_EQ(printed([&] { one.display(); }), "[default]\nx = '1 2'\ny = ''\n");
  for (const char* name : {"a", "b", "default", "top"}) delete file.config(name);
  file.release();
  EXPECT_EQ(held(file), "");
  EXPECT_STREQ(copy.get("b")->option("w").value(), "1");
  EXPECT_STREQ(file.default_section_name().value(), "top");
  EXPECT_EQ(file.type(), 80);
}

TEST(ZmConfigFile, CutsValuesIntoWords) {
  ZmConfigFile file;
  ZmStringList words;
  file.stringtokenize("a \t.b{$}\\c\rd$$", words);
  EXPECT_EQ(joined(words, "|"), "a| \t|.|b|{|$|}|\\|c|\r|d|$|$");
  check({"$self.x ${this} $selfish self => $n.x ${n} $selfish self",
         "$$self $ self ${ => $$self $ self ${", "${{self} $this => ${{self} $n"},
        [&](const char* value) { return text(file._localvalue("n", value)); });
}

TEST(ZmConfigFile, ExpandsReferences) {
  ZmConfigFile file;
  // The second reading sets everything again, and what is not new is not expanded.
  for (int i = 0; i < 2; ++i)
    file.parse(
        "[a]x=1\ny=$x\nz=$b.z\n_=no\nb=me\n[b]x=2\ny=$c.y\nz=$x\n[c]y=\"$x$self.x\"\n"
        "\"\"=none\n");
  file.config("c")->option("s", "$self._");
  const auto seen = [&](const char* value) { return text(file._value("a", "b", value)); };
  checklines("reader.values-asked", seen);
  check({"$nosuch => ", "$$x => ", "$ x$ => ", "$b. => ", "$x\r$x => 11"}, seen);
  EXPECT_STREQ(file._value("none", "b", "$x.y ${_}z $self.x").value(), ".y }z 2");
}

// A value that is asked for is no option, and its reading is one of its own.
TEST(ZmConfigFile, ExpandsAskedValuesInACircle) {
  ZmConfigFile file;
  warned([&] { file.parse("[a]x=\"x${b.y}\"\n[b]y=\"y${a.x}\""); });
  file.config("b")->option("y", "y${a.x}");
  file.config("a")->option("x", "x${b.y}${self.n}");
  file.config("a")->option("n", "n");
  file.config("a")->name("other");  // the file still knows it as "a"
  for (int i = 0; i < 2; ++i) {
    ZmString value;
    EXPECT_EQ(warned([&] { value = file._value("b", "b", "${a.x}${b.y}"); }), circle("x"));
    EXPECT_STREQ(value.value(), "xny");
  }
  file.parse("[a]s=$self.n");
  EXPECT_STREQ(file.config("a")->option("s").value(), "$a.n");
}

TEST(ZmConfigFile, FollowsReferencesOfAnyShapeInLinearTime) {
  const auto chain = [](int length, int step, const std::string& end) {
    std::string source = "[a]\n";
    for (int i = 0; i < length; ++i)
      source += "o" + std::to_string(i) + "=$a.o" + std::to_string(i + step) + "\n";
    return source + end;
  };
  // The value, and what is said behind it.
  const auto first = [](const std::string& source, const char* section, const char* label) {
    ZmConfigFile file;
    const std::string said = warned([&] { file.parse(zm_string(source)); });
    return text(file.config(section)->option(label)) + said;
  };
  EXPECT_EQ(first(chain(300'000, 1, "o300000=end"), "a", "o0"), "end");
  EXPECT_EQ(first(chain(100'000, -1, "o-1=end"), "a", "o99999"), "end");
  // What the end gives is still a reference, or depends on the section at the start.
  EXPECT_EQ(first(chain(100'000, 1, "o100000=$z\nz=$y\ny=1"), "a", "o99999"), "$y");
  std::string scopes = "[s0]x=$_\n", diamond = "[a]\n", ladder = "[a]\n";
  for (int i = 1; i < 1000; ++i)
    scopes += "[s" + std::to_string(i) + "]x=$s" + std::to_string(i - 1) + ".x\n";
  EXPECT_EQ(first(scopes, "s777", "x"), "s777");
  EXPECT_EQ(first(chain(200'000, 1, "o200000=\"${a.o0}end\""), "a", "o200000"),
            "end" + circle("o0"));
  const auto reference = [](int i) { return "${a.o" + std::to_string(i) + "}"; };
  for (int i = 0; i < 60; ++i)
    diamond += "o" + std::to_string(i) + "=\"" + repeated(reference(i + 1), 2, "\"\n");
  EXPECT_EQ(sections(diamond).size(), 3U + 10 * 4 + 50 * 5);
  for (int i = 0; i < 50'000; ++i)  // each refers to the ones before and behind it
    ladder += "o" + std::to_string(i) + "=\"" + reference(i + 1) + (i > 0 ? reference(i - 1) : "") +
              "\"\n";
  EXPECT_EQ(first(ladder, "a", "o7"), circle("o0"));
}
