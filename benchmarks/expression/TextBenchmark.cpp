#include "benchmarks/expression/Agreement.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"
#include "benchmarks/expression/OwnExpression.h"
#include "benchmarks/expression/RivalExpression.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>

namespace ExpressionBenchmark {

namespace {

// One text with a builder and a muparser object, both of which know its variables beforehand and are kept.
class TextCase {
public:
  explicit TextCase(const ExpressionCase &expression)
      : m_name(expression.name), m_names(expression.variableNames("x")), m_text(expression.text),
        m_rivalText(expression.rivalText()), m_row(expression.drawRows(1)), m_rival(m_names) {
    declareVariables(m_builder, m_names);
  }

  // Both times the former text's expression, parsed or compiled, is dropped, which is part of the work.
  double evaluateOwn() {
    m_own = std::make_unique<OwnExpression>(m_builder, m_text, m_names);
    m_own->set(m_row.data());
    return m_own->evaluate();
  }
  double evaluateRival() {
    m_rival.setText(m_rivalText);
    m_rival.set(m_row.data());
    return m_rival.evaluate();
  }
  double evaluateNative() const { return nativeExpression(m_name).single(m_row.data()); }

  const std::string &name() const noexcept { return m_name; }
  std::vector<double> &ownSeconds() noexcept { return m_ownSeconds; }
  std::vector<double> &rivalSeconds() noexcept { return m_rivalSeconds; }

private:
  std::string m_name;
  std::vector<std::string> m_names;
  std::string m_text;
  std::string m_rivalText;
  std::vector<double> m_row;
  Builder m_builder;
  std::unique_ptr<OwnExpression> m_own;
  RivalExpression m_rival;
  std::vector<double> m_ownSeconds;
  std::vector<double> m_rivalSeconds;
};

// A text takes some microseconds, too few for the processor-time clock. What an interruption adds to one
// measurement the median leaves out.
template <class Function> double secondsOf(const Function &function) {
  const auto begin = std::chrono::steady_clock::now();
  benchmark::DoNotOptimize(function());
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace

void measureText(const Setting &setting, BarList &bars) {
  // One text at a time is timed, so it takes many for a steady median.
  const std::size_t rounds = setting.effort.repetitions * 20 + 1;
  std::cout << "\nFrom the text to the first value: built, handles looked up, all variables set, evaluated; "
               "the former"
            << "\nexpression dropped. The texts take turns, " << rounds
            << " rounds; builder and parser object kept\n";
  std::vector<std::unique_ptr<TextCase>> texts;
  texts.reserve(setting.cases.size());
  Agreement agreement;
  for (const ExpressionCase &expression : setting.cases) {
    texts.push_back(std::make_unique<TextCase>(expression));
    TextCase &text = *texts.back();
    agreement.expect(text.name(), 0, text.evaluateOwn(), text.evaluateNative(), text.evaluateRival());
  }
  for (std::size_t round = 0; round < rounds; ++round) {
    // Another one is the first in every round: it finds the caches full of the other evaluator's data.
    std::rotate(texts.begin(), texts.begin() + 1, texts.end());
    for (const std::unique_ptr<TextCase> &text : texts) {
      text->ownSeconds().push_back(secondsOf([&text] { return text->evaluateOwn(); }));
    }
    for (const std::unique_ptr<TextCase> &text : texts) {
      text->rivalSeconds().push_back(secondsOf([&text] { return text->evaluateRival(); }));
    }
  }
  std::sort(texts.begin(), texts.end(), [](const auto &a, const auto &b) { return a->name() < b->name(); });
  Table table({"", "own", "muparser", "own/muparser"});
  Ratios toRival;
  for (const std::unique_ptr<TextCase> &text : texts) {
    const double own = median(text->ownSeconds());
    const double rival = median(text->rivalSeconds());
    toRival.add(text->name(), own / rival);
    table.add({text->name(), duration(own), duration(rival), fixed(own / rival, 3)});
  }
  table.add({"geometric mean", "", "", fixed(toRival.geometricMean(), 3)});
  table.print();
  std::cout << "  " << agreement.summary() << '\n';
  const std::size_t first = bars.size();
  bars.judge("text to first value / muparser, geometric mean", toRival.geometricMean(), 0.15, 0.085);
  bars.print(first);
}

} // namespace ExpressionBenchmark
