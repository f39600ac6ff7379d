#include "ZmSlotTable.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>

namespace {

constexpr int kStartSize = 17;
constexpr int kProbes = 33;               // the offsets of further probes have all been tried
constexpr long long kFreeGrowth = 65536;  // slots up to which growth is never refused
constexpr long long kSlotsPerEntry = 32;
constexpr int kMany = 1024;  // entries that are worth an order when they are destroyed

constexpr std::size_t kSlotBytes =
    sizeof(ZmString*) + sizeof(void*) + sizeof(std::uint32_t) + sizeof(unsigned char);

std::size_t bytes(int size) { return static_cast<std::size_t>(size) * kSlotBytes; }

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

}  // namespace

ZmSlotTable::ZmSlotTable() { use(allocated(kStartSize)); }

ZmSlotTable::~ZmSlotTable() { release(slots()); }

ZmSlotTable::Hash ZmSlotTable::hash(std::string_view key) {
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
  return Hash{zero ? static_cast<unsigned char>(kZero) : mark(key)} << 32 | sum;
}

// For keys without a zero byte.
unsigned char ZmSlotTable::mark(std::string_view key) {
  const std::uint64_t mixed = end_of(key) * 0x9e3779b97f4a7c15;
  return static_cast<unsigned char>(kMarks + (mixed >> 56) * (256 - kMarks) / 256);
}

// One block: keys, values, hashes, marks. All empty.
ZmSlotTable::Slots ZmSlotTable::allocated(int size) {
  Slots slots;
  slots.keys = static_cast<ZmString**>(std::calloc(bytes(size), 1));
  if (!slots.keys) throw std::bad_alloc();
  slots.values = reinterpret_cast<void**>(slots.keys + size);
  slots.hashes = reinterpret_cast<std::uint32_t*>(slots.values + size);
  slots.marks = reinterpret_cast<unsigned char*>(slots.hashes + size);
  slots.size = size;
  return slots;
}

void ZmSlotTable::release(const Slots& slots) noexcept { std::free(slots.keys); }

void ZmSlotTable::use(const Slots& slots) {
  keys_ = slots.keys;
  values_ = slots.values;
  hashes_ = slots.hashes;
  marks_ = slots.marks;
  size_ = slots.size;
}

// The text is asked for only where it must be compared.
template <class Text>
ZmSlotTable::Spot ZmSlotTable::seek(Hash key_hash, Text text) const {
  const auto sum = static_cast<std::uint32_t>(key_hash);
  const auto mark = static_cast<unsigned char>(key_hash >> 32);
  const auto holds = [&](int at) {
    if (marks_[at] != mark || (hashes_[at] != sum && mark != kZero)) return false;
    const std::string_view held = zm_view(*keys_[at]);
    const std::string_view sought = text();
    if (mark != kZero) return held == sought;
    // A zero byte ends a comparison.
    return held.size() == sought.size() &&
           std::strncmp(held.data(), sought.data(), held.size()) == 0;
  };
  Spot spot;
  for (int probe = 0; probe < probes(size_); ++probe) {
    const auto at = static_cast<int>(slot(sum, probe, size_));
    const bool vacant = !occupied(at);
    if (!vacant && !holds(at)) continue;
    // A later slot may hold the same key once one before it was removed. A new entry still goes to
    // the first vacant slot, and is then the one that lookups find.
    if (spot.place < 0) spot.place = at;
    if (!vacant) spot.found = at;
    if (marks_[at] != kRemoved) break;
  }
  return spot;
}

ZmSlotTable::Spot ZmSlotTable::locate(std::string_view key, Hash key_hash) const {
  return seek(key_hash, [key] { return key; });
}

void* ZmSlotTable::get(std::string_view key, Hash key_hash) const {
  if (count_ < 1) return nullptr;
  const int at = locate(key, key_hash).found;
  if (at >= 0) return values_[at];
  if (!overflow_) return nullptr;
  const auto pair = overflow_->find(key);
  return pair == overflow_->end() ? nullptr : pair->second.second;
}

