#include "ZmPack.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <utility>

#include "ZmFileReader.h"
#include "ZmPackBigEndian.h"

namespace {

constexpr int kVersion = 1;
constexpr int kHeader = 4;      // bytes: tag and type code
constexpr int kDeepest = 1000;  // packs within packs that are read, so that the stack holds

enum Code { kInt = 1, kChar, kText, kNested, kFloat, kByte, kLong };

}  // namespace

// What was packed is no part of the value: assigning takes none over and drops what is held here,
// which tells of the value before.
ZmPack& ZmPack::operator=(const ZmPack& other) {
  if (this != &other) _clear();
  return *this;
}

// Made when first needed: most objects are never packed, and then pay for one pointer.
ZmPack::State& ZmPack::_state() {
  if (!state_) state_.reset(new State);
  return *state_;
}

// All levels write into one buffer and read from one place, so a record costs no copy however deep
// it nests. In between the object around has no state of its own.
ZmPack::Loan::Loan(ZmPack& from, ZmPack& to) : from_(from), to_(to) {
  to_.state_ = std::move(from_.state_);
  ++to_.state_->depth;
}

// The object may have dropped what it was lent.
ZmPack::Loan::~Loan() {
  from_.state_ = std::move(to_.state_);
  if (from_.state_ && from_.state_->depth > 0) --from_.state_->depth;
}

void ZmPack::_restoreItem(ZmPackObj& item, ZmPack& value) {
  const Loan loan(*this, value);
  value._decodeXML(item);
}

// The element around is at hand again afterwards, for the members that follow.
void ZmPack::_decodeXML(ZmPackObj& element) {
  const Place outside = std::exchange(_state().at, {});
  state_->at.element = &element;
  decodeXML();
  _state().at = outside;
}

// --- writing ---

// Lent until more is asked for: the buffer may move then.
unsigned char* ZmPack::_room(long long n) {
  const long long need = _state().used + n;
  if (need > state_->capacity) _grow(need);
  unsigned char* at = state_->buffer + state_->used;
  state_->used = static_cast<int>(need);
  return at;
}

// Records have signed 32-bit lengths, so a longer one could not be read.
// Four times the need keeps writing field by field linear in the whole.
void ZmPack::_grow(long long need) {
  if (need > INT_MAX) throw std::bad_alloc();
  State& to = *state_;
  const int capacity = need > (INT_MAX - 16) / 4 ? INT_MAX : static_cast<int>(need * 4 + 16);
  auto* const buffer = new unsigned char[static_cast<std::size_t>(capacity)];
  if (to.used > 0) std::memcpy(buffer, to.buffer, static_cast<std::size_t>(to.used));
  delete[] to.buffer;
  to.buffer = buffer;
  to.capacity = capacity;
}

void ZmPack::_store(const void* bytes, int n) {
  if (bytes && n > 0) std::memcpy(_room(n), bytes, static_cast<std::size_t>(n));
}

// A tag has 16 bits in the record; of a larger one these are what is left.
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

// Null is stored as "", so that the field is there in any case.
void ZmPack::store(int tag, const char* value) {
  const std::size_t n = value ? std::strlen(value) : 0;
  if (n > INT_MAX) throw std::bad_alloc();
  zm_put_big_endian(_field(tag, kText, 4), static_cast<int>(n));
  _store(value, static_cast<int>(n));
}

void ZmPack::store(int tag, ZmPack& value) {
  if (&value == this) return;
  // The length is not known yet; its place is filled in when the fields are there.
  zm_put_big_endian(_field(tag, kNested, 8), value.type());
  const int from = state_->used;
  {
    const Loan loan(*this, value);
    value.encode();
  }
  if (_state().used < from || !state_->buffer) return;  // it has dropped what was written
  zm_put_big_endian(state_->buffer + from - 4, state_->used - from);
}

void ZmPack::_debug_print() const {
  constexpr int kLine = 16;  // bytes of a line
  std::cout << "ZmPack:\n\tsize: " << (state_ ? state_->capacity : 0)
            << "\n\tlength: " << packSize() << "\n\tdata:";
  for (int i = 0; i < packSize(); ++i) {
    ZmString byte(i % kLine == 0 ? "\n\t\t" : " ");
    byte.hexvalue(packContents()[i]);
    std::cout << byte;
  }
  std::cout << '\n';
}

void ZmPack::pack() {
  Unfinished record{*this};
  _state().used = 0;  // the room of the record before serves again
  zm_put_big_endian(_room(4), kVersion);
  encode();
  record.finished = true;
}

int ZmPack::archive(const ZmString& path) {
  // First: where nothing can be written, nothing has to be packed.
  ZmOpenFile file(std::fopen(path.value(), "wb"));
  if (!file) return 0;
  std::setvbuf(file.get(), nullptr, _IONBF, 0);  // what is written has then left the stream
  pack();
  const auto used = static_cast<std::size_t>(packSize());
  const std::size_t size = std::fwrite(packContents(), 1, used, file.get());
  _clear();
  return std::fclose(file.release()) == 0 ? static_cast<int>(size) : 0;
}

