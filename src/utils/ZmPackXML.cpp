// The XML form of packs: writing, and reading from the parsed tree.
#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <system_error>

#include "ZmPack.h"
#include "ZmPackObj.h"
#include "ZmPackXMLText.h"
#include "ZmText.h"
#include "ZmTextCursor.h"
#include "ZmTextNumber.h"

namespace {

constexpr std::string_view kItem = "item";

// What does not stand for itself: inside an element, and inside an attribute, where readers make
// spaces of tabs and line ends.
// A ">" is among them because "]]>" may not stand in a text (XML 1.0, section 2.4), a CR because
// readers make a line end of it (section 2.11).
constexpr ZmCharSet kMarkup("&<>\r\x7f"), kQuoted("&<>\r\x7f\"\t\n");

std::string_view entity(char c) {
  constexpr struct {
    char c;
    std::string_view text;
  } kEntities[] = {{'&', "&amp;"}, {'<', "&lt;"},   {'>', "&gt;"},   {'"', "&quot;"},
                   {'\t', "&#9;"}, {'\n', "&#10;"}, {'\r', "&#13;"}, {'\x7f', "&#127;"}};
  return std::ranges::find(kEntities, c, [](const auto& entity) { return entity.c; })->text;
}

// A NaN carries bits of its own. Those of any but the usual one stand behind it: "nan(12ab)".
constexpr std::uint32_t kSign = 0x80000000, kInfinity = 0x7f800000, kPayload = 0x7fffff,
                        kUsualNaN = 0x400000;

// The bits of such a NaN; 0 for any other text.
std::uint32_t payload(std::string_view text) {
  constexpr std::string_view kOpen = "nan(";
  const bool minus = text.starts_with('-');
  text.remove_prefix(minus ? 1 : 0);
  if (!text.starts_with(kOpen) || !text.ends_with(')')) return 0;
  const char* end = text.data() + text.size() - 1;
  std::uint32_t bits = 0;
  const auto [at, error] = std::from_chars(text.data() + kOpen.size(), end, bits, 16);
  if (error != std::errc() || at != end || bits == 0 || bits > kPayload) return 0;
  return (minus ? kSign : 0) | kInfinity | bits;
}

// Reads a number; one that is out of range, or followed by anything, leaves the value alone.
template <class T>
void read(std::string_view text, T& value) {
  const char* end = text.data() + text.size();
  T number{};
  const auto [at, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && at == end) value = number;
}

// The same for texts with a zero byte somewhere behind. Not every standard library has from_chars
// for floats; strtof takes more: blanks, "+" and hexadecimal digits.
void read(std::string_view text, float& value) {
  constexpr ZmCharSet kStart("0123456789.iInN"), kHexadecimal("xX");
  ZmTextCursor in(text);
  in.accept('-');
  if (!kStart.has(in.peek()) || (in.is('0') && kHexadecimal.has(in.peek(1)))) return;
  char* end = nullptr;
  errno = 0;
  const float number = ::strtof_l(text.data(), &end, zm_plain_locale());
  const bool outside = errno == ERANGE && (number == 0 || std::isinf(number));
  if (end == text.data() + text.size() && !outside) value = number;
}

}  // namespace

// --- writing ---

// Writes elements at the end of a pack's buffer.
struct ZmPack::Writer {
  void put(std::string_view text) {
    if (text.size() > INT_MAX) throw std::bad_alloc();
    pack._store(text.data(), static_cast<int>(text.size()));
  }
  void escaped(std::string_view text, const ZmCharSet& special) {
    for (ZmTextCursor in(text); !in.eof();) {
      put(in.until(special));
      if (!in.eof()) put(entity(in.take()[0]));
    }
  }
  void attribute(std::string_view label, std::string_view value) {
    put(" ");
    put(label);
    if (zm_xml_text(value)) {
      put("=\"");
      escaped(value, kQuoted);
    } else {
      put("-encoding=\"base64\" ");
      put(label);
      put("=\"");
      put(zm_view(zm_base64(value)));
    }
    put("\"");
  }
  void indent() {
    for (int i = 0; i < pack.state_->depth; ++i) put("  ");
  }
  // Up to where ">" belongs.
  void starttag() {
    indent();
    put("<");
    put(tag);
    if (tag != name) attribute("name", name);
    if (key) attribute("key", zm_view(*key));
  }
  void endtag() {
    put("</");
    put(tag);
    put(">\n");
  }
  void leaf(std::string_view text) {
    starttag();
    if (text.empty()) return put("/>\n");
    if (zm_xml_text(text)) {
      put(">");
      escaped(text, kMarkup);
    } else {
      put(" encoding=\"base64\">");
      put(zm_view(zm_base64(text)));
    }
    endtag();
  }
  void branch(ZmPack& value) {
    starttag();
    put(">\n");
    const int from = pack.state_->used;
    if (&value == &pack) {
      ++pack.state_->depth;
      value.encodeXML();
      --pack.state_->depth;
    } else {
      const Loan loan(pack, value);
      value.encodeXML();
    }
    if (pack._state().used == from) {  // empty: what closed the start tag goes again
      pack.state_->used -= 2;
      return put("/>\n");
    }
    indent();
    endtag();
  }

