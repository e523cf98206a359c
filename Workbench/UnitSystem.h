#pragma once

#include <optional>
#include <string>

namespace Workbench {

/// What the study file needs to know about units. An empty text is the unit of a plain number.
class UnitSystem {
public:
  UnitSystem() = default;
  UnitSystem(const UnitSystem &) = delete;
  UnitSystem &operator=(const UnitSystem &) = delete;
  virtual ~UnitSystem();

  /// Why the text names no unit, as one sentence for people; empty when it names one.
  virtual std::string problemOf(const std::string &unit) const = 0;

  /// Whether the text names a unit.
  bool isUnit(const std::string &unit) const { return problemOf(unit).empty(); }

  /// A value in another unit; empty when either text is no unit or they measure different things.
  virtual std::optional<double> convert(double value, const std::string &from,
                                        const std::string &to) const = 0;

  /// A difference of two values in another unit: without the offset that temperature scales have.
  std::optional<double> convertDifference(double difference, const std::string &from,
                                          const std::string &to) const;

  /// What to say besides when two units do not convert, for example that "C" is the coulomb; else "".
  static std::string conversionHint(const std::string &first, const std::string &second);
};

/// The units that the embedded host knows.
class HostUnits final : public UnitSystem {
public:
  std::string problemOf(const std::string &unit) const override;
  std::optional<double> convert(double value, const std::string &from, const std::string &to) const override;
};

} // namespace Workbench
