#include <benchmark/benchmark.h>
#include <muParser.h>

#include "installer/desktop/commands/data/expressionparser.h"

namespace bench {
namespace {

constexpr char expression[] = "2+3*4-(5/2)^2";

/// What `Evaluate` does with each expression: a parser of its own, used once.
void evaluate_once(benchmark::State& state) {
  for (auto _ : state) {
    const char* text = expression;
    benchmark::DoNotOptimize(text);
    ky::CExpressionParser parser(text);
    benchmark::DoNotOptimize(parser.Evaluate());
  }
}
BENCHMARK(evaluate_once)->Unit(benchmark::kMicrosecond);

/// A parser that is made for evaluating one expression many times, here used for each once; making it is not counted.
void evaluate_once_muparser(benchmark::State& state) {
  mu::Parser parser;
  for (auto _ : state) {
    parser.SetExpr(expression);
    benchmark::DoNotOptimize(parser.Eval());
  }
}
BENCHMARK(evaluate_once_muparser)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
