#include "ZmSlotTable.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "ZmMemory.h"

namespace {

constexpr int kStartSize = 17;
constexpr int kProbes = 33;               // the offsets of further probes have all been tried
constexpr long long kFreeGrowth = 65536;  // slots up to which growth is never refused
constexpr long long kSlotsPerEntry = 32;

constexpr std::size_t kSlotBytes = sizeof(ZmString*) + sizeof(void*) + sizeof(std::uint32_t);

std::size_t bytes(int size) { return static_cast<std::size_t>(size) * kSlotBytes; }

// The slot that probe i looks at. Offsets count from the home slot and wrap at 32 bits.
std::uint32_t slot(std::uint32_t hash, int probe, int size) {
  const std::uint32_t offset = probe == 0 ? 0U : 2U << (static_cast<unsigned>(probe) & 31U);
  return (hash + offset) % static_cast<std::uint32_t>(size);
}

int probes(int size) { return size / 2 < kProbes ? size / 2 : kProbes; }

}  // namespace

// A key being searched for. Equal texts have one hash, except that a zero byte ends a comparison:
// keys that hold one may be equal to others with different bytes behind it.
class ZmSlotTable::Seek {
 public:
  Seek(std::string_view text, std::uint32_t text_hash) : key_(text), hash_(text_hash) {}

  bool matches(const ZmString* other, std::uint32_t other_hash) {
    if (other_hash != hash_ && !zero()) return false;
    if (view(*other).size() != key_.size()) return false;
    return key_.empty() || std::strncmp(other->value(), key_.data(), key_.size()) == 0;
  }

 private:
  bool zero() {
    if (zero_ < 0) zero_ = key_.find('\0') != std::string_view::npos;
    return zero_ != 0;
  }

  std::string_view key_;
  std::uint32_t hash_;
  int zero_ = -1;  // not yet known
};

ZmSlotTable::ZmSlotTable() { use(allocated(kStartSize)); }

ZmSlotTable::~ZmSlotTable() { release(slots()); }

std::uint32_t ZmSlotTable::hash(std::string_view key) {
  std::uint32_t sum = 0;
  std::uint32_t weight = 1;
  for (const char c : key) {
    // The bytes count as signed: those of 128 and above subtract.
    sum += weight * static_cast<std::uint32_t>(static_cast<signed char>(c));
    weight *= 7;
  }
  return sum;
}

// One block: keys, values, hashes. All empty.
ZmSlotTable::Slots ZmSlotTable::allocated(int size) {
  Slots slots;
  slots.keys = static_cast<ZmString**>(zm_allocate_zeroed(bytes(size)));
  slots.values = reinterpret_cast<void**>(slots.keys + size);
  slots.hashes = reinterpret_cast<std::uint32_t*>(slots.values + size);
  slots.size = size;
  return slots;
}

void ZmSlotTable::release(const Slots& slots) noexcept {
  zm_release(slots.keys, bytes(slots.size));
}

void ZmSlotTable::use(const Slots& slots) {
  keys_ = slots.keys;
  values_ = slots.values;
  hashes_ = slots.hashes;
  size_ = slots.size;
}

ZmSlotTable::Spot ZmSlotTable::locate(std::string_view key, std::uint32_t key_hash) const {
  Spot spot;
  Seek seek(key, key_hash);
  for (int probe = 0; probe < probes(size_); ++probe) {
    const auto at = static_cast<int>(slot(key_hash, probe, size_));
    const bool vacant = !occupied(at);
    if (!vacant && !seek.matches(keys_[at], hashes_[at])) continue;
    // A later slot may hold the same key once one before it was removed. A new entry still goes to
    // the first vacant slot, and is then the one that lookups find.
    if (spot.place < 0) spot.place = at;
    if (!vacant) spot.found = at;
    if (!vacant || !keys_[at]) break;
  }
  return spot;
}

void* ZmSlotTable::get(std::string_view key, std::uint32_t key_hash) const {
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
  const int at = locate(view(key), hash(view(key))).found;
  if (at >= 0) {
    // The argument may be the stored key itself, so it is not used below.
    delete keys_[at];
    keys_[at] = &removed_;
    value = std::exchange(values_[at], nullptr);
  } else {
    if (!overflow_) return nullptr;
    const auto pair = overflow_->find(view(key));
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

ZmSlotTable::Stored ZmSlotTable::store(const Pair& pair, std::uint32_t key_hash, Pair& old) {
  const int at = locate(view(*pair.first), key_hash).place;
  if (at < 0) return Stored::kFull;
  const bool vacant = !occupied(at);
  if (!vacant) old = {keys_[at], values_[at]};
  put(at, pair, key_hash);
  return vacant ? Stored::kNew : Stored::kReplaced;
}

void ZmSlotTable::put(int at, const Pair& pair, std::uint32_t key_hash) {
  keys_[at] = pair.first;
  values_[at] = pair.second;
  hashes_[at] = key_hash;
}

bool ZmSlotTable::fill(const Spot& spot, void* value, ZmString* key, std::uint32_t key_hash) {
  if (overflow_ || spot.place < 0 || spot.found >= 0) return false;
  put(spot.place, {key, value}, key_hash);
  ++count_;
  ++entries_;
  return true;
}

bool ZmSlotTable::set(void* value, ZmString* key, std::uint32_t key_hash, Destroy destroy) {
  const Pair pair{key, value};
  Pair old{};
  Stored stored = Stored::kFull;
  auto beyond = overflow_ ? overflow_->find(view(*key)) : Overflow::iterator();
  if (overflow_ && beyond != overflow_->end()) {
    old = beyond->second;
    overflow_->erase(beyond);
    overflow_->emplace(view(*key), pair);
    stored = Stored::kReplaced;
  } else {
    while ((stored = store(pair, key_hash, old)) == Stored::kFull && resize(destroy)) {
    }
  }
  if (stored == Stored::kFull) {
    if (!overflow_) overflow_ = new Overflow;
    overflow_->emplace(view(*key), pair);
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
    if (!from.keys[i] || from.keys[i] == &removed_) continue;
    Pair old{};
    switch (store({from.keys[i], from.values[i]}, from.hashes[i], old)) {
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

void ZmSlotTable::clear(Destroy destroy) {
  each([destroy](ZmString* key, void* value) {
    if (value && destroy) destroy(value);
    delete key;
  });
  for (int i = 0; i < size_; ++i) {
    keys_[i] = nullptr;
    values_[i] = nullptr;
  }
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
  }
  if (!other.overflow_) return;
  overflow_ = new Overflow;
  for (const auto& [text, pair] : *other.overflow_) {
    auto* key = new ZmString(*pair.first);
    overflow_->emplace(view(*key), Pair(key, copy_value(pair.second)));
  }
}
