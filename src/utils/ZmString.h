#ifndef ZM_STRING_H
#define ZM_STRING_H

/// @file
/// ZmString, its concatenation and its output.

#include <cstring>
#include <iosfwd>

#include "ZmBase.h"

/// The one text type: a mutable byte string with a terminating zero.
///
/// A string is *undefined* until it is first given a buffer; it then reads as "" and equals every
/// empty string. Length and capacity are signed 32-bit and count bytes. Growth asks for four times
/// the bytes needed (text and terminator), never fewer than 16; the capacity stops at the largest
/// 32-bit value, and a text that would need more fails as an allocation failure does
/// (std::bad_alloc). A copy or an assignment that fails so leaves the string empty, an appending
/// operation leaves it as it was. A buffer of 16 bytes stands in the string itself, a larger one on
/// the heap. A `secure` string overwrites every buffer it gives up with zero bytes.
///
/// Zero bytes may stand inside a text and are counted by length(). cmp() and the readers of decimal
/// numbers stop at the first one; texts are equal when they are so up to there, and of one length.
/// Every operation also accepts the string itself, or a piece of its own text, as its argument. One
/// thread at a time.
class ZM_EXPORT ZmString : public ZmBase {
 public:
  /// @name Construction
  /// @{
  ZmString() = default;              ///< Undefined.
  ZmString(const char* s, int n);    ///< copy(s, n).
  ZmString(const char* s);           ///< copy(s).
  ZmString(const ZmString& other);   ///< copy(other): the `secure` flag is copied too.
  ZmString(int value);               ///< The text of "%d".
  ZmString(long long value);         ///< The decimal text.
  ZmString(float value);             ///< The text of "%f", with a "." in every locale.
  ~ZmString() override { _drop(); }  ///< Slot 0. Releases the buffer, wiped when `secure`.
  /// @}

  /// Slot 1. The type code, 72.
  virtual int type() const;
  /// Slot 2. Takes over the `secure` flag, then the text; an empty other clears this string.
  virtual void copy(const ZmString& other);

  /// @name Copying and assignment
  /// @{

  /// Takes n bytes, zero bytes included; n <= 0 clears. A null s, or this string's own buffer, is
  /// ignored.
  void copy(const char* s, int n);
  /// Takes the text up to its zero byte; "" makes an undefined string defined and empty. A null
  /// s, or this string's own buffer, is ignored.
  void copy(const char* s);
  void copy(int value);    ///< clear(), then += value.
  void copy(float value);  ///< clear(), then += value.
  /// copy(value). Takes a char for its code and cuts a float down to its integer: `s = 'a'` is "97"
  /// and `s = 1.5F` is "1"; copy(float) and append(char) are what one mostly means.
  ZmString& operator=(int value) {
    copy(value);
    return *this;
  }
  /// copy(s).
  ZmString& operator=(const char* s) {
    copy(s);
    return *this;
  }
  /// The virtual copy(other): the other's `secure` flag replaces this one's, and a secret that is
  /// kept in its buffer is no longer wiped. The assignments above leave the flag as it is.
  ZmString& operator=(const ZmString& other) {
    if (this != &other) copy(other);
    return *this;
  }
  /// The virtual copy(*other); null is ignored.
  ZmString& operator=(ZmString* other) {
    if (other) copy(*other);
    return *this;
  }
  /// Makes a defined string empty and keeps its buffer, unwiped; an undefined one stays undefined.
  void clear() {
    length_ = 0;
    *_text() = 0;
  }
  /// @}

  /// @name Access
  /// @{

