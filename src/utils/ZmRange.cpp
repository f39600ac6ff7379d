#include "ZmRange.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>
#include <optional>
#include <queue>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmText.h"
#include "ZmTextCursor.h"
#include "ZmTextList.h"
#include "ZmTextNumber.h"
#include "ZmTextSplit.h"

namespace {

constexpr ZmCharSet kRangeBlank(" \t\n");  // no "\r"
constexpr ZmCharSet kRange(" \t\n0123456789xX-,"), kNeverFirst("xX,");

struct Number {
  int value;
  int digits;  // how many, leading zeros included
};

// The sign is applied to the unsigned value, where a number of any length wraps and none overflows.
std::optional<Number> number(ZmTextCursor& in) {
  in.skip(kRangeBlank);
  const bool negative = in.accept('-');
  const ZmDigits digits = zm_digits(in);
  if (digits.count == 0) return std::nullopt;
  return Number{static_cast<int>(negative ? 0 - digits.value : digits.value), digits.count};
}

// Blanks may stand before every number and sign of a range.
bool mark(ZmTextCursor& in, char c) {
  in.skip(kRangeBlank);
  return in.accept(c);
}

// One item of a range text. In 64 bits, where no span or step can overflow.
struct Item {
  std::int64_t first;
  std::int64_t last;
  std::int64_t step = 1;    // at least 1
  bool complement = false;  // "X": what the steps leave out

  std::int64_t distance() const { return first <= last ? last - first : first - last; }
  std::int64_t count() const {
    const std::int64_t met = distance() / step + 1;
    return complement ? distance() + 1 - met : met;
  }
  int at(std::int64_t d) const { return static_cast<int>(first <= last ? first + d : first - d); }
  int* write(int* out) const;
};

// Writes count() values and returns the place behind them.
// Goes from one met value to the next, so that the cost is that of what is written.
int* Item::write(int* out) const {
  if (count() == 0) return out;  // a long span with X1: not worth walking
  for (std::int64_t d = 0; d <= distance(); d += step) {
    if (!complement) *out++ = at(d);
    const std::int64_t left_out = complement ? std::min(d + step, distance() + 1) : d;
    for (std::int64_t e = d + 1; e < left_out; ++e) *out++ = at(e);
  }
  return out;
}

// Reads the items of a range text, one a call.
class Items {
 public:
  explicit Items(std::string_view text) : in_(text) {}
  std::optional<Item> next();  // nothing from the first misfit on
  // The digits of the first number, once next() has met it.
  std::optional<int> padding() const { return padding_; }

 private:
  ZmTextCursor in_;
  bool more_ = true;
  std::optional<int> padding_;
};

std::optional<Item> Items::next() {
  if (!more_) return std::nullopt;
  more_ = false;
  const auto first = number(in_);
  if (!first) return std::nullopt;
  if (!padding_) padding_ = first->digits;
  Item item{first->value, first->value};
  if (mark(in_, '-')) {
    const auto last = number(in_);
    if (!last) return std::nullopt;
    item.last = last->value;
    const bool grid = mark(in_, 'x');
    if (grid || mark(in_, 'X')) {
      const auto step = number(in_);
      if (!step) return std::nullopt;
      item.step = std::max<std::int64_t>(1, std::abs(std::int64_t{step->value}));
      item.complement = !grid;
    }
  }
  more_ = mark(in_, ',');
  return item;
}

// "A-B", or "A-BxG" for a gap G above 1.
void appendspan(ZmString& text, int last, std::int64_t gap) {
  text.append('-');
  text += last;
  if (gap > 1) {
    text.append('x');
    text += static_cast<long long>(gap);
  }
}

// A span of one value is written without "-".
void pushspan(ZmStringList& out, int first, int last, std::int64_t gap) {
  ZmOwned<ZmString> text(new ZmString(first));
  if (first != last) appendspan(*text, last, gap);
  out._push(text.release());
}

// The text around the bracket of a pattern item.
struct Surroundings {
  std::string before;
  std::string after;

