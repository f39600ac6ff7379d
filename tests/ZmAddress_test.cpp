#include "ZmAddress.h"

#include <sstream>

#include "ZmDebug.h"
#include "ZmTest.h"

TEST(ZmAddress, ReadsDottedText) {
  check({"192.168.1.20 => 192.168.1.20", "1-2-3-4 => 1.2.3.4", "300.1.1.1 => 44.1.1.1",
         "1..2.3 => 1.0.2.3", "1.2 => 1.2.0.0", " => 0.0.0.0", "... => 0.0.0.0",
         "1.2.3.4  => refused", ".... => refused"},
        [](const char* source) {
          ZmAddress address;
          address.copy(source);
          return text(address.blank() ? "refused" : address.stringvalue());
        });
}

TEST(ZmAddress, KnowsAddresses) {
  for (const char* source : {"10.0.0.255", "010.000.000.001", "0.0.0.0", "00000255.1.1.1"})
    EXPECT_TRUE(ZmAddress::isaddress(source)) << source;
  for (const char* source : {"10.0.0.256", "10.0.0", "10.0.0.1.", "10.0.0.1.1", "", " 10.0.0.1",
                             "10.0.0.1 ", "10..0.1", "10.0.0.-1", "4294967296.0.0.1"})
    EXPECT_FALSE(ZmAddress::isaddress(source)) << source;
}

TEST(ZmAddress, PrintsPacksAndWipes) {
  ZmAddress address(static_cast<int>(0xFF0A01C8)), unpacked, read;
  EXPECT_STREQ(address.hexvalue().value(), "FF.0A.01.200");  // the last octet is decimal
  std::ostringstream out;
  out << address;
  EXPECT_EQ(out.str(), "255.10.1.200");
  EXPECT_EQ(printed([&] { zm_debug_obj() << address << "\n"; }), "255.10.1.200\n");
  EXPECT_EQ(unpack(unpacked, record(address)) + unpackxml(read, xml(address)), 0);
  address.wipe();
  EXPECT_TRUE(address.blank() && address.value() == 0);
  for (const ZmAddress& other : {unpacked, read})
    EXPECT_TRUE(other.stringvalue() == "255.10.1.200" && !other.blank());
}

TEST(ZmAddress, ResolvesWithoutANetwork) {
  EXPECT_EQ(ZmAddress::hostname("127.0.0.1").value(), 0x7F000001);
  EXPECT_TRUE(ZmAddress::hostname("").blank());
}
