#include "tests/study-property/ReferenceStudy.h"

#include <regex>

// The cost function and what it makes of a row.

namespace StudyProperty {

std::optional<ReferenceStudy::Calculator> calculatorOf(const std::string &text) {
  static const std::regex number(R"(\d+)");
  static const std::regex multiple(R"((?:(\d+) \* )?%([^%]*)%)");
  ReferenceStudy::Calculator calculator;
  const std::string plus = " + ";
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t found = text.find(plus, begin);
    const std::string term = text.substr(begin, found == std::string::npos ? found : found - begin);
    std::smatch match;
    if (std::regex_match(term, number)) {
      calculator.constant += std::stoi(term);
    } else if (std::regex_match(term, match, multiple)) {
      calculator.terms.push_back({match[1].matched ? std::stoi(match[1]) : 1.0, match[2]});
    } else {
      return std::nullopt;
    }
    begin = found == std::string::npos ? text.size() + 1 : found + plus.size();
  }
  return calculator;
}

void ReferenceStudy::setCostFunction(const std::string &text) {
  study().cost = text;
  updateCostCalculator();
}

void ReferenceStudy::updateCostCalculator() {
  const bool isBlank = study().cost.find_first_not_of(" \t") == std::string::npos;
  held->hasError = false;
  held->calculator.reset();
  if (!isBlank) {
    std::optional<Calculator> calculator = calculatorOf(study().cost);
    bool isKnown = calculator.has_value();
    if (isKnown) {
      for (const bool isInput : {true, false}) {
        for (const Group &group : groups(isInput)) {
          calculator->variables[macro(group)] = 0.0;
        }
      }
      for (const Term &term : calculator->terms) {
        isKnown = isKnown && calculator->variables.count(term.macro) != 0;
      }
    }
    held->hasError = !isKnown;
    if (isKnown) {
      held->calculator = calculator;
    }
  }
  recalculateCosts();
}

void ReferenceStudy::recalculateCost(std::size_t row) {
  if (row >= held->rows.size()) {
    return;
  }
  if (!held->calculator.has_value()) {
    held->rows[row].cost.reset();
  }
  price(held->rows[row]);
}

void ReferenceStudy::recalculateCosts() {
  for (Row &row : held->rows) {
    if (!held->calculator.has_value()) {
      row.cost.reset();
    }
    price(row);
  }
}

void ReferenceStudy::price(Row &row) {
  if (!held->calculator.has_value()) {
    return;
  }
  bool isComplete = true;
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < groups(isInput).size(); ++group) {
      isComplete = setVariable(row, isInput, group) && isComplete;
    }
  }
  if (!isComplete) {
    row.cost.reset();
    return;
  }
  double cost = held->calculator->constant;
  for (const Term &term : held->calculator->terms) {
    cost += term.factor * held->calculator->variables.at(term.macro);
  }
  row.cost = cost;
}

// False when the row lacks a value that the cost function needs.
bool ReferenceStudy::setVariable(const Row &row, bool isInput, std::size_t group) {
  const auto at = [isInput, group](const Row &each) -> const Value * {
    const std::vector<std::optional<Value>> &cells = each.cells[isInput ? 1 : 0];
    return group < cells.size() && cells[group].has_value() ? &*cells[group] : nullptr;
  };
  const Value *value = at(row);
  const Value *baseline = at(held->rows.front());
  const bool hasValue = value != nullptr && value->number.has_value();
  double number = hasValue ? value->standard() : 0.0;
  if (hasValue && value->kind == Kind::Length && baseline != nullptr) {
    number = value->in(baseline->unit);
  }
  const auto variable = held->calculator->variables.find(macro(groups(isInput)[group]));
  if (variable != held->calculator->variables.end()) {
    variable->second = number;
  } else if (mistake != Mistake::UnknownVariablesAreSkipped) {
    throw Refusal("out_of_range: Variable does not exist");
  }
  return hasValue || !isVariableInCostFunction(isInput, group);
}

bool ReferenceStudy::isVariableInCostFunction(bool isInput, std::size_t group) const {
  return group < groups(isInput).size() &&
         study().cost.find(displayName(groups(isInput)[group])) != std::string::npos;
}

void ReferenceStudy::setOptimisationTarget(int target) {
  study().target = target == 1 || target == 2 ? target : study().target;
}

} // namespace StudyProperty
