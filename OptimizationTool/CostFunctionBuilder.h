#pragma once

#include "OptimizationTool/Export.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ExpressionBuilder {
class SimpleVariableCollection;
template <class T> class BuilderSingleType;
template <class T, class VariableCollection> class Expression;
} // namespace ExpressionBuilder

namespace OptimizationTool {

class OptimizationData;

/// Turns the text of a cost function into an expression whose variables are the groups of a study: one number
/// for each input and output group, under the macro of the group's first variable.
class OPTIMIZATIONTOOL_EXPORT CostFunctionBuilder {
public:
  using CostExpression = ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>;

  /// \param data  the study whose groups are the variables; not owned, outlives the builder
  explicit CostFunctionBuilder(const OptimizationData &data);
  CostFunctionBuilder(const CostFunctionBuilder &) = delete;
  CostFunctionBuilder &operator=(const CostFunctionBuilder &) = delete;
  virtual ~CostFunctionBuilder();

  /// Builds an expression over the groups that the study has now. Each variable begins with the number that
  /// the group's first attribute has in the current version, 0.0 where it has none; that value gives the
  /// variable its type, double. Of two groups with the same macro the first one in order, inputs before
  /// outputs, makes the variable; a group without variables is the variable with the empty name. Nothing is
  /// thrown.
  /// \return  an expression (include ExpressionBuilder/Expression.h) with variables of its own, independent of
  ///          the builder; null when the text does not build, also one of which nothing can be read, with the
  ///          reason in getLastBuildError()
  std::unique_ptr<CostExpression> create(const std::string &expression) const;
  /// Names of the functions that an expression may call.
  std::vector<std::string> getFunctionNames() const;
  /// Forgets the error of the last build, and its place.
  void clearLastError();
  /// Why the last build failed, in the words of the expression language; "" when it succeeded, before the
  /// first one, and after clearLastError().
  const std::string &getLastBuildError() const { return m_lastError; }
  /// Where in the text the last build failed, in bytes from its start; empty without an error and when the
  /// error has no place in the text.
  std::optional<std::size_t> getLastBuildErrorPosition() const { return m_lastErrorPosition; }

private:
  void refreshVariableCollection() const;
  void registerGroups(bool isInput) const;

  const OptimizationData &m_data;
  // Building is a query to the study, so create() is const; the parser's variables and the error follow each
  // build.
  std::unique_ptr<ExpressionBuilder::BuilderSingleType<double>> m_builder;
  mutable std::string m_lastError;
  mutable std::optional<std::size_t> m_lastErrorPosition;
};

} // namespace OptimizationTool
