#pragma once

#include "ExpressionBuilder/tests/property/LanguageCase.h"
#include "ExpressionBuilder/tests/property/OracleFunctions.h"
#include "ExpressionBuilder/tests/property/OracleOperators.h"
#include "ExpressionBuilder/tests/property/RandomChoice.h"
#include "ExpressionBuilder/tests/property/TokenText.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace LanguageOracle {

/// Makes cases of the language, each from a seed and its number alone. About half of the texts are meant to
/// have a value; each of the others gets one flaw: an operator or a function with any types of operands, an
/// unknown variable, a bad literal, operations that fail when they are computed, or wrong tokens or bytes.
class ExpressionGenerator {
public:
  ExpressionGenerator(std::uint64_t seed, std::uint64_t number);

  LanguageCase make();

private:
  enum class Flaw {
    None,
    AnyBinary,
    AnyPrefix,
    AnyCall,
    AnyConditional,
    UnknownVariable,
    BadLiteral,
    Failures,
    WrongTokens,
    WrongBytes,
    OnlyTokens,
    Blank
  };
  /// Part of a text with what its surroundings must know of it.
  struct Piece {
    Tokens tokens;
    int depth = 0;
    /// Of the loosest operator outside brackets, -1 when there is none.
    int precedence = -1;
  };

  Flaw chooseFlaw();
  Type anyType() { return m_random.of(kTypes); }
  int lowBudget(int budget) { return m_random.chance(70) ? 0 : m_random.between(0, std::min(budget, 2)); }

  /// An expression of the type, exactly `budget` deep when `isSpine` and no flaw comes in between, otherwise
  /// up to that.
  Piece expression(Type type, int budget, bool isSpine);
  Piece leaf(Type type);
  Piece inner(Type type, int budget, bool isSpine);

  Piece binary(Type type, int budget, bool isSpine);
  Piece prefix(Type type, int budget, bool isSpine);
  Piece cast(Type type, int budget, bool isSpine);
  Piece conditional(Type type, int budget, bool isSpine);
  Piece call(Type type, int budget, bool isSpine);
  Piece flawed(Type type);
  Piece failing();
  Piece failures();
  LanguageCase &withSurroundings(LanguageCase &languageCase);

  Piece binaryOf(Binary op, Piece left, Piece right);
  Piece prefixOf(const std::string &symbol, Piece operand);
  Piece conditionalOf(Piece condition, Piece whenTrue, Piece whenFalse);
  Piece callOf(const std::string &name, std::vector<Piece> arguments);
  const Function &anyFunction(std::size_t arity);
  std::pair<Binary, Type> operatorFor(Type type);

  /// The piece, in brackets when it binds more loosely than that.
  Piece bound(Piece piece, int loosest);

  RandomChoice m_random;
  Flaw m_flaw = Flaw::None;
  int m_flawDepth = 0;
};

} // namespace LanguageOracle
