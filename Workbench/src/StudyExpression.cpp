#include "Workbench/StudyExpression.h"

#include "EmbeddedHost/SolverNumber.h"
#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Exceptions.h"
#include "Workbench/NearestWord.h"
#include "Workbench/StudyFile.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>

namespace Workbench {

namespace {

using Expression = ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>;

// Keeps the names of the variables that a text refers to.
class RecordingBuilder final : public ExpressionBuilder::BuilderSingleType<double> {
public:
  std::unique_ptr<ExpressionBuilder::ElementAbstract>
  resolveVariable(const std::string &name) const override {
    auto element = BuilderBase::resolveVariable(name);
    if (element && std::find(m_used.begin(), m_used.end(), name) == m_used.end()) {
      m_used.push_back(name);
    }
    return element;
  }
  const std::vector<std::string> &used() const { return m_used; }

private:
  mutable std::vector<std::string> m_used;
};

bool isTruthText(const std::string &text, const std::vector<std::string> &names) {
  ExpressionBuilder::BuilderBase builder;
  for (const std::string &name : names) {
    builder.variables().declare(name, std::make_unique<ExpressionBuilder::ElementConstant<double>>(0.0));
  }
  return builder.build(text)->type() == ExpressionBuilder::ValueType::Bool;
}

std::vector<std::string> attributeNames(const StudyFile &study) {
  std::vector<std::string> names;
  names.reserve(study.attributes.size());
  for (const StudyAttribute &attribute : study.attributes) {
    names.push_back(attribute.fullName());
  }
  return names;
}

// What to say when a name stands in the text as it is, which the language does not read as one; else "".
std::string bareNameHint(const std::string &text, const std::vector<std::string> &names) {
  std::string longest; // "Box.height" and not "Box.h"
  for (const std::string &name : names) {
    const std::size_t at = text.find(name);
    if (at != std::string::npos && (at == 0 || text[at - 1] != '%') && name.size() > longest.size()) {
      longest = name;
    }
  }
  return longest.empty() ? "" : "; names stand between %, as in \"%" + longest + "%\"";
}

std::string limitText(const std::optional<double> &limit, const std::string &unit) {
  return EmbeddedHost::writeSolverNumber(*limit) + (unit.empty() ? "" : " " + unit);
}

} // namespace

class StudyExpression::Compiled {
public:
  std::unique_ptr<Expression> expression;
  std::vector<ExpressionBuilder::VariableHandle<double>> handles;
};

StudyExpression::StudyExpression() : m_compiled(std::make_unique<Compiled>()) {}
StudyExpression::StudyExpression(StudyExpression &&other) noexcept = default;
StudyExpression &StudyExpression::operator=(StudyExpression &&other) noexcept = default;
StudyExpression::~StudyExpression() = default;

std::optional<StudyExpression> StudyExpression::create(const std::string &text,
                                                       const std::vector<std::string> &names,
                                                       std::vector<ExpressionNote> &warnings,
                                                       ExpressionNote &problem) {
  StudyExpression made;
  made.m_text = text;
  try {
    RecordingBuilder builder;
    for (const std::string &name : names) {
      builder.variables().declare(name, std::make_unique<ExpressionBuilder::ElementConstant<double>>(0.0));
    }
    for (const ExpressionBuilder::Warning &warning : builder.warnings(text)) {
      warnings.push_back({ExpressionBuilder::warningMessage(warning, text), warning.place.offset});
    }
    made.m_variables = builder.used();
    made.m_isTruth = isTruthText(text, made.m_variables);
    // With the variables that it uses and no others.
    ExpressionBuilder::BuilderSingleType<double> small;
    for (const std::string &name : made.m_variables) {
      small.variables().declare(name, std::make_unique<ExpressionBuilder::ElementConstant<double>>(0.0));
    }
    made.m_compiled->expression = small.buildExpression(text);
    for (const std::string &name : made.m_variables) {
      made.m_compiled->handles.push_back(made.m_compiled->expression->variables().handle<double>(name));
    }
    return made;
  } catch (const ExpressionBuilder::ParserError &error) {
    problem = {error.what(), error.offset()};
  } catch (const std::exception &error) {
    problem = {error.what(), 0};
  }
  return std::nullopt;
}

std::optional<double> StudyExpression::evaluate(const AttributeValues &values, std::string &problem) const {
  Expression &expression = *m_compiled->expression;
  for (std::size_t index = 0; index < m_variables.size(); ++index) {
    const std::optional<double> value = values(m_variables[index]);
    if (!value) {
      problem = m_variables[index] + " has no value";
      return std::nullopt;
    }
    expression.variables().set(m_compiled->handles[index], *value);
  }
  try {
    return expression.evaluate();
  } catch (const std::exception &error) {
    problem = error.what();
    return std::nullopt;
  }
}

std::string undefinedName(const ExpressionNote &problem) {
  const std::string beginning = "Undefined variable : ";
  return problem.message.rfind(beginning, 0) == 0 ? problem.message.substr(beginning.size()) : "";
}

std::string expressionHint(const std::string &text, const ExpressionNote &problem,
                           const std::vector<std::string> &names) {
  const std::string undefined = undefinedName(problem);
  return undefined.empty() ? bareNameHint(text, names) : didYouMean(undefined, names);
}

std::string infeasibility(const std::optional<StudyExpression> &rule, const AttributeValues &inputs) {
  if (!rule) {
    return "";
  }
  std::string problem;
  const std::optional<double> value = rule->evaluate(inputs, problem);
  if (!value) {
    return "rule: " + problem;
  }
  return *value != 0.0 ? "" : "rule: " + rule->text();
}

StudyExpressions::StudyExpressions(const StudyFile &study) : m_study(study) {
  const std::vector<std::string> names = attributeNames(study);
  std::vector<ExpressionNote> ignored;
  ExpressionNote problem;
  if (!study.rule.text.empty()) {
    m_rule = StudyExpression::create(study.rule.text, names, ignored, problem);
  }
  for (const StudyFormula &formula : study.formulas) {
    if (auto expression = StudyExpression::create(formula.text, names, ignored, problem)) {
      m_formulas.push_back(std::move(*expression));
    }
  }
}

std::string StudyExpressions::infeasibility(const AttributeValues &inputs) const {
  return Workbench::infeasibility(m_rule, inputs);
}

std::string wholeNumberFault(const StudyAttribute &attribute, double value) {
  // Above it not every whole number is a double.
  constexpr double kLargest = 9007199254740992.0;
  if (attribute.kind != AttributeKind::Integer) {
    return "";
  }
  return value != std::trunc(value) ? "no whole number"
         : std::abs(value) > kLargest
             ? "more than a whole number can be, " + EmbeddedHost::writeSolverNumber(kLargest)
             : "";
}

std::string StudyExpressions::compute(const AttributeValues &values, std::vector<double> &results) const {
  std::map<std::string, double> computed;
  const AttributeValues withComputed = [&](const std::string &name) {
    const auto known = computed.find(name);
    return known == computed.end() ? values(name) : std::optional<double>(known->second);
  };
  results.clear();
  for (std::size_t index = 0; index < m_formulas.size(); ++index) {
    const StudyFormula &formula = m_study.formulas[index];
    const StudyAttribute &attribute = *m_study.findAttribute(formula.attribute);
    std::string problem;
    const std::optional<double> value = m_formulas[index].evaluate(withComputed, problem);
    if (!value) {
      return "formula: " + formula.attribute + ": " + problem;
    }
    if (!std::isfinite(*value)) {
      return "not a number: " + formula.attribute + ": the formula gives " +
             (std::isnan(*value) ? "no number" : "infinity");
    }
    if (const std::string fault = wholeNumberFault(attribute, *value); !fault.empty()) {
      return "not a number: " + formula.attribute + ": the formula gives " +
             EmbeddedHost::writeSolverNumber(*value) + ", " + fault;
    }
    const bool isBelow = formula.minimum && *value < *formula.minimum;
    if (isBelow || (formula.maximum && *value > *formula.maximum)) {
      return "extraction: " + formula.attribute + ": " + limitText(value, attribute.unit) +
             " is not plausible: " + (isBelow ? "below " : "above ") +
             limitText(isBelow ? formula.minimum : formula.maximum, attribute.unit);
    }
    computed[formula.attribute] = *value;
    results.push_back(*value);
  }
  return "";
}

} // namespace Workbench
