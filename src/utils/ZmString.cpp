#include "ZmString.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <utility>

#include "ZmTextNumber.h"

namespace {

constexpr ZmCharSet kSpace(" \t\r\n"), kLineEnd("\r\n");

// ZmText.h stands on this class and can't serve here.
std::string_view bytes(const ZmString& s) {
  return {s.value(), static_cast<std::size_t>(s.length())};
}
void add(ZmString& to, std::string_view text) {
  to.append(text.data(), static_cast<int>(text.size()));
}

// Four times the need, so that building a text byte by byte stays cheap.
int grown(long long need) {
  if (need > INT_MAX) throw std::bad_alloc();
  return need > INT_MAX / 4 ? INT_MAX : static_cast<int>(need * 4);
}

// A bare tolower(int) of our own would collide with the C library's, which must not be given the
// negative numbers that bytes above 127 may be.
char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
char upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

bool contains(std::string_view text, const ZmCharSet& set) {
  for (const char c : text)
    if (set.has(c)) return true;
  return false;
}

template <class Map>
ZmString mapped(std::string_view text, Map map) {
  ZmString result;
  for (const char c : text) result.append(map(c));
  return result;
}

// Of two texts of one length; as every comparison, it ends at a common zero byte.
bool samefolded(std::string_view a, std::string_view b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
    if (a[i] == 0) break;
  }
  return true;
}

// 0 for any other byte, which takes the place of a digit all the same: "1G" reads as 0x10.
int hexdigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

}  // namespace

ZmString::ZmString(const char* s, int n) {
  if (s && n > 0) _start(s, n, grown(n + 1LL));
}
ZmString::ZmString(const char* s) { copy(s); }
ZmString::ZmString(const ZmString& other) : ZmBase(other), secure_(other.secure_) {
  if (other.length_ > 0) _start(other.value(), other.length_, grown(other.length_ + 1LL));
}
ZmString::ZmString(int value) { *this += value; }
ZmString::ZmString(long long value) { *this += value; }
ZmString::ZmString(float value) { *this += value; }

int ZmString::type() const { return 72; }

// Labels, keys and values are many and seldom grow once they are made: four times the need would be
// mostly idle.
ZmString* ZmString::_exact(const char* s, int n) {
  if (n == INT_MAX) throw std::bad_alloc();
  auto made = std::make_unique<ZmString>();
  if (s && n > 0) made->_start(s, n, n + 1);
  return made.release();
}

ZmString* ZmString::_exact(const ZmString& other) {
  ZmString* const made = _exact(other.value(), other.length_);
  made->secure_ = other.secure_;
  return made;
}

// Takes a buffer of that many bytes, in the place of one that has been given up.
char* ZmString::_start(int size) {
  if (size <= kFloor) {
    place_ = kInside;
    return buffer_.inside;
  }
  char* const text = new char[static_cast<std::size_t>(size)];
  buffer_.heap = {text, size};
  place_ = kHeap;
  return text;
}

// copy(s, n) for a string that has no buffer yet: most strings are made so.
void ZmString::_start(const char* s, int n, int size) {
  char* const text = _start(size);
  std::memcpy(text, s, static_cast<std::size_t>(n));
  length_ = n;
  text[n] = 0;
}

void ZmString::_release() noexcept {
  if (secure_) wipe();
  if (place_ == kHeap) delete[] buffer_.heap.text;
}

// No memset(): a compiler may drop one whose bytes nobody reads again, as before a buffer is freed.
void ZmString::wipe() const {
  if (!isundef()) explicit_bzero(_text(), static_cast<std::size_t>(_size()));
}

// Undefined while memory is asked for, so that it is a sound string when there is none.
void ZmString::_resize(int n) {
  _drop();
  place_ = kNowhere;
  length_ = 0;
  buffer_.inside[0] = 0;
  *_start(n) = 0;
}

void ZmString::_swap(ZmString& other) noexcept {
  std::swap(buffer_, other.buffer_);
  std::swap(length_, other.length_);
  std::swap(place_, other.place_);
  std::swap(secure_, other.secure_);
}

void ZmString::copy(const char* s, int n) {
  if (!s || (s == value() && !isundef())) return;
  if (n <= 0) return clear();
  // A source inside the buffer always fits it, so what is released here is not s.
  if (_size() - 1 < n) _resize(grown(n + 1LL));
  std::memmove(_text(), s, static_cast<std::size_t>(n));
  length_ = n;
  _text()[n] = 0;
}

// A buffer that is large enough stays, however large: only a new one is exact.
void ZmString::_fit(const char* s, int n) {
  if (n == INT_MAX) throw std::bad_alloc();
  if (n <= 0) return clear();
  if (_size() - 1 < n) _resize(n + 1);
  copy(s, n);
}

// Even "" gets a buffer here: of all copies this one alone makes an undefined string a defined,
// empty one.
void ZmString::copy(const char* s) {
  if (!s || (s == value() && !isundef())) return;
  const std::size_t n = std::strlen(s);
  if (n >= INT_MAX) throw std::bad_alloc();
  if (_size() < static_cast<int>(n) + 1) _resize(grown(static_cast<long long>(n) + 1));
  std::memmove(_text(), s, n);
  // A bounded copy fills up with zeros: nothing of a longer old text stays behind.
  std::memset(_text() + n, 0, static_cast<std::size_t>(_size()) - n);
  length_ = static_cast<int>(n);
}

