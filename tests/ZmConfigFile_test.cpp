#include "ZmConfigFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "ZmConfigPlaces.h"
#include "ZmConfigScanner.h"
#include "ZmText.h"

namespace {

using Rows = std::vector<std::pair<const char*, const char*>>;

ZmString text(const std::string& s) { return zm_string(s); }

std::string joined(const ZmStringList& list) { return list.join("|").value(); }

// Every section, sorted: "[name]label=value;label=value;".
std::string held(const ZmConfigFile& file) {
  std::string result;
  ZmStringList names;
  file.keys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig& section = *file.config(*names.get(i));
    EXPECT_TRUE(section.name() == *names.get(i));
    result += "[" + std::string(zm_view(section.name())) + "]";
    const ZmStringList labels = section.optionlist();
    for (int n = 0; n < labels.length(); ++n) {
      result += std::string(zm_view(*labels.get(n))) + "=";
      result += std::string(zm_view(section.option(*labels.get(n)))) + ";";
    }
  }
  return result;
}

std::string read(const std::string& source) {
  ZmConfigFile file;
  file.parse(text(source));
  return held(file);
}

void check(const Rows& rows) {
  for (const auto& [source, sections] : rows) EXPECT_EQ(read(source), sections) << source;
}

// The sections, then what is said on standard error.
std::string heard(const std::string& source) {
  testing::internal::CaptureStderr();
  const std::string sections = read(source);
  return sections + " " + testing::internal::GetCapturedStderr();
}

std::string option(const ZmConfigFile& file, const char* section, const char* label) {
  const ZmConfig* config = file.config(section);
  return config ? config->option(label).value() : "no section";
}

}  // namespace

