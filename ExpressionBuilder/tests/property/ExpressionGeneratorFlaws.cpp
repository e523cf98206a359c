// The parts of the generator that make texts go wrong.
#include "ExpressionBuilder/tests/property/EdgeValues.h"
#include "ExpressionBuilder/tests/property/ExpressionGenerator.h"

#include <stdexcept>

namespace LanguageOracle {

ExpressionGenerator::Flaw ExpressionGenerator::chooseFlaw() {
  static const std::vector<std::pair<Flaw, std::size_t>> kPercent = {
      {Flaw::None, 40},          {Flaw::AnyBinary, 13},      {Flaw::AnyPrefix, 2},  {Flaw::AnyCall, 13},
      {Flaw::AnyConditional, 3}, {Flaw::UnknownVariable, 2}, {Flaw::BadLiteral, 3}, {Flaw::Failures, 7},
      {Flaw::WrongTokens, 8},    {Flaw::WrongBytes, 4},      {Flaw::OnlyTokens, 5}};
  std::size_t choice = m_random.below(1000);
  if (choice == 999) {
    return Flaw::Blank;
  }
  choice /= 10;
  for (const auto &[flaw, percent] : kPercent) {
    if (choice < percent) {
      return flaw;
    }
    choice -= percent;
  }
  throw std::logic_error("the shares do not add up");
}

const Function &ExpressionGenerator::anyFunction(std::size_t arity) {
  for (;;) {
    const Function &function = m_random.of(functions());
    if (function.arity == arity) {
      return function;
    }
  }
}

// Stands in the place of an expression of the type, which a conversion makes of it where one can be written.
ExpressionGenerator::Piece ExpressionGenerator::flawed(Type type) {
  const Flaw flaw = m_flaw;
  const int budget = m_flawDepth;
  m_flaw = Flaw::None;
  const auto part = [&] {
    return expression(anyType(), budget, true);
  };
  Piece piece;
  switch (flaw) {
  case Flaw::AnyBinary: {
    const Type leftType = anyType();
    const Type rightType = anyType();
    const Binary op = m_random.of(kBinaries);
    piece = binaryOf(op, expression(leftType, budget, true), expression(rightType, lowBudget(2), false));
    break;
  }
  case Flaw::AnyPrefix:
    piece = prefixOf(symbol(m_random.of(kPrefixes)), part());
    break;
  case Flaw::AnyCall: {
    // The more arguments a function has, the more lists of types there are to be met.
    const std::size_t arity = m_random.of(std::vector<std::size_t>{1, 2, 2, 3, 3});
    const Function &function = anyFunction(arity);
    const std::size_t count = m_random.chance(90) ? function.arity : 1 + m_random.below(4);
    std::vector<Piece> arguments = {part()};
    while (arguments.size() < count) {
      arguments.push_back(expression(anyType(), lowBudget(2), false));
    }
    piece = callOf(function.name, std::move(arguments));
    break;
  }
  case Flaw::AnyConditional: {
    Piece condition = part();
    Piece whenTrue = expression(anyType(), lowBudget(2), false);
    Piece whenFalse = expression(anyType(), lowBudget(2), false);
    piece = conditionalOf(std::move(condition), std::move(whenTrue), std::move(whenFalse));
    break;
  }
  case Flaw::UnknownVariable:
    piece.tokens = {{m_random.chance(50) ? "%d9%" : "%D0%", false}};
    break;
  case Flaw::Failures:
    piece = failures();
    break;
  default:
    piece.tokens = {{badLiteral(m_random), false}};
    break;
  }
  return type == Type::LongLong ? piece : prefixOf('(' + std::string(typeName(type)) + ')', std::move(piece));
}

// Fails whenever it is computed, in one of two ways.
ExpressionGenerator::Piece ExpressionGenerator::failing() {
  static const std::vector<std::string> kTexts = {
      "%i0%/(%i1%*0)",    "mod(%i1%,%i0%*0)",          "%l0%/(%l1%*0)",
      "mod(%l0%,0*%l1%)", "-2147483648/(%i0%*0-1)",    "(-2147483648+%i0%*0)/-1",
      "mod(1,0)",         "max(mod(7,0),-2147483648)", "(string)(%i0%/(%i1%*0))"};
  Piece piece;
  piece.depth = 3;
  piece.precedence = 1;
  piece.tokens = {{m_random.of(kTexts), false}};
  return piece;
}

// Several failing parts, the order of which decides, some of which are not computed.
ExpressionGenerator::Piece ExpressionGenerator::failures() {
  const auto part = [this] {
    return m_random.chance(70) ? failing() : expression(anyType(), lowBudget(2), false);
  };
  Piece first = part();
  Piece second = part();
  switch (m_random.below(4)) {
  case 0:
    return first;
  case 1:
    return binaryOf(m_random.of(kBinaries), std::move(first), std::move(second));
  case 2: {
    std::vector<Piece> arguments;
    arguments.push_back(prefixOf("(double)", std::move(first)));
    arguments.push_back(prefixOf("(double)", std::move(second)));
    return callOf("max", std::move(arguments));
  }
  default: {
    Piece condition = expression(anyType(), lowBudget(2), false);
    return conditionalOf(std::move(condition), std::move(first), std::move(second));
  }
  }
}

} // namespace LanguageOracle