  // One name, in a buffer of just its size, which the caller owns.
  ZmString* around(int value, int padding) const {
    const ZmNumberText number(value);
    std::string_view digits = number.view();
    const auto width = std::max(static_cast<std::size_t>(padding), digits.size());
    const std::size_t size = before.size() + width + after.size() + 1;
    if (size > INT_MAX) throw std::bad_alloc();
    ZmOwned<ZmString> name(new ZmString);
    name->_resize(static_cast<int>(size));
    zm_append(*name, before);
    std::size_t zeros = width - digits.size();
    if (value < 0) {  // the sign stands first and counts for the width
      name->append('-');
      digits.remove_prefix(1);
    }
    for (; zeros > 0; --zeros) name->append('0');
    zm_append(*name, digits);
    zm_append(*name, after);
    return name.release();
  }
};

}  // namespace

ZmRange::ZmRange(const ZmString& text) { add(text); }

ZmRange::ZmRange(const ZmRange& other) : ZmBase(other), padding_(other.padding_) {
  if (other.count_ > 0) std::copy(other._begin(), other._end(), _extend(other.count_));
}

ZmRange::~ZmRange() { delete[] values_; }

// The copy first: it may fail, and then nothing has changed.
ZmRange& ZmRange::operator=(const ZmRange& other) {
  ZmRange copy(other);
  std::swap(values_, copy.values_);
  count_ = copy.count_;
  padding_ = copy.padding_;
  return *this;
}

int ZmRange::type() const { return 89; }

void ZmRange::parse(const ZmString& text) {
  clear();
  add(text);
}

void ZmRange::add(const ZmString& text) {
  // Read twice: counted first, so that there is one allocation and it fails before anything
  // changed.
  std::int64_t total = 0;
  Items counted(zm_view(text));
  while (const auto item = counted.next()) total += item->count();
  if (total > 0) {
    int* out = _extend(total);
    Items items(zm_view(text));
    while (const auto item = items.next()) out = item->write(out);
  }
  if (counted.padding()) padding_ = *counted.padding();
}

void ZmRange::add(int value) { *_extend(1) = value; }

// The padding stays: parse() clears, too, and a text without a number leaves it as it was.
void ZmRange::clear() {
  delete[] std::exchange(values_, nullptr);
  count_ = 0;
}

// Makes room for exactly n more values, at least one, and returns their place. The values stay as
// they are when there is no memory.
int* ZmRange::_extend(std::int64_t n) {
  if (n > INT_MAX - count_) throw std::bad_alloc();
  auto* const values = new int[static_cast<std::size_t>(count_ + n)];
  int* added = std::copy(_begin(), _end(), values);
  delete[] std::exchange(values_, values);
  count_ += static_cast<int>(n);
  return added;
}

unsigned char ZmRange::has(int value) const { return std::find(_begin(), _end(), value) != _end(); }

// By sorted copies: looking for each value would be quadratic.
unsigned char ZmRange::has(const ZmString& text) const {
  ZmRange some(text);
  ZmRange all(*this);
  some._strip();
  all.sort();
  return std::includes(all._begin(), all._end(), some._begin(), some._end());
}

// Equal integers can't be told apart, so any sorting does.
void ZmRange::sort() { std::sort(_begin(), _end()); }

void ZmRange::reverse() { std::reverse(_begin(), _end()); }

// The ends, then always the middles of what is left, from the widest intervals to the narrowest:
// who stops early has looked at values that lie evenly.
void ZmRange::binary() {
  if (count_ < 4) return;
  struct Interval {
    int low, high;
  };
  std::vector<int> order{get(0), get(count_ - 1)};
  order.reserve(static_cast<std::size_t>(count_));
  std::queue<Interval> intervals;
  for (intervals.push({0, count_ - 1}); !intervals.empty(); intervals.pop()) {
    const auto [low, high] = intervals.front();
    if (high - low < 2) continue;
    const int middle = low + (high - low) / 2;
    order.push_back(get(middle));
    intervals.push({low, middle});
    intervals.push({middle, high});
  }
  std::copy(order.begin(), order.end(), _begin());
}

void ZmRange::_strip() {
  sort();
  count_ = static_cast<int>(std::unique(_begin(), _end()) - _begin());
}

// The distance from the value at i to the next one; above 32 bits at the extremes.
std::int64_t ZmRange::_gap(int i) const { return std::int64_t{get(i + 1)} - get(i); }