TEST(ZmConfigFile, Tokenizes) {
  const Rows rows = {{"", ""},
                     {" a.b\t$c=d # e\n:]", "a.b|$c|=|d|\n|:|]"},
                     {"a # b", "a"},  // a comment leaves nothing, blanks at the end an empty token
                     {"a  ", "a|"},
                     {"{a\\b\\\\}{ \\}c {\n}d}", "a\\b\\}{ }c {\n|d|}"},
                     {"a{open", "a|open"},
                     {"a\"\\\"\\\\ \\n#{}\"b", "a|\"|\"\\ \\n#{}|\"|b"},
                     {"\"open\n\"open\r\"open", "\"|open|\"|\"|open|\"|\"|open|\""},
                     {"a\\}b\r\n", "a|\\|}|b|\r|\n"},
                     {"\"\\", "\"|\\|\""},
                     {"\x01k\x7f\xe9y\x80=\v1", "ky|=|1"}};
  for (const auto& [source, tokens] : rows) {
    ZmStringList list;
    ZmConfigFile().tokenize(source, list);
    EXPECT_EQ(joined(list), tokens) << source;
  }
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

TEST(ZmConfigFile, ReadsValues) {
  check({{"k = \"a b\"  # note\nl = a b c", "[default]k=a b;l=abc;"},
         {"k = {line one\nline two}", "[default]k=line one\nline two;"},
         {"k = \"open\nl = \"open", "[default]k=open;l=open;"},
         {"k = a=b:c[d]{e f}\"g h\"", "[default]k=a=b:c[d]e f\"g h\";"},
         {"k=\nl=2\nm=3", "[default]k=\nl=2;m=3;"},  // an empty value takes the next line
         {"k=\r\nm=3", "[default]k=\r;m=3;"},
         {"k = # note\nl=2", "[default]k=\nl=2;"},
         {"k = 1\nk = # note", "[default]k=1;"},
         {"k = 1\nk = \t", "[default]k=;"},
         {"k = 1\nk = \"\"\nl = 2\nl = {}", "[default]k=;l=;"},
         {"k = \"\" l = 2", "[default]k=;l=2;"},
         {"k=1\nl=2\nk=3", "[default]k=3;l=2;"},
         {"\"a b\" = 1\n{c\nd} = 2\n:=3\n= = 4", "[default]a b=1;c\nd=2;:=3;==4;"},
         {"k{=}1\nl = \"\\\"\" x = 5", "[default]k=1;l=;"},
         {"k = 1\nno\nl = 2", "[default]k=1;"},  // the file ends at what is no option
         {"k = 1\nl", "[default]k=1;"},
         {"k = 1\n\"l", "[default]k=1;"},
         {"k = 1\nl =", "[default]k=1;"},
         {"# nothing\n", ""},
         {" \t\r\n", ""}});
}

TEST(ZmConfigFile, ReadsHeaders) {
  check({{"[a]\n[b]x=1", "[a][b]x=1;"},
         {"x=1\n[a]y=2\n[default]z=3", "[a]y=2;[default]x=1;z=3;"},
         {"[a b]\n[{c d}]\n[\"e\"]", "[\"e\"][ab][cd]"},  // a quote belongs to the name
         {"[a # b]\n]x=1", "[a]x=1;"},
         {"[node[1-3]]x=$_", "[node1]x=node1;[node2]x=node2;[node3]x=node3;"},
         {"[n[09-10],m]", "[m][n09][n10]"},
         {"[2-1]\n[x[]]y=1", "[1][2]"},  // options of a pattern without names go nowhere
         {"[]x=1\n[a,,a]x=$_", "[]x=;[a]x=a;"},
         {"[a\nx=1\n", "[ax=1]"},
         {"[a[1]b", "[a1b]"},
         {"other . k = 1\na . \"b\" = 2", "[other]k=1;"},
         {"other.k = 1", "[default]other.k=1;"},
         {"[a]x=1\n\"b c\" . y=$self.y\nz=2", "[a]x=1;z=2;[b c]y=c.y;"},
         {"[a]\nb . {x y} = 1\nb . c", "[a][b]x y=1;"},
         {"a .\nx = 1", ""},
         {"a .", ""}});
}

TEST(ZmConfigFile, CopiesParentsAsTheyStand) {
  check({{"[a]x=1\ny=2\n[b]:a\ny=3\nz=4\n[a]x=5", "[a]x=5;y=2;[b]x=1;y=3;z=4;"},
         {"[a]x=$self.y\ny=1\n[b]:a\ny=2", "[a]x=1;y=1;[b]x=1;y=2;"},
         {"[a]x=\"$_ $q.x\"\n[b]:a\n[q]x=1", "[a]x=a1;[b]x=b1;[q]x=1;"},
         {"[a]x=1\n[b]x=2\ny=3\n[c,d]:a b\n[e]:b a",
          "[a]x=1;[b]x=2;y=3;[c]x=2;y=3;[d]x=2;y=3;[e]x=1;y=3;"},
         {"[a]x=1\n[a,b]:a\nx=$_", "[a]x=a;[b]x=b;"},
         {"[a]x=1\ny=2\n[a]:a a\nz=3", "[a]x=1;y=2;z=3;"},
         {"[a]x=1\n\"b c\" . y=2\n[d]:{b c}a", "[a]x=1;[b c]y=2;[d]y=2;x=1;"}});
  EXPECT_EQ(heard("[a b,c]: d a {e f}\n[c]:c"),
            "[ab][c] WARNING: ab,c missing parent d... skipping.\n"
            "WARNING: ab,c missing parent a... skipping.\n"
            "WARNING: ab,c missing parent e f... skipping.\n");
}

TEST(ZmConfigFile, LowersNamesOfSectionsOnly) {
  const std::string path = testing::TempDir() + "zm_lower.conf";
  std::ofstream(path) << "[Base]Key=V\n[Node[1-2]] : Base Nope\nX . Y=$Base.Key\n";
  testing::internal::CaptureStderr();
  const ZmConfigFile file(path.c_str(), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "WARNING: Node[1-2] missing parent Nope... skipping.\n");
  EXPECT_EQ(held(file), "[X]Y=.Key;[base]Key=V;[node1]Key=V;[node2]Key=V;");
  testing::internal::CaptureStderr();
  EXPECT_EQ(held(ZmConfigFile(path.c_str(), 0)), "[Base]Key=V;[Node1]Key=V;[Node2]Key=V;[X]Y=V;");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "WARNING: Node[1-2] missing parent Nope... skipping.\n");
  std::remove(path.c_str());
  EXPECT_EQ(held(ZmConfigFile(path.c_str(), 0)), "");
}

