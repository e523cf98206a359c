#include "ExpressionBuilder/tests/property/OracleRun.h"

#include "ExpressionBuilder/tests/property/OracleParser.h"

#include <utility>

namespace LanguageOracle {
namespace {

Variables bound(const LanguageCase &languageCase, const ParserOptions &options) {
  ParserOptions quiet = options;
  quiet.coverage = nullptr;
  Variables variables;
  for (const Binding &binding : languageCase.bindings) {
    variables[binding.name] =
        binding.text ? Parser(*binding.text, variables, quiet).build() : constantNode(binding.value);
  }
  return variables;
}

Variables disturbed(Variables variables, const Disturbance &disturbance) {
  if (disturbance.value) {
    variables[disturbance.name] = constantNode(*disturbance.value);
  } else {
    variables.erase(disturbance.name);
  }
  return variables;
}

Outcome evaluated(const Node &root, const Variables &variables, const Rules &rules) {
  try {
    return Outcome::ofValue(Evaluation(variables, rules).evaluate(root));
  } catch (const Error &error) {
    return Outcome::ofRuntimeError(error.what());
  }
}

// What an expression object reports: whatever validation finds has one name.
Outcome expressed(const Node &root, const Variables &variables, const Rules &rules) {
  try {
    Evaluation(variables, rules).validate(root);
  } catch (const Error &) {
    return Outcome::ofRuntimeError("Invalid expression");
  }
  return evaluated(root, variables, rules);
}

// Row by row up to the first one that fails.
void observeRows(std::vector<Observation> &observations, const LanguageCase &languageCase, const Node &root,
                 Variables variables, const ParserOptions &options) {
  for (const auto &row : languageCase.rows) {
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      variables[kColumns[column]] = constantNode(Value::ofDouble(row[column]));
    }
    const Outcome outcome = expressed(root, variables, options.rules);
    observations.push_back({options.foldConstants ? "row" : "row, not folded", outcome});
    if (outcome.kind != Outcome::Kind::Value) {
      return;
    }
  }
}

void observe(std::vector<Observation> &observations, const LanguageCase &languageCase,
             const ParserOptions &options) {
  const std::string folding = options.foldConstants ? "" : ", not folded";
  const Rules &rules = options.rules;
  const Variables variables = bound(languageCase, options);
  NodePtr root;
  Parser parser(languageCase.text, variables, options);
  try {
    root = parser.build();
  } catch (const Error &error) {
    observations.push_back({"element" + folding, Outcome::ofBuildError(error.what())});
    observations.push_back({"element, with warnings" + folding, observations.back().outcome});
    observations.push_back({"expression" + folding, Outcome::ofBuildError(error.what())});
    return;
  }
  observations.push_back({"element" + folding, evaluated(*root, variables, rules)});
  observations.push_back({"element's clone" + folding, observations.back().outcome});
  observations.push_back({"element, with warnings" + folding, observations.back().outcome});
  NodePtr typed;
  try {
    typed = parser.castTo(languageCase.target, root);
  } catch (const Error &error) {
    observations.push_back({"expression" + folding, Outcome::ofBuildError(error.what())});
    return;
  }
  observations.push_back({"expression" + folding, expressed(*typed, variables, rules)});
  observations.push_back({"expression's clone" + folding, observations.back().outcome});
  const bool isConstantRoot = typed->kind == Node::Kind::Constant;
  observations.push_back({"root is constant" + folding, Outcome::ofValue(Value::ofBool(isConstantRoot))});
  observeRows(observations, languageCase, *typed, variables, options);
  if (languageCase.disturbance) {
    const Variables others = disturbed(variables, *languageCase.disturbance);
    observations.push_back({"element, disturbed" + folding, evaluated(*root, others, rules)});
    observations.push_back({"expression, disturbed" + folding, expressed(*typed, others, rules)});
  }
}

} // namespace

std::vector<Observation> observeOracle(const LanguageCase &languageCase, const Rules &rules,
                                       LanguageCoverage *coverage) {
  std::vector<Observation> observations;
  observe(observations, languageCase, {true, rules, coverage});
  observe(observations, languageCase, {false, rules, nullptr});
  return observations;
}

} // namespace LanguageOracle
