#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "ZmConfig.h"
#include "ZmConfigHash.h"
#include "ZmConfigList.h"
#include "ZmFile.h"
#include "ZmPackObj.h"
#include "ZmStringHash.h"
#include "ZmStringList.h"
#include "ZmText.h"

namespace {

constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct Sample : ZmPack {
  void encode() override {}
  void decode() override {}
  ZmString typeXML() const override { return root; }
  void encodeXML() override {
    storeXML("i", i);
    storeXML("l", l);
    storeXML("c", c);
    storeXML("u", u);
    storeXML("f", f);
    storeXML("s", s);
    storeXML(name, named);
    if (inner) storeXML("inner", *inner);
  }
  void decodeXML() override {
    if (inner) restoreXML("inner", *inner);
    restoreXML(name, named);
    restoreXML("s", s);
    restoreXML("f", f);
    restoreXML("u", u);
    restoreXML("c", c);
    restoreXML("l", l);
    restoreXML("i", i);
  }

  ZmString root = "sample";
  int i = 1;
  long long l = 2;
  char c = '3';
  unsigned char u = 4;
  float f = 5;
  ZmString s = "6";
  ZmString name = "n";
  ZmString named = "7";
  ZmPack* inner = nullptr;
};

std::string xml(ZmPack& pack) {
  pack.packXML();
  return {pack.packContents(), static_cast<std::size_t>(pack.packSize())};
}

int read(ZmPack& pack, std::string_view text) {
  return pack.unpackXML(text.data(), static_cast<int>(text.size()));
}

std::string held(const Sample& p) {
  const ZmString numbers = ZmString(" ") + p.i + " " + ZmString(p.l) + " " + int{p.c} + " ";
  return std::string(zm_view(p.s + numbers + int{p.u} + " " + p.f));
}

// Texts that hold each byte: alone, between others, at the edges of blanks; and some longer ones.
ZmStringList everytext() {
  ZmStringList texts;
  for (int c = 0; c < 256; ++c) {
    for (const int length : {1, 3, 5}) {
      std::string text(static_cast<std::size_t>(length), length == 5 ? ' ' : 'x');
      text[text.size() / 2] = static_cast<char>(c);
      texts.push(new ZmString(zm_string(text)));
    }
  }
  using namespace std::string_view_literals;
  for (const auto text : {""sv, "]]>"sv, "&amp;"sv, "a\r\nb\rc\n"sv, "<!--x-->"sv, "\xed\xa0\x80"sv,
                          "\xef\xbf\xbe"sv, "\xef\xbf\xbd"sv, "\xc3\xa9"sv, "\xf4\x90\x80\x80"sv,
                          "\xf0\x9f\x98\x80"sv, "\xc0\x80"sv, "\xe2\x82"sv, "\xef\xbb\xbfx"sv,
                          "\0"sv, "a\0b"sv, "\0\0\0\0"sv, "\xf4\x8f\xbf\xbf"sv, "\xee\x80\x80"sv})
    texts.push(new ZmString(zm_string(text)));
  return texts;
}

TEST(ZmPackXML, SectionsReadLikeSettings) {
  ZmConfig section;
  section.name("node01");
  section.address(ZmAddress("10.0.0.1"));
  section.option("threads", "8");
  section.option("dir \"x\"", "<a> & 'b'");
  section.option("about", "two\nlines\r");
  section.option("empty", "");
  section.option("raw", ZmString("\0\xff", 2));
  const std::string text = xml(section);
  EXPECT_EQ(text, std::string(kHead) +
                      "<config>\n"
                      "  <name>node01</name>\n"
                      "  <address>\n"
                      "    <value>167772161</value>\n"
                      "  </address>\n"
                      "  <options>\n"
                      "    <item key=\"threads\">8</item>\n"
                      "    <item key=\"dir &quot;x&quot;\">&lt;a&gt; &amp; 'b'</item>\n"
                      "    <item key=\"about\">two\nlines&#13;</item>\n"
                      "    <item key=\"empty\"/>\n"
                      "    <item key=\"raw\" encoding=\"base64\">AP8=</item>\n"
                      "  </options>\n"
                      "</config>\n");
  ZmConfig back;
  back.option("other", "goes");
  EXPECT_EQ(read(back, text), 0);
  EXPECT_EQ(xml(back), text);
  EXPECT_EQ(back.address().stringvalue(), "10.0.0.1");
}

TEST(ZmPackXML, EveryByteComesBack) {
  ZmStringList texts = everytext();
  ZmStringList list;
  EXPECT_EQ(read(list, xml(texts)), 0);
  ASSERT_EQ(list.length(), texts.length());
  ZmConfigHash sections;
  ZmStringHash hash;
  for (int i = 0; i < texts.length(); ++i) {
    const ZmString& text = *texts.get(i);
    EXPECT_EQ(zm_view(*list.get(i)), zm_view(text)) << i;
    Sample sample, back;
    sample.s = sample.root = back.root = text;
    sample.name = back.name = "n" + text;
    sample.named = "found";
    EXPECT_EQ(read(back, xml(sample)), 0) << i;
    EXPECT_EQ(zm_view(back.s), zm_view(text)) << i;
    EXPECT_EQ(back.named, "found") << i;
    hash.set(new ZmString(text), text);
    auto* section = new ZmConfig;
    section->option(text, text);
    sections.set(section, text);
  }
  ZmStringHash hashed;
  EXPECT_EQ(read(hashed, xml(hash)), 0);
  EXPECT_EQ(xml(hashed), xml(hash));
  ZmConfigHash read_sections;
  EXPECT_EQ(read(read_sections, xml(sections)), 0);
  EXPECT_EQ(xml(read_sections), xml(sections));
  for (int i = 0; i < texts.length(); ++i) {
    ASSERT_TRUE(hashed.get(*texts.get(i)));
    EXPECT_EQ(zm_view(*hashed.get(*texts.get(i))), zm_view(*hash.get(*texts.get(i)))) << i;
  }
}

TEST(ZmPackXML, NumbersComeBack) {
  using Int = std::numeric_limits<int>;
  using Long = std::numeric_limits<long long>;
  using Float = std::numeric_limits<float>;
  for (const float f : {0.0F, -0.0F, 0.1F, 1e-45F, Float::max(), Float::min(), Float::infinity(),
                        -Float::infinity(), Float::quiet_NaN(), std::nanf("0x12ab"),
                        -std::nanf("0x7fffff"), -16777217.0F, 3.4e38F}) {
    Sample sample, back;
    sample.f = f;
    EXPECT_EQ(read(back, xml(sample)), 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(back.f), std::bit_cast<std::uint32_t>(f)) << f;
  }
  for (int b = 0; b < 256; ++b) {
    Sample sample, back;
    sample.c = static_cast<char>(b);
    sample.u = static_cast<unsigned char>(b);
    sample.i = b % 2 ? Int::min() + b : Int::max() - b;
    sample.l = b % 2 ? Long::min() + b : Long::max() - b;
    EXPECT_EQ(read(back, xml(sample)), 0);
    EXPECT_EQ(held(back), held(sample));
  }
}

TEST(ZmPackXML, MembersAreTakenWhereTheyFit) {
  const std::string untouched = "6 1 2 51 4 5.000000";
  const struct {
    std::string_view inside, values;
  } rows[] = {
      {"<u>9</u>text<x><i>3</i></x><!-- c --><s>a<![CDATA[<b>]]>&#65;</s><i> 7\n</i><!-- d -->",
       "a<b>A 7 2 51 9 5.000000"},
      {"<i>7</i><i>8</i>", "6 8 2 51 4 5.000000"},  // the last one counts
      {"<i>7</i><i>x</i>", untouched},
      {"<i/>", untouched},
      {"<s/>", " 1 2 51 4 5.000000"},
      {"<i>2147483648</i><l>9223372036854775808</l><u>256</u><f>1e99</f>", untouched},
      {"<i>1.5</i><l>0x10</l><u>-1</u><f>1,5</f><c>ab</c>", untouched},
      {"<i>1 2</i><c/><f/><l>+1</l>", untouched},
      {"<f>0x1p3</f>", untouched},
      {"<i>+1</i><f>+1</f>", untouched},
      {"<f>1e-60</f>", untouched},
      {"<s encoding=\"base64\">Y Q\n= =</s>", "a 1 2 51 4 5.000000"},
      {"<s encoding=\"base64\">YQ=</s>", untouched},
      {"<s encoding=\"base64\">YR==</s>", untouched},  // bits that nothing stands for
      {"<s encoding=\"base64\">Y</s>", untouched},
      {"<s encoding=\"base64\">YQ==YQ==</s>", untouched},
      {"<s encoding=\"hex\">61</s>", untouched},
      {"<s><b>bold</b></s>", untouched},
      {"<s>a<b/>c</s>", untouched},
      {"<element name=\"s\">by name</element>", "by name 1 2 51 4 5.000000"},
      {"<element name=\"s\" name-encoding=\"base64\">x</element>", untouched},
      {"<I>7</I>", untouched},
  };
  for (const auto& [inside, values] : rows) {
    Sample sample;
    EXPECT_EQ(read(sample, "<sample>" + std::string(inside) + "</sample>"), 0) << inside;
    EXPECT_EQ(held(sample), values) << inside;
  }
}

std::string nested(int levels) {
  std::string text = "<sample><i>7</i>";
  for (int i = 1; i < levels; ++i) text += "<d>";
  for (int i = 1; i < levels; ++i) text += "</d>";
  return text + "</sample>";
}

TEST(ZmPackXML, RefusedTextsChangeNothing) {
  using namespace std::string_literals;
  const std::string i7 = "<sample><i>7</i></sample>";
  const struct {
    std::string text;
    int result;
  } rows[] = {
      {"", 1},
      {"<sample><i>7</i>", 1},
      {"<sample><i>7</i></Sample>", 1},
      {i7 + i7, 1},
      {"<sample><i>7</i>&nbsp;</sample>", 1},
      {"<sample><i>7</i>\x01</sample>", 1},
      {"<sample><i>7</i>\xff</sample>", 1},
      {"<sample><i>7</i>\0</sample>"s, 1},
      {"<sample a='1' a='2'><i>7</i></sample>", 1},
      {"<?xml version=\"1.0\" encoding=\"no-such\"?>" + i7, 1},
      {"<sample/>", 2},
      {"<sample>text</sample>", 2},
      {"<other><i>7</i></other>", 3},
      {"<!DOCTYPE sample>" + i7, 4},
      {"<!DOCTYPE sample SYSTEM \"file:///etc/passwd\">" + i7, 4},
      {"<!DOCTYPE sample [<!ENTITY a \"7\">]><sample><i>&a;</i></sample>", 4},
      {"<!DOCTYPE sample [<!ENTITY % a SYSTEM \"x\"> %a;]>" + i7, 4},
      {nested(257), 4},
      {nested(100000), 4},
  };
  for (const auto& [text, result] : rows) {
    Sample sample;
    EXPECT_EQ(read(sample, text), result) << text.substr(0, 80);
    EXPECT_EQ(held(sample), held(Sample())) << text.substr(0, 80);
  }
  Sample sample;
  EXPECT_EQ(read(sample, nested(256)), 0);
  EXPECT_EQ(sample.unpackXML(nullptr, 5), 1);
  EXPECT_EQ(sample.unpackXML("<sample/>", -1), 1);
}

TEST(ZmPackXML, SectionsWhoseLabelsDisagreeKeepBoth) {
  const std::string_view head =
      "<config><labels><item>b</item><item>a</item><item>b</item></labels>";
  ZmConfig section;
  EXPECT_EQ(read(section, std::string(head) + "<options><item key='a'>1</item><item>2</item>"
                                              "<item key='c'>3</item></options></config>"),
            0);
  EXPECT_EQ(section.optionlist().join(" "), "b a b");
  EXPECT_EQ(section.option("a") + section.option("c"), "13");
  ZmConfig back;
  EXPECT_EQ(read(back, xml(section)), 0);
  EXPECT_EQ(back.optionlist().join(" "), "b a b");
  EXPECT_EQ(xml(back), xml(section));
}

TEST(ZmPackXML, SectionsKeepWhatAMalformedMemberWouldReplace) {
  for (const char* text : {"<options>junk</options>", "<options><item>no key</item></options>",
                           "<options><item key='a'><b/></item></options>", "<labels>junk</labels>",
                           "<labels><item><b/></item></labels>", "<address>junk</address>"}) {
    ZmConfig section;
    section.option("k", "v");
    const std::string before = xml(section);
    EXPECT_EQ(read(section, std::string("<config><x/>") + text + "</config>"), 0);
    EXPECT_EQ(xml(section), before) << text;
  }
  ZmConfig section;
  section.option("k", "v");
  EXPECT_EQ(read(section, "<config><options> </options></config>"), 0);
  EXPECT_EQ(xml(section), xml(*std::make_unique<ZmConfig>()));
}

TEST(ZmPackXML, HashesAreWrittenByKey) {
  ZmStringHash few, many;
  for (int i = 0; i < 1000; ++i) many.set(new ZmString, ZmString(i));
  for (int i = 5; i < 1000; ++i) delete many.remove(ZmString(i));
  for (int i = 4; i >= 0; --i) few.set(new ZmString, ZmString(i));
  EXPECT_EQ(xml(few), xml(many));  // other slots, the same text
  ZmStringHash twice, once, old;
  twice.set(new ZmString, "70");
  twice.set(new ZmString("old"), "01");  // the same home: one probe further
  delete twice.remove("70");
  twice.set(new ZmString("new"), "01");
  EXPECT_EQ(read(once, xml(twice)), 0);
  EXPECT_EQ(*once.get("01"), "new");
  twice.pack();
  EXPECT_EQ(old.unpack(twice.packContents(), twice.packSize()), 0);
  EXPECT_EQ(*old.get("01"), "old");
}

TEST(ZmPackObj, AnyDepthIsCopiedAndDestroyed) {
  ZmPackObj root;
  ZmPackObj* at = &root;
  for (int i = 0; i < 300000; ++i) {
    auto* inside = new ZmPackObj;
    inside->text(std::make_unique<ZmString>("x"));
    at->push(inside);
    at = inside;
  }
  const ZmPackObj copy(root);
  const ZmPackObj* bottom = &copy;
  while (bottom->length() > 0) bottom = bottom->get(0);
  EXPECT_EQ(*bottom->text(), "x");
  EXPECT_EQ(copy.type(), 156);
  EXPECT_EQ(copy.text(), nullptr);
  root = *root.get(0);  // out of the very tree that goes
}

}  // namespace
