#include "ExpressionBuilder/tests/property/OracleRun.h"

#include "ExpressionBuilder/tests/property/OracleParser.h"

#include <utility>

namespace LanguageOracle {
namespace {

NodePtr constantOf(const Value &value) {
  Node node;
  node.type = value.type;
  node.value = value;
  return std::make_shared<const Node>(std::move(node));
}

Variables bound(const LanguageCase &languageCase, const ParserOptions &options) {
  ParserOptions quiet = options;
  quiet.coverage = nullptr;
  Variables variables;
  for (const Binding &binding : languageCase.bindings) {
    variables[binding.name] =
        binding.text ? Parser(*binding.text, variables, quiet).build() : constantOf(binding.value);
  }
  return variables;
}

Variables disturbed(Variables variables, const Disturbance &disturbance) {
  if (disturbance.value) {
    variables[disturbance.name] = constantOf(*disturbance.value);
  } else {
    variables.erase(disturbance.name);
  }
  return variables;
}

Outcome evaluated(const Node &root, const Variables &variables, const Mistakes &mistakes) {
  try {
    return Outcome::ofValue(Evaluation(variables, mistakes).evaluate(root));
  } catch (const Error &error) {
    return Outcome::ofRuntimeError(error.what());
  }
}

// What an expression object reports: whatever validation finds has one name.
Outcome expressed(const Node &root, const Variables &variables, const Mistakes &mistakes) {
  try {
    Evaluation(variables, mistakes).validate(root);
  } catch (const Error &) {
    return Outcome::ofRuntimeError("Invalid expression");
  }
  return evaluated(root, variables, mistakes);
}

// Row by row up to the first one that fails.
void observeRows(std::vector<Observation> &observations, const LanguageCase &languageCase, const Node &root,
                 Variables variables, const ParserOptions &options) {
  for (const auto &row : languageCase.rows) {
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      variables[kColumns[column]] = constantOf(Value::ofDouble(row[column]));
    }
    const Outcome outcome = expressed(root, variables, options.mistakes);
    observations.push_back({options.foldConstants ? "row" : "row, not folded", outcome});
    if (outcome.kind != Outcome::Kind::Value) {
      return;
    }
  }
}

void observe(std::vector<Observation> &observations, const LanguageCase &languageCase,
             const ParserOptions &options) {
  const std::string folding = options.foldConstants ? "" : ", not folded";
  const Mistakes &mistakes = options.mistakes;
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
  observations.push_back({"element" + folding, evaluated(*root, variables, mistakes)});
  observations.push_back({"element's clone" + folding, observations.back().outcome});
  observations.push_back({"element, with warnings" + folding, observations.back().outcome});
  NodePtr typed;
  try {
    typed = parser.castTo(languageCase.target, root);
  } catch (const Error &error) {
    observations.push_back({"expression" + folding, Outcome::ofBuildError(error.what())});
    return;
  }
  observations.push_back({"expression" + folding, expressed(*typed, variables, mistakes)});
  observations.push_back({"expression's clone" + folding, observations.back().outcome});
  const bool isConstantRoot = typed->kind == Node::Kind::Constant;
  observations.push_back({"root is constant" + folding, Outcome::ofValue(Value::ofBool(isConstantRoot))});
  observeRows(observations, languageCase, *typed, variables, options);
  if (languageCase.disturbance) {
    const Variables others = disturbed(variables, *languageCase.disturbance);
    observations.push_back({"element, disturbed" + folding, evaluated(*root, others, mistakes)});
    observations.push_back({"expression, disturbed" + folding, expressed(*typed, others, mistakes)});
  }
}

} // namespace

std::vector<Observation> observeOracle(const LanguageCase &languageCase, const Mistakes &mistakes,
                                       LanguageCoverage *coverage) {
  std::vector<Observation> observations;
  observe(observations, languageCase, {true, mistakes, coverage});
  observe(observations, languageCase, {false, mistakes, nullptr});
  return observations;
}

} // namespace LanguageOracle