// Of a stripped range: the position where the run ends that starts at `from`, or `from` when none
// does. A run has at least three values, and one that ends a run never starts another.
int ZmRange::_run(int from) const {
  int end = from + 1;
  while (end < count_ - 1 && _gap(end) == _gap(from)) ++end;
  return end - from < 2 ? from : end;
}

// Zeros stand before the first number of a run only: the last one has the width that it needs.
ZmString ZmRange::value() {
  ZmString text;
  _strip();
  for (int i = 0; i < count_; ++i) {
    if (i > 0) text.append(',');
    const int end = _run(i);
    if (end == i) {
      text += get(i);
    } else {
      text.integervalue(get(i), padding_);
      appendspan(text, get(end), _gap(i));
      i = end;
    }
  }
  return text;
}

// Two values far apart are a run of their own here, so that both fit into one piece.
void ZmRange::chunk(int size, ZmStringList& out) {
  if (size < 1) return;
  _strip();
  if (count_ == 2 && size > 1) return pushspan(out, get(0), get(1), _gap(0));
  for (int i = 0; i < count_; ++i) {
    const int end = _run(i);
    for (; end - i >= size; i += size) pushspan(out, get(i), get(i + size - 1), _gap(i));
    pushspan(out, get(i), get(end), _gap(i));
    i = end;
  }
}

// Counted before chunk() drops the values that are there twice.
void ZmRange::partition(int parts, ZmStringList& out) {
  if (parts >= 1) chunk(count_ / parts + (count_ % parts != 0), out);
}

// By its characters alone: "1--x" is taken for a range too, and reading it stops at the misfit.
unsigned char ZmRange::isrange(const ZmString& text) {
  ZmTextCursor in(zm_view(text));
  if (kNeverFirst.has(in.peek())) return 0;
  in.skip(kRangeBlank);
  if (in.eof()) return 0;
  in.skip(kRange);
  return in.eof();
}

// Sorted first: 1 and 3 rearrange sorted values, 4 and 5 those of the text.
void ZmRange::_arrange(int order) {
  if (order >= 1 && order <= 3) sort();
  if (order == 3 || order == 5) reverse();
  if (order == 1 || order == 4) binary();
}

void ZmRange::patternsplit(int order, const ZmString& pattern, ZmStringList& out) {
  // A bare range stands for plain numbers: "001-003" gives 1, 2 and 3.
  if (isrange(pattern)) {
    ZmRange range(pattern);
    range._arrange(order);
    for (int i = 0; i < range.count_; ++i) out._push(new ZmString(range.get(i)));
    return;
  }
  // Most patterns are plain names.
  constexpr ZmCharSet kSpecial("[, \t\r\n");
  ZmTextCursor in(zm_view(pattern));
  if (!in.until(kSpecial).empty() && in.eof()) return out._push(new ZmString(pattern));
  ZmStringList items;
  zm_split_comma(zm_view(pattern), items);
  for (int i = 0; i < items.length(); ++i) _expand(order, *items.get(i), out);
}

// The range is the token behind the first "[". The one behind it is dropped, whatever it is.
void ZmRange::_expand(int order, const ZmString& item, ZmStringList& out) {
  ZmTokens tokens(zm_view(item), ZmSyntax::kRange);
  std::string_view token;
  Surroundings name;
  while (tokens.next(token) && token != "[") name.before += token;
  if (!tokens.next(token)) return out._push(new ZmString(item));
  ZmRange range(zm_string(token));
  tokens.next(token);
  while (tokens.next(token)) name.after += token;
  range._arrange(order);
  for (int i = 0; i < range.count_; ++i) out._push(name.around(range.get(i), range.padding_));
}

// What the text does not reach keeps the value that the caller has given it.
void ZmRange::patternsplit(const ZmString& text, int& start, int& end, int& step) {
  ZmTextCursor in(zm_view(text));
  const auto first = number(in);
  if (!first) return;
  start = first->value;
  if (!mark(in, '-')) return;
  const auto last = number(in);
  if (!last) return;
  end = last->value;
  if (!mark(in, 'x') && !mark(in, 'X')) return;
  if (const auto by = number(in)) step = by->value;
}
