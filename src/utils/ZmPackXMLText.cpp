#include "ZmPackXMLText.h"

#include <array>
#include <climits>
#include <cstdint>
#include <new>

#include "ZmText.h"
#include "ZmTextCursor.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr ZmCharSet kNameStart("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_"),
    kName("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789-.");

// The bytes below 128 that are characters of XML.
constexpr ZmCharSet kAscii(
    "\t\n\r !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
    "abcdefghijklmnopqrstuvwxyz{|}~\x7f");

// The digits' values, -1 for every other byte.
constexpr std::array<int, 256> kDigits = [] {
  std::array<int, 256> digits{};
  digits.fill(-1);
  for (int i = 0; i < 64; ++i) digits[static_cast<unsigned char>(kAlphabet[i])] = i;
  return digits;
}();

// Bytes that follow the lead byte; -1 when no character starts with it.
// 0xc0 and 0xc1 could only start longer forms than needed, those above 0xf4 only codes beyond
// U+10FFFF (RFC 3629, section 4).
int following(int lead) {
  if (lead < 0xc2 || lead > 0xf4) return -1;
  return lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3;
}

// Takes a character of two to four bytes; false when there is none or XML does not allow it.
bool character(ZmTextCursor& in) {
  // A code below these has a shorter form, and the longer one is no UTF-8: readers refuse the whole
  // text.
  constexpr int kLeast[] = {0, 0x80, 0x800, 0x10000};
  const int more = following(in.peek());
  if (more < 0) return false;
  int code = in.peek() & (0x3f >> more);
  for (int i = 1; i <= more; ++i) {
    const int c = in.peek(static_cast<std::size_t>(i));
    if ((c & 0xc0) != 0x80) return false;
    code = code << 6 | (c & 0x3f);
  }
  in.take(static_cast<std::size_t>(more) + 1);
  const bool surrogate = code >= 0xd800 && code <= 0xdfff;
  return code >= kLeast[more] && code <= 0x10ffff && !surrogate && code != 0xfffe && code != 0xffff;
}

}  // namespace

bool zm_xml_text(std::string_view text) {
  ZmTextCursor in(text);
  for (in.skip(kAscii); !in.eof(); in.skip(kAscii))
    if (!character(in)) return false;
  return true;
}

bool zm_xml_name(std::string_view name) {
  ZmTextCursor in(name);
  if (!kNameStart.has(in.peek())) return false;
  in.skip(kName);
  return in.eof();
}

// The room is known, so that no text is copied while it grows; the last byte is the zero behind.
ZmString zm_base64(std::string_view bytes) {
  ZmString text;
  const std::size_t length = (bytes.size() + 2) / 3 * 4;
  if (length >= INT_MAX) throw std::bad_alloc();
  text._resize(static_cast<int>(length) + 1);
  text.clear();
  for (ZmTextCursor in(bytes); !in.eof();) {
    const std::string_view three = in.take(3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < three.size() ? static_cast<unsigned char>(three[i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text.append(i <= three.size() ? kAlphabet[bits >> (18 - 6 * i) & 0x3f] : '=');
  }
  return text;
}

bool zm_from_base64(std::string_view text, ZmString& bytes) {
  bytes.clear();
  std::uint32_t bits = 0;
  int digits = 0;
  ZmTextCursor in(text);
  for (in.skip(kZmSpace); !in.eof() && !in.is('='); in.skip(kZmSpace)) {
    const int digit = kDigits[static_cast<unsigned char>(in.take()[0])];
    if (digit < 0) return false;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    if (++digits % 4 == 0)
      for (int shift = 16; shift >= 0; shift -= 8) bytes.append(static_cast<char>(bits >> shift));
  }
  const int rest = digits % 4;
  for (int i = rest; i > 0 && i < 4; ++i, in.skip(kZmSpace))
    if (!in.accept('=')) return false;
  if (rest == 1 || !in.eof()) return false;
  // What the padding stands for: the bits below the last whole byte must be unset.
  // RFC 4648 (section 3.5) leaves it to readers to insist on that.
  if (rest == 2 && (bits & 0xf)) return false;
  if (rest == 3 && (bits & 0x3)) return false;
  if (rest >= 2) bytes.append(static_cast<char>(bits >> (rest == 2 ? 4 : 10)));
  if (rest == 3) bytes.append(static_cast<char>(bits >> 2));
  return true;
}
