#include <algorithm>
#include <random>
#include <set>

#include "ZmPackBigEndian.h"
#include "ZmStringHash.h"
#include "ZmTest.h"

namespace {

std::vector<std::string> keys(const ZmBaseHash<ZmString>& hash) {
  ZmStringList lent;
  hash.keys(lent);
  std::vector<std::string> found(static_cast<std::size_t>(lent.length()));
  for (int i = 0; std::string & key : found) key = text(*lent.get(i++));
  lent.release();
  return found;
}

int count(ZmStringHash& hash) {  // stands in the record behind the version, a tag and a code
  return zm_get_big_endian<int>(reinterpret_cast<const unsigned char*>(record(hash).data()) + 8);
}

// The table as it is published, at its plainest.
struct Model {
  struct Slot {
    enum { kEmpty, kTaken, kRemoved } state = kEmpty;
    std::string key;
    int value = 0;
  };
  using Slots = std::vector<Slot>;

  static std::size_t probe(const std::string& key, unsigned i, std::size_t size) {
    unsigned hash = 0;
    unsigned weight = 1;
    for (const char c : key) {
      hash += weight * static_cast<unsigned>(static_cast<int>(static_cast<signed char>(c)));
      weight *= 7;
    }
    return (i == 0 ? hash : hash + (2U << (i % 32))) % size;
  }
  Slot* find(const std::string& key) {
    for (unsigned i = 0; count > 0 && i < slots.size() / 2; ++i) {
      Slot& slot = slots[probe(key, i, slots.size())];
      if (slot.state == Slot::kEmpty) break;
      if (slot.state == Slot::kTaken && slot.key == key) return &slot;
    }
    return nullptr;
  }
  bool put(Slots& to, const Slot& pair) {
    for (unsigned i = 0; i < to.size() / 2; ++i) {
      Slot& slot = to[probe(pair.key, i, to.size())];
      const bool vacant = slot.state != Slot::kTaken;
      if (!vacant && slot.key != pair.key) continue;
      slot = pair;
      count += vacant;
      return true;
    }
    return false;
  }
  void set(const std::string& key, int value) {
    while (!put(slots, {Slot::kTaken, key, value})) grow();
  }
  void remove(const std::string& key) {
    Slot* const slot = find(key);
    if (!slot) return;
    *slot = {Slot::kRemoved, "", 0};
    --count;
  }
  void grow() {
    std::size_t size = slots.size();
    count = 0;
    for (bool filled = false; !filled;) {
      size = size * 4 + 1 + static_cast<std::size_t>(std::rand() % 100);
      Slots larger(size);
      filled = std::ranges::all_of(
          slots, [&](const Slot& slot) { return slot.state != Slot::kTaken || put(larger, slot); });
      if (filled) slots.swap(larger);
    }
  }

  Slots slots = Slots(17);
  int count = 0;
};

// Every pair of digits "70" or "01" adds the same to the hash: 2 to the power of `pairs` keys.
std::string colliding(unsigned number, unsigned pairs) {
  std::string key;
  for (unsigned i = 0; i < pairs; ++i) key += (number >> i & 1) != 0 ? "70" : "01";
  return key;
}

// The same changes for the same seed, with the growths that follow from it. Half of the seeds have
// keys that collide.
template <class Set, class Remove>
void play(unsigned seed, unsigned names, Set set, Remove remove) {
  std::srand(seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 40; ++i) {
    const auto name = static_cast<unsigned>(random() % names);
    const bool collides = name % 3 == 0 && names % 40 == 1;
    const std::string key = collides ? colliding(name, 4) : "key" + std::to_string(name);
    if (random() % 4 != 0) {
      set(key, i);
    } else {
      remove(key);
    }
  }
}

}  // namespace

