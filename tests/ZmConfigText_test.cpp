#include "ZmFile.h"
#include "ZmTest.h"

namespace {

using ZmConfigText = Directory;

std::string parsed(const std::string& source) {
  ZmConfig config;
  config.parse(zm_string(source));
  return held(config);
}

std::string used(const std::string& source) {
  ZmConfig config;
  config.parse("threads = 8\ngreeting = 'a b'\nscript = {x\ny}\n");
  return text(config.usetemplate(zm_string(source)));
}

const std::string kRest = "# these are not included in the template\n";

}  // namespace

TEST_F(ZmConfigText, ParsesOptions) {
  // A line's end closes quotes. Blanks behind "=" at the end are an empty value, nothing is none.
  check({"b=1\na = => b=1;", "a = 1 # note => a=1;", "b=1\na =  => b=1;a=;",
         "max j\t=\r2 => maxj=2;", "b=1\n= 1\nx => b=1;=1;", "[a\nb=1]a=1\n[c=2 => a=1;",
         "a=1\nb=2\na=3 => a=3;b=2;", "a=\"x'y\nb=1 => a=x'y;b=1;", "a=x{'\nd=x\xe9y => a=x{';d=x;",
         "a=\nb=#\n\nc=\xe9 => a=;b=;c=;", "a='x \"y' z\nb='x => a=x \"y;b=x;",
         "# a=1\na # b=1\n\n c=1=2 => c=1=2;", "a={p {q} r} s\nb={ => a=p {q} r;b=;",
         "a={\r\n#x\r\n}\nb='\r' => a=\n#x\n;b=;"},
        parsed);
  for (const char* piece : {"{", "=", "[", "a={\n", "'", "a=\n"})
    EXPECT_LE(parsed(repeated(piece, 300000)).size(), 1200003U);  // in no time
}

TEST_F(ZmConfigText, LoadsFiles) {
  const ZmString file = in("section");
  const std::string value(3000, 'v');
  ZmFile::save(file, ("a = " + value + "\nb = 2").c_str());
  ZmConfig config(file);
  EXPECT_TRUE(config.valid() && config.eof() && config.get() == 0);
  EXPECT_EQ(held(config), "a=" + value + ";b=2;");
  EXPECT_STREQ(config.loadtemplate(file).value(), config.convert().value());
  config.load(in("missing"));
  EXPECT_FALSE(config.valid());
  EXPECT_STREQ(config.option("b").value(), "2");
  config.parse("c = 3");
  config.load(path.c_str());  // opens, but can't be read
  EXPECT_EQ(config.valid() + config.option("c"), "03");
}

TEST_F(ZmConfigText, FillsTemplates) {
  EXPECT_EQ(used(""), kRest + "threads = 8\ngreeting = \"a b\"\nscript = {x\ny}\n");
  checkcases("templates", [](const std::string& source) {
    std::string filled = used(source);
    EXPECT_EQ(used(filled).find(kRest), std::string::npos) << filled;
    return filled;
  });
  ZmConfig lacking;  // the options of its labels, as a record may do
  lacking.unpackXML("<config><labels><item>a</item><item>b</item></labels></config>");
  EXPECT_EQ(lacking.usetemplate("a = 1\n#b = 1\n").value(), "#a = 1\n#b = 1\n" + kRest + "b = \n");
}
