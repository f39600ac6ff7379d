#include "ZmBaseHashTable.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

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

// Ordered, so that keys made to collide cost a logarithm each. The keys lend their texts.
struct ZmBaseHashTable::Overflow : std::map<std::string_view, std::uint32_t> {};

struct ZmBaseHashTable::Growth {
  ZmBaseHashSlots slots;
  int count = 0;                          // entries in them
  std::vector<std::uint32_t> replaced{};  // those that had to give way to a later one of their key
};

ZmBaseHashSlots::ZmBaseHashSlots(int size, std::uint64_t numbers)
    : size_(size),
      width_(numbers <= 256     ? 1
             : numbers <= 65536 ? 2
                                : 4) {
  bytes_ = new unsigned char[static_cast<std::size_t>(size) * (1U + static_cast<unsigned>(width_))];
  clear();
}

void ZmBaseHashSlots::trade(ZmBaseHashSlots& other) {
  std::swap(bytes_, other.bytes_);
  std::swap(size_, other.size_);
  std::swap(width_, other.width_);
}

unsigned char* ZmBaseHashSlots::place(int at) const {
  return bytes_ + size_ + static_cast<std::ptrdiff_t>(at) * width_;
}

std::uint32_t ZmBaseHashSlots::number(int at) const {
  const unsigned char* from = place(at);
  std::uint32_t number = 0;
  for (int i = 0; i < width_; ++i) number = number << 8 | from[i];
  return number;
}

void ZmBaseHashSlots::put(int at, unsigned char mark, std::uint32_t number) {
  bytes_[at] = mark;
  unsigned char* to = place(at);
  for (int i = width_; i-- > 0; number >>= 8) to[i] = static_cast<unsigned char>(number);
}

bool ZmBaseHashSlots::anyremoved() const {
  return std::memchr(bytes_, kRemoved, static_cast<std::size_t>(size_)) != nullptr;
}

void ZmBaseHashSlots::clear() { std::memset(bytes_, kEmpty, static_cast<std::size_t>(size_)); }

ZmBaseHashTable::ZmBaseHashTable() : slots_(kStartSize, 0) {}

ZmBaseHashTable::~ZmBaseHashTable() { delete[] entries_; }

ZmBaseHashTable::Hash ZmBaseHashTable::hash(std::string_view key) {
  // The bytes count as signed: those of 128 and above subtract.
  const auto byte = [key](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<signed char>(key[i]));
  };
  std::uint32_t sum = 0;
  std::uint32_t weight = 1;
  bool zero = false;
  std::size_t i = 0;
  // Four bytes a turn: byte by byte, each power of 7 would have to wait for the one before.
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
// By the golden ratio (Knuth, The Art of Computer Programming, section 6.4): the top bits of the
// product depend on every byte.
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
  int found = kNowhere;
  int place = kNowhere;
  for (int probe = 0; probe < probes(slots.size()); ++probe) {
    const auto at =
        static_cast<int>(slot(static_cast<std::uint32_t>(key_hash), probe, slots.size()));
    const bool vacant = !slots.occupied(at);
    if (!vacant && !holds(at)) continue;
    // A later slot may hold the same key once one before it was removed. A new entry still goes to
    // the first vacant slot, and is then the one that lookups find.
    if (place < 0) place = at;
    if (!vacant) found = at;
    if (slots.mark(at) != ZmBaseHashSlots::kRemoved) break;
  }
  return {found, place};
}

