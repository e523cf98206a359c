#pragma once

#include "Workbench/UnitSystem.h"

#include <map>

namespace Workbench {

// A handful of units, enough to check what the study file does with them.
class FewUnits : public UnitSystem {
public:
  std::string problemOf(const std::string &unit) const override {
    return m_units.count(unit) != 0 ? "" : "unknown unit \"" + unit + "\"";
  }

  std::optional<double> convert(double value, const std::string &from, const std::string &to) const override {
    const auto source = m_units.find(from);
    const auto target = m_units.find(to);
    if (source == m_units.end() || target == m_units.end() ||
        source->second.quantity != target->second.quantity) {
      return std::nullopt;
    }
    if (from == to) {
      return value;
    }
    return (value * source->second.factor + source->second.offset - target->second.offset) /
           target->second.factor;
  }

private:
  struct Unit {
    char quantity;
    double factor;
    double offset;
  };

  std::map<std::string, Unit> m_units{{"", {'1', 1.0, 0.0}},        {"ohm", {'R', 1.0, 0.0}},
                                      {"kohm", {'R', 1000.0, 0.0}}, {"nF", {'C', 1.0, 0.0}},
                                      {"Hz", {'f', 1.0, 0.0}},      {"kHz", {'f', 1000.0, 0.0}},
                                      {"K", {'T', 1.0, 0.0}},       {"degC", {'T', 1.0, 273.15}},
                                      {"C", {'Q', 1.0, 0.0}},       {"s", {'t', 1.0, 0.0}}};
};

} // namespace Workbench