  /// The text with its terminating zero, lent until the next change; "" when undefined, never null.
  const char* value() const { return place_ == kHeap ? buffer_.heap.text : buffer_.inside; }
  unsigned char isundef() const { return place_ == kNowhere; }  ///< 1 when there is no buffer.
  int length() const { return length_; }                        ///< Bytes in use.
  /// The byte at position i (from 0); 0 outside the text.
  char get(int i) const { return i >= 0 && i < length_ ? value()[i] : '\0'; }
  /// Stores c at position i when that is inside the text; returns c in any case.
  char set(int i, char c) {
    if (i >= 0 && i < length_) _text()[i] = c;
    return c;
  }
  unsigned char secure() const { return secure_; }         ///< The flag.
  void secure(unsigned char secure) { secure_ = secure; }  ///< Sets the flag.
  /// Overwrites the whole buffer with zero bytes; the length stays.
  void wipe() const;
  /// The one allocation point: replaces the buffer by one of max(n, 16) bytes, wiping the old one
  /// when `secure`. The text is lost: the string is then empty.
  void _resize(int n);
  /// copy(s, n) without room to grow, should it need another buffer.
  void _fit(const char* s, int n);
  /// copy(other) likewise.
  void _fit(const ZmString& other) {
    secure_ = other.secure_;
    _fit(other.value(), other.length_);
  }
  /// Lets read(to, room) write up to `room` bytes, at least one, behind the text, which grows by
  /// the number that it gives when that is above 0. Gives that number.
  template <class Read>
  auto _fill(Read read) {
    _reserve(1);
    const auto n = read(_text() + length_, static_cast<std::size_t>(_size() - 1 - length_));
    if (n > 0) length_ += static_cast<int>(n);
    _text()[length_] = 0;
    return n;
  }
  /// The two change places, flags and buffers included. Takes no memory.
  void _swap(ZmString& other) noexcept;
  /// A new string of n bytes, without room to grow; undefined when n <= 0. The caller owns it.
  static ZmString* _exact(const char* s, int n);
  /// A copy likewise.
  static ZmString* _exact(const ZmString& other);
  /// @}

  /// @name Appending
  /// @{

  /// One byte, zero included.
  void append(char c) {
    if (length_ < _size() - 1) {
      char* const end = _text() + length_++;
      end[0] = c;
      end[1] = 0;
    } else {
      _append(&c, 1);
    }
  }
  void append(const char* s, int n);  ///< n bytes; nothing when s is null or n <= 0.
  void append(const char* s);         ///< Up to the zero byte; nothing when s is null or "".
  /// append(c).
  ZmString& operator+=(char c) {
    append(c);
    return *this;
  }
  ZmString& operator+=(const char* s);  ///< append(s).
  /// Its text; nothing when it is empty.
  ZmString& operator+=(const ZmString& other) {
    if (other.length_ > 0) append(other.value(), other.length_);
    return *this;
  }
  /// Its text; nothing when null.
  ZmString& operator+=(ZmString* other) {
    if (other) *this += *other;
    return *this;
  }
  ZmString& operator+=(int value);        ///< The text of "%d".
  ZmString& operator+=(long long value);  ///< The decimal text.
  /// The text of "%f": always six decimals, with a "." in every locale.
  ZmString& operator+=(float value);
  /// @}

  /// @name Comparison
  /// Byte order of the texts, case-sensitive; empty and undefined strings are equal and come first.
  /// @{

  /// Equal.
  unsigned char operator==(const ZmString& other) const;
  /// Not equal.
  unsigned char operator!=(const ZmString& other) const { return !(*this == other); }
  /// Equality: mode 0 case-sensitive, mode 1 case-insensitive. Empty strings are equal in every
  /// mode; other texts are different in any other mode.
  unsigned char compare(const ZmString& other, int mode) const;
  /// Three-way, for sorting: negative, 0 or positive.
  int cmp(const ZmString& other) const {
    if (length_ <= 0) return other.length_ <= 0 ? 0 : -1;
    return other.length_ <= 0 ? 1 : std::strcmp(value(), other.value());
  }
  /// Less.
  unsigned char operator<(const ZmString& other) const;
  /// Greater.
  unsigned char operator>(const ZmString& other) const {
    return !(*this < other) && !(*this == other);
  }
  /// Less or equal.
  unsigned char operator<=(const ZmString& other) const { return *this < other || *this == other; }
  /// Greater or equal.
  unsigned char operator>=(const ZmString& other) const { return !(*this < other); }
  /// @}

  /// @name Searching and predicates
  /// All but find() are 0 for an empty string.
  /// @{
  unsigned char find(const ZmString& s) const;  ///< Whether s occurs; 1 for an empty s.
  unsigned char haschar(char c) const;          ///< Any byte equal to c.
  unsigned char hasspace() const;               ///< Any LF, space, TAB or CR.
  unsigned char multiline() const;              ///< Any LF or CR.
  /// A digit or "-" first, then digits only. A lone "-" passes.
  unsigned char isinteger() const;
  /// A digit or one of "-", "+", "." first, then digits and at most one "." overall. A lone sign or
  /// "." passes; exponents don't.
  unsigned char isfloat() const;
  /// @}

  /// @name New strings made from this one
  /// A result to which nothing was appended is undefined.
  /// @{

