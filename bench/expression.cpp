// Expressions beside muParser (libmuparser-dev), on the same texts; argument = row of kRows. Pairs
// to compare are BM_<what> and BM_<what>_muparser. Both are checked to give the same values first.
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "ZmExpression.h"

namespace {

// Both give these the same value: no operators of equal strength in a row, no integer division.
struct Row {
  const char* constants;
  const char* variables;
};
constexpr Row kRows[] = {
    {"1 + 2 * 3", "a + b * 3"},
    {"(1 + 2) * 3 - 8 / 2", "(a + b) * c - d / b"},
    {"1 == 1 && 2 < 3", "a == 1 && b < c"},
    {"-3 + 5", "-c + 5"},
    {"(3 + 4 * 2) * (5 - 1) + (7 * (2 + 3) - 8) * (1 + 1)",
     "(c + 4 * b) * (5 - a) + (7 * (b + c) - d) * (a + a)"},
};
constexpr int kLast = std::size(kRows) - 1;

double a = 1, b = 2, c = 3, d = 8;

void define(mu::Parser& parser) {
  parser.DefineVar("a", &a);
  parser.DefineVar("b", &b);
  parser.DefineVar("c", &c);
  parser.DefineVar("d", &d);
}

// Every leaf is asked for, numbers too. The values lie ready as texts, as a configuration's do.
void variable(const ZmString& name, ZmString& out) {
  static const ZmString one("1"), two("2"), three("3"), eight("8");
  switch (name.get(0)) {
    case 'a':
      out = one;
      break;
    case 'b':
      out = two;
      break;
    case 'c':
      out = three;
      break;
    case 'd':
      out = eight;
      break;
    default:
      out = name;
  }
}

float value(const char* text, ZmExpression::ValueRequest request) {
  ZmExpression expression;
  expression.valuereq(request);
  if (!expression.parse(text, 0)) return -1;
  ZmScalar result;
  expression.eval(result);
  return result.floatvalue();
}

[[maybe_unused]] const bool kSame = [] {
  for (const Row& row : kRows) {
    mu::Parser parser;
    define(parser);
    for (const char* text : {row.constants, row.variables}) {
      parser.SetExpr(text);
      if (parser.Eval() == static_cast<double>(value(text, variable))) continue;
      std::cerr << "different values: " << text << "\n";
      std::exit(1);
    }
  }
  return true;
}();

void BM_ParseAndEvaluate(benchmark::State& state) {
  const ZmString text(kRows[state.range(0)].constants);
  for (auto _ : state) {
    ZmExpression expression;
    ZmScalar result;
    expression.parse(text, 0);
    expression.eval(result);
    benchmark::DoNotOptimize(result.integervalue());
  }
}
BENCHMARK(BM_ParseAndEvaluate)->DenseRange(0, kLast);

// One parser for all texts: making a new one each time would cost it as much again.
void BM_ParseAndEvaluate_muparser(benchmark::State& state) {
  const std::string text(kRows[state.range(0)].constants);
  mu::Parser parser;
  for (auto _ : state) {
    parser.SetExpr(text);
    benchmark::DoNotOptimize(parser.Eval());
  }
}
BENCHMARK(BM_ParseAndEvaluate_muparser)->DenseRange(0, kLast);

void evaluate(benchmark::State& state, const char* text, ZmExpression::ValueRequest request) {
  ZmExpression expression;
  expression.valuereq(request);
  expression.parse(text, 0);
  for (auto _ : state) {
    ZmScalar result;
    expression.eval(result);
    benchmark::DoNotOptimize(result.integervalue());
  }
}

void evaluate_muparser(benchmark::State& state, const char* text) {
  mu::Parser parser;
  define(parser);
  parser.SetExpr(text);
  for (auto _ : state) benchmark::DoNotOptimize(parser.Eval());
}

// For the eye: muParser makes one number of such a text when it reads it. Here each leaf keeps its
// number and the tree is walked.
void BM_Constants(benchmark::State& state) {
  evaluate(state, kRows[state.range(0)].constants, nullptr);
}
BENCHMARK(BM_Constants)->DenseRange(0, kLast);

void BM_Constants_muparser(benchmark::State& state) {
  evaluate_muparser(state, kRows[state.range(0)].constants);
}
BENCHMARK(BM_Constants_muparser)->DenseRange(0, kLast);

void BM_Variables(benchmark::State& state) {
  evaluate(state, kRows[state.range(0)].variables, variable);
}
BENCHMARK(BM_Variables)->DenseRange(0, kLast);

void BM_Variables_muparser(benchmark::State& state) {
  evaluate_muparser(state, kRows[state.range(0)].variables);
}
BENCHMARK(BM_Variables_muparser)->DenseRange(0, kLast);

// Argument = operands. Parses, evaluates and destroys.
void BM_Sum(benchmark::State& state) {
  std::string sum = "1";
  for (int i = 1; i < state.range(0); ++i) sum += "+1";
  const ZmString text(sum.data(), static_cast<int>(sum.size()));
  const auto round = [&text] {
    ZmExpression expression;
    ZmScalar result;
    expression.parse(text, 0);
    expression.eval(result);
    return result.integervalue();
  };
  // The first round takes its memory from the system, page by page.
  if (round() != state.range(0)) state.SkipWithError("wrong sum");
  for (auto _ : state) benchmark::DoNotOptimize(round());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Sum)->Arg(125'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
