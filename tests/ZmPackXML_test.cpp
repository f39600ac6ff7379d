#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "ZmConfigHash.h"
#include "ZmPackObj.h"
#include "ZmStringHash.h"
#include "ZmTest.h"

namespace {

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

std::string held(const Sample& p) {
  const ZmString numbers = ZmString(" ") + p.i + " " + ZmString(p.l) + " " + int{p.c} + " ";
  return text(p.s + numbers + int{p.u} + " " + p.f);
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
  const auto add = [&](auto... all) { (texts.push(new ZmString(zm_string(all))), ...); };
  add(""sv, "]]>"sv, "&amp;"sv, "a\r\nb\rc\n"sv, "<!--x-->"sv, "\xed\xa0\x80"sv, "\xef\xbf\xbe"sv,
      "\xef\xbf\xbf"sv, "\xe0\x80\x80"sv, "\xef\xbf\xbd"sv, "\xc3\xa9"sv, "\xf4\x90\x80\x80"sv,
      "\xf0\x9f\x98\x80"sv, "\xc0\x80"sv, "\xe2\x82"sv, "\xef\xbb\xbfx"sv, "\0"sv, "a\0b"sv,
      "\0\0\0\0"sv, "\xf4\x8f\xbf\xbf"sv, "\xee\x80\x80"sv);
  return texts;
}

std::string nested(int levels) {
  return "<sample><i>7</i>" + repeated("<d>", levels - 1) +
         repeated("</d>", levels - 1, "</sample>");
}

}  // namespace

TEST(ZmPackXML, SectionsReadLikeSettings) {
  ZmConfig section;
  section.name("node01");
  section.address(ZmAddress("10.0.0.1"));
  section.option("threads", "8");
  section.option("dir \"x\"", "<a> & 'b'");
  section.option("about", "two\nlines\r");
  section.option("empty", "");
  section.option("raw", ZmString("\0\xff", 2));
  const std::string written = xml(section);
  EXPECT_EQ(written, content(ZM_SOURCE_DIR "/tests/cases/section.xml"));
  ZmConfig back;
  back.option("other", "goes");
  EXPECT_EQ(unpackxml(back, written), 0);
  EXPECT_EQ(xml(back), written);
  EXPECT_EQ(back.address().stringvalue(), "10.0.0.1");
}

TEST(ZmPackXML, EveryByteComesBack) {
  ZmStringList texts = everytext(), list;
  ZmConfigHash sections, read_sections;
  ZmStringHash hash, hashed;
  EXPECT_EQ(unpackxml(list, xml(texts)), 0);
  EXPECT_EQ(record(list), record(texts));
  for (int i = 0; i < texts.length(); ++i) {
    const ZmString& each = *texts.get(i);
    Sample sample, back;
    sample.s = sample.root = back.root = each;
    sample.name = back.name = "n" + each;
    sample.named = "found";
    EXPECT_EQ(unpackxml(back, xml(sample)), 0) << i;
    EXPECT_EQ(text(back.s), text(each)) << i;
    EXPECT_EQ(back.named, "found") << i;
    hash.set(new ZmString(each), each);
    auto* section = new ZmConfig;
    section->option(each, each);
    sections.set(section, each);
  }
  EXPECT_EQ(unpackxml(hashed, xml(hash)) + unpackxml(read_sections, xml(sections)), 0);
  EXPECT_EQ(xml(hashed), xml(hash));
  EXPECT_EQ(xml(read_sections), xml(sections));
  for (int i = 0; i < texts.length(); ++i)
    EXPECT_EQ(text(*hashed.get(*texts.get(i))), text(*hash.get(*texts.get(i)))) << i;
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
    EXPECT_EQ(unpackxml(back, xml(sample)), 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(back.f), std::bit_cast<std::uint32_t>(f)) << f;
  }
  for (int b = 0; b < 256; ++b) {
    Sample sample, back;
    sample.c = static_cast<char>(b);
    sample.u = static_cast<unsigned char>(b);
    sample.i = b % 2 ? Int::min() + b : Int::max() - b;
    sample.l = b % 2 ? Long::min() + b : Long::max() - b;
    EXPECT_EQ(unpackxml(back, xml(sample)), 0);
    EXPECT_EQ(held(back), held(sample));
  }
}

