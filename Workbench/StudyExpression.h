#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

/// The value of an attribute in its declared unit; empty when it has none.
using AttributeValues = std::function<std::optional<double>(const std::string &fullName)>;

/// Something about an expression's text, with its place in bytes from the beginning.
struct ExpressionNote {
  std::string message;
  std::size_t offset = 0;
};

/// An expression of the cost language over attributes, which are its variables, "%Entity.Attribute%". Every variable
/// is a double, as it is in a cost.
class StudyExpression {
public:
  /// \param names     the attributes that the expression may use
  /// \param warnings  receives what is legal in it and seldom meant, each with the change that removes it
  /// \return empty when the text does not build; `problem` then says why and where
  static std::optional<StudyExpression> create(const std::string &text, const std::vector<std::string> &names,
                                               std::vector<ExpressionNote> &warnings,
                                               ExpressionNote &problem);

  StudyExpression(StudyExpression &&other) noexcept;
  StudyExpression &operator=(StudyExpression &&other) noexcept;
  ~StudyExpression();

  /// The attributes that the text uses, each once.
  const std::vector<std::string> &variables() const { return m_variables; }
  const std::string &text() const { return m_text; }
  /// Whether it is true or false, and no number.
  bool isTruth() const { return m_isTruth; }

  /// \return the value, 1 or 0 for true or false; empty when an attribute has no value or the evaluation fails;
  ///         `problem` then says why
  std::optional<double> evaluate(const AttributeValues &values, std::string &problem) const;

private:
  class Compiled;

  StudyExpression();

  std::string m_text;
  std::unique_ptr<Compiled> m_compiled;
  std::vector<std::string> m_variables;
  bool m_isTruth = false;
};

/// What to write instead where a text does not build: the nearest of the names for one that is not known, or the signs
/// that a name stands between. It is put behind the message; "" when there is nothing to say.
std::string expressionHint(const std::string &text, const ExpressionNote &problem,
                           const std::vector<std::string> &names);

/// The name in a problem that says that it is not known; "" for any other problem.
std::string undefinedName(const ExpressionNote &problem);

/// Why a row with these inputs must not be run: the rule is not met, or cannot be computed. "" when it is met or there
/// is none.
std::string infeasibility(const std::optional<StudyExpression> &rule, const AttributeValues &inputs);

struct StudyAttribute;
struct StudyFile;

/// What is wrong with a number as the value of an attribute that takes whole numbers: "no whole number" or that it is
/// too large to be kept as one; "" when it is right, and for any other attribute.
std::string wholeNumberFault(const StudyAttribute &attribute, double value);

/// The rule and the formulas of a study, built once and evaluated for any number of rows.
class StudyExpressions {
public:
  /// Of a study that was read without a problem. Keeps the study by reference.
  explicit StudyExpressions(const StudyFile &study);

  /// Why the row must not be run; "" when it meets the rule or there is none.
  std::string infeasibility(const AttributeValues &inputs) const;

  /// Computes the formulas in their order; each may use the results of those before it.
  /// \param values  inputs, and results that the solver has given
  /// \param results receives one number a formula
  /// \return "" or why a formula has no number, as the reason of a failed run
  std::string compute(const AttributeValues &values, std::vector<double> &results) const;

private:
  const StudyFile &m_study;
  std::optional<StudyExpression> m_rule;
  std::vector<StudyExpression> m_formulas;
};

} // namespace Workbench