void* ZmSlotTable::remove(const ZmString& key) {
  if (count_ < 1) return nullptr;
  void* value = nullptr;
  const int at = locate(zm_view(key), hash(zm_view(key))).found;
  if (at >= 0) {
    // The argument may be the stored key itself, so it is not used below.
    delete keys_[at];
    keys_[at] = &removed_;
    marks_[at] = kRemoved;
    value = std::exchange(values_[at], nullptr);
  } else {
    if (!overflow_) return nullptr;
    const auto pair = overflow_->find(zm_view(key));
    if (pair == overflow_->end()) return nullptr;
    const auto [stored, object] = pair->second;
    value = object;
    overflow_->erase(pair);
    delete stored;
    if (overflow_->empty()) delete std::exchange(overflow_, nullptr);
  }
  --count_;
  --entries_;
  return value;
}

ZmSlotTable::Stored ZmSlotTable::store(const Pair& pair, Hash key_hash, Pair& old) {
  const int at = seek(key_hash, [&pair] { return zm_view(*pair.first); }).place;
  if (at < 0) return Stored::kFull;
  const bool vacant = !occupied(at);
  if (!vacant) old = {keys_[at], values_[at]};
  put(at, pair, key_hash);
  return vacant ? Stored::kNew : Stored::kReplaced;
}

void ZmSlotTable::put(int at, const Pair& pair, Hash key_hash) {
  keys_[at] = pair.first;
  values_[at] = pair.second;
  hashes_[at] = static_cast<std::uint32_t>(key_hash);
  marks_[at] = static_cast<unsigned char>(key_hash >> 32);
}

bool ZmSlotTable::fill(const Spot& spot, void* value, ZmString* key, Hash key_hash) {
  if (overflow_ || spot.place < 0 || spot.found >= 0) return false;
  put(spot.place, {key, value}, key_hash);
  ++count_;
  ++entries_;
  return true;
}

bool ZmSlotTable::set(void* value, ZmString* key, Hash key_hash, Destroy destroy) {
  const Pair pair{key, value};
  Pair old{};
  Stored stored = Stored::kFull;
  auto beyond = overflow_ ? overflow_->find(zm_view(*key)) : Overflow::iterator();
  if (overflow_ && beyond != overflow_->end()) {
    old = beyond->second;
    overflow_->erase(beyond);
    overflow_->emplace(zm_view(*key), pair);
    stored = Stored::kReplaced;
  } else {
    while ((stored = store(pair, key_hash, old)) == Stored::kFull && resize(destroy)) {
    }
  }
  if (stored == Stored::kFull) {
    if (!overflow_) overflow_ = new Overflow;
    overflow_->emplace(zm_view(*key), pair);
  }
  if (stored == Stored::kReplaced) {
    if (old.second && old.second != value) destroy(old.second);
    if (old.first != key) delete old.first;
  } else {
    ++count_;
    ++entries_;
  }
  return true;
}

bool ZmSlotTable::refused(long long size) const {
  return size > INT_MAX || (size > kFreeGrowth && size > kSlotsPerEntry * entries_);
}

// Puts the pairs of other slots into these, which are empty; false when one finds no place.
bool ZmSlotTable::refill(const Slots& from, int& count, std::vector<Pair>& replaced) {
  for (int i = 0; i < from.size; ++i) {
    if (from.marks[i] <= kRemoved) continue;
    Pair old{};
    const Hash key_hash = Hash{from.marks[i]} << 32 | from.hashes[i];
    switch (store({from.keys[i], from.values[i]}, key_hash, old)) {
      case Stored::kFull:
        return false;
      case Stored::kReplaced:
        replaced.push_back(old);
        break;
      case Stored::kNew:
        ++count;
    }
  }
  return true;
}

bool ZmSlotTable::resize(Destroy destroy) {
  if (entries_ < patience_) return false;
  const Slots old = slots();
  std::vector<Pair> replaced;  // of an attempt; destroyed only once that attempt has succeeded
  int count = 0;               // of all attempts: those that fail leave their part behind
  int size = old.size;
  for (bool filled = false; !filled;) {
    const long long next = size * 4LL + 1 + std::rand() % 100;
    if (refused(next)) {
      if (size != old.size) patience_ = entries_ * 2;
      return false;
    }
    size = static_cast<int>(next);
    replaced.clear();
    use(allocated(size));
    filled = refill(old, count, replaced);
    if (filled) continue;
    release(slots());
    use(old);
  }
  release(old);
  count_ = count;
  empty_overflow(replaced);
  for (const auto& [key, value] : replaced) {
    delete key;
    if (value) destroy(value);
    --entries_;
  }
  return true;
}

