#include "ZmBaseHashTable.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

namespace {

constexpr int kStartSize = 17;
constexpr int kProbes = 33;               // the offsets of further probes have all been tried
constexpr long long kFreeGrowth = 65536;  // slots up to which growth is never refused
constexpr long long kSlotsPerEntry = 32;

// The slot that probe i looks at. Offsets count from the home slot and wrap at 32 bits.
std::uint32_t slot(std::uint32_t hash, int probe, int size) {
  const std::uint32_t offset = probe == 0 ? 0U : 2U << (static_cast<unsigned>(probe) & 31U);
  return (hash + offset) % static_cast<std::uint32_t>(size);
}

// Some bits of the end of a key, where names differ most.
std::uint64_t end_of(std::string_view key) {
  std::uint64_t last = 0;
  if (key.size() >= sizeof last) {
    std::memcpy(&last, key.data() + key.size() - sizeof last, sizeof last);
    return last;
  }
  for (const char c : key) last = last << 8 | static_cast<unsigned char>(c);
  return last;
}

int probes(int size) { return size / 2 < kProbes ? size / 2 : kProbes; }

unsigned char mark_of(std::uint64_t hash) { return static_cast<unsigned char>(hash >> 32); }

}  // namespace

ZmBaseHashSlots::ZmBaseHashSlots(int size, std::uint64_t numbers)
    : size_(size),
      width_(numbers <= 256     ? 1
             : numbers <= 65536 ? 2
                                : 4) {
  bytes_.reset(
      new unsigned char[static_cast<std::size_t>(size) * (1U + static_cast<unsigned>(width_))]);
  clear();
}

unsigned char* ZmBaseHashSlots::place(int at) const {
  return bytes_.get() + size_ + static_cast<std::ptrdiff_t>(at) * width_;
}

std::uint32_t ZmBaseHashSlots::number(int at) const {
  const unsigned char* from = place(at);
  std::uint32_t number = 0;
  for (int i = 0; i < width_; ++i) number = number << 8 | from[i];
  return number;
}

void ZmBaseHashSlots::put(int at, unsigned char mark, std::uint32_t number) {
  bytes_[static_cast<std::size_t>(at)] = mark;
  unsigned char* to = place(at);
  for (int i = width_; i-- > 0; number >>= 8) to[i] = static_cast<unsigned char>(number);
}

bool ZmBaseHashSlots::anyremoved() const {
  return std::memchr(bytes_.get(), kRemoved, static_cast<std::size_t>(size_)) != nullptr;
}

void ZmBaseHashSlots::clear() {
  std::memset(bytes_.get(), kEmpty, static_cast<std::size_t>(size_));
}

ZmBaseHashTable::ZmBaseHashTable() : slots_(kStartSize, 0) {}

ZmBaseHashTable::Hash ZmBaseHashTable::hash(std::string_view key) {
  // The bytes count as signed: those of 128 and above subtract.
  const auto byte = [key](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<signed char>(key[i]));
  };
  std::uint32_t sum = 0;
  std::uint32_t weight = 1;
  bool zero = false;
  std::size_t i = 0;
  for (; i + 4 <= key.size(); i += 4, weight *= 7 * 7 * 7 * 7) {
    sum += weight * (byte(i) + 7 * (byte(i + 1) + 7 * (byte(i + 2) + 7 * byte(i + 3))));
    zero |= byte(i) == 0 || byte(i + 1) == 0 || byte(i + 2) == 0 || byte(i + 3) == 0;
  }
  for (; i < key.size(); ++i, weight *= 7) {
    sum += weight * byte(i);
    zero |= byte(i) == 0;
  }
  return Hash{zero ? static_cast<unsigned char>(ZmBaseHashSlots::kZero) : mark(key)} << 32 | sum;
}

// For keys without a zero byte.
unsigned char ZmBaseHashTable::mark(std::string_view key) {
  const std::uint64_t mixed = end_of(key) * 0x9e3779b97f4a7c15;
  return static_cast<unsigned char>(ZmBaseHashSlots::kMarks +
                                    (mixed >> 56) * (256 - ZmBaseHashSlots::kMarks) / 256);
}

// The text is asked for only where it must be compared.
template <class Text>
ZmBaseHashTable::Spot ZmBaseHashTable::seek(const ZmBaseHashSlots& slots, Hash key_hash,
                                            Text text) const {
  const unsigned char mark = mark_of(key_hash);
  const auto holds = [&](int at) {
    if (slots.mark(at) != mark) return false;
    const Entry& entry = entries_[slots.number(at)];
    if (entry.hash != key_hash && mark != ZmBaseHashSlots::kZero) return false;
    const std::string_view held = zm_view(*entry.key);
    const std::string_view sought = text();
    if (mark != ZmBaseHashSlots::kZero) return held == sought;
    // A zero byte ends a comparison.
    return held.size() == sought.size() &&
           std::strncmp(held.data(), sought.data(), held.size()) == 0;
  };
  Spot spot;
  for (int probe = 0; probe < probes(slots.size()); ++probe) {
    const auto at =
        static_cast<int>(slot(static_cast<std::uint32_t>(key_hash), probe, slots.size()));
    const bool vacant = !slots.occupied(at);
    if (!vacant && !holds(at)) continue;
    // A later slot may hold the same key once one before it was removed. A new entry still goes to
    // the first vacant slot, and is then the one that lookups find.
    if (spot.place < 0) spot.place = at;
    if (!vacant) spot.found = at;
    if (slots.mark(at) != ZmBaseHashSlots::kRemoved) break;
  }
  return spot;
}

