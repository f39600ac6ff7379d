// The untyped core of the hashes: an open-addressing table from texts to objects. Internal;
// ZmBaseHash is its typed face.
#ifndef ZM_BASE_HASH_TABLE_H
#define ZM_BASE_HASH_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZmOwned.h"
#include "ZmString.h"
#include "ZmText.h"

// The slots of a table: a mark each, and behind all marks a number each, of as few bytes as the
// numbers need. Internal to ZmBaseHashTable.
class ZmBaseHashSlots {
 public:
  // What a mark says of its slot. Keys with a zero byte have a mark of their own, since they may be
  // equal to others with another hash.
  enum Mark : unsigned char { kEmpty, kRemoved, kZero, kMarks };

  ZmBaseHashSlots(int size, std::uint64_t numbers);  // all empty; for numbers below `numbers`
  ZmBaseHashSlots(const ZmBaseHashSlots&) = delete;
  ZmBaseHashSlots& operator=(const ZmBaseHashSlots&) = delete;
  ~ZmBaseHashSlots() { delete[] bytes_; }
  void trade(ZmBaseHashSlots& other);

  int size() const { return size_; }
  std::uint64_t numbers() const { return std::uint64_t{1} << 8 * width_; }  // above every number
  unsigned char mark(int at) const { return bytes_[at]; }
  bool occupied(int at) const { return mark(at) > kRemoved; }
  std::uint32_t number(int at) const;  // of an occupied slot
  void put(int at, unsigned char mark, std::uint32_t number);
  void remove(int at) { bytes_[at] = kRemoved; }
  bool anyremoved() const;
  void clear();

 private:
  unsigned char* place(int at) const;

  unsigned char* bytes_;
  int size_;
  int width_;  // bytes of a number: 1, 2 or 4
};

// Owns its keys; values are pointers it never looks behind. `destroy` arguments release a value
// that was replaced.
//
// The published hash of a key is weak: keys that end in numbers often share it. So a search looks
// at one byte a slot, its mark, which holds some bits of a second hash, and reads an entry only
// when these agree, and its key only when both hashes do.
//
// A key's 32-bit hash alone decides its probe slots, and the offsets repeat after 33 probes. More
// keys of one hash can't be stored in any table, so growth is bounded: a pair for which the table
// would have to go beyond both 65,536 slots and 32 slots an entry is kept in an ordered overflow
// instead, and moves into the slots when a later growth has room.
class ZM_EXPORT ZmBaseHashTable {
 public:
  using Destroy = void (*)(void*);
  // The published hash in the lower half, the mark of the key above it.
  using Hash = std::uint64_t;
  struct Entry {
    ZmString* key;  // null: a gap
    void* value;
    Hash hash;
  };

  ZmBaseHashTable();
  ZmBaseHashTable(const ZmBaseHashTable&) = delete;
  ZmBaseHashTable& operator=(const ZmBaseHashTable&) = delete;
  ~ZmBaseHashTable();  // clear() first

  static Hash hash(std::string_view key);
  // Whether the key that this is the hash of has a zero byte: others may then be equal to it.
  static bool haszero(Hash hash) { return hash >> 32 == ZmBaseHashSlots::kZero; }

  int count() const { return count_; }
  int entries() const { return static_cast<int>(live_); }
  void* get(const ZmString& key) const { return get(zm_view(key), hash(zm_view(key))); }
  void* get(std::string_view key, Hash key_hash) const {
    const Entry* held = find(key, key_hash);
    return held ? held->value : nullptr;
  }
  const Entry* find(std::string_view key, Hash key_hash) const;  // null: it is not there
  // The entry at position i, in the order in which keys were first set: 0 to entries() - 1.
  const Entry& entry(int i) const {
    if (gaps()) renumber();
    return entries_[i];
  }
  // Where a key is and where set() would put it: slots, or one of these.
  static constexpr int kNowhere = -1, kBeyond = -2;  // kBeyond: in the overflow
  struct Spot {
    int found;
    int place;

    bool known() const { return found != kNowhere; }
  };
  Spot locate(std::string_view key, Hash key_hash) const;
  void* value(int at) const { return entries_[slots_.number(at)].value; }
  // Stores a new pair where locate() has said, unless only set() can; takes nothing then.
  bool fill(const Spot& spot, void* value, ZmString* key, Hash key_hash);
  // False: the key is null. Takes nothing when it throws.
  bool set(void* value, ZmString* key, Destroy destroy) {
    return key && set(value, key, hash(zm_view(*key)), destroy);
  }
  bool set(void* value, ZmString* key, Hash key_hash, Destroy destroy);
  void* remove(const ZmString& key);
  bool resize(Destroy destroy);  // false: the growth is not made
  void clear(Destroy destroy);   // in the order of entries; a null destroy forgets the values
  // Takes the size, count and keys of the other table; each value is made by copy(its value).
  // This table must be clear, and is again when it throws.
  void copy(const ZmBaseHashTable& other, void* (*copy_value)(const void*), Destroy destroy);
  // Whether a copy may hold entries that it does not find: those beyond a removed one.
  bool anyremoved() const { return slots_.anyremoved(); }

  // Calls visit(entry) for every pair: slot order, then the overflow in key order.
  template <class Visit>
  void each(Visit visit) const {
    walk(call<Visit>, &visit);
  }
  // The same for those that a lookup of their key finds, in the order of their keys' bytes.
  template <class Visit>
  void each_found(Visit visit) const {
    walk_found(call<Visit>, &visit);
  }

 private:
  struct Overflow;  // keys and the numbers of their entries
  struct Growth;    // the slots that take the place of these
  using Call = void (*)(const Entry& entry, void* visit);

  template <class Visit>
  static void call(const Entry& entry, void* visit) {
    (*static_cast<Visit*>(visit))(entry);
  }
  void walk(Call shown, void* visit) const;
  void walk_found(Call shown, void* visit) const;
  std::uint32_t gaps() const { return used_ - live_; }
  void renumber() const;
  void make_room();
  void reserve(std::uint32_t room);
  void add(int at, const Entry& entry);
  static unsigned char mark(std::string_view key);
  template <class Text>
  Spot seek(const ZmBaseHashSlots& slots, Hash key_hash, Text text) const;
  void replace(std::uint32_t number, const Entry& entry, Destroy destroy);
  void drop(std::uint32_t number);
  bool store(Growth& to, std::uint32_t number) const;
  bool refill(Growth& to) const;
  bool refused(long long size) const;
  void take(Growth& to, Destroy destroy);
  void fill(const ZmBaseHashTable& other, void* (*copy_value)(const void*));

  // In the order in which keys were first set; an entry that is removed becomes a gap until the
  // next renumber(), which changes nothing that shows, so it may run in const operations. The last
  // entry is no gap. Every entry but the gaps has its number either in one slot or in the overflow.
  Entry* entries_ = nullptr;
  mutable std::uint32_t used_ = 0;  // entries, gaps included
  std::uint32_t room_ = 0;          // for entries
  std::uint32_t live_ = 0;          // entries without the gaps
  mutable ZmBaseHashSlots slots_;
  ZmOwned<Overflow> overflow_;  // null while it is empty
  int count_ = 0;               // entries, and those of growth attempts that failed
  // No growth before there are so many entries: the last one tried sizes below the bound that had
  // no place for all, and then met the bound. Another random size might have done, so a key set
  // meanwhile may go to the overflow though a growth below the bound had found a place for it. That
  // takes groups of keys made to collide, of some 30 keys of one hash each, with slots in common;
  // without this every further key of such a group would cost a growth that comes to nothing.
  std::uint32_t patience_ = 0;
};

#endif
