#include "Workbench/UnitSystem.h"

#include "EmbeddedHost/RoundingNoise.h"
#include "EmbeddedHost/Units.h"

#include <cmath>

namespace Workbench {

UnitSystem::~UnitSystem() = default;

std::optional<double> UnitSystem::convertDifference(double difference, const std::string &from,
                                                    const std::string &to) const {
  const std::optional<double> zero = convert(0.0, from, to);
  if (!zero || *zero == 0.0) {
    return convert(difference, from, to); // exactly as a value, where there is no offset
  }
  const std::optional<double> one = convert(1.0, from, to);
  if (!one) {
    return std::nullopt;
  }
  const double scale = EmbeddedHost::withoutRoundingNoise(*one - *zero, *zero);
  return EmbeddedHost::withoutRoundingNoise(scale * difference, scale * difference);
}

std::string UnitSystem::conversionHint(const std::string &first, const std::string &second) {
  return EmbeddedHost::conversionHint(first, second);
}

std::string HostUnits::problemOf(const std::string &unit) const {
  return unit.empty() ? "" : EmbeddedHost::UnitSystem::process().parse(unit).problem;
}

std::optional<double> HostUnits::convert(double value, const std::string &from, const std::string &to) const {
  if (from == to) {
    return value;
  }
  // A plain number has the unit "1": ratios such as "%" convert to it.
  EmbeddedHost::UnitSystem &units = EmbeddedHost::UnitSystem::process();
  const EmbeddedHost::Unit *source = units.parse(from.empty() ? "1" : from).unit;
  const EmbeddedHost::Unit *target = units.parse(to.empty() ? "1" : to).unit;
  if (source == nullptr || target == nullptr || !units.areConvertible(*source, *target)) {
    return std::nullopt;
  }
  const double converted = EmbeddedHost::convertReadably(value, *source, *target);
  return std::isfinite(converted) ? std::optional<double>(converted) : std::nullopt;
}

} // namespace Workbench