  /// The bytes from position start up to, not including, position end.
  ZmString substr(int start, int end) const;
  ZmString tolower() const;  ///< In the current locale.
  ZmString toupper() const;  ///< In the current locale.
  /// Keeps bytes 32 to 126, TAB, CR and LF only.
  ZmString removecontrolchars() const;
  /// Inserts a CR before every LF that has none.
  ZmString LFtoCRLF();
  /// Replaces every non-overlapping `from`, left to right, by `to`; inserted text is not read
  /// again. Case counts when `exact` is not 0. An empty `from` gives a copy.
  ZmString replacevalue(const ZmString& from, const ZmString& to, unsigned char exact) const;
  /// The text with its terminating zero in a new array, which the caller releases with delete[].
  char* copyvalue() const;
  /// @}

  /// @name Reading numbers
  /// An empty string reads as 0.
  /// @{
  int integervalue() const;         ///< longlongvalue() modulo 2^32, as atoi on most machines.
  long long longlongvalue() const;  ///< As strtoll in base 10.
  float floatvalue() const;         ///< As atof in the "C" locale, narrowed.
  /// Every byte shifts by four bits; hexadecimal digits add their value, other bytes add 0. Wraps.
  unsigned int hexvalue() const;
  unsigned char hexchar() const;  ///< hexvalue() of at most the first two bytes.
  /// @}

  /// @name Writing numbers
  /// @{
  void hexvalue(char c);  ///< Appends two upper-case hexadecimal digits.
  /// Appends padded_int(value, width).
  void integervalue(int value, int width) { *this += padded_int(value, width); }
  /// Appends the number padded on the left with `pad`, which goes in front of the sign.
  void integervalue(int value, int width, char pad);
  /// The number padded with zeros to `width`, the sign first: -5 in 4 is "-005". A negative width
  /// pads with blanks on the right.
  static ZmString padded_int(int value, int width);
  void floatvalue(float value) { copy(value); }  ///< Replaces the text by that of "%f".
  /// @}

  /// Prints capacity, length and text on standard output.
  void _debug_info() const;

 private:
  static constexpr int kFloor = 16;  // bytes of the smallest buffer
  enum Place : unsigned char { kNowhere, kInside, kHeap };
  struct Heap {
    char* text;
    int size;
  };

  char* _text() const { return place_ == kHeap ? buffer_.heap.text : buffer_.inside; }
  int _size() const { return place_ == kHeap ? buffer_.heap.size : place_ * kFloor; }
  char* _start(int size);
  void _start(const char* s, int n, int size);
  void _drop() noexcept {
    if (place_ == kHeap || secure_) _release();
  }
  void _release() noexcept;
  void _append(const char* s, int n);  // n > 0
  void _reserve(int n);                // room for n more bytes, by growth
  unsigned int _hex(int digits) const;

  union Buffer {
    char inside[kFloor] = {};
    Heap heap;
  };
  // The text, with a zero byte at length_; when undefined too, since value() is then "".
  mutable Buffer buffer_{};  // wipe() is const
  int length_ = 0;
  Place place_ = kNowhere;  // where the buffer is
  unsigned char secure_ = 0;
};

/// @name Concatenation
/// Each gives a new string: a copy of the left operand (its `secure` flag included), then the
/// right.
/// @{
ZM_EXPORT ZmString operator+(const ZmString& a, const ZmString& b);  ///< a, then b.
ZM_EXPORT ZmString operator+(const ZmString& a, const char* b);      ///< a, then b.
ZM_EXPORT ZmString operator+(const char* a, const ZmString& b);      ///< a, then b.
/// The character's decimal code is appended, not the character; callers rely on it. Bytes of 128
/// and above are negative on every machine.
ZM_EXPORT ZmString operator+(const ZmString& a, char b);
/// The character's decimal code stands first.
ZM_EXPORT ZmString operator+(char a, const ZmString& b);
ZM_EXPORT ZmString operator+(int a, const ZmString& b);    ///< The decimal text of a, then b.
ZM_EXPORT ZmString operator+(const ZmString& a, int b);    ///< a, then the decimal text of b.
ZM_EXPORT ZmString operator+(float a, const ZmString& b);  ///< The text of "%f" for a, then b.
ZM_EXPORT ZmString operator+(const ZmString& a, float b);  ///< a, then the text of "%f" for b.
/// @}

/// Writes value().
ZM_EXPORT std::ostream& operator<<(std::ostream& out, const ZmString& s);

#endif
