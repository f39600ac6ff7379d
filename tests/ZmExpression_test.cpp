#include "ZmExpression.h"

#include <sstream>

#include "ZmTest.h"

namespace {

// Rows are a source and its pieces, each piece behind a "`".
void check(void (*cut)(const ZmString&, ZmStringList&), std::initializer_list<std::string> rows) {
  for (const auto& row : rows) {
    const auto source = row.substr(0, row.find('`'));
    ZmStringList list;
    list.push(new ZmString(source.c_str()));  // outputs are never cleared
    cut(source.c_str(), list);
    EXPECT_EQ(list.join("`"), row.c_str());
  }
}

// The result, the left part and the right one.
template <auto Split>
void halves(const ZmString& source, ZmStringList& out) {
  ZmString left("L"), right("R");
  const int found = Split(source, left, right);
  for (const ZmString& part : {ZmString(found), left, right}) out.push(new ZmString(part));
}

// "(op a b)", a missing child as "_"; a node without name and operator as "()".
std::string shown(const ZmExpression* node) {
  if (!node) return "_";
  if (node->name().length() > 0) return text(node->name());
  if (node->op().length() == 0) return "()";
  return "(" + text(node->op()) + " " + shown(node->a()) + " " + shown(node->b()) + ")";
}

std::string evaluated(ZmExpression& expression) {
  ZmScalar result{ZmString("untouched")};
  expression.eval(result);
  return text(result.stringvalue());
}

constexpr int kInfix = 0, kPostfix = 1, kPrefix = 2;

// "tree => value", without a value where parsing fails.
template <int kNotation>
std::string parsed(const char* source) {
  ZmExpression expression;
  const unsigned char valid = expression.parse(source, kNotation);
  std::string tree = shown(&expression);
  if (!valid) return tree;
  const std::string value = evaluated(expression);
  EXPECT_EQ(evaluated(expression), value) << source;
  return tree + " => " + value;
}

// Knows x = 4, y = a text, e = nothing; every other name is its own value and no variable.
struct Table : ZmReference, Counted {
  void value(const ZmString& name, ZmString& out) override {
    EXPECT_EQ(out.length(), 0);
    if (name == "x") out = "4";
    if (name == "y") out = "a, b";
    if (!variable(name)) ZmReference::value(name, out);
  }
  unsigned char valid(const ZmString& name) override { return !(name == "bad"); }
  unsigned char variable(const ZmString& name) override {
    EXPECT_GT(name.length(), 0);
    return name == "x" || name == "y" || name == "e";
  }
};

}  // namespace

TEST(ZmExpressionTokens, Expression) {
  check(ZmExpression::tokenize,
        {"", " \t\r\n", "\"\"`", "a<=b`a`<=`b", "x => y`x`=>`y", "a=<b><c<<<d`a`=<`b`><`c`<<`<`d",
         "!x!=!`!`x`!=`!", "a&&b&c||d|e&|`a`&&`b`&`c`||`d`|`e`&`|", "-5 a-b`-`5`a`-`b",
         "a%b ^,.~{[`a%b`^,.~{[", "(a*b)/c+d?e:f`(`a`*`b`)`/`c`+`d`?`e`:`f", "=~x`=`~x",
         "'it\\'s'b\"c d`it's`b`c d", "'a\\\\\\n' '\\`a\\n`\\"});
}

TEST(ZmExpressionTokens, OtherLanguages) {
  check(ZmExpression::callbacktokenize, {"f('x y')`f`(`x y`)", "a+b,\"\"c`a+b,``c"});
  check(ZmExpression::valuetokenize,
        {"{a {b}} , 'c'`a {b}`,`c", "a,b {'`a,b`'", "a{b} ,c}(d)`a{b}`,`c}`(`d`)", "{}{{``{"});
  check(ZmExpression::rangetokenize, {"host[1-3] web`host`[`1-3`]`web", "'a b'`'a`b'"});
  check(ZmExpression::commandtokenize, {"echo $(FRAME_NUM)x`echo $`(`FRAME_NUM`)`x", "Abc`A`bc",
                                        "'a\\'B' c'D'`'a\\'B'` c'`D`'", "_a_B\"(`_`a_`B`\"("});
}