ZmBaseHashTable::Spot ZmBaseHashTable::locate(std::string_view key, Hash key_hash) const {
  Spot spot = seek(slots_, key_hash, [key] { return key; });
  spot.known = spot.found >= 0 || (overflow_ && overflow_->contains(key));
  return spot;
}

const ZmBaseHashTable::Entry* ZmBaseHashTable::find(std::string_view key, Hash key_hash) const {
  if (count_ < 1) return nullptr;
  const int at = locate(key, key_hash).found;
  if (at >= 0) return &entries_[slots_.number(at)];
  if (!overflow_) return nullptr;
  const auto beyond = overflow_->find(key);
  return beyond == overflow_->end() ? nullptr : &entries_[beyond->second];
}

void* ZmBaseHashTable::remove(const ZmString& key) {
  if (count_ < 1) return nullptr;
  std::uint32_t number = 0;
  const int at = locate(zm_view(key), hash(zm_view(key))).found;
  if (at >= 0) {
    number = slots_.number(at);
    slots_.remove(at);
  } else {
    if (!overflow_) return nullptr;
    const auto beyond = overflow_->find(zm_view(key));
    if (beyond == overflow_->end()) return nullptr;
    number = beyond->second;
    overflow_->erase(beyond);
    if (overflow_->empty()) overflow_.reset();
  }
  // The argument may be the stored key itself, so it is not used below.
  void* const value = entries_[number].value;
  drop(number);
  --count_;
  return value;
}

// The value is the caller's.
void ZmBaseHashTable::drop(std::uint32_t number) {
  delete std::exchange(entries_[number].key, nullptr);
  --live_;
  while (!entries_.empty() && !entries_.back().key) entries_.pop_back();
}

// Closes the gaps; the numbers then have as many bytes as a quarter more entries need.
void ZmBaseHashTable::renumber() const {
  const auto live = static_cast<std::size_t>(live_);
  ZmBaseHashSlots slots(slots_.size(), live + live / 4 + 1);
  std::vector<std::uint32_t> numbers(entries_.size());
  std::uint32_t next = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i)
    if (entries_[i].key) numbers[i] = next++;
  for (int i = 0; i < slots.size(); ++i)
    slots.put(i, slots_.mark(i), slots_.occupied(i) ? numbers[slots_.number(i)] : 0);
  slots_ = std::move(slots);
  if (overflow_)
    for (auto& [text, number] : *overflow_) number = numbers[number];
  std::erase_if(entries_, [](const Entry& entry) { return !entry.key; });
}

// For one more entry. What renumbering costs is paid by the entries that came or went since.
void ZmBaseHashTable::make_room() {
  const std::size_t used = entries_.size();
  if (used == slots_.numbers() || (used == entries_.capacity() && gaps() > used / 4)) renumber();
  if (entries_.size() < entries_.capacity()) return;
  entries_.reserve(used + std::max<std::size_t>(4, used / 4));
}

// Into a slot, or into the overflow when there is none for it.
void ZmBaseHashTable::add(int at, const Entry& entry) {
  make_room();
  const auto number = static_cast<std::uint32_t>(entries_.size());
  if (at >= 0) {
    slots_.put(at, mark_of(entry.hash), number);
  } else {
    if (!overflow_) overflow_ = std::make_unique<Overflow>();
    overflow_->emplace(zm_view(*entry.key), number);
  }
  entries_.push_back(entry);
  ++live_;
  ++count_;
}

bool ZmBaseHashTable::fill(const Spot& spot, void* value, ZmString* key, Hash key_hash) {
  if (overflow_ || spot.place < 0 || spot.known) return false;
  add(spot.place, {key, value, key_hash});
  return true;
}

bool ZmBaseHashTable::set(void* value, ZmString* key, Hash key_hash, Destroy destroy) {
  const std::string_view text = zm_view(*key);
  const Entry entry{key, value, key_hash};
  if (overflow_) {
    if (const auto beyond = overflow_->find(text); beyond != overflow_->end()) {
      auto node = overflow_->extract(beyond);
      node.key() = text;
      replace(node.mapped(), entry, destroy);
      overflow_->insert(std::move(node));
      return true;
    }
  }
  Spot spot;
  while ((spot = locate(text, key_hash)).place < 0 && resize(destroy)) {
  }
  if (spot.place < 0 || !slots_.occupied(spot.place)) {
    add(spot.place, entry);
  } else {
    const std::uint32_t number = slots_.number(spot.place);
    slots_.put(spot.place, mark_of(key_hash), number);
    replace(number, entry, destroy);
  }
  return true;
}

