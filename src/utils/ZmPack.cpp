#include "ZmPack.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <utility>

#include "ZmBigEndian.h"
#include "ZmFileReader.h"

namespace {

constexpr int kVersion = 1;
constexpr int kHeader = 4;      // bytes: tag and type code
constexpr int kDeepest = 1000;  // packs within packs that are read, so that the stack holds

enum Code { kInt = 1, kChar, kText, kNested, kFloat, kByte, kLong };

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

ZmPack& ZmPack::operator=(const ZmPack& other) {
  if (this != &other) _clear();
  return *this;
}

void ZmPack::_clear() noexcept {
  delete[] buffer_;
  buffer_ = nullptr;
  cursor_ = nullptr;
  used_ = 0;
  capacity_ = 0;
}

// --- writing ---

unsigned char* ZmPack::_room(long long n) {
  const long long need = used_ + n;
  if (need > capacity_) _grow(need);
  unsigned char* at = buffer_ + used_;
  used_ = static_cast<int>(need);
  return at;
}

void ZmPack::_grow(long long need) {
  if (need > INT_MAX) throw std::bad_alloc();
  const int capacity = need > (INT_MAX - 16) / 4 ? INT_MAX : static_cast<int>(need * 4 + 16);
  auto* buffer = new unsigned char[static_cast<std::size_t>(capacity)];
  if (used_ > 0) std::memcpy(buffer, buffer_, static_cast<std::size_t>(used_));
  delete[] buffer_;
  buffer_ = buffer;
  capacity_ = capacity;
}

void ZmPack::_store(const void* bytes, int n) {
  if (bytes && n > 0) std::memcpy(_room(n), bytes, static_cast<std::size_t>(n));
}

unsigned char* ZmPack::_field(int tag, int code, long long payload) {
  unsigned char* at = _room(kHeader + payload);
  zm_put_big_endian(at, static_cast<std::int16_t>(tag));
  zm_put_big_endian(at + 2, static_cast<std::int16_t>(code));
  return at + kHeader;
}

template <class T>
void ZmPack::_number(int tag, int code, T value) {
  zm_put_big_endian(_field(tag, code, sizeof(T)), value);
}

void ZmPack::store(int tag, int value) { _number(tag, kInt, value); }
void ZmPack::store(int tag, char value) { _number(tag, kChar, value); }
void ZmPack::store(int tag, unsigned char value) { _number(tag, kByte, value); }
void ZmPack::store(int tag, long long value) { _number(tag, kLong, value); }
void ZmPack::store(int tag, float value) {
  _number(tag, kFloat, std::bit_cast<std::int32_t>(value));
}

void ZmPack::store(int tag, const ZmString& value) {
  const int n = value.length();
  unsigned char* at = _field(tag, kText, 4LL + n);
  zm_put_big_endian(at, n);
  std::memcpy(at + 4, value.value(), static_cast<std::size_t>(n));
}

void ZmPack::store(int tag, const char* value) {
  const std::size_t n = value ? std::strlen(value) : 0;
  if (n > INT_MAX) throw std::bad_alloc();
  zm_put_big_endian(_field(tag, kText, 4), static_cast<int>(n));
  _store(value, static_cast<int>(n));
}

void ZmPack::_swap(ZmPack& other) noexcept {
  std::swap(other.buffer_, buffer_);
  std::swap(other.used_, used_);
  std::swap(other.capacity_, capacity_);
}

void ZmPack::store(int tag, ZmPack& value) {
  if (&value == this) return;
  unsigned char* head = _field(tag, kNested, 8);
  zm_put_big_endian(head, value.type());
  const int from = used_;
  // The nested object writes straight into this buffer, lent to it meanwhile.
  value._clear();
  _swap(value);
  value.encode();
  _swap(value);
  zm_put_big_endian(buffer_ + from - 4, used_ - from);
}

void ZmPack::_debug_print() const {
  constexpr int kLine = 16;  // bytes of a line
  std::cout << "ZmPack:\n\tsize: " << capacity_ << "\n\tlength: " << used_ << "\n\tdata:";
  for (int i = 0; buffer_ && i < used_; ++i) {
    ZmString byte(i % kLine == 0 ? "\n\t\t" : " ");
    byte.hexvalue(static_cast<char>(buffer_[i]));
    std::cout << byte;
  }
  std::cout << '\n';
}

void ZmPack::pack() {
  used_ = 0;  // the room of the record before serves again
  zm_put_big_endian(_room(4), kVersion);
  encode();
}

int ZmPack::archive(const ZmString& path) {
  std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.value(), "wb"));
  if (!file) return 0;
  pack();
  const std::size_t size = std::fwrite(buffer_, 1, static_cast<std::size_t>(used_), file.get());
  _clear();
  // What a full disk has no room for may show only when the last bytes leave the stream.
  return std::fclose(file.release()) == 0 ? static_cast<int>(size) : 0;
}

