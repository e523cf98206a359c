#include "ExpressionBuilder/tests/property/ProductRun.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/ValueType.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace LanguageOracle {
namespace {

using ExpressionBuilder::BuilderBase;
using ExpressionBuilder::BuilderSingleType;
using ExpressionBuilder::Element;
using ExpressionBuilder::ElementAbstract;
using ExpressionBuilder::ElementConstant;
using ExpressionBuilder::ExpressionBase;
using ExpressionBuilder::SimpleVariableCollection;
using ExpressionBuilder::ValueType;
using ExpressionBuilder::VariableColumn;
using ExpressionBuilder::Warning;

Value valueOf(double value) {
  return Value::ofDouble(value);
}
Value valueOf(int value) {
  return Value::ofInt(value);
}
Value valueOf(bool value) {
  return Value::ofBool(value);
}
Value valueOf(std::string value) {
  return Value::ofString(std::move(value));
}
Value valueOf(long long value) {
  return Value::ofLongLong(value);
}

std::unique_ptr<ElementAbstract> elementOf(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return std::make_unique<ElementConstant<double>>(value.real);
  case Type::Int:
    return std::make_unique<ElementConstant<int>>(value.whole);
  case Type::Bool:
    return std::make_unique<ElementConstant<bool>>(value.truth);
  case Type::String:
    return std::make_unique<ElementConstant<std::string>>(value.text);
  case Type::LongLong:
    return std::make_unique<ElementConstant<long long>>(value.wide);
  }
  throw std::logic_error("no such type");
}

void bind(BuilderBase &builder, const LanguageCase &languageCase) {
  for (const Binding &binding : languageCase.bindings) {
    auto definition = binding.text ? builder.build(*binding.text) : elementOf(binding.value);
    if (binding.replaces) {
      builder.variables().replace(binding.name, std::move(definition));
    } else if (!builder.variables().declare(binding.name, std::move(definition))) {
      throw std::logic_error("bound twice: " + binding.name);
    }
  }
}

SimpleVariableCollection disturbed(const SimpleVariableCollection &variables,
                                   const Disturbance &disturbance) {
  SimpleVariableCollection result;
  for (const std::string &name : variables.names()) {
    if (name != disturbance.name) {
      result.declare(name, variables.find(name)->cloneAbstract());
    }
  }
  if (disturbance.value) {
    result.declare(disturbance.name, elementOf(*disturbance.value));
  }
  return result;
}

// Both kinds of expression and element give a value or throw when they are asked.
template <class Evaluate> Outcome evaluated(const Evaluate &evaluate) {
  try {
    return Outcome::ofValue(valueOf(evaluate()));
  } catch (const std::runtime_error &error) {
    return Outcome::ofRuntimeError(error.what());
  }
}

Outcome evaluated(const ElementAbstract &element, const SimpleVariableCollection &variables) {
  return ExpressionBuilder::visitValueType(element.type(), [&](auto tag) {
    using T = typename decltype(tag)::Type;
    const auto &typed = dynamic_cast<const Element<T> &>(element);
    return evaluated([&] { return typed.evaluate(variables); });
  });
}

void observeElement(std::vector<Observation> &observations, const ElementAbstract &root,
                    const SimpleVariableCollection &variables, const std::string &folding) {
  observations.push_back({"element" + folding, evaluated(root, variables)});
  observations.push_back({"element's clone" + folding, evaluated(*root.cloneAbstract(), variables)});
}

// To look for warnings must change nothing.
void observeWithWarnings(std::vector<Observation> &observations, const BuilderBase &builder,
                         const std::string &text, const std::string &folding) {
  Outcome outcome;
  try {
    std::vector<Warning> warnings;
    const std::unique_ptr<ElementAbstract> root = builder.buildWithWarnings(text, warnings);
    outcome = evaluated(*root, builder.variables());
  } catch (const std::runtime_error &error) {
    outcome = Outcome::ofBuildError(error.what());
  }
  observations.push_back({"element, with warnings" + folding, outcome});
}

