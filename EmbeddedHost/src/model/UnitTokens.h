#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

struct UnitSpellingRow;

/// A piece of the text of a unit.
struct UnitToken {
  enum class Kind { Number, Name, Divide, Multiply, Open, Close };

  Kind kind = Kind::Name;
  std::string text;
  std::string exponent;  ///< a whole number with its sign; "" when there is none
  std::size_t begin = 0; ///< where it stands, its exponent included
  std::size_t end = 0;
  bool isBlank = false; ///< of a Multiply: nothing but blanks stood there
  bool isBelowLine = false;
  const UnitSpellingRow *row = nullptr; ///< what the table of spellings says of it, null for nothing
};

/// The text of a unit in pieces.
struct UnitTokens {
  std::string text; ///< in plain characters, with one blank or none between two pieces
  std::vector<UnitToken> tokens;
  bool isShifted = false;      ///< a unit with an origin or a logarithm, in the database's own notation
  bool hasBrokenPower = false; ///< such as m^0.5; the tokens are not complete then
};

/// Cuts a text into pieces; between two factors without a sign comes a Multiply. Never fails: what cannot be read
/// goes into a name or a sign at a place where the database refuses it.
UnitTokens tokensOfUnit(std::string_view written);

} // namespace EmbeddedHost
