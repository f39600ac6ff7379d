#include "ZmAddress.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstring>
#include <ostream>

#include "ZmDebug.h"
#include "ZmText.h"
#include "ZmTextCursor.h"
#include "ZmTextNumber.h"

namespace {

constexpr int kValue = 1;  // tag of the record
constexpr ZmCharSet kZero("0");

// The octet at i, 0 the most significant.
int octet(int value, int i) {
  return static_cast<int>(static_cast<unsigned>(value) >> (24 - 8 * i) & 0xff);
}

// One number below 256. What is left of it behind leading zeros can't wrap.
bool isoctet(ZmTextCursor& in) {
  const bool zeros = !in.skip(kZero).empty();
  const ZmDigits digits = zm_digits(in);
  return (zeros || digits.count > 0) && digits.count <= 3 && digits.value < 256;
}

}  // namespace

void ZmAddress::encode() { store(kValue, value_); }

// A record doesn't say whether its address is blank. One that holds 0 may have been, so the flag
// stays as it is.
void ZmAddress::decode() {
  restore(kValue, value_);
  if (value_ != 0) blank_ = 0;
}

void ZmAddress::encodeXML() { storeXML("value", value_); }

void ZmAddress::decodeXML() {
  restoreXML("value", value_);
  if (value_ != 0) blank_ = 0;
}

void ZmAddress::copy(const ZmString& text) {
  ZmTextCursor in(zm_view(text));
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    // Numbers wrap at 2^32, a multiple of 256: the low byte is right however long one is.
    value = value << 8 | (zm_digits(in).value & 0xff);
    // Every character that ends a number ends an octet; behind the fourth there is no place.
    if (i == 3 && !in.eof()) return;
    in.take();
  }
  value_ = static_cast<int>(value);
  blank_ = 0;
}

void ZmAddress::wipe() {
  value_ = 0;
  blank_ = 1;
}

ZmString ZmAddress::stringvalue() const {
  ZmString text(octet(value_, 0));
  for (int i = 1; i < 4; ++i) {
    text += ".";
    text += octet(value_, i);
  }
  return text;
}

// The last octet stands in decimal: the form is a contract.
ZmString ZmAddress::hexvalue() const {
  ZmString text;
  for (int i = 0; i < 3; ++i) {
    text.hexvalue(static_cast<char>(octet(value_, i)));
    text += ".";
  }
  text += octet(value_, 3);
  return text;
}

unsigned char ZmAddress::isaddress(const ZmString& text) {
  ZmTextCursor in(zm_view(text));
  for (int i = 0; i < 4; ++i)
    if ((i > 0 && !in.accept('.')) || !isoctet(in)) return 0;
  return in.eof();
}

ZmAddress ZmAddress::hostname(const ZmString& name) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  // Of any type of socket, the resolver would list each address once for every type.
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* answers = nullptr;
  ZmAddress address;
  if (::getaddrinfo(name.value(), nullptr, &hints, &answers) != 0) return address;
  // The last one counts: which one that is, is up to the resolver.
  for (const addrinfo* answer = answers; answer; answer = answer->ai_next) {
    sockaddr_in found{};
    std::memcpy(&found, answer->ai_addr, sizeof found);
    address = static_cast<int>(ntohl(found.sin_addr.s_addr));
  }
  ::freeaddrinfo(answers);
  return address;
}

std::ostream& operator<<(std::ostream& out, const ZmAddress& address) {
  return out << address.stringvalue();
}

ZmDebug& operator<<(ZmDebug& out, const ZmAddress& address) { return out << address.stringvalue(); }
