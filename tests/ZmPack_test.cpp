#include <algorithm>
#include <climits>
#include <memory>

#include "ZmFile.h"
#include "ZmStringHash.h"
#include "ZmTest.h"

namespace {

static_assert(sizeof(ZmPack) == sizeof(void*) * 2);

// One member of each kind, and one more of its own class at any depth.
struct Sample : ZmPack {
  int type() const override { return 1000; }
  void encode() override {
    store(1, number);
    store(2, letter);
    store(3, text);
    store(4, list);
    store(5, real);
    store(6, byte);
    store(7, large);
    store(-1, end.value());
  }
  void decode() override {
    restore(1, number);
    restore(2, letter);
    restore(3, text);
    restore(4, list);
    restore(5, real);
    restore(6, byte);
    restore(7, large);
    restore(-1, end);
    if (_tag() == 8) restore(8, *(inner = std::make_unique<Sample>()));
  }
  void encodeXML() override {}
  void decodeXML() override {}

  int number = 0;
  char letter = 0;
  ZmString text;
  ZmStringList list;
  float real = 0;
  unsigned char byte = 0;
  long long large = 0;
  ZmString end;
  std::unique_ptr<Sample> inner;
};

// The bytes that hexadecimal digits, with blanks between them, stand for.
std::string bytes(std::string digits) {
  std::erase(digits, ' ');
  std::string out;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    out += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  return out;
}

const char kVersion[] = "00000001";
const char kSample[] =
    "00000001 0001 0001 fffffffe 0002 0002 ff 0003 0003 00000003 610062"
    "0004 0004 00000037 0000001b 0001 0001 00000002 000a 0003 00000001 78 000a 0003 00000002 797a"
    "0005 0005 3fc00000 0006 0006 80 0007 0007 8000000000000001 ffff 0003 00000003 656e64";

// The first members of what kSample holds.
void fill(Sample& sample, int members = 8) {
  if (members > 0) sample.number = -2;
  if (members > 1) sample.letter = '\xff';
  if (members > 2) sample.text.copy("a\0b", 3);
  if (members > 3) sample.list.push(new ZmString("x"));
  if (members > 3) sample.list.push(new ZmString("yz"));
  if (members > 4) sample.real = 1.5F;
  if (members > 5) sample.byte = 0x80;
  if (members > 6) sample.large = LLONG_MIN + 1;
  if (members > 7) sample.end = "end";
}

// An object that names itself as its member, and asks for what is not there.
struct Selfish : ZmPack {
  int type() const override { return 1001; }
  ZmString typeXML() const override { return "selfish"; }
  void encode() override { store(1, *this), store(2, number); }
  void decode() override { restore(1, *this), restore(2, number), restoreXML("n", number); }
  void encodeXML() override { storeXML("self", *this), storeXML("n", number); }
  void decodeXML() override { restoreXML("self", *this), restoreXML("n", number); }
  int number = 7;
};

TEST(ZmPack, NoObjectIsAMemberOfItself) {
  Selfish from, to;
  EXPECT_EQ(from.packContents(), nullptr);
  EXPECT_EQ(record(from), bytes("00000001 0002 0001 00000007"));
  EXPECT_EQ(xml(from).substr(39), "<selfish>\n  <n>7</n>\n</selfish>\n");
  for (const bool text : {false, true}) {
    to.number = 1;
    text ? from.packXML() : from.pack();
    const int size = from.packSize();
    text ? to.unpackXML(from.packContents(), size) : to.unpack(from.packContents(), size);
    EXPECT_EQ(to.number, 7);
    to.decode();  // there is nothing left to read
    to.decodeXML();
    EXPECT_EQ(to.number, 7);
  }
}

}  // namespace

TEST(ZmPack, WritesAndReadsEveryType) {
  Sample sample;
  fill(sample);
  EXPECT_EQ(record(sample), bytes(kSample));
  EXPECT_EQ(sample.list.packSize(), 0);
  Sample read;
  EXPECT_EQ(unpack(read, record(sample)), 0);
  EXPECT_EQ(record(read), bytes(kSample));
  sample.pack();
  sample.list.clear();
  EXPECT_EQ(sample.unpack(sample.packContents(), sample.packSize()), 0);  // its own buffer
  EXPECT_EQ(record(sample), bytes(kSample));
}

TEST(ZmPack, EveryTruncationReadsWhatIsWhole) {
  const std::string whole = bytes(kSample);
  const std::size_t ends[] = {12, 17, 28, 67, 75, 80, 92, 103};
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    Sample sample;
    EXPECT_EQ(unpack(sample, whole.substr(0, size)), size < 4 ? 1 : size == 4 ? 2 : 0);
    Sample expected;
    fill(expected,
         static_cast<int>(std::ranges::count_if(ends, [=](auto end) { return end <= size; })));
    EXPECT_EQ(record(sample), record(expected)) << size;
  }
}

TEST(ZmPack, ReadsWhatItKnowsAndSkipsTheRest) {
  checklines("fields", [](const char* fields) {
    Sample sample;
    EXPECT_EQ(unpack(sample, bytes(kVersion + std::string(fields))), 0);
    return std::to_string(sample.number);
  });
  Sample sample;
  EXPECT_EQ(unpack(sample, bytes("00000002 0001 0001 00000005")), 3);
  EXPECT_EQ(sample.unpack(nullptr, 8), 1);
}

