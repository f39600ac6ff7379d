// Tokenizers and splitters lose no byte; the parsers take a text as they take its tokens; a tree,
// its copy and what its leaves remember come to one value.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ZmExpression.h"
#include "ZmText.h"
#include "require.h"

namespace {

std::string joined(const ZmStringList& list, const std::string& separator = "") {
  std::string all;
  for (int i = 0; i < list.length(); ++i) {
    if (i > 0) all += separator;
    all += zm_view(*list.get(i));
  }
  return all;
}

std::string without(std::string_view text, std::string_view chars) {
  std::string rest;
  for (const char c : text)
    if (chars.find(c) == std::string_view::npos) rest += c;
  return rest;
}

template <class Cut>
ZmStringList list(Cut cut, const ZmString& source) {
  ZmStringList pieces;
  cut(source, pieces);
  return pieces;
}

void cut(const ZmString& source) {
  const std::string text(zm_view(source)), spaceless = without(text, " \t\r\n");
  require(joined(list(ZmExpression::commandtokenize, source)) == text);
  require(joined(list(ZmExpression::rangetokenize, source)) == spaceless);
  require(joined(list(ZmExpression::splitspace, source)) == spaceless);
  const bool quoted = text.find_first_of("\"'") != std::string::npos;
  const auto tokenize = [](const ZmString& s, ZmStringList& out) {
    ZmExpression::tokenize(s, out);
  };
  require(quoted || joined(list(tokenize, source)) == spaceless);
  require(quoted || joined(list(ZmExpression::callbacktokenize, source)) == spaceless);
  const bool grouped = quoted || text.find('{') != std::string::npos;
  require(grouped || joined(list(ZmExpression::valuetokenize, source)) == spaceless);
  const std::string elements = joined(list(ZmExpression::splitslash, source), "/");
  require(elements == text || elements + "/" == text);
  const std::string commas = joined(list(ZmExpression::splitcomma, source), ",");
  require(without(commas, ", \t\r\n") == without(text, ", \t\r\n"));
  const auto split = [](const ZmString& s, ZmStringList& out) { ZmExpression::split(s, out); };
  require(without(joined(list(split, source)), ", \t\r\n") == without(text, ", \t\r\n"));
  ZmStringHash hash;
  ZmExpression::split(source, hash);
  list(ZmExpression::splittab, source);

  ZmString left, right;
  ZmExpression::splitperiod(source, left, right);
  const std::string halves = std::string(zm_view(left)) + "." + std::string(zm_view(right));
  require(halves == text || halves == text + ".");
  ZmString name, value;
  const bool equal = ZmExpression::splitequal(source, name, value);
  require(equal == (text.find('=') != std::string::npos));
  ZmString before, after;
  require(!ZmExpression::splitbecomes(source, before, after) || text.find(':') < text.find('='));
}

bool same(const ZmExpression& one, const ZmExpression& other) {
  std::vector<std::pair<const ZmExpression*, const ZmExpression*>> pending = {{&one, &other}};
  while (!pending.empty()) {
    const auto [a, b] = pending.back();
    pending.pop_back();
    if (!a && !b) continue;
    if (!a || !b || zm_view(a->op()) != zm_view(b->op()) ||
        zm_view(a->name()) != zm_view(b->name()))
      return false;
    pending.emplace_back(a->a(), b->a());
    pending.emplace_back(a->b(), b->b());
  }
  return true;
}

std::string evaluated(ZmExpression& expression) {
  ZmScalar result;
  expression.eval(result);
  return std::string(zm_view(result.stringvalue()));
}

class Names : public ZmReference {
 public:
  unsigned char valid(const ZmString& name) override { return name.length() > 1; }
  unsigned char variable(const ZmString& name) override { return !name.isfloat(); }
};

void parse(const ZmString& source, int notation) {
  ZmExpression expression, other;
  const bool done = expression.parse(source, notation);
  ZmStringList tokens;
  ZmExpression::tokenize(source, tokens);
  require(other._parse(tokens, notation) == done);
  require(same(expression, other));

  const std::string value = evaluated(expression);
  require(evaluated(expression) == value);
  ZmExpression copy(expression);
  require(same(expression, copy) && evaluated(copy) == value);
  other.reference(new Names);  // asks for each name and gets the name: nothing is remembered
  require(evaluated(other) == value);
  ZmStringList names;
  other.variables(names);
  other.isvalid();
  copy.valuereq([](const ZmString&, ZmString& out) { out = "1"; });
  evaluated(copy);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ZmString source(reinterpret_cast<const char*>(data), static_cast<int>(size));
  cut(source);
  for (int notation = 0; notation < 3; ++notation) parse(source, notation);
  ZmExpression call, list;
  call.callbackparse(source);
  list.valueparse(source);
  evaluated(call);
  evaluated(list);
  return 0;
}
