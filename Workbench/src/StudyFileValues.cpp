#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Workbench {

namespace {

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         static_cast<unsigned char>(character) >= 0x80;
}

std::string limitText(double number, const std::string &unit) {
  return EmbeddedHost::writeSolverNumber(number) + (unit.empty() ? "" : " " + unit);
}

} // namespace

std::optional<WrittenQuantity> readQuantity(const std::string &text) {
  WrittenQuantity quantity;
  std::size_t length = 0;
  const std::optional<double> number = EmbeddedHost::readLeadingNumber(text, length);
  if (!number) {
    return std::nullopt;
  }
  quantity.number = *number;
  const std::size_t unitBegin = text.find_first_not_of(" \t", length);
  if (unitBegin == std::string::npos) {
    return quantity;
  }
  // "10,000" and "1.5.2" are mistyped numbers, not numbers with a unit.
  if (unitBegin == length && !isLetter(text[unitBegin])) {
    return std::nullopt;
  }
  quantity.unit = text.substr(unitBegin, text.find_last_not_of(" \t") - unitBegin + 1);
  return quantity;
}

std::string quantityIn(const std::string &text, const std::string &unit, bool isDifference) {
  const std::optional<WrittenQuantity> written = readQuantity(text);
  if (!written || unit.empty() || written->unit == unit) {
    return text;
  }
  const HostUnits units;
  const std::optional<double> converted = isDifference
                                              ? units.convertDifference(written->number, written->unit, unit)
                                              : units.convert(written->number, written->unit, unit);
  return converted ? EmbeddedHost::writeSolverNumber(*converted) + " " + unit : text;
}

// A number, or a number and a unit, converted to the attribute's declared unit.
std::optional<double> StudyFileReader::readReal(const StudyNode &node, const StudyAttribute &attribute,
                                                bool isDifference) {
  const std::optional<std::string> text = m_nodes.text(node, "a value of \"" + attribute.fullName() + "\"");
  if (!text) {
    return std::nullopt;
  }
  const std::optional<WrittenQuantity> quantity = readQuantity(*text);
  if (!quantity) {
    m_nodes.report(node, "\"" + *text + "\" is not a number, alone or with a unit");
    return std::nullopt;
  }
  const auto &[number, unit] = *quantity;
  if (unit.empty() || (unit == attribute.unit && m_units.isUnit(unit))) {
    return number;
  }
  const std::string problem = m_units.problemOf(unit);
  if (!problem.empty()) {
    m_nodes.report(node, problem);
    return std::nullopt;
  }
  std::optional<double> converted = isDifference ? m_units.convertDifference(number, unit, attribute.unit)
                                                 : m_units.convert(number, unit, attribute.unit);
  if (!converted || !std::isfinite(*converted)) {
    m_nodes.report(node,
                   "\"" + unit + "\" cannot be converted to " +
                       (attribute.unit.empty() ? "a number without unit" : "\"" + attribute.unit + "\"") +
                       ", in which \"" + attribute.fullName() + "\" is declared" +
                       UnitSystem::conversionHint(unit, attribute.unit));
    return std::nullopt;
  }
  return converted;
}

bool StudyFileReader::checkLimits(const StudyNode &node, const StudyAttribute &attribute, double number) {
  const std::string shown = node.isScalar() ? node.text() : limitText(number, attribute.unit);
  if (attribute.minimum && number < *attribute.minimum) {
    m_nodes.report(node, "\"" + shown + "\" is below the minimum of \"" + attribute.fullName() + "\", " +
                             limitText(*attribute.minimum, attribute.unit));
    return false;
  }
  if (attribute.maximum && number > *attribute.maximum) {
    m_nodes.report(node, "\"" + shown + "\" is above the maximum of \"" + attribute.fullName() + "\", " +
                             limitText(*attribute.maximum, attribute.unit));
    return false;
  }
  return true;
}

std::optional<StudyValue> StudyFileReader::readValue(const StudyNode &node, const StudyAttribute &attribute) {
  StudyValue value;
  value.place = node.place();
  const std::string what = "a value of \"" + attribute.fullName() + "\"";
  switch (attribute.kind) {
  case AttributeKind::Real:
    if (const std::optional<double> number = readReal(node, attribute, false)) {
      value.number = *number;
      break;
    }
    return std::nullopt;
  case AttributeKind::Integer:
    if (const std::optional<long long> whole = m_nodes.whole(node, what)) {
      if (*whole < std::numeric_limits<int>::min() || *whole > std::numeric_limits<int>::max()) {
        m_nodes.report(node, "\"" + node.text() + "\" is outside the range of an integer");
        return std::nullopt;
      }
      value.number = static_cast<double>(*whole);
      break;
    }
    return std::nullopt;
  case AttributeKind::Boolean:
    if (const std::optional<bool> truth = m_nodes.truth(node, what)) {
      value.number = *truth ? 1.0 : 0.0;
      break;
    }
    return std::nullopt;
  case AttributeKind::Choice:
    if (const std::optional<std::size_t> option = m_nodes.choice(node, what, attribute.options)) {
      value.number = static_cast<double>(*option + 1);
      break;
    }
    return std::nullopt;
  case AttributeKind::Text:
    if (const std::optional<std::string> text = m_nodes.text(node, what)) {
      value.text = *text;
      return value;
    }
    return std::nullopt;
  }
  value.text = node.text();
  return checkLimits(node, attribute, value.number) ? std::optional<StudyValue>(value) : std::nullopt;
}

} // namespace Workbench