// The flag first: it is the other's that decides whether a buffer given up for the copy is wiped.
void ZmString::copy(const ZmString& other) {
  secure_ = other.secure_;
  if (other.length_ > 0) {
    copy(other.value(), other.length_);
  } else {
    clear();
  }
}

void ZmString::copy(int value) {
  clear();
  *this += value;
}

void ZmString::copy(float value) {
  clear();
  *this += value;
}

void ZmString::append(const char* s, int n) {
  if (s && n > 0) _append(s, n);
}

void ZmString::append(const char* s) {
  if (!s || !*s) return;
  const std::size_t n = std::strlen(s);
  if (n >= INT_MAX) throw std::bad_alloc();
  _append(s, static_cast<int>(n));
}

void ZmString::_append(const char* s, int n) {
  const long long need = static_cast<long long>(length_) + n + 1;
  const auto count = static_cast<std::size_t>(n);
  if (isundef()) _start(grown(need));
  if (_size() >= need) {
    // memmove: s may be a piece of this very text.
    std::memmove(_text() + length_, s, count);
  } else {
    const int size = grown(need);
    char* const text = new char[static_cast<std::size_t>(size)];
    std::memcpy(text, value(), static_cast<std::size_t>(length_));
    std::memcpy(text + length_, s, count);  // before the old buffer goes: s may point into it
    _drop();
    buffer_.heap = {text, size};
    place_ = kHeap;
  }
  length_ += n;
  _text()[length_] = 0;
}

void ZmString::_reserve(int n) {
  const long long need = static_cast<long long>(length_) + n + 1;
  if (_size() >= need) return;
  ZmString larger;
  larger.secure_ = secure_;
  larger._start(grown(need));
  std::memcpy(larger._text(), value(), static_cast<std::size_t>(length_) + 1);
  larger.length_ = length_;
  _swap(larger);
}

ZmString& ZmString::operator+=(const char* s) {
  append(s);
  return *this;
}

ZmString& ZmString::operator+=(int value) {
  add(*this, ZmNumberText(value).view());
  return *this;
}

ZmString& ZmString::operator+=(long long value) {
  add(*this, ZmNumberText(value).view());
  return *this;
}

ZmString& ZmString::operator+=(float value) {
  add(*this, ZmNumberText(value).view());
  return *this;
}

// The lengths come first, and then only what a C text would show: of two texts of one length that
// differ behind a zero byte alone, neither is less and both are equal.
unsigned char ZmString::operator==(const ZmString& other) const {
  if (length_ != other.length_) return 0;
  return length_ == 0 || std::strcmp(value(), other.value()) == 0;
}

unsigned char ZmString::compare(const ZmString& other, int mode) const {
  if (length_ != other.length_) return 0;
  if (length_ == 0) return 1;
  if (mode == 0) return std::strcmp(value(), other.value()) == 0;
  return mode == 1 && strcasecmp(value(), other.value()) == 0;
}

unsigned char ZmString::operator<(const ZmString& other) const { return cmp(other) < 0; }

unsigned char ZmString::find(const ZmString& s) const {
  if (s.length_ <= 0) return 1;
  if (length_ < s.length_) return 0;
  // Equality ends at a zero byte: what s has behind its first one must fit, and no more.
  const auto whole = static_cast<std::size_t>(s.length_);
  const std::size_t needle = std::min(std::strlen(s.value()) + 1, whole);
  const std::size_t room = static_cast<std::size_t>(length_) - (whole - needle);
  return memmem(value(), room, s.value(), needle) != nullptr;
}

unsigned char ZmString::haschar(char c) const {
  return length_ > 0 && std::memchr(value(), c, static_cast<std::size_t>(length_)) != nullptr;
}

unsigned char ZmString::hasspace() const { return contains(bytes(*this), kSpace); }
unsigned char ZmString::multiline() const { return contains(bytes(*this), kLineEnd); }

// A lone "-" passes: scalars and command lines take it for a number, which reads as 0.
unsigned char ZmString::isinteger() const {
  ZmTextCursor in(bytes(*this));
  if (in.eof() || !(in.is('-') || kZmDigits.has(in.peek()))) return 0;
  in.take();
  in.skip(kZmDigits);
  return in.eof();
}

// A sign or a point alone passes here too, and reads as 0. An exponent does not: "1e5" is a string
// to expressions.
unsigned char ZmString::isfloat() const {
  constexpr ZmCharSet kFirst("0123456789-+.");
  ZmTextCursor in(bytes(*this));
  if (!kFirst.has(in.peek())) return 0;
  const bool dot = in.take() == ".";
  in.skip(kZmDigits);
  if (!dot && in.accept('.')) in.skip(kZmDigits);
  return in.eof();
}

ZmString ZmString::substr(int start, int end) const {
  const int from = start < 0 ? 0 : start;
  const int to = end < length_ ? end : length_;
  return from < to ? ZmString(value() + from, to - from) : ZmString();
}