// --- reading ---

int ZmPack::unpack(const char* data, int length) {
  if (!data || length < 4) return 1;
  // The record may stand in this object's own buffer, which therefore lives until it is read.
  const std::unique_ptr<unsigned char[]> own(std::exchange(buffer_, nullptr));
  _clear();
  const auto* bytes = reinterpret_cast<const unsigned char*>(data);
  if (zm_get_big_endian<int>(bytes) != kVersion) return 3;
  if (length == 4) return 2;
  cursor_ = bytes + 4;
  used_ = length - 4;
  depth_ = 0;
  _fields();
  return 0;
}

int ZmPack::recover(const ZmString& path) {
  ZmString data;
  if (!zm_read_file(path, data)) return 0;
  return unpack(data.value(), data.length()) == 0 ? data.length() : 0;
}

void ZmPack::_fields() {
  while (_next()) {
    decode();
    _yank();
  }
  cursor_ = nullptr;
  used_ = 0;
  code_ = 0;  // no field is left that restore() could take
}

bool ZmPack::_next() {
  if (used_ < kHeader) return false;
  const unsigned char* header = _bytes(kHeader);
  tag_ = zm_get_big_endian<std::int16_t>(header);
  code_ = zm_get_big_endian<std::uint16_t>(header + 2);
  consumed_ = 0;
  return true;
}

const unsigned char* ZmPack::_bytes(int n) {
  const unsigned char* bytes = n >= 0 && n <= used_ ? cursor_ : nullptr;
  const int taken = bytes ? n : used_;
  cursor_ += taken;
  used_ -= taken;
  return bytes;
}

template <class T>
bool ZmPack::_take(int tag, int code, T& value) {
  if (consumed_ || tag_ != tag || code_ != code) return false;
  const unsigned char* bytes = _bytes(sizeof(T));
  if (!bytes) return false;
  value = zm_get_big_endian<T>(bytes);
  consumed_ = 1;
  return true;
}

void ZmPack::restore(int tag, int& value) { _take(tag, kInt, value); }
void ZmPack::restore(int tag, char& value) { _take(tag, kChar, value); }
void ZmPack::restore(int tag, unsigned char& value) { _take(tag, kByte, value); }
void ZmPack::restore(int tag, long long& value) { _take(tag, kLong, value); }

void ZmPack::restore(int tag, float& value) {
  std::int32_t bits = 0;
  if (_take(tag, kFloat, bits)) value = std::bit_cast<float>(bits);
}

// A field whose payload turns out to be short does not count as taken.
void ZmPack::restore(int tag, ZmString& value) {
  int length = 0;
  if (!_take(tag, kText, length)) return;
  const unsigned char* bytes = _bytes(length);
  consumed_ = bytes != nullptr;
  if (!bytes) return;
  if (value.isundef() && length > 0) value._resize(length + 1);  // no room to grow
  value.copy(reinterpret_cast<const char*>(bytes), length);
}

void ZmPack::restore(int tag, ZmPack& value) {
  int type = 0;
  if (&value == this || !_take(tag, kNested, type)) return;
  const bool fits = type == value.type() && depth_ < kDeepest;
  const unsigned char* size = fits ? _bytes(4) : nullptr;
  const int length = size ? zm_get_big_endian<int>(size) : -1;
  const unsigned char* fields = _bytes(length);
  consumed_ = fields != nullptr;
  if (!fields) return;
  value._clear();
  value.cursor_ = fields;
  value.used_ = length;
  value.depth_ = static_cast<short>(depth_ + 1);
  value._fields();
  value.depth_ = 0;
}

bool ZmPack::_offers(int tag, const ZmPack& value) const {
  if (consumed_ || tag_ != tag || code_ != kNested || used_ < 8 || depth_ >= kDeepest) return false;
  const int length = zm_get_big_endian<int>(cursor_ + 4);
  return zm_get_big_endian<int>(cursor_) == value.type() && length >= 0 && length <= used_ - 8;
}

void ZmPack::trashObj(int tag) {
  int type = 0;
  if (!_take(tag, kNested, type)) return;
  const unsigned char* size = _bytes(4);
  _bytes(size ? zm_get_big_endian<int>(size) : -1);
}

void ZmPack::_yank() {
  if (consumed_) return;
  switch (code_) {
    case kInt:
    case kFloat:
      consumed_ = _bytes(4) != nullptr;
      break;
    case kNested:
      trashObj(tag_);
      break;
    case kText: {
      int length = 0;
      if (_take(tag_, kText, length)) _bytes(length);
      break;
    }
    case kChar:
    case kByte:
      consumed_ = _bytes(1) != nullptr;
      break;
    default:  // a 64-bit field that nobody took ends the record: readers rely on it
      _bytes(used_);
  }
}