TEST(ZmPackXML, MembersAreTakenWhereTheyFit) {
  checkcases("members", [](const std::string& inside) {
    Sample sample;
    EXPECT_EQ(unpackxml(sample, "<sample>" + inside + "</sample>"), 0);
    return held(sample);
  });
}

TEST(ZmPackXML, RefusedTextsChangeNothing) {
  using namespace std::string_literals;
  const auto refused = [](const std::string& source) {
    Sample sample;
    const int result = unpackxml(sample, source);
    EXPECT_EQ(held(sample), held(Sample()));
    return std::to_string(result);
  };
  checkcases("refused", refused);
  check({" => 1", "<sample><i>7</i>\x01</sample> => 1", "<sample><i>7</i>\xff</sample> => 1"},
        refused);
  EXPECT_EQ(refused("<sample><i>7</i>\0</sample>"s), "1");
  for (const int levels : {257, 100000}) EXPECT_EQ(refused(nested(levels)), "4");
  Sample sample;
  EXPECT_EQ(unpackxml(sample, nested(256)), 0);
  EXPECT_EQ(sample.unpackXML(nullptr, 5), 1);
  EXPECT_EQ(sample.unpackXML("<sample/>", -1), 1);
}

TEST(ZmPackXML, SectionsWhoseLabelsDisagreeKeepBoth) {
  ZmConfig section, back;
  section.option("gone", "");
  EXPECT_EQ(unpackxml(section,
                      "<config><labels><item>b</item><item>a</item><item>b</item></labels>"
                      "<options><item key='a'>1</item><item>2</item><item key='c'>3</item>"
                      "</options></config>"),
            0);
  EXPECT_EQ(section.option("a") + section.option("c"), "13");
  EXPECT_EQ(unpackxml(back, xml(section)), 0);
  EXPECT_EQ(back.optionlist().join(" "), "b a b");
  EXPECT_EQ(xml(back), xml(section));
}

TEST(ZmPackXML, SectionsKeepWhatAMalformedMemberWouldReplace) {
  check({"<options>junk</options> => k=v;", "<options><item>no key</item></options> => k=v;",
         "<options><item key='a'><b/></item></options> => k=v;", "<labels>junk</labels> => k=v;",
         "<labels><item><b/></item></labels> => k=v;", "<address>junk</address> => k=v;",
         "<options> </options> => ", "<options><x/><item key='a'>1</item></options> => a=1;"},
        [](const char* member) {
          ZmConfig section;
          section.option("k", "v");
          EXPECT_EQ(unpackxml(section, std::string("<config><x/>") + member + "</config>"), 0);
          EXPECT_TRUE(section.address().blank());
          return held(section);
        });
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
  EXPECT_EQ(unpackxml(once, xml(twice)), 0);
  EXPECT_EQ(*once.get("01"), "new");
  EXPECT_EQ(unpack(old, record(twice)), 0);
  EXPECT_EQ(*old.get("01"), "old");
}

TEST(ZmPackObj, FindsTheLastOfAName) {
  ZmPackObj root;
  for (int i = 0; i < 60; ++i) {
    auto* inside = new ZmPackObj;
    inside->name(ZmString(i % 20));
    inside->key(ZmOwned<ZmString>(new ZmString(i)));
    root.push(inside);
    for (int search = 0; search < 20; ++search) EXPECT_EQ(root.find(ZmString(i % 20)), inside);
  }
  ZmPackObj copy = root;
  copy = *&copy;
  copy.push(nullptr);
  for (int search = 0; search < 20; ++search) EXPECT_EQ(*copy.find("7")->key(), "47");
  EXPECT_EQ(copy.find("20"), nullptr);
}

TEST(ZmPackObj, AnyDepthIsCopiedAndDestroyed) {
  ZmPackObj root;
  ZmPackObj* at = &root;
  for (int i = 0; i < 300000; ++i) {
    auto* inside = new ZmPackObj;
    inside->text(ZmOwned<ZmString>(new ZmString("x")));
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