// By an entry of an equal key.
void ZmBaseHashTable::replace(std::uint32_t number, const Entry& entry, Destroy destroy) {
  const Entry old = std::exchange(entries_[number], entry);
  if (old.value && old.value != entry.value) destroy(old.value);
  if (old.key != entry.key) delete old.key;
}

bool ZmBaseHashTable::refused(long long size) const {
  return size > INT_MAX || (size > kFreeGrowth && size > kSlotsPerEntry * live_);
}

bool ZmBaseHashTable::store(ZmBaseHashSlots& slots, std::uint32_t number,
                            std::vector<std::uint32_t>& replaced) const {
  const Entry& entry = entries_[number];
  const int at = seek(slots, entry.hash, [&entry] { return zm_view(*entry.key); }).place;
  if (at < 0) return false;
  if (slots.occupied(at)) replaced.push_back(slots.number(at));
  slots.put(at, mark_of(entry.hash), number);
  return true;
}

// Puts what stands in the slots into other ones, in slot order; false when an entry finds no place.
// Counts those that found one without replacing another.
bool ZmBaseHashTable::refill(ZmBaseHashSlots& slots, std::vector<std::uint32_t>& replaced,
                             int& count) const {
  for (int i = 0; i < slots_.size(); ++i) {
    if (!slots_.occupied(i)) continue;
    const std::size_t before = replaced.size();
    if (!store(slots, slots_.number(i), replaced)) return false;
    if (replaced.size() == before) ++count;
  }
  return true;
}

bool ZmBaseHashTable::resize(Destroy destroy) {
  if (live_ < patience_) return false;
  std::vector<std::uint32_t> replaced;  // of an attempt; destroyed only once that has succeeded
  int count = 0;                        // of all attempts: those that fail leave their part behind
  int size = slots_.size();
  for (bool filled = false; !filled;) {
    const long long next = size * 4LL + 1 + std::rand() % 100;
    if (refused(next)) {
      if (size != slots_.size()) patience_ = live_ * 2;
      return false;
    }
    size = static_cast<int>(next);
    ZmBaseHashSlots slots(size, slots_.numbers());
    replaced.clear();
    filled = refill(slots, replaced, count);
    if (filled) slots_ = std::move(slots);
  }
  count_ = count;
  empty_overflow(replaced);
  for (const std::uint32_t number : replaced) {
    void* const value = entries_[number].value;
    drop(number);
    if (value) destroy(value);
  }
  return true;
}

// After a growth: what finds a place in the slots moves there.
void ZmBaseHashTable::empty_overflow(std::vector<std::uint32_t>& replaced) {
  if (!overflow_) return;
  for (auto at = overflow_->begin(); at != overflow_->end();) {
    const std::size_t before = replaced.size();
    const bool stored = store(slots_, at->second, replaced);
    at = stored ? overflow_->erase(at) : std::next(at);
    if (replaced.size() == before) ++count_;
  }
  if (overflow_->empty()) overflow_.reset();
}

void ZmBaseHashTable::clear(Destroy destroy) {
  for (const auto& [key, value, hash] : entries_) {
    if (key && value && destroy) destroy(value);
    delete key;
  }
  entries_.clear();
  slots_.clear();
  overflow_.reset();
  count_ = 0;
  live_ = 0;
  patience_ = 0;
}

void ZmBaseHashTable::copy(const ZmBaseHashTable& other, void* (*copy_value)(const void*)) {
  if (other.gaps()) other.renumber();
  // Every entry keeps its slot. A removed slot becomes an empty one, so what was placed beyond it
  // is listed and no longer found.
  slots_ = ZmBaseHashSlots(other.slots_.size(), other.slots_.numbers());
  entries_.reserve(other.entries_.size());
  for (const auto& [key, value, hash] : other.entries_) {
    std::unique_ptr<ZmString> made(ZmString::_exact(*key));
    entries_.push_back({made.get(), copy_value(value), hash});
    static_cast<void>(made.release());
  }
  for (int i = 0; i < slots_.size(); ++i)
    if (other.slots_.occupied(i)) slots_.put(i, other.slots_.mark(i), other.slots_.number(i));
  if (other.overflow_) overflow_ = std::make_unique<Overflow>();
  if (other.overflow_)
    for (const auto& [text, number] : *other.overflow_)
      overflow_->emplace(zm_view(*entries_[number].key), number);
  count_ = other.count_;
  live_ = other.live_;
  patience_ = other.patience_;
}
