#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"
#include "Workbench/ProjectModel.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Workbench {

namespace {

std::string withUnit(double number, const std::string &unit) {
  return EmbeddedHost::writeSolverNumber(number) + (unit.empty() ? "" : " " + unit);
}

std::string quoted(const ModelAttribute &declared, const std::string &typed) {
  return declared.fullName() + ": \"" + typed + "\" ";
}

std::optional<double> realValue(const ModelAttribute &declared, const std::string &typed, bool isDifference,
                                std::string &problem) {
  const std::optional<WrittenQuantity> quantity = readQuantity(typed);
  if (!quantity) {
    problem = quoted(declared, typed) + "is not a number, alone or with a unit";
    return std::nullopt;
  }
  const HostUnits units;
  if (quantity->unit.empty() || quantity->unit == declared.unit) {
    return quantity->number;
  }
  const std::string unitProblem = units.problemOf(quantity->unit);
  if (!unitProblem.empty()) {
    problem = declared.fullName() + ": " + unitProblem;
    return std::nullopt;
  }
  const std::optional<double> converted =
      isDifference ? units.convertDifference(quantity->number, quantity->unit, declared.unit)
                   : units.convert(quantity->number, quantity->unit, declared.unit);
  if (!converted || !std::isfinite(*converted)) {
    problem =
        quoted(declared, typed) + "cannot be converted to " +
        (declared.unit.empty() ? "a number without unit" : "\"" + declared.unit + "\", the declared unit") +
        UnitSystem::conversionHint(quantity->unit, declared.unit);
    return std::nullopt;
  }
  return converted;
}

std::optional<double> wholeValue(const ModelAttribute &declared, const std::string &typed,
                                 std::string &problem) {
  const std::optional<double> number = EmbeddedHost::readSolverNumber(typed);
  if (!number || *number != std::trunc(*number) || *number < std::numeric_limits<int>::min() ||
      *number > std::numeric_limits<int>::max()) {
    problem = quoted(declared, typed) + "is no whole number in the range of an integer";
    return std::nullopt;
  }
  return number;
}

std::optional<double> choiceValue(const ModelAttribute &declared, const std::string &typed,
                                  std::string &problem) {
  const auto found = std::find(declared.options.begin(), declared.options.end(), typed);
  if (found == declared.options.end()) {
    std::string list;
    for (const std::string &option : declared.options) {
      list.append(list.empty() ? "" : ", ").append(option);
    }
    problem =
        quoted(declared, typed) + "is none of its options: " + list + didYouMean(typed, declared.options);
    return std::nullopt;
  }
  return static_cast<double>(found - declared.options.begin() + 1);
}

std::optional<double> numberOf(const ModelAttribute &declared, const std::string &typed,
                               std::string &problem) {
  switch (declared.kind) {
  case AttributeKind::Integer:
    return wholeValue(declared, typed, problem);
  case AttributeKind::Boolean:
    if (typed == "true" || typed == "false") {
      return typed == "true" ? 1.0 : 0.0;
    }
    problem = quoted(declared, typed) + "must be true or false";
    return std::nullopt;
  case AttributeKind::Choice:
    return choiceValue(declared, typed, problem);
  default:
    return realValue(declared, typed, false, problem);
  }
}

} // namespace

std::optional<std::string> modelText(const ModelAttribute &declared, const std::string &typed,
                                     std::string &problem) {
  if (declared.kind == AttributeKind::Text) {
    return typed;
  }
  const std::optional<double> number = numberOf(declared, typed, problem);
  if (!number) {
    return std::nullopt;
  }
  const bool isBelow = declared.minimum && *number < *declared.minimum;
  if (isBelow || (declared.maximum && *number > *declared.maximum)) {
    problem = quoted(declared, typed) + (isBelow ? "is below the minimum, " : "is above the maximum, ") +
              withUnit(isBelow ? *declared.minimum : *declared.maximum, declared.unit);
    return std::nullopt;
  }
  return withUnit(*number, declared.unit);
}

std::optional<std::string> stepText(const ModelAttribute &declared, const std::string &typed,
                                    std::string &problem) {
  const std::optional<double> step = declared.kind == AttributeKind::Integer
                                         ? wholeValue(declared, typed, problem)
                                         : realValue(declared, typed, true, problem);
  if (step && !(*step > 0.0)) {
    problem = declared.fullName() + ": a step must be greater than 0";
    return std::nullopt;
  }
  return step ? std::optional<std::string>(withUnit(*step, declared.unit)) : std::nullopt;
}

} // namespace Workbench