ZmString ZmString::tolower() const { return mapped(bytes(*this), lower); }
ZmString ZmString::toupper() const { return mapped(bytes(*this), upper); }

// Bytes above 127 are none of the characters kept, whether char is signed or not.
ZmString ZmString::removecontrolchars() const {
  ZmString result;
  for (const char c : bytes(*this))
    if ((c >= 32 && c <= 126) || c == '\t' || c == '\r' || c == '\n') result.append(c);
  return result;
}

ZmString ZmString::LFtoCRLF() {
  ZmString result;
  char before = 0;
  for (const char c : bytes(*this)) {
    if (c == '\n' && before != '\r') result.append('\r');
    result.append(c);
    before = c;
  }
  return result;
}

// Reads this text only, never the result, so that "a" can be replaced by "aa".
ZmString ZmString::replacevalue(const ZmString& from, const ZmString& to,
                                unsigned char exact) const {
  if (from.length_ < 1) return *this;
  ZmString result;
  ZmTextCursor in(bytes(*this));
  while (!in.eof()) {
    const std::string_view piece = in.rest().substr(0, static_cast<std::size_t>(from.length_));
    const bool match = piece.size() == bytes(from).size() &&
                       (exact ? piece[0] == from.value()[0] &&
                                    std::strncmp(piece.data(), from.value(), piece.size()) == 0
                              : samefolded(piece, bytes(from)));
    if (match) {
      in.take(piece.size());
      result += to;
    } else {
      add(result, in.take());
    }
  }
  return result;
}

// What stands behind a zero byte is not copied, but the array is as long as the text.
char* ZmString::copyvalue() const {
  const auto n = static_cast<std::size_t>(length_);
  auto text = std::make_unique<char[]>(n + 1);  // all zero bytes
  if (n > 0) std::strncpy(text.get(), value(), n);
  return text.release();
}

// The type of the number is not the machine's.
int ZmString::integervalue() const { return static_cast<int>(longlongvalue()); }

long long ZmString::longlongvalue() const {
  return length_ < 1 ? 0 : std::strtoll(value(), nullptr, 10);
}

// Rounded twice, to a double and then to a float, as a caller of atof() does: strtof() rounds once,
// and the last bit may differ.
float ZmString::floatvalue() const {
  return length_ < 1 ? 0.0F : static_cast<float>(::strtod_l(value(), nullptr, zm_plain_locale()));
}

unsigned int ZmString::_hex(int digits) const {
  unsigned int value = 0;
  for (int i = 0; i < digits && i < length_; ++i)
    value = (value << 4) + static_cast<unsigned int>(hexdigit(get(i)));
  return value;
}

unsigned int ZmString::hexvalue() const { return _hex(length_); }
unsigned char ZmString::hexchar() const { return static_cast<unsigned char>(_hex(2)); }

void ZmString::hexvalue(char c) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  append(digits[byte >> 4]);
  append(digits[byte & 15]);
}

void ZmString::integervalue(int value, int width, char pad) {
  const ZmNumberText text(value);
  for (int n = static_cast<int>(text.view().size()); n < width; ++n) append(pad);
  add(*this, text.view());
}

ZmString ZmString::padded_int(int value, int width) {
  const ZmNumberText number(value);
  std::string_view digits = number.view();
  long long missing =
      (width < 0 ? -static_cast<long long>(width) : width) - static_cast<long long>(digits.size());
  ZmString text;
  if (value < 0) {
    text.append('-');
    digits.remove_prefix(1);
  }
  for (; width > 0 && missing > 0; --missing) text.append('0');
  add(text, digits);
  for (; missing > 0; --missing) text.append(' ');  // a negative width is printf's left alignment
  return text;
}

void ZmString::_debug_info() const {
  std::cout << "ZmString:\n\tsize: " << _size() << "\n\tlength: " << length_ << "\n\tdata: '"
            << value() << "'\n";
}

namespace {

// Negative above 127, whatever char is on the machine: the number goes into texts.
int code(char c) { return static_cast<signed char>(c); }

template <class Left, class Right>
ZmString joined(const Left& left, const Right& right) {
  ZmString result(left);
  result += right;
  return result;
}

}  // namespace

// A char joins as its number, unlike with append() and +=: a string "a" + 'b' is "a98".
ZmString operator+(const ZmString& a, const ZmString& b) { return joined(a, b); }
ZmString operator+(const ZmString& a, const char* b) { return joined(a, b); }
ZmString operator+(const char* a, const ZmString& b) { return joined(a, b); }
ZmString operator+(const ZmString& a, char b) { return joined(a, code(b)); }
ZmString operator+(char a, const ZmString& b) { return joined(code(a), b); }
ZmString operator+(int a, const ZmString& b) { return joined(a, b); }
ZmString operator+(const ZmString& a, int b) { return joined(a, b); }
ZmString operator+(float a, const ZmString& b) { return joined(a, b); }
ZmString operator+(const ZmString& a, float b) { return joined(a, b); }

std::ostream& operator<<(std::ostream& out, const ZmString& s) { return out << s.value(); }
