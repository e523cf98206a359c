#pragma once

#include "ExpressionBuilder/SimpleVariableCollection.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace OptimizationTool {

class OptimizationGroup;
class OptimizationGroups;

// One group of a study as the pricing of rows sees it. Holds nothing of the host's, so that it stays good whatever a
// call to the host leads to.
struct CostInput {
  // Of the group's cell in a row; -1 when no list holds the group.
  int position = -1;
  bool isInput = true;
  // Whether a row without this value has no cost.
  bool isNeeded = false;
  ExpressionBuilder::VariableHandle<double> variable;
};

struct CostInputs {
  // In the order in which their values are put into the calculator.
  std::vector<CostInput> groups;
  // How many of them, from the first one on, have a variable: all, or all but the last.
  std::size_t numBound = 0;
  // What the reading ended with, if it did. Every row ends with it, as soon as the values of `groups` have been read.
  std::exception_ptr failure;
};

// Reads the groups, once for any number of rows. Throws nothing, see CostInputs::failure.
// \param readCostFunction  gives the text of the cost function; called for the first group that there is
// \param variables         the calculator's. A group that is not among them ends the reading, as its value ends a row:
//                          std::out_of_range "Variable does not exist", std::runtime_error "Invalid Type".
CostInputs readCostInputs(const OptimizationGroups &inputs, const OptimizationGroups &outputs,
                          const std::function<std::string()> &readCostFunction,
                          const ExpressionBuilder::SimpleVariableCollection &variables);

// Whether the text of a cost function mentions the group. A plain search, which an empty name always passes: a group
// counts as used rather too often than too seldom, so that no row is priced without a value that it needs.
bool isMentioned(const OptimizationGroup &group, const std::string &costFunction);

} // namespace OptimizationTool