TEST(ZmPack, ContainersReadNoMoreThanIsThere) {
  // As a list; as a hash of keys and values.
  check({"0001 0001 00000000 => |", "0001 0001 7fffffff 000a 0003 00000001 61 => a|",
         "0001 0001 ffffffff 000a 0003 00000001 61 => |",
         "0001 0001 00000001 000a 0003 00000001 61 000a 0003 00000001 62 => a|a=",
         "0001 0001 00000002 000a 0003 00000001 61 001e 0003 00000001 62 => a+|a=b",
         "0001 0001 00000002 0009 0001 00000001 001e 0003 00000001 62 => +|=b",
         "0001 0001 00000002 000a 0003 00000001 61 001e 0003 00000002 62 => a+|",
         "0001 0001 00000002 000a 0003 00000002 61 => |",
         "000a 0003 00000001 61 001e 0003 00000001 62 => |"},
        [](const char* fields) {
          const std::string data = bytes(kVersion + std::string(fields));
          ZmStringList texts, keys;
          ZmStringHash pairs;
          EXPECT_EQ(unpack(texts, data) + unpack(pairs, data), 0);
          pairs.copykeys(keys);
          for (int i = 0; i < keys.length(); ++i) *keys.get(i) += "=" + *pairs.get(*keys.get(i));
          return joined(texts, "+") + "|" + joined(keys, "+");
        });
  ZmStringHash hash;
  hash.set(new ZmString("1"), "ab");  // slot 1
  hash.set(nullptr, "");              // slot 0
  EXPECT_EQ(record(hash), bytes("00000001 0001 0001 00000002 000a 0003 00000000 001e 0003 00000000"
                                "000a 0003 00000002 6162 001e 0003 00000001 31"));
}

// A nested object reads with what its reader lends it.
TEST(ZmPack, NestedObjectsMayResetThemselves) {
  struct Reset : Sample {
    void decode() override {
      Sample::operator=(Sample());
      Sample::decode();
    }
  };
  struct Outer : Sample {
    void decode() override {
      restore(9, reset);
      restore(1, number);
    }
    Reset reset;
  } outer;
  EXPECT_EQ(unpack(outer, bytes(kVersion + std::string("0009 0004 000003e8 00000010"
                                                       "0001 0001 00000004 0001 0001 00000004"
                                                       "0001 0001 00000005"))),
            0);
  EXPECT_EQ(outer.number, 5);
}

// Nor does it store itself, and what it drops of the record around it stays dropped.
TEST(ZmPack, NestedObjectsMayDropWhatTheyAreStoredIn) {
  struct Dropping : Sample {
    void encode() override {
      Sample::operator=(Sample());
      store(7, number);
    }
  };
  struct Outer : Sample {
    void encode() override {
      store(1, number);
      store(2, dropping);
      store(3, static_cast<const char*>(nullptr));
      store(4, *this);
    }
    void encodeXML() override {
      storeXML("a", "<");
      storeXML("b", static_cast<const char*>(nullptr));
      storeXML("c", *this);
      storeXML("d", dropping);
    }
    Dropping dropping;
  } outer;
  EXPECT_EQ(record(outer), bytes("0007 0001 00000000 0003 0003 00000000"));
  const std::string shown = printed([&] { outer._debug_print(); });
  EXPECT_EQ(shown.substr(shown.find("\tlen")),
            "\tlength: 16\n\tdata:\n\t\t00 07 00 01 00 00 00 00 00 03 00 03 00 00 00 00\n");
  EXPECT_EQ(xml(outer).substr(39), "<pack>\n  <a>&lt;</a>\n  <b/>\n  <d/>\n</pack>\n");
}

// A section replaces its options by those of a record only if they can be read.
TEST(ZmPack, ContainersAreEmptiedForSoundFieldsOnly) {
  check({"0003 0004 00000037 00000000 0000 0004 00000038 00000000 => ",
         "0000 0004 00000037 00000000 => k=v;", "0000 0004 00000038 ffffffff => k=v;",
         "0000 0004 00000038 00000001 => k=v;", "0000 0004 00000038 00 => k=v;",
         "0000 0001 00000038 => k=v;"},
        [](const char* fields) {
          ZmConfig section;
          section.option("k", "v");
          EXPECT_EQ(unpack(section, bytes(kVersion + std::string(fields))), 0);
          return held(section);
        });
}

TEST(ZmPack, HostileNestingEnds) {
  constexpr int kLevels = 1000000;
  std::string data = bytes(kVersion);
  for (int left = kLevels; left-- > 0;) {
    data += bytes("0008 0004 000003e8");
    for (int shift = 24; shift >= 0; shift -= 8) data += static_cast<char>(left * 12 >> shift);
  }
  Sample sample;
  EXPECT_EQ(unpack(sample, data), 0);
  int levels = 0;
  for (const Sample* at = &sample; at; at = at->inner.get()) ++levels;
  EXPECT_EQ(levels, 1002);  // the outermost, the 1000 that are read, and the one that is not
}

using ZmPackTest = Directory;

TEST_F(ZmPackTest, ArchivesAndRecovers) {
  const ZmString file = in("pack");
  Sample sample, read;
  fill(sample);
  const int size = static_cast<int>(bytes(kSample).size());
  EXPECT_EQ(sample.archive(file), size);
  EXPECT_EQ(sample.packSize(), 0);
  EXPECT_EQ(read.recover(file), size);
  EXPECT_EQ(read.number, -2);
  ZmFile::save(file, "other");
  for (const ZmString& none : {file, in("missing"), ZmString("/")})
    EXPECT_EQ(read.recover(none), 0);
  for (const char* none : {"/", "/dev/full"}) EXPECT_EQ(read.archive(none), 0);
}