TEST(ZmHash, EverySlotCountAndGrowthFollowsTheModel) {
  for (unsigned round = 0; round < 1200; ++round) {
    static ZmStringHash hash;
    static Model model;
    const unsigned names = 1 + round / 20 * 20;
    if (round % 20 == 0) {  // another pair, small to large
      hash = ZmStringHash();
      model = Model();
    }
    play(
        round, names, [](auto& key, int i) { hash.set(new ZmString(i), ZmString(key.c_str())); },
        [](auto& key) { delete hash.remove(key.c_str()); });
    play(
        round, names, [](auto& key, int i) { model.set(key, i); },
        [](auto& key) { model.remove(key); });
    std::vector<std::string> expected;
    for (const Model::Slot& slot : model.slots)
      if (slot.state == Model::Slot::kTaken) expected.push_back(slot.key);
    ASSERT_EQ(keys(hash), expected) << round;
    ASSERT_EQ(count(hash), model.count) << round;
    for (const std::string& key : expected) {
      const ZmString* const found = hash.get(key.c_str());
      const Model::Slot* const slot = model.find(key);
      ASSERT_EQ(found ? found->integervalue() : -1, slot ? slot->value : -1) << key;
    }
  }
}

TEST(ZmHash, OwnsKeysAndValues) {
  {
    ZmBaseHash<Counted> hash;
    EXPECT_EQ(hash.set(nullptr, static_cast<ZmString*>(nullptr)), 0);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(hash.set(new Counted, ZmString(i % 100)), 1);
    EXPECT_EQ(Counted::live, 100);  // an equal key replaces
    hash.set(hash.get("7"), "7");   // and may give the same value again
    hash.set(nullptr, "none");
    ZmBaseHash<Counted> copy(hash);
    EXPECT_EQ(Counted::live, 200);
    Counted* const removed = copy.remove("7");
    EXPECT_NE(removed, hash.get("7"));
    EXPECT_EQ(copy.get("7"), nullptr);
    EXPECT_EQ(copy.remove("7"), nullptr);
    copy = hash;
    copy = *&copy;
    EXPECT_EQ(Counted::live, 201);
    copy.clear();
    copy.set(removed, "again");
    copy.release();
    EXPECT_EQ(copy.get("again"), nullptr);
    copy.set(removed, "again");
    ZmStringList lent;
    copy.keys(lent);
    EXPECT_EQ(copy.remove(*lent.get(0)), removed);  // by the stored key itself
    lent.release();
    copy.set(removed, "once more");
    EXPECT_EQ(Counted::live, 101);
  }
  EXPECT_EQ(Counted::live, 0);
}

TEST(ZmHash, CopyLosesWhatStoodBeyondARemovedSlot) {
  ZmStringHash hash;
  hash.set(new ZmString("1"), "70");
  hash.set(new ZmString("2"), "01");  // the same home: one probe further
  delete hash.remove("70");
  EXPECT_EQ(hash.get("01")->integervalue(), 2);
  ZmStringHash copy(hash);
  EXPECT_EQ(keys(copy), keys(hash));
  EXPECT_EQ(copy.get("01"), nullptr);
}

TEST(ZmHash, KeysOfOneHashPastAllProbesAreKept) {
  constexpr unsigned kPairs = 12;
  constexpr unsigned kKeys = 1U << kPairs;
  ZmStringHash hash;
  std::srand(1);
  for (unsigned i = 0; i < kKeys; ++i) {
    const ZmString key(colliding(i, kPairs).c_str());
    hash.set(new ZmString("old"), key);
    hash.set(new ZmString(static_cast<int>(i)), key);
    hash.set(new ZmString(static_cast<int>(i)), ZmString("plain") + static_cast<int>(i));
  }
  ZmStringHash copy(hash);
  EXPECT_EQ(keys(copy), keys(hash));
  for (unsigned i = 0; i < kKeys; ++i)
    ASSERT_EQ(copy.get(colliding(i, kPairs).c_str())->integervalue(), static_cast<int>(i));
  ZmStringHash read;
  EXPECT_EQ(unpack(read, record(hash)), 0);
  const auto found = keys(read);
  EXPECT_EQ(std::set(found.begin(), found.end()).size(), 2 * kKeys);
  for (unsigned i = 0; i < kKeys; ++i) {
    const ZmString key(colliding(i, kPairs).c_str());
    delete hash.remove(key);
    ASSERT_EQ(hash.get(key), nullptr);
    ASSERT_NE(hash.get(ZmString("plain") + static_cast<int>(i)), nullptr);
  }
  EXPECT_EQ(keys(hash).size(), kKeys);
}
