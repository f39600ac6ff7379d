#include "ZmExpressionOperator.h"

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

using enum ZmOperation;

// These strengths are the language's own: bitwise operators bind tighter than comparisons, shifts
// more loosely than logical operators, ";" tightest of all.
constexpr ZmExpressionOperator kOperators[] = {
    {";", kNone, 1024, true},       {",", kNone, 1024, false},
    {"(", kOpen, 256, false},       {")", kClose, 256, false},
    {"--", kNegate, 128, false},    {"!", kNot, 128, true},
    {"not", kNot, 128, true},       {"/", kDivide, 64, true},
    {"div", kDivide, 64, true},     {"*", kMultiply, 64, true},
    {"mul", kMultiply, 64, true},   {"%", kModulo, 64, true},
    {"mod", kModulo, 64, true},     {"+", kAdd, 32, true},
    {"add", kAdd, 32, true},        {"-", kMinus, 32, true},
    {"sub", kSubtract, 32, true},   {"&", kBitAnd, 16, true},
    {"|", kBitOr, 16, true},        {"^", kBitXor, 16, true},
    {"xor", kBitXor, 16, true},     {"=", kEqual, 8, true},
    {"==", kEqual, 8, true},        {"eq", kEqual, 8, true},
    {"=~", kNone, 8, true},         {"<>", kUnequalIntegers, 8, true},
    {"!=", kUnequal, 8, true},      {"ne", kUnequal, 8, true},
    {"<", kLess, 8, true},          {"lt", kLess, 8, true},
    {">", kGreater, 8, true},       {"gt", kGreater, 8, true},
    {"<=", kLessEqual, 8, true},    {"le", kLessEqual, 8, true},
    {">=", kGreaterEqual, 8, true}, {"ge", kGreaterEqual, 8, true},
    {"in", kIn, 8, true},           {"has", kHas, 8, true},
    {"&&", kAnd, 4, true},          {"and", kAnd, 4, true},
    {"||", kOr, 4, true},           {"or", kOr, 4, true},
    {"<<", kShiftLeft, 2, true},    {"ls", kShiftLeft, 2, true},
    {">>", kShiftRight, 2, true},   {"rs", kShiftRight, 2, true},
    {"max", kMaximum, 1, true},     {"min", kMinimum, 1, true},
    {":", kNone, 1, true},
};
// Binds as weakly as the weakest: a precedence can be asked for any text.
constexpr ZmExpressionOperator kUnknown = {"", kNone, 1, false};

constexpr std::size_t kLongest = 3;
constexpr std::size_t kSlots = 256;

// Where the search for a name of 1 to kLongest bytes begins.
// Multiplicative hashing by the golden ratio (Knuth, The Art of Computer Programming, section 6.4).
constexpr std::size_t slot(std::string_view name) {
  std::uint32_t hash = 0;
  for (const char c : name) hash = (hash << 8) + static_cast<unsigned char>(c);
  return (hash * 2654435769U) >> 24;
}

// Positions in kOperators plus one, so that 0 is a free slot.
constexpr auto kTable = [] {
  std::array<unsigned char, kSlots> table{};
  for (std::size_t i = 0; i < std::size(kOperators); ++i) {
    std::size_t at = slot(kOperators[i].name);
    while (table[at] != 0) at = (at + 1) % kSlots;
    table[at] = static_cast<unsigned char>(i + 1);
  }
  return table;
}();

}  // namespace

// Asked for every token of every text that is parsed, so it must neither allocate nor compare much.
const ZmExpressionOperator* zm_operator(std::string_view name) {
  if (name.empty() || name.size() > kLongest) return &kUnknown;
  for (std::size_t at = slot(name); kTable[at] != 0; at = (at + 1) % kSlots) {
    const ZmExpressionOperator& found = kOperators[kTable[at] - 1U];
    if (found.name == name) return &found;
  }
  return &kUnknown;
}

int zm_integer(float value) {
  if (value != value) return 0;
  if (value >= 2147483648.0F) return INT_MAX;
  return value <= -2147483648.0F ? INT_MIN : static_cast<int>(value);
}
