#include <cstring>
#include <memory>
#include <random>

#include "ZmTest.h"

namespace {

// Virtual table, slots, capacity, last and first index.
static_assert(sizeof(ZmBaseList<ZmString>) == sizeof(void*) * 3 + sizeof(int) * 2);

using List = ZmBaseList<Counted>;

void add(List& list, int number) {
  auto made = std::make_unique<Counted>(number);
  if (list.push(made.get())) static_cast<void>(made.release());
}

void fill(List& list, int count) {
  for (int i = 0; i < count; ++i) add(list, i);
}

std::string held(const List& list) {
  std::string all;
  for (int i = 0; i < list.length(); ++i) all += std::to_string(list.get(i)->number) + " ";
  return all;
}

// Behind the virtual table and the slots: capacity, last and first index.
std::string fields(const List& list) {
  int found[3];
  std::memcpy(found, reinterpret_cast<const char*>(&list) + 2 * sizeof(void*), sizeof found);
  return std::to_string(found[0]) + " " + std::to_string(found[1]) + " " + std::to_string(found[2]);
}

ZmStringList texts(std::initializer_list<const char*> from) {
  ZmStringList list;
  for (const char* each : from) list.push(new ZmString(each));
  return list;
}

// Compares hundreds only, so that equal elements can be told apart.
int by_hundreds(const Counted* a, const Counted* b) { return a->number / 100 - b->number / 100; }

// The sort as it is published: by recursion, slots lo to hi.
void textbook(std::vector<int>& items, int lo, int hi) {
  const auto at = [&items](int i) -> int& { return items[static_cast<std::size_t>(i)]; };
  const auto order = [](int a, int b) { return a / 100 - b / 100; };
  const int mid = lo + ((hi - lo) >> 1);
  const int pivot = at(mid);
  at(mid) = at(lo);
  int i = lo;
  int j = hi;
  while (i < j) {
    while (i < j && order(at(j), pivot) >= 0) j--;
    if (i != j) at(i++) = at(j);
    while (i < j && order(at(i), pivot) <= 0) i++;
    if (i != j) at(j--) = at(i);
  }
  at(i) = pivot;
  if (lo < i) textbook(items, lo, i - 1);
  if (hi > i) textbook(items, i + 1, hi);
}

}  // namespace

TEST(ZmList, LendsTakesAndHandsBack) {
  List list;
  EXPECT_EQ(fields(list), "0 -1 0");
  for (Counted* none : {list.get(0), list.top(), list.pop(), list.remove(0)})
    EXPECT_EQ(none, nullptr);
  fill(list, 5);
  EXPECT_EQ(fields(list), "7 4 0");
  for (const int i : {-1, 5}) EXPECT_TRUE(!list.get(i) && !list.remove(i));
  EXPECT_EQ(list.top()->number, 4);
  const std::pair<Counted*, int> handed[] = {
      {list.remove(1), 1}, {list.pop(), 4}, {list.remove(2), 3}, {list.remove(0), 0}};
  for (const auto& [object, number] : handed) {
    EXPECT_EQ(object->number, number);
    delete object;
  }
  EXPECT_EQ(held(list), "2 ");
  list.clear();
  EXPECT_EQ(fields(list), "7 -1 0");
}

TEST(ZmList, OwnsItsElements) {
  {
    List list;
    fill(list, 20);
    List copy(list);
    EXPECT_EQ(Counted::live, 40);
    EXPECT_EQ(held(copy), held(list));
    EXPECT_NE(copy.get(7), list.get(7));
    fill(copy, 3);
    copy = list;
    copy = *&copy;
    EXPECT_EQ(held(copy), held(list));
    list.clear();
    EXPECT_EQ(Counted::live, 20);
    Counted* const kept = copy.pop();
    copy.clear();
    copy.push(kept);
    copy.release();
    EXPECT_EQ(Counted::live, 1);
    copy.push(kept);
  }
  EXPECT_EQ(Counted::live, 0);
}

TEST(ZmList, EqualElementsEndInTheTextbookOrder) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    List list;
    std::vector<int> numbers;
    const int keys = 1 + round % 17;  // down to one: all elements equal
    for (int i = 0; i < round; ++i) {
      numbers.push_back(static_cast<int>(random() % static_cast<unsigned>(keys)) * 100 + i % 100);
      add(list, numbers.back());
    }
    if (round > 1) textbook(numbers, 0, round - 1);
    list.sort(by_hundreds);
    std::string expected;
    for (const int number : numbers) expected += std::to_string(number) + " ";
    ASSERT_EQ(held(list), expected);
  }
  List one;
  fill(one, 1);
  one.sort([](const Counted*, const Counted*) -> int { std::abort(); });
}

TEST(ZmList, SortsTextsWithBoundedStackAndTime) {
  ZmStringList list = texts({"b", "a", "", "c", "a"});
  list.sort();
  EXPECT_EQ(joined(list, "|"), "|a|a|b|c");
  list.sort([](const ZmString* a, const ZmString* b) { return -zm_string_sort_func(a, b); });
  EXPECT_EQ(joined(list, "|"), "c|b|a|a|");
  ZmStringList equal;
  for (int i = 0; i < 300000; ++i) equal.push(new ZmString(i % 3));
  equal.sort();
  for (int i = 0; i < 300000; ++i) ASSERT_EQ(equal.get(i)->integervalue(), i / 100000);
}

TEST(ZmList, JoinsAndFinds) {
  const ZmStringList abc = texts({"a", "b", "c"});
  EXPECT_EQ(joined(abc, ", "), "a, b, c");
  EXPECT_TRUE(ZmStringList().join(", ").isundef());
  EXPECT_EQ(abc.find("c"), 2);
  EXPECT_EQ(abc.find(""), -1);
  ZmStringList holes = texts({"a", ""});
  holes.push(new ZmString);
  EXPECT_EQ(holes.find(ZmString()), 1);
  EXPECT_EQ(joined(holes, "-"), "a--");
}
