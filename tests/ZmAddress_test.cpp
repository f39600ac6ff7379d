#include "ZmAddress.h"

#include <gtest/gtest.h>

#include <sstream>

#include "ZmDebug.h"

TEST(ZmAddress, ReadsDottedText) {
  const char* const rows[][2] = {{"192.168.1.20", "192.168.1.20"},
                                 {"1-2-3-4", "1.2.3.4"},
                                 {"300.1.1.1", "44.1.1.1"},
                                 {"1..2.3", "1.0.2.3"},
                                 {"1.2", "1.2.0.0"},
                                 {"", "0.0.0.0"},
                                 {"...", "0.0.0.0"},
                                 {"1.2.3.4 ", "refused"},
                                 {"....", "refused"}};
  for (const auto& [text, result] : rows) {
    ZmAddress address;
    address.copy(text);
    EXPECT_STREQ(address.blank() ? "refused" : address.stringvalue().value(), result) << text;
  }
}

TEST(ZmAddress, KnowsAddresses) {
  for (const char* text : {"10.0.0.255", "010.000.000.001", "0.0.0.0", "00000255.1.1.1"})
    EXPECT_TRUE(ZmAddress::isaddress(text)) << text;
  for (const char* text : {"10.0.0.256", "10.0.0", "10.0.0.1.", "10.0.0.1.1", "", " 10.0.0.1",
                           "10.0.0.1 ", "10..0.1", "10.0.0.-1", "4294967296.0.0.1"})
    EXPECT_FALSE(ZmAddress::isaddress(text)) << text;
}

TEST(ZmAddress, PrintsAndWipes) {
  ZmAddress address(static_cast<int>(0xFF0A01C8));
  EXPECT_STREQ(address.hexvalue().value(), "FF.0A.01.200");  // the last octet is decimal
  std::ostringstream out;
  out << address;
  EXPECT_EQ(out.str(), "255.10.1.200");
  testing::internal::CaptureStdout();
  zm_debug_obj() << address << "\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "255.10.1.200\n");
  address.wipe();
  EXPECT_TRUE(address.blank() && address.value() == 0);
}

TEST(ZmAddress, PacksItsValue) {
  ZmAddress address("10.0.0.1"), unpacked, read;
  address.pack();
  EXPECT_EQ(unpacked.unpack(address.packContents(), address.packSize()), 0);
  address.packXML();
  EXPECT_EQ(read.unpackXML(address.packContents(), address.packSize()), 0);
  for (const ZmAddress& other : {unpacked, read})
    EXPECT_TRUE(other.value() == 0x0A000001 && !other.blank());
}

TEST(ZmAddress, ResolvesWithoutANetwork) {
  EXPECT_EQ(ZmAddress::hostname("127.0.0.1").value(), 0x7F000001);
  EXPECT_TRUE(ZmAddress::hostname("").blank());
}