  ZmPack& pack;
  std::string_view name;
  const ZmString* key = nullptr;
  std::string_view tag = zm_xml_name(name) ? name : "element";
};

void ZmPack::packXML() {
  Unfinished text{*this};
  _state().used = 0;
  const ZmString name = typeXML();
  Writer root{*this, zm_view(name)};
  root.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
  root.branch(*this);
  text.finished = true;
}

template <class T>
void ZmPack::_numberXML(const ZmString& name, T value) {
  char digits[64];  // the longest: a float's 15
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  Writer{*this, zm_view(name)}.leaf({digits, static_cast<std::size_t>(end - digits)});
}

void ZmPack::storeXML(const ZmString& name, int value) { _numberXML(name, value); }
void ZmPack::storeXML(const ZmString& name, long long value) { _numberXML(name, value); }
void ZmPack::storeXML(const ZmString& name, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  if (value == value || (bits & kPayload) == kUsualNaN) return _numberXML(name, value);
  char text[sizeof "-nan(7fffff)"];
  std::snprintf(text, sizeof text, "%snan(%x)", bits & kSign ? "-" : "", bits & kPayload);
  Writer{*this, zm_view(name)}.leaf(text);
}
void ZmPack::storeXML(const ZmString& name, unsigned char value) {
  _numberXML(name, static_cast<int>(value));
}
void ZmPack::storeXML(const ZmString& name, char value) {
  Writer{*this, zm_view(name)}.leaf({&value, 1});
}
void ZmPack::storeXML(const ZmString& name, const ZmString& value) {
  Writer{*this, zm_view(name)}.leaf(zm_view(value));
}
void ZmPack::storeXML(const ZmString& name, const char* value) {
  Writer{*this, zm_view(name)}.leaf(value ? value : "");
}
void ZmPack::storeXML(const ZmString& name, ZmPack& value) {
  if (&value != this) Writer{*this, zm_view(name)}.branch(value);
}

void ZmPack::_storeItem(const ZmString* key, const ZmString& value) {
  Writer{*this, kItem, key}.leaf(zm_view(value));
}
void ZmPack::_storeItem(const ZmString* key, ZmPack& value) {
  if (&value != this) Writer{*this, kItem, key}.branch(value);
}

// --- reading ---

const ZmString* ZmPack::_text(const ZmString& name) const {
  const ZmPackObj* element = _xml() ? _xml()->find(name) : nullptr;
  return element ? element->text() : nullptr;
}

template <class T>
void ZmPack::_takeXML(const ZmString& name, T& value) const {
  if (const ZmString* text = _text(name)) read(zm_trimmed(zm_view(*text)), value);
}

void ZmPack::restoreXML(const ZmString& name, int& value) { _takeXML(name, value); }
void ZmPack::restoreXML(const ZmString& name, long long& value) { _takeXML(name, value); }
void ZmPack::restoreXML(const ZmString& name, float& value) {
  const ZmString* text = _text(name);
  const std::uint32_t bits = text ? payload(zm_trimmed(zm_view(*text))) : 0;
  if (bits == 0) return _takeXML(name, value);
  value = std::bit_cast<float>(bits);
}
void ZmPack::restoreXML(const ZmString& name, unsigned char& value) { _takeXML(name, value); }

// Not trimmed, as numbers are: the byte may be a blank.
void ZmPack::restoreXML(const ZmString& name, char& value) {
  const ZmString* text = _text(name);
  if (text && text->length() == 1) value = text->get(0);
}

void ZmPack::restoreXML(const ZmString& name, ZmString& value) {
  const ZmString* text = _text(name);
  if (text) value.copy(text->value(), text->length());  // not its flag: the value may be secure
}

void ZmPack::restoreXML(const ZmString& name, ZmPack& value) {
  ZmPackObj* element = _xml() ? _xml()->find(name) : nullptr;
  if (element && &value != this) _restoreItem(*element, value);
}

// Blanks count as nothing: an empty list may have been written by hand, on two lines.
int ZmPack::_insideXML(const ZmString& name) const {
  const ZmPackObj* element = _xml() ? _xml()->find(name) : nullptr;
  if (!element) return -1;
  const bool empty = element->text() && zm_trimmed(zm_view(*element->text())).empty();
  return element->length() > 0 || empty ? element->length() : -1;
}

// Elements of other names are passed over, as unknown fields of a record are.
ZmPackObj* ZmPack::_item(int& at) const {
  const ZmPackObj* element = _xml();
  while (element && at < element->length()) {
    ZmPackObj* item = element->get(at++);
    if (zm_view(item->name()) == kItem) return item;
  }
  return nullptr;
}

ZmOwned<ZmString> ZmPack::_takeItem(ZmPackObj& item, const ZmString*) { return item.taketext(); }

ZmOwned<ZmString> ZmPack::_takeKey(ZmPackObj& item) { return item.takekey(); }