TEST(ZmExpressionTokens, Splitters) {
  check(ZmExpression::split,
        {"x, {a,b}, 'c,d'`x`{a,b}`'c,d'", "  a  ,  `a", " \t", ",x``x", "a, ,b,`a``b",
         "a'\\',' {b{,}},c`a'\\',' {b{,}}`c", "a,{b,'c`a`{b,'c", "a}'b,c `a}'b,c"});
  check(ZmExpression::splitcomma, {"a, b[1,2] ,c`a`b[1,2]`c", "x[1][2,3]`x[1][2`3]",
                                   "a b[ 1 ] [2,3],,`ab[ 1 ][2,3]`", "x[1],[2`x[1]`[2"});
  check(ZmExpression::splitslash, {"a//b/`a``b", "", "/ `` "});
  check(ZmExpression::splittab, {"a b\t\t`a b`"});
  check(ZmExpression::splitspace, {" a \r\n\tb `a`b", " "});
  ZmStringHash hash;
  ZmExpression::split("a,b , a", hash);
  ZmStringList keys;
  hash.copykeys(keys);
  keys.sort();
  EXPECT_EQ(keys.join(" ") + *hash.get("b"), "a bb");
}

TEST(ZmExpressionTokens, PairSplitters) {
  check(halves<ZmExpression::splitequal>,
        {"my name = v `1`Lmyname`Rv ", "abc`0`Labc`R", "=`1`L`R", "a==b`1`La`R=b"});
  check(halves<ZmExpression::splitbecomes>,
        {"a:`1`La`R", "a=b:c`0`La`R", "a := b`1`La`R= b", "abc`0`Lab`R", "a b: : c `1`Lab`R: c ",
         "`0`L`R", "a=`0`La`R"});
  ZmString left, right;
  ZmExpression::splitperiod("a.b.c", left, right);
  ZmExpression::splitperiod(" a ", left, right);
  EXPECT_EQ(left + "`" + right, "a a `b.c");
}

// The strength of operators; those behind "~" are none between two operands.
TEST(ZmExpression, KnowsItsOperators) {
  for (const char* row :
       {"1024 ;", "~1024 ,", "256 (", "~256 )", "~128 -- ! not", "64 / * div mul % mod",
        "32 + - add sub", "16 & | ^ xor", "8 = == eq <> =~ != ne < lt > gt <= le >= ge in has",
        "4 && and || or", "2 << >> rs ls", "1 min max :", "~1 ? x MIN"}) {
    std::istringstream words(row[0] == '~' ? row + 1 : row);
    int strength = 0;
    words >> strength;
    for (std::string op; words >> op;) {
      EXPECT_EQ(ZmExpression::precedence(op.c_str()), strength) << op;
      ZmStringList tokens;
      for (const char* token : {"1", op.c_str(), "2"}) tokens.push(new ZmString(token));
      ZmExpression expression;
      EXPECT_EQ(expression._parse(tokens, kInfix), row[0] != '~') << op;
    }
  }
}

// Postfix takes the operand written last as a; the prefix and postfix parsers' unary nodes have no
// b and come to nothing.
TEST(ZmExpression, ParsesAndEvaluates) {
  checklines("trees", parsed<kInfix>);
  check({"7 2 - => (- 2 7) => -5", "1 not => (not 1 _) => untouched", "1 + => (+ 1 _)",
         "1 2 3 + => 1"},
        parsed<kPostfix>);
  check({"- 7 2 => (- 7 2) => 5", "+ 1 * 2 3 => (+ 1 (* 2 3)) => 7",
         "not 1 => (not 1 _) => untouched", "+ 1 => (+ 1 _)", "( 1 ) => )"},
        parsed<kPrefix>);
}

TEST(ZmExpression, OtherParsersAndTokens) {
  ZmExpression call, list;
  EXPECT_EQ(call.callbackparse("(a-b * 'c d')"), 1);
  EXPECT_EQ(shown(&call), "(* a-b c d)");
  EXPECT_EQ(list.valueparse("{a {b}} has b"), 1);
  EXPECT_EQ(shown(&list), "(has a {b} b)");
  list.copy(ZmExpression());
  ZmStringList tokens;
  for (const char* token : {"-", "1", "-", "--"}) tokens.push(new ZmString(token));
  EXPECT_EQ(list._parse(tokens, kInfix), 1);
  EXPECT_EQ(tokens.join(" "), "-- 1 - --");    // a unary minus is rewritten
  EXPECT_EQ(shown(&list), "(- (-- _ 1) --)");  // "--" is no operator itself
}