ZmBaseHashTable::Spot ZmBaseHashTable::locate(std::string_view key, Hash key_hash) const {
  const Spot spot = seek(slots_, key_hash, [key] { return key; });
  if (!spot.known() && overflow_ && overflow_->contains(key)) return {kBeyond, spot.place};
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
// Gaps at the end close at once, so that a key that is set and removed in turns leaves none.
void ZmBaseHashTable::drop(std::uint32_t number) {
  delete std::exchange(entries_[number].key, nullptr);
  --live_;
  while (used_ > 0 && !entries_[used_ - 1].key) --used_;
}

// Closes the gaps; the numbers then have as many bytes as a quarter more entries need.
void ZmBaseHashTable::renumber() const {
  ZmBaseHashSlots slots(slots_.size(), std::uint64_t{live_} + live_ / 4 + 1);
  std::vector<std::uint32_t> numbers(used_);
  std::uint32_t next = 0;
  for (std::uint32_t i = 0; i < used_; ++i) {
    if (!entries_[i].key) continue;
    numbers[i] = next;
    entries_[next++] = entries_[i];
  }
  for (int i = 0; i < slots.size(); ++i)
    slots.put(i, slots_.mark(i), slots_.occupied(i) ? numbers[slots_.number(i)] : 0);
  slots_.trade(slots);
  if (overflow_)
    for (auto& [text, number] : *overflow_) number = numbers[number];
  used_ = live_;
}

// For one more entry. What renumbering costs is paid by the entries that came or went since.
void ZmBaseHashTable::make_room() {
  if (used_ == slots_.numbers() || (used_ == room_ && gaps() > used_ / 4)) renumber();
  if (used_ == room_) reserve(room_ + std::max(4U, room_ / 4));
}

void ZmBaseHashTable::reserve(std::uint32_t room) {
  auto* const entries = new Entry[room];
  std::copy(entries_, entries_ + used_, entries);
  delete[] entries_;
  entries_ = entries;
  room_ = room;
}

// Into a slot, or into the overflow when there is none for it.
void ZmBaseHashTable::add(int at, const Entry& entry) {
  make_room();
  if (at >= 0) {
    slots_.put(at, mark_of(entry.hash), used_);
  } else {
    if (!overflow_) overflow_.reset(new Overflow);
    overflow_->emplace(zm_view(*entry.key), used_);
  }
  entries_[used_++] = entry;
  ++live_;
  ++count_;
}

// Only where a slot is free and nothing can be replaced.
bool ZmBaseHashTable::fill(const Spot& spot, void* value, ZmString* key, Hash key_hash) {
  if (overflow_ || spot.place < 0 || spot.known()) return false;
  add(spot.place, {key, value, key_hash});
  return true;
}

bool ZmBaseHashTable::set(void* value, ZmString* key, Hash key_hash, Destroy destroy) {
  const std::string_view text = zm_view(*key);
  const Entry entry{key, value, key_hash};
  if (overflow_) {
    // First: in a slot that has become free meanwhile, the key would be there twice.
    if (const auto beyond = overflow_->find(text); beyond != overflow_->end()) {
      // Its key lends the text of the old entry, which goes below: it takes the new one first.
      auto node = overflow_->extract(beyond);
      node.key() = text;
      replace(node.mapped(), entry, destroy);
      overflow_->insert(std::move(node));
      return true;
    }
  }
  Spot spot{};
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

// Puts an entry where it belongs; false when there is no place.
bool ZmBaseHashTable::store(Growth& to, std::uint32_t number) const {
  const Entry& entry = entries_[number];
  const int at = seek(to.slots, entry.hash, [&entry] { return zm_view(*entry.key); }).place;
  if (at < 0) return false;
  if (to.slots.occupied(at)) {
    to.replaced.push_back(to.slots.number(at));
  } else {
    ++to.count;
  }
  to.slots.put(at, mark_of(entry.hash), number);
  return true;
}

// Slot by slot, in their order; false when an entry finds no place.
bool ZmBaseHashTable::refill(Growth& to) const {
  for (int i = 0; i < slots_.size(); ++i)
    if (slots_.occupied(i) && !store(to, slots_.number(i))) return false;
  return true;
}

// The random part keeps tables of the same keys from sharing every collision. The slots at hand
// stay until a size has a place for every entry.
bool ZmBaseHashTable::resize(Destroy destroy) {
  if (live_ < patience_) return false;
  int count = 0;  // of all attempts: those that fail leave their part behind
  for (int size = slots_.size();;) {
    const long long next = size * 4LL + 1 + std::rand() % 100;
    if (refused(next)) {
      if (size != slots_.size()) patience_ = live_ * 2;
      return false;
    }
    size = static_cast<int>(next);
    Growth to{ZmBaseHashSlots(size, slots_.numbers()), count};
    const bool filled = refill(to);
    count = to.count;
    if (!filled) continue;
    take(to, destroy);
    return true;
  }
}

// The overflow's entries that find a place now move there. What was replaced is destroyed only
// here, once nothing can fail any more.
void ZmBaseHashTable::take(Growth& to, Destroy destroy) {
  if (overflow_) {
    std::erase_if(*overflow_, [&](const auto& held) { return store(to, held.second); });
    to.count += static_cast<int>(overflow_->size());
    if (overflow_->empty()) overflow_.reset();
  }
  slots_.trade(to.slots);
  count_ = to.count;
  for (const std::uint32_t number : to.replaced) {
    void* const value = entries_[number].value;
    drop(number);
    if (value) destroy(value);
  }
}

void ZmBaseHashTable::clear(Destroy destroy) {
  for (std::uint32_t i = 0; i < used_; ++i) {
    const Entry& entry = entries_[i];
    if (entry.key && entry.value && destroy) destroy(entry.value);
    delete entry.key;
  }
  slots_.clear();
  overflow_.reset();
  used_ = live_ = patience_ = 0;
  count_ = 0;
}

void ZmBaseHashTable::copy(const ZmBaseHashTable& other, void* (*copy_value)(const void*),
                           Destroy destroy) {
  try {
    fill(other, copy_value);
  } catch (...) {
    clear(destroy);
    throw;
  }
}

void ZmBaseHashTable::fill(const ZmBaseHashTable& other, void* (*copy_value)(const void*)) {
  if (other.gaps()) other.renumber();
  // Every entry keeps its slot. A removed slot becomes an empty one, so what was placed beyond it
  // is listed and no longer found.
  ZmBaseHashSlots slots(other.slots_.size(), other.slots_.numbers());
  slots_.trade(slots);
  if (room_ < other.used_) reserve(other.used_);
  // Counted one by one, so that clear() finds just what has been made when memory ends in between.
  for (; used_ < other.used_; ++used_, ++live_) {
    const auto& [key, value, hash] = other.entries_[used_];
    ZmOwned<ZmString> copied(ZmString::_exact(*key));
    entries_[used_] = {copied.get(), copy_value(value), hash};
    copied.release();
  }
  for (int i = 0; i < slots_.size(); ++i)
    if (other.slots_.occupied(i)) slots_.put(i, other.slots_.mark(i), other.slots_.number(i));
  if (other.overflow_) overflow_.reset(new Overflow);
  if (other.overflow_)
    for (const auto& [text, number] : *other.overflow_)
      overflow_->emplace(zm_view(*entries_[number].key), number);
  count_ = other.count_;
  patience_ = other.patience_;
}

void ZmBaseHashTable::walk(Call shown, void* visit) const {
  for (int i = 0; i < slots_.size(); ++i)
    if (slots_.occupied(i)) shown(entries_[slots_.number(i)], visit);
  if (!overflow_) return;
  for (const auto& [text, number] : *overflow_) shown(entries_[number], visit);
}

// Sorted, because slot order depends on the random sizes of growth.
void ZmBaseHashTable::walk_found(Call shown, void* visit) const {
  std::vector<const Entry*> found;
  each([&](const Entry& entry) {
    if (find(zm_view(*entry.key), entry.hash) == &entry) found.push_back(&entry);
  });
  std::sort(found.begin(), found.end(),
            [](const Entry* a, const Entry* b) { return zm_view(*a->key) < zm_view(*b->key); });
  for (const Entry* entry : found) shown(*entry, visit);
}