// --- reading ---

int ZmPack::unpack(const char* data, int length) {
  if (!data || length < 4) return 1;
  // The record may stand in this object's own buffer, which therefore lives until it is read.
  const ZmOwned<State> own = std::move(state_);
  const auto* bytes = reinterpret_cast<const unsigned char*>(data);
  if (zm_get_big_endian<int>(bytes) != kVersion) return 3;  // a lone one too
  if (length == 4) return 2;
  const Unfinished reading{*this};
  _state().at = {bytes + 4, length - 4};
  _fields();
  return 0;
}

int ZmPack::recover(const ZmString& path) {
  ZmString data;
  if (!zm_read_file(path, data)) return 0;
  return unpack(data.value(), data.length()) == 0 ? data.length() : 0;
}

// Whatever decode() leaves alone is skipped, which is how old programs read new records.
void ZmPack::_fields() {
  while (_next()) {
    decode();
    _yank();
  }
}

// A rest that is no whole header ends the record as a payload that is cut short does.
bool ZmPack::_next() {
  if (!state_ || state_->at.left < kHeader) return false;
  const unsigned char* header = _bytes(kHeader);
  state_->at.tag = zm_get_big_endian<std::int16_t>(header);
  state_->at.code = zm_get_big_endian<std::uint16_t>(header + 2);
  state_->at.consumed = false;
  return true;
}

// A payload that is cut short takes the rest with it: nothing behind it can be told apart.
const unsigned char* ZmPack::_bytes(int n) {
  Place& at = state_->at;
  const unsigned char* bytes = n >= 0 && n <= at.left ? at.cursor : nullptr;
  const int taken = bytes ? n : at.left;
  at.cursor += taken;
  at.left -= taken;
  return bytes;
}

// A field is taken once: a second restore() of its tag in the same decode() finds nothing.
template <class T>
bool ZmPack::_take(int tag, int code, T& value) {
  if (!state_ || _consumed() || _tag() != tag || _code() != code) return false;
  const unsigned char* bytes = _bytes(sizeof(T));
  if (!bytes) return false;
  value = zm_get_big_endian<T>(bytes);
  state_->at.consumed = true;
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

// The length is read as an int field of its own would be, then the bytes.
// A field whose payload turns out to be short does not count as taken.
void ZmPack::restore(int tag, ZmString& value) {
  int length = 0;
  if (!_take(tag, kText, length)) return;
  const unsigned char* bytes = _bytes(length);
  state_->at.consumed = bytes != nullptr;
  if (!bytes) return;
  const auto* text = reinterpret_cast<const char*>(bytes);
  if (value.isundef()) return value._fit(text, length);  // mostly to stay as it is
  value.copy(text, length);
}

void ZmPack::restore(int tag, ZmPack& value) {
  int type = 0;
  if (&value == this || !_take(tag, kNested, type)) return;
  // A type that nobody expects here ends the record: its length can't be trusted either.
  const bool fits = type == value.type() && state_->depth < kDeepest;
  const unsigned char* size = fits ? _bytes(4) : nullptr;
  const int length = size ? zm_get_big_endian<int>(size) : -1;
  const unsigned char* fields = _bytes(length);
  state_->at.consumed = fields != nullptr;
  if (!fields) return;
  // What follows is found by the length alone: the nested object may stop at a field that can't be
  // skipped.
  const Place behind = std::exchange(state_->at, {fields, length});
  {
    const Loan loan(*this, value);
    value._fields();
  }
  _state().at = behind;
}

// Looks ahead without taking anything: a container is emptied for a record only if that is sound.
bool ZmPack::_offers(int tag, const ZmPack& value) const {
  if (_consumed() || _tag() != tag || _code() != kNested) return false;
  const Place& at = state_->at;
  if (at.left < 8 || state_->depth >= kDeepest) return false;
  const int length = zm_get_big_endian<int>(at.cursor + 4);
  return zm_get_big_endian<int>(at.cursor) == value.type() && length >= 0 && length <= at.left - 8;
}

// Of any type: the length is all that it takes to get past it.
void ZmPack::trashObj(int tag) {
  int type = 0;
  if (!_take(tag, kNested, type)) return;
  const unsigned char* size = _bytes(4);
  _bytes(size ? zm_get_big_endian<int>(size) : -1);
}

void ZmPack::_yank() {
  if (!state_ || _consumed()) return;
  switch (_code()) {
    case kInt:
    case kFloat:
      state_->at.consumed = _bytes(4) != nullptr;
      break;
    case kNested:
      trashObj(_tag());
      break;
    case kText: {
      int length = 0;
      if (_take(_tag(), kText, length)) _bytes(length);
      break;
    }
    case kChar:
    case kByte:
      state_->at.consumed = _bytes(1) != nullptr;
      break;
    default:  // a 64-bit field that nobody took ends the record: readers rely on it
      _bytes(state_->at.left);
  }
}