void observeRows(std::vector<Observation> &observations, const LanguageCase &languageCase,
                 const ExpressionBase<double> &expression, const SimpleVariableCollection &variables,
                 const std::string &folding) {
  std::array<std::vector<double>, kColumns.size()> values;
  std::vector<VariableColumn> columns;
  for (std::size_t column = 0; column < kColumns.size(); ++column) {
    for (const auto &row : languageCase.rows) {
      values[column].push_back(row[column]);
    }
    columns.push_back({variables.handle<double>(kColumns[column]), values[column].data()});
  }
  // A failing row leaves its own result and those behind it as they are.
  const double untouched = -1234.5678;
  std::vector<double> results(languageCase.rows.size(), untouched);
  std::string message;
  bool hasFailed = false;
  try {
    expression.evaluateRows(columns, results.size(), results.data());
  } catch (const std::runtime_error &error) {
    hasFailed = true;
    message = error.what();
  }
  for (const double result : results) {
    if (hasFailed && result == untouched) {
      break;
    }
    observations.push_back({"row" + folding, Outcome::ofValue(Value::ofDouble(result))});
  }
  if (hasFailed) {
    observations.push_back({"row" + folding, Outcome::ofRuntimeError(message)});
  }
}

template <class T>
void observeExpression(std::vector<Observation> &observations, const LanguageCase &languageCase,
                       const BuilderBase &plain, const ElementAbstract *root, const std::string &folding) {
  BuilderSingleType<T> builder;
  builder.setFoldConstants(plain.foldConstants());
  builder.variables() = plain.variables();
  std::unique_ptr<ExpressionBuilder::Expression<T, SimpleVariableCollection>> expression;
  try {
    expression = builder.buildExpression(languageCase.text);
  } catch (const std::runtime_error &error) {
    observations.push_back({"expression" + folding, Outcome::ofBuildError(error.what())});
    return;
  }
  const auto clone = expression->clone();
  observations.push_back({"expression" + folding, evaluated([&] { return expression->evaluate(); })});
  observations.push_back({"expression's clone" + folding, evaluated([&] { return clone->evaluate(); })});
  observations.push_back(
      {"root is constant" + folding, Outcome::ofValue(Value::ofBool(expression->isConstantRoot()))});
  if constexpr (std::is_same_v<T, double>) {
    if (!languageCase.rows.empty()) {
      observeRows(observations, languageCase, *expression, expression->variables(), folding);
    }
  }
  if (languageCase.disturbance && root != nullptr) {
    expression->variables() = disturbed(plain.variables(), *languageCase.disturbance);
    observations.push_back({"element, disturbed" + folding, evaluated(*root, expression->variables())});
    observations.push_back(
        {"expression, disturbed" + folding, evaluated([&] { return expression->evaluate(); })});
  }
}

void observe(std::vector<Observation> &observations, const LanguageCase &languageCase, bool fold) {
  const std::string folding = fold ? "" : ", not folded";
  BuilderBase builder;
  builder.setFoldConstants(fold);
  bind(builder, languageCase);
  std::unique_ptr<ElementAbstract> root;
  try {
    root = builder.build(languageCase.text);
  } catch (const std::runtime_error &error) {
    observations.push_back({"element" + folding, Outcome::ofBuildError(error.what())});
  }
  if (root) {
    observeElement(observations, *root, builder.variables(), folding);
  }
  observeWithWarnings(observations, builder, languageCase.text, folding);
  ExpressionBuilder::visitValueType(static_cast<ValueType>(languageCase.target), [&](auto tag) {
    observeExpression<typename decltype(tag)::Type>(observations, languageCase, builder, root.get(), folding);
  });
}

} // namespace

std::vector<Observation> observeProduct(const LanguageCase &languageCase) {
  std::vector<Observation> observations;
  observe(observations, languageCase, true);
  observe(observations, languageCase, false);
  return observations;
}

} // namespace LanguageOracle
