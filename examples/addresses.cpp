#include <iostream>

#include "ZmAddress.h"

int main() {
  ZmAddress address;
  std::cout << address << " " << int{address.blank()} << "\n";

  address.copy("192.168.1.20");
  std::cout << address << " " << address.hexvalue() << " " << int{address.blank()} << "\n";
  std::cout << ZmAddress(address.value() + 1) << "\n";  // the next one

  for (const char* text : {"10.0.0.255", "10.0.0.256", "10.0.0"})
    std::cout << text << ": " << int{ZmAddress::isaddress(text)} << ", read as " << ZmAddress(text)
              << "\n";

  address.copy("1.2.3.4.5");  // too many numbers: left alone
  std::cout << address << "\n";
  // ZmAddress::hostname("render7") asks the system's resolver; blank when that knows no answer.
}