TEST(ZmConfigFile, AddsToWhatItHas) {
  ZmConfigFile file;
  file.parse("x=1\n[a]y=$default.x");
  file.default_section_name("top");
  file.parse("x=2\n[a]z=$default.x\n[b]:a\nw=$a.z");  // only what is new is expanded
  EXPECT_EQ(held(file), "[a]y=1;z=$default.x;[b]y=1;z=1;w=1;[default]x=1;[top]x=2;");
  const ZmConfigHash copy = file.export_hash();
  testing::internal::CaptureStdout();
  ZmConfigFile one;
  one.parse("x=\"1 2\"\ny={}");
  one.display();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "[default]\nx = '1 2'\ny = ''\n");
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
  EXPECT_EQ(joined(words), "a| \t|.|b|{|$|}|\\|c|\r|d|$|$");
  const Rows rows = {{"$self.x ${this} $selfish self", "$n.x ${n} $selfish self"},
                     {"$$self $ self ${", "$$self $ self ${"},
                     {"${{self} $this", "${{self} $n"}};
  for (const auto& [value, local] : rows)
    EXPECT_STREQ(file._localvalue("n", value).value(), local) << value;
}

TEST(ZmConfigFile, ExpandsReferences) {
  ZmConfigFile file;
  // The second reading sets everything again, and what is not new is not expanded.
  for (int i = 0; i < 2; ++i)
    file.parse(
        "[a]x=1\ny=$x\nz=$b.z\n_=no\nb=me\n[b]x=2\ny=$c.y\nz=$x\n[c]y=\"$x$self.x\"\n"
        "\"\"=none\n");
  file.config("c")->option("s", "$self._");
  const Rows rows = {{"no reference", "no reference"},
                     {"$x", "1"},
                     {"${b.x},${c._},$_", "2,c,a"},
                     {"${b.x}x${b._}x${x}x", "2xbx1x"},
                     {"$x $x.$x", "1.1"},  // the word behind an unqualified one is lost
                     {"$x.$x", ".1"},      // no section has this name
                     {"${x}}y${x }y", "1y1y"},
                     {"${x y}z", "1y}z"},
                     {"${b.x }y", "2 }y"},
                     {"${b.}y", "y"},
                     {"$nosuch", ""},
                     {"$nosuch.x${nosuch.x}", ".x.x}"},
                     {"a$", "a"},
                     {"a${", "a"},
                     {"$$x", ""},
                     {"$ x$", ""},
                     {"$b.", ""},
                     {"$y$z", "$xz"},            // as stored
                     {"${a.y};${b.z}", "1;1"},   // in the scope of the first
                     {"${b.y};$c.s", "1c.x;c"},  // "self" moves with the qualifier
                     {"$self.x$self", "2me"},
                     {"$this._", "b"},
                     {"\\$x", "\\1"},
                     {"$x\r$x", "11"}};
  for (const auto& [value, expanded] : rows) {
    const std::string got(zm_view(file._value("a", "b", value)));
    EXPECT_EQ(got, expanded) << value;
  }
  EXPECT_STREQ(file._value("none", "b", "$x.y ${_}z $self.x").value(), ".y }z 2");
}

TEST(ZmConfigFile, ExpandsLaterSectionsFirstAndLabelsInOrder) {
  check({{"[a]x=$b.y\nz=$x\n[b]y=$x\nx=1", "[a]x=1;z=1;[b]y=1;x=1;"},
         {"[a]z=$x\nx=$b.y\n[b]y=$_", "[a]z=$b.y;x=b;[b]y=b;"},
         {"[a]x=$b.y\n[b]y=$a.z\n[a]z=$_", "[a]x=b;z=a;[b]y=b;"},
         {"[a]x=1\n[b]y=2\n[a]x=$b.y\n[b]y=$_", "[a]x=b;[b]y=b;"},
         {"[a]x=\"$\"\ny=\"$a.x$b.z\"\n[b]z=\"$\"", "[a]x=;y=;[b]z=;"},
         {"[a]x=\"$b.y $b.y $b.y\"\n[b]y=\"$z\"\nz=\"p q\"", "[a]x=p q p q p q;[b]y=p q;z=p q;"},
         {"[a]y=$e.y\nz=$_\n[e]y=$a.z\n[d]y=$a.y", "[a]y=e;z=a;[d]y=d;[e]y=e;"},
         {"k = \"${base.root}x\"\n[base]root=/opt", "[base]root=/opt;[default]k=/optx;"},
         {"k = ${base.root}x\n[base]root=/opt", "[base]root=/opt;[default]k=;"}});
}

