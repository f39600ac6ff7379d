// The untyped core of the hashes: an open-addressing table from texts to objects. Internal;
// ZmBaseHash is its typed face.
#ifndef ZM_SLOT_TABLE_H
#define ZM_SLOT_TABLE_H

#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmString.h"
#include "ZmText.h"

// Owns its keys; values are pointers it never looks behind. `destroy` arguments release a value
// that was replaced.
//
// The published hash of a key is weak: keys that end in numbers often share it. So a search looks
// at one byte a slot, its mark, which holds some bits of a second hash, and reads a key only when
// both hashes agree.
//
// A key's 32-bit hash alone decides its probe slots, and the offsets repeat after 33 probes. More
// keys of one hash can't be stored in any table, so growth is bounded: a pair for which the table
// would have to go beyond both 65,536 slots and 32 slots an entry is kept in an ordered overflow
// instead, and moves into the slots when a later growth has room.
class ZM_EXPORT ZmSlotTable {
 public:
  using Destroy = void (*)(void*);
  // The published hash in the lower half, the mark of the key above it.
  using Hash = std::uint64_t;

  ZmSlotTable();
  ZmSlotTable(const ZmSlotTable&) = delete;
  ZmSlotTable& operator=(const ZmSlotTable&) = delete;
  ~ZmSlotTable();  // clear() first

  static Hash hash(std::string_view key);

  int count() const { return count_; }
  int entries() const { return entries_; }
  void* get(const ZmString& key) const { return get(zm_view(key), hash(zm_view(key))); }
  void* get(std::string_view key, Hash key_hash) const;
  const ZmString* stored(std::string_view key, Hash key_hash) const;  // the key itself, or null
  // Where a key is and where set() would put it, as slots; -1: nowhere.
  struct Spot {
    int found = -1;
    int place = -1;
  };
  Spot locate(std::string_view key, Hash key_hash) const;
  void* value(int at) const { return values_[at]; }
  // Stores a new pair where locate() has said, unless only set() can; takes nothing then.
  bool fill(const Spot& spot, void* value, ZmString* key, Hash key_hash);
  // False: the key is null.
  bool set(void* value, ZmString* key, Destroy destroy) {
    return key && set(value, key, hash(zm_view(*key)), destroy);
  }
  bool set(void* value, ZmString* key, Hash key_hash, Destroy destroy);
  void* remove(const ZmString& key);
  bool resize(Destroy destroy);  // false: the growth is not made
  void clear(Destroy destroy);   // a null destroy forgets the values
  // Takes the size, count and keys of the other table; each value is made by copy(its value).
  // This table must be clear.
  void copy(const ZmSlotTable& other, void* (*copy_value)(const void*));

  // Calls visit(key, value) for every pair: slot order, then the overflow in key order.
  template <class Visit>
  void each(Visit visit) const {
    each_slot(visit);
    each_beyond(visit);
  }

 private:
  using Pair = std::pair<ZmString*, void*>;
  using Overflow = std::map<std::string_view, Pair>;
  enum class Stored { kNew, kReplaced, kFull };
  // What a mark says of its slot. Keys with a zero byte have a mark of their own, since they may be
  // equal to others with another hash.
  enum Mark : unsigned char { kEmpty, kRemoved, kZero, kMarks };
  struct Slots {
    ZmString** keys;
    void** values;
    std::uint32_t* hashes;
    unsigned char* marks;
    int size;
  };

  bool occupied(int i) const { return marks_[i] > kRemoved; }
  static Slots allocated(int size);
  static void release(const Slots& slots) noexcept;
  Slots slots() const { return {keys_, values_, hashes_, marks_, size_}; }
  template <class Visit>
  void each_slot(Visit visit) const {
    for (int i = 0; i < size_; ++i) {
      if (i + 16 < size_) {  // slots lie in another order than memory
        __builtin_prefetch(keys_[i + 16]);
        __builtin_prefetch(values_[i + 16]);
      }
      if (occupied(i)) visit(keys_[i], values_[i]);
    }
  }
  template <class Visit>
  void each_beyond(Visit visit) const {
    if (!overflow_) return;
    for (const auto& [text, pair] : *overflow_) visit(pair.first, pair.second);
  }
  template <class Visit>
  bool each_in_memory(Visit visit) const;
  static unsigned char mark(std::string_view key);
  template <class Text>
  Spot seek(Hash key_hash, Text text) const;
  void use(const Slots& slots);
  void put(int at, const Pair& pair, Hash key_hash);
  // Puts the pair where it belongs; the pair it replaces goes to `old`.
  Stored store(const Pair& pair, Hash key_hash, Pair& old);
  bool refused(long long size) const;
  bool refill(const Slots& from, int& count, std::vector<Pair>& replaced);
  void empty_overflow(std::vector<Pair>& replaced);

  ZmString** keys_ = nullptr;
  ZmString removed_;  // never holds text; its address marks a removed slot
  void** values_ = nullptr;
  int size_ = 0;      // slots
  int count_ = 0;     // entries; after a growth of several attempts it is more, and may be
  int entries_ = 0;   // entries, exactly
  int patience_ = 0;  // no growth before there are so many entries: the last one came to nothing
  std::uint32_t* hashes_ = nullptr;  // of the occupied slots
  unsigned char* marks_ = nullptr;   // of all slots
  Overflow* overflow_ = nullptr;     // null while it is empty
};

#endif