// After a growth: what finds a place in the slots moves there.
void ZmSlotTable::empty_overflow(std::vector<Pair>& replaced) {
  if (!overflow_) return;
  for (auto at = overflow_->begin(); at != overflow_->end();) {
    Pair old{};
    const Stored stored = store(at->second, hash(at->first), old);
    at = stored == Stored::kFull ? std::next(at) : overflow_->erase(at);
    if (stored == Stored::kReplaced) {
      replaced.push_back(old);
    } else {
      ++count_;
    }
  }
  if (overflow_->empty()) delete std::exchange(overflow_, nullptr);
}

// Calls visit(key, value) for the pairs in the slots, in the order in which the keys stand in
// memory (radix sort, of 128 GiB). False, when there is no memory to sort them in: nothing was
// visited.
template <class Visit>
bool ZmSlotTable::each_in_memory(Visit visit) const {
  constexpr unsigned kDigit = 11;
  constexpr unsigned kGrain = 4;  // bits below that are the same for all
  constexpr std::size_t kDigits = std::size_t{1} << kDigit;
  const auto room = static_cast<std::size_t>(entries_);
  const std::unique_ptr<Pair[]> first(new (std::nothrow) Pair[room]);
  const std::unique_ptr<Pair[]> second(new (std::nothrow) Pair[room]);
  if (!first || !second) return false;
  Pair* pairs = first.get();
  Pair* sorted = second.get();
  std::size_t count = 0;
  each_slot([&](ZmString* key, void* value) { pairs[count++] = {key, value}; });
  for (unsigned shift = kGrain; shift < kGrain + 3 * kDigit; shift += kDigit) {
    const auto digit = [shift](const Pair& pair) {
      return reinterpret_cast<std::uintptr_t>(pair.first) >> shift & (kDigits - 1);
    };
    std::array<std::size_t, kDigits + 1> at{};
    for (std::size_t i = 0; i < count; ++i) ++at[digit(pairs[i]) + 1];
    std::partial_sum(at.begin(), at.end(), at.begin());
    for (std::size_t i = 0; i < count; ++i) sorted[at[digit(pairs[i])]++] = pairs[i];
    std::swap(pairs, sorted);
  }
  for (std::size_t i = 0; i < count; ++i) visit(pairs[i].first, pairs[i].second);
  return true;
}

// What is given back in the order of memory is had again so: a large table that is filled next then
// stands in memory as it is filled, and not scattered as the slots are.
void ZmSlotTable::clear(Destroy destroy) {
  const auto drop = [destroy](ZmString* key, void* value) {
    if (value && destroy) destroy(value);
    delete key;
  };
  if (entries_ < kMany || !each_in_memory(drop)) each_slot(drop);
  each_beyond(drop);
  std::memset(keys_, 0, bytes(size_));  // the whole block
  delete std::exchange(overflow_, nullptr);
  count_ = 0;
  entries_ = 0;
  patience_ = 0;
}

void ZmSlotTable::copy(const ZmSlotTable& other, void* (*copy_value)(const void*)) {
  const Slots own = slots();
  use(allocated(other.size_));
  release(own);
  count_ = other.count_;
  entries_ = other.entries_;
  patience_ = other.patience_;
  // Every pair keeps its slot. A removed slot becomes an empty one, so what was placed beyond it
  // is listed and no longer found.
  for (int i = 0; i < size_; ++i) {
    if (!other.occupied(i)) continue;
    values_[i] = copy_value(other.values_[i]);
    keys_[i] = new ZmString(*other.keys_[i]);
    hashes_[i] = other.hashes_[i];
    marks_[i] = other.marks_[i];
  }
  if (!other.overflow_) return;
  overflow_ = new Overflow;
  for (const auto& [text, pair] : *other.overflow_) {
    auto* key = new ZmString(*pair.first);
    overflow_->emplace(zm_view(*key), Pair(key, copy_value(pair.second)));
  }
}
