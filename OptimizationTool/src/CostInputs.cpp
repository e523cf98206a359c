#include "OptimizationTool/src/CostInputs.h"

#include "OptimizationTool/OptimizationGroups.h"

#include <optional>

namespace OptimizationTool {

namespace {

class Reader {
public:
  Reader(const std::function<std::string()> &readCostFunction,
         const ExpressionBuilder::SimpleVariableCollection &variables, CostInputs &read)
      : m_readCostFunction(readCostFunction), m_variables(variables), m_read(read) {}

  void readSide(const OptimizationGroups &groups, bool isInput) {
    const int count = groups.size();
    for (int index = 0; index < count; ++index) {
      const OptimizationGroup group = groups.getGroup(index);
      CostInput input;
      input.isInput = isInput;
      input.position = group.getIndex();
      // Another group may stand where the list that holds this one says.
      input.isNeeded = isNeeded(input.position == index ? group : groups.getGroup(input.position));
      const std::string macro = group.getAttributeMacro();
      // First, since the value is read also for a group that turns out to have no variable.
      m_read.groups.push_back(input);
      m_read.groups.back().variable = m_variables.handle<double>(macro);
      ++m_read.numBound;
    }
  }

private:
  bool isNeeded(const OptimizationGroup &group) {
    if (!group) {
      return false;
    }
    if (!m_costFunction) {
      m_costFunction = m_readCostFunction();
    }
    return isMentioned(group, *m_costFunction);
  }

  const std::function<std::string()> &m_readCostFunction;
  const ExpressionBuilder::SimpleVariableCollection &m_variables;
  CostInputs &m_read;
  std::optional<std::string> m_costFunction;
};

} // namespace

CostInputs readCostInputs(const OptimizationGroups &inputs, const OptimizationGroups &outputs,
                          const std::function<std::string()> &readCostFunction,
                          const ExpressionBuilder::SimpleVariableCollection &variables) {
  CostInputs read;
  try {
    Reader reader(readCostFunction, variables, read);
    reader.readSide(inputs, true);
    reader.readSide(outputs, false);
  } catch (...) {
    read.failure = std::current_exception();
  }
  return read;
}

bool isMentioned(const OptimizationGroup &group, const std::string &costFunction) {
  return costFunction.find(group.getDisplayName()) != std::string::npos;
}

} // namespace OptimizationTool
