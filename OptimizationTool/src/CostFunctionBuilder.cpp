#include "OptimizationTool/CostFunctionBuilder.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Exceptions.h"
#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationGroups.h"

#include <exception>

namespace OptimizationTool {

CostFunctionBuilder::CostFunctionBuilder(const OptimizationData &data)
    : m_data(data), m_builder(std::make_unique<ExpressionBuilder::BuilderSingleType<double>>()) {}

CostFunctionBuilder::~CostFunctionBuilder() = default;

std::unique_ptr<CostFunctionBuilder::CostExpression>
CostFunctionBuilder::create(const std::string &expression) const {
  m_lastError.clear();
  m_lastErrorPosition.reset();
  try {
    refreshVariableCollection();
    return m_builder->buildExpression(expression);
  } catch (const ExpressionBuilder::ParserError &error) {
    m_lastError = error.what();
    m_lastErrorPosition = error.offset();
  } catch (const std::exception &error) {
    m_lastError = error.what();
  } catch (...) {
    m_lastError = "Unknown Error";
  }
  return nullptr;
}

std::vector<std::string> CostFunctionBuilder::getFunctionNames() const {
  return m_builder->functionNames();
}

void CostFunctionBuilder::clearLastError() {
  m_lastError.clear();
  m_lastErrorPosition.reset();
}

void CostFunctionBuilder::refreshVariableCollection() const {
  m_builder->variables().clear();
  registerGroups(true);
  registerGroups(false);
}

void CostFunctionBuilder::registerGroups(bool isInput) const {
  const OptimizationGroups &groups = m_data.getGroups(isInput);
  const int count = isInput ? m_data.getNumInputs() : m_data.getNumOutputs();
  for (int index = 0; index < count; ++index) {
    const OptimizationGroup group = groups.getGroup(index);
    if (!group) {
      continue;
    }
    const OptimizationGroupVariable variable = group.getFrontVariable();
    const EntityModel::Attribute *attribute = variable.getAttribute();
    const double value = attribute != nullptr && attribute->isNumeric() ? attribute->getNumericValue() : 0.0;
    m_builder->variables().declare(variable.getAttributeMacro(),
                                   std::make_unique<ExpressionBuilder::ElementConstant<double>>(value));
  }
}

} // namespace OptimizationTool
