#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace LanguageOracle {

/// A variable that is declared, or defined anew, before the text is built.
struct Binding {
  std::string name;
  /// The constant that it is, unless there is a text.
  Value value;
  /// The text that defines it, over the variables bound before.
  std::optional<std::string> text;
  /// Whether the variable exists already and gets another definition of its type.
  bool replaces = false;
};

/// Changes a variable between building and a second evaluation.
struct Disturbance {
  std::string name;
  /// What the variable is then, of any type; nothing when it is missing.
  std::optional<Value> value;
};

constexpr std::array<const char *, 2> kColumns = {"d0", "d1"};

/// One text and all that its outcome depends on.
struct LanguageCase {
  std::vector<Binding> bindings;
  std::string text;
  Type target = Type::Double;
  std::optional<Disturbance> disturbance;
  /// For a double, the values of the variables named kColumns in some rows to evaluate at once.
  std::vector<std::array<double, 2>> rows;
  /// Operators, conversions, conditionals and calls that stood inside each other when the text was made.
  int depth = 0;
};

/// One thing that was asked of an evaluator about a case.
struct Observation {
  std::string what;
  Outcome outcome;
};

} // namespace LanguageOracle