TEST(ZmConfigFile, GivesNothingForReferencesInsideACircle) {
  const auto warning = [](const std::string& section, const std::string& option) {
    return "WARNING: section " + section + " option " + option + " refers to itself... skipping.\n";
  };
  EXPECT_EQ(heard("[a]x=p$a.x"), "[a]x=p; " + warning("a", "x"));
  EXPECT_EQ(heard("[a]x=\"p ${b.y}\"\n[b]y=\"q ${a.x}\""), "[a]x=p ;[b]y=q ; " + warning("b", "y"));
  // From outside each member keeps its own text, whether it has been replaced or not.
  EXPECT_EQ(heard("[a]x=\"1${b.x}\"\nk=\"${a.x}${b.x}${d.z}\"\n[b]x=\"2${c.x}\"\n"
                  "[c]x=\"3${a.x}${b.x}\"\ny=\"${a.k};\"\n[d]z=\"${d.z}z\"\n"),
            "[a]x=1;k=12z;[b]x=2;[c]x=3;y=12z;;[d]z=z; " + warning("d", "z") + warning("c", "x"));
  // The circles that one value reaches are named in the order of its references.
  EXPECT_EQ(heard("[a]x=\"${b.k}${b.x}\"\n[z]y=\"${a.x}\"\n[b]z=1\n[z]y=\"${a.x}\"\n"
                  "[a]x=\"${b.k}${b.x}\"\n[b]k=\"${b.k}k\"\nx=\"${b.x}x\"\n"),
            "[a]x=kx;[b]z=1;k=k;x=x;[z]y=kx; " + warning("b", "k") + warning("b", "x"));
  EXPECT_EQ(heard("[a]w=\"${a.y}${a.x}\"\nx=\"x${a.x}\"\ny=\"y${a.k}\"\nk=\"k${a.y}\""),
            "[a]w=yx;x=x;y=y;k=k; " + warning("a", "y") + warning("a", "x"));
  // A circle of what replaced values still refer to.
  EXPECT_EQ(heard("[a]x=$y\ny=\"${a.x}1\"\nz=\"${a.x}2\""),
            "[a]x=${a.x}1;y=11;z=12; " + warning("a", "x"));
  // A value that is asked for is no option, and its reading is one of its own.
  ZmConfigFile file;
  testing::internal::CaptureStderr();
  file.parse("[a]x=\"x${b.y}\"\n[b]y=\"y${a.x}\"");
  testing::internal::GetCapturedStderr();
  file.config("b")->option("y", "y${a.x}");
  file.config("a")->option("x", "x${b.y}${self.n}");
  file.config("a")->option("n", "n");
  file.config("a")->name("other");  // the file still knows it as "a"
  for (int i = 0; i < 2; ++i) {
    testing::internal::CaptureStderr();
    EXPECT_STREQ(file._value("b", "b", "${a.x}${b.y}").value(), "xny");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), warning("a", "x"));
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
  const auto first = [](const std::string& source, const char* section, const char* label) {
    ZmConfigFile file;
    file.parse(text(source));
    return option(file, section, label);
  };
  EXPECT_EQ(first(chain(300'000, 1, "o300000=end"), "a", "o0"), "end");
  EXPECT_EQ(first(chain(100'000, -1, "o-1=end"), "a", "o99999"), "end");
  // What the end gives is still a reference, or depends on the section at the start.
  EXPECT_EQ(first(chain(100'000, 1, "o100000=$z\nz=$y\ny=1"), "a", "o99999"), "$y");
  std::string sections = "[s0]x=$_\n";
  for (int i = 1; i < 1000; ++i)
    sections += "[s" + std::to_string(i) + "]x=$s" + std::to_string(i - 1) + ".x\n";
  EXPECT_EQ(first(sections, "s777", "x"), "s777");
  testing::internal::CaptureStderr();
  EXPECT_EQ(first(chain(200'000, 1, "o200000=\"${a.o0}end\""), "a", "o200000"), "end");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "WARNING: section a option o0 refers to itself... skipping.\n");

  std::string diamond = "[a]\n";
  for (int i = 0; i < 60; ++i) {
    const std::string next = "${a.o" + std::to_string(i + 1) + "}";
    diamond += "o" + std::to_string(i) + "=\"" + next + next + "\"\n";
  }
  EXPECT_EQ(read(diamond).size(), 3U + 10 * 4 + 50 * 5);

  std::string ladder = "[a]\n";  // each refers to the ones before and behind it
  for (int i = 0; i < 50'000; ++i)
    ladder += "o" + std::to_string(i) + "=\"${a.o" + std::to_string(i + 1) + "}" +
              (i > 0 ? "${a.o" + std::to_string(i - 1) + "}" : "") + "\"\n";
  testing::internal::CaptureStderr();
  EXPECT_EQ(first(ladder, "a", "o7"), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "WARNING: section a option o0 refers to itself... skipping.\n");
}
