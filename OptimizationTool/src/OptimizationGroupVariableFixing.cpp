#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationGroupVariable.h"

#include <memory>
#include <string>

namespace OptimizationTool {

using EntityModel::Attribute;

namespace {

// A detached copy that holds the text as a typed value, or null when the attribute does not accept the text.
// The copy has no limits of its own, which would clamp or refuse what is to be compared.
std::unique_ptr<Attribute> toScratchValue(const Attribute &attribute, const std::string &text) {
  // What a host throws at a text is its own affair; all of it means that there is no value.
  try {
    std::unique_ptr<Attribute> copy = attribute.clone();
    if (copy != nullptr) {
      copy->setOptionalMinimum(std::nullopt);
      copy->setOptionalMaximum(std::nullopt);
      copy->setValueFromString(text);
    }
    return copy;
  } catch (...) {
    return nullptr;
  }
}

// Integer arithmetic as the machine does it, which the language leaves undefined for signed operands.
int wrappingSum(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

int wrappingDifference(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

bool isAbove(const std::unique_ptr<Attribute> &a, const std::unique_ptr<Attribute> &b) {
  return a != nullptr && b != nullptr && a->getNumericValue() > b->getNumericValue();
}

// The step is judged by the values of the limits that were found, the maximum after its repair.
void fixStep(OptimizationGroupVariable variable, const Attribute &attribute, const Attribute &minimum,
             const Attribute &maximum) {
  std::string stepText = variable.getStepValue();
  if (stepText.empty()) {
    stepText = "1";
    variable.setStepValue(stepText);
  }
  const std::unique_ptr<Attribute> step = toScratchValue(attribute, stepText);
  if (step == nullptr) {
    return;
  }
  if (wrappingSum(minimum.getIntValue(), step->getIntValue()) > maximum.getIntValue()) {
    variable.setStepValue(std::to_string(wrappingDifference(maximum.getIntValue(), minimum.getIntValue())));
  }
}

void fixLimitsAndStep(OptimizationGroupVariable variable) {
  // A variable with limits alone is left as it is: only one that is bounded or stepped is repaired.
  if (variable.getLowBoundValue().empty() && variable.getHighBoundValue().empty() &&
      variable.getStepValue().empty()) {
    return;
  }
  const Attribute *attribute = variable.getAttribute();
  if (attribute == nullptr) {
    return;
  }
  const std::unique_ptr<Attribute> minimum = toScratchValue(*attribute, variable.getMinimumValue());
  std::unique_ptr<Attribute> maximum = toScratchValue(*attribute, variable.getMaximumValue());
  if (isAbove(minimum, maximum)) {
    variable.setMaximumValue(variable.getMinimumValue());
    maximum = toScratchValue(*attribute, variable.getMaximumValue());
  }
  // A choice is an integer here too: its values are the ordinals of its options.
  if (minimum != nullptr && maximum != nullptr && (attribute->isInteger() || attribute->isChoice())) {
    fixStep(variable, *attribute, *minimum, *maximum);
  }
}

void fixBounds(OptimizationGroupVariable variable) {
  const std::string lowText = variable.getLowBoundValue();
  const std::string highText = variable.getHighBoundValue();
  if (lowText.empty() && highText.empty()) {
    return;
  }
  const Attribute *attribute = variable.getAttribute();
  if (attribute == nullptr) {
    return;
  }
  const std::unique_ptr<Attribute> low = toScratchValue(*attribute, lowText);
  const std::unique_ptr<Attribute> high = toScratchValue(*attribute, highText);
  if (isAbove(low, high)) {
    variable.setHighBoundValue(lowText);
  }
}

} // namespace

void OptimizationGroupVariable::fixVariable() {
  fixLimitsAndStep(*this);
  fixBounds(*this);
}

} // namespace OptimizationTool
