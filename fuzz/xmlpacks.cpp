// XML packs: any text reads without harm into every class. One that is refused changes nothing;
// what was read is written, and read back, as it is. And any bytes come back as key, text and name.
#include <cstdint>
#include <string_view>

#include "ZmAddress.h"
#include "ZmConfigHash.h"
#include "ZmConfigList.h"
#include "ZmFile.h"
#include "ZmOptionList.h"
#include "ZmStringHash.h"
#include "ZmStringList.h"
#include "ZmText.h"
#include "require.h"

namespace {

ZmString packed(ZmPack& pack) {
  pack.packXML();
  return {pack.packContents(), pack.packSize()};
}

bool same(const ZmString& a, const ZmString& b) { return zm_view(a) == zm_view(b); }

// 0, or 2 for an object without elements.
void reads(ZmPack& pack, const ZmString& text) {
  const int result = pack.unpackXML(text);
  require(result == 0 || result == 2);
}

template <class T>
void unpacked(const ZmString& text) {
  T object;
  if (zm_view(text).find(zm_view(object.typeXML())) == std::string_view::npos) return;
  const ZmString before = packed(object);
  const bool changed = object.unpackXML(text) == 0;
  const ZmString written = packed(object);
  require(changed || same(written, before));
  T again;
  reads(again, written);
  // Keys that are equal up to a zero byte replace each other or not, as the table has grown.
  if (zm_view(written).find("key-encoding") != std::string_view::npos) return;
  require(same(packed(again), written));
}

struct Named : ZmPack {
  explicit Named(const ZmString& member) : name(member) {}
  ZmString typeXML() const override { return name; }
  void encode() override {}
  void decode() override {}
  void encodeXML() override { storeXML(name, value); }
  void decodeXML() override { restoreXML(name, value); }

  ZmString name;
  ZmString value;
};

void comesback(const ZmString& bytes) {
  ZmStringHash hash, read;
  hash.set(new ZmString(bytes), bytes);
  reads(read, packed(hash));
  require(read.get(bytes) && same(*read.get(bytes), bytes));
  Named object(bytes), other(bytes);
  object.value = bytes;
  reads(other, packed(object));
  require(same(other.value, bytes));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ZmString text(reinterpret_cast<const char*>(data), static_cast<int>(size));
  unpacked<ZmStringList>(text);
  unpacked<ZmStringHash>(text);
  unpacked<ZmConfig>(text);
  unpacked<ZmConfigList>(text);
  unpacked<ZmConfigHash>(text);
  unpacked<ZmAddress>(text);
  unpacked<ZmFile>(text);
  unpacked<ZmOptionList>(text);
  comesback(text);
  return 0;
}