TEST(ZmExpression, ReferenceIsSharedAndCounted) {
  {
    auto* table = new Table;
    ZmExpression early, late;
    early.reference(table);
    ASSERT_EQ(early.parse("x * 2 + bad", kInfix), 1);
    EXPECT_EQ(table->count(), 5);
    EXPECT_EQ(early.isvalid(), 0);
    ASSERT_EQ(late.parse("e == e and y has b", kInfix), 1);
    late.reference(table);
    EXPECT_EQ(table->count(), 12);
    EXPECT_EQ(late.isvalid(), 1);
    EXPECT_EQ(evaluated(late), "1");
    ZmStringList names;
    late.variables(names);
    EXPECT_EQ(names.join(" "), "y e e");  // right operand first
    ZmExpression failed(early);
    EXPECT_EQ(table->count(), 17);
    ZmExpression* a = failed.a();
    ZmExpression* b = failed.b();
    EXPECT_EQ(failed.parse("x (1 + 2) y", kInfix), 0);
    delete a;
    delete b;
    EXPECT_EQ(table->count(), 13);  // what a failed parse leaves over is freed
    EXPECT_EQ(Table().count(), 0);
    EXPECT_EQ(Counted::live, 1);
  }
  EXPECT_EQ(Counted::live, 0);
}

TEST(ZmExpression, CallbacksGiveValues) {
  ZmExpression expression;
  expression.parse("a + 2", kInfix);
  EXPECT_EQ(expression.isvalid(), 1);
  EXPECT_EQ(evaluated(expression), "0");  // without a source a name is its own value
  expression.valuereq([](const ZmString& name, ZmString& out) {
    if (!(name == "none")) out = name == "a" ? ZmString("40") : name;
  });
  expression.validreq([](const ZmString& name) -> unsigned char { return !(name == "2"); });
  EXPECT_EQ(evaluated(expression), "42");
  EXPECT_EQ(expression.isvalid(), 0);
  expression.b()->value("8");  // a value of its own comes before every source
  EXPECT_EQ(expression.isvalid(), 1);
  EXPECT_EQ(evaluated(expression), "48");
  expression.b()->value("");
  expression.b()->name("none");
  EXPECT_EQ(evaluated(expression), "0");  // 40 + an empty text
}

// A leaf remembers what its text is as a number, a node what its operator means.
TEST(ZmExpression, ChangesShowInTheNextEvaluation) {
  ZmExpression expression;
  expression.parse("1 + (2 + 3)", kInfix);
  EXPECT_EQ(evaluated(expression), "6");
  expression.b()->b()->name("10");
  EXPECT_EQ(evaluated(expression), "13");
  expression.b()->op("*");
  expression.b()->a()->value("1.5");
  EXPECT_EQ(evaluated(expression), "16.000000");
  expression.copy(*expression.b());  // a part of the tree itself
  EXPECT_EQ(evaluated(expression), "15.000000");
  expression.a()->parse("4", kInfix);
  EXPECT_EQ(evaluated(expression), "40");
  expression.a()->copy(*expression.b());
  EXPECT_EQ(evaluated(expression), "100");
}

TEST(ZmExpression, DisplaysANodeALine) {
  ZmExpression expression;
  expression.parse("1 + 2 * -x", kInfix);
  EXPECT_EQ(printed([&] { expression.display(1); }), " +\n   1\n   *\n     2\n     --\n       x\n");
}

// Depth follows the input; the stack must not.
TEST(ZmExpression, DepthNeedsNoStack) {
  constexpr int n = 300'000;
  const struct {
    std::string source;
    int notation;
    const char* value;
  } rows[] = {{repeated("1+", n - 1, "1"), kInfix, "300000"},
              {repeated("- ", n, "x"), kInfix, nullptr},
              {repeated("(", n, "5") + repeated(")", n, ""), kInfix, "5"},
              {repeated("(", n, "5"), kInfix, "untouched"},
              {repeated("+ 1 ", n - 1, "1"), kPrefix, "300000"},
              {"1" + repeated(" 1 +", n - 1, ""), kPostfix, "300000"},
              {"((1 - 1) + " + repeated("2 * 1 + ", n / 2, "0)"), kInfix, "300000"}};
  for (const auto& [source, notation, value] : rows) {
    ZmExpression expression;
    ASSERT_EQ(expression.parse(zm_string(source), notation), 1);
    expression.validreq(nullptr);
    expression.valuereq(nullptr);
    expression.reference(new Table);
    EXPECT_EQ(expression.isvalid(), 1);
    ZmStringList names;
    expression.variables(names);
    EXPECT_EQ(names.length(), value ? 0 : 1);
    EXPECT_EQ(value ? evaluated(expression) : "", value ? value : "");
    const ZmExpression copy(expression);
  }
  EXPECT_EQ(Counted::live, 0);
}
