#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// A unit of measurement, for example "mm", "degC" or "W/(m2.K)". Made by UnitSystem, lives as long as the
/// process.
class Unit {
public:
  /// The text that the unit was asked for with.
  virtual const std::string &text() const = 0;

  Unit(const Unit &) = delete;
  Unit &operator=(const Unit &) = delete;

protected:
  Unit() = default;
  virtual ~Unit() = default;
};

/// What became of a text that should name a unit.
struct UnitResult {
  const Unit *unit = nullptr; ///< null when the text was refused
  std::string problem; ///< then one sentence for people, with the spelling that works where there is one
};

/// Units of measurement with conversion, offsets such as that of "degC" included. May be used by several
/// threads. Everything is looked up in the unit database of the udunits2 package.
class UnitSystem {
public:
  UnitSystem(const UnitSystem &) = delete;
  UnitSystem &operator=(const UnitSystem &) = delete;

  /// The one system of the process; reads the database on first use.
  static UnitSystem &process();

  /// Reads a unit. Spellings that engineers write and the database does not have ("kWh", "Nm", "rev/min",
  /// "deg") are understood; what it would read as something else ("W/m2K", "W/mK", "mph") is refused as
  /// ambiguous with the readings that work; currencies and decibels are refused because they are no units.
  /// docs/units.md lists them all. Blanks around the text are ignored; "" is refused.
  virtual UnitResult parse(std::string_view text) = 0;
  /// Whether values can be converted between the two.
  virtual bool areConvertible(const Unit &from, const Unit &to) = 0;
  /// The value in the other unit; NaN when they cannot be converted. A value in its own unit comes back
  /// bit for bit.
  virtual double convert(double value, const Unit &from, const Unit &to) = 0;
  /// The value in the unit that a text names; empty when parse() refuses the text or the two cannot be converted.
  virtual std::optional<double> convertTo(double value, const Unit &from, std::string_view to) = 0;

protected:
  UnitSystem() = default;
  virtual ~UnitSystem() = default;
};

/// UnitSystem::convert() without what rounding adds, see withoutRoundingNoise(): for values that people typed and will
/// see again. 3 mm are 0.3 cm.
double convertReadably(double value, const Unit &from, const Unit &to);

/// What to say besides when two units do not convert: " ("C" is the coulomb; degrees Celsius are "degC")" when one of
/// them is "C", the same for "F", otherwise "".
std::string conversionHint(std::string_view first, std::string_view second);

} // namespace EmbeddedHost
