#include "ExpressionBuilder/tests/property/ExpressionGenerator.h"

#include "ExpressionBuilder/tests/property/EdgeValues.h"

#include <algorithm>

namespace LanguageOracle {
namespace {

// The factor keeps the sequences of neighbouring seeds apart.
std::uint64_t engineSeed(std::uint64_t seed, std::uint64_t number) {
  return seed * 0x9E3779B97F4A7C15U + number;
}

} // namespace

ExpressionGenerator::ExpressionGenerator(std::uint64_t seed, std::uint64_t number)
    : m_random(engineSeed(seed, number)) {}

LanguageCase ExpressionGenerator::make() {
  LanguageCase result;
  result.bindings = randomBindings(m_random);
  result.target = anyType();
  m_flaw = chooseFlaw();
  if (m_flaw == Flaw::Blank || m_flaw == Flaw::OnlyTokens) {
    result.text = joined(m_flaw == Flaw::Blank ? Tokens() : anyTokens(m_random), m_random);
    return withSurroundings(result);
  }
  const int budget = m_random.between(4, 9);
  m_flawDepth = m_random.between(0, budget - 1);
  Piece piece = expression(anyType(), budget, true);
  result.depth = piece.depth;
  if (m_flaw == Flaw::WrongTokens) {
    for (int count = m_random.between(1, 2); count > 0 && !piece.tokens.empty(); --count) {
      spoilTokens(piece.tokens, m_random);
    }
  }
  result.text = joined(piece.tokens, m_random);
  if (m_flaw == Flaw::WrongBytes) {
    spoilText(result.text, m_random);
  }
  return withSurroundings(result);
}

// What happens to the text once it is built.
LanguageCase &ExpressionGenerator::withSurroundings(LanguageCase &languageCase) {
  if (m_random.chance(10)) {
    Disturbance disturbance;
    disturbance.name = m_random.of(variableNames(anyType()));
    if (m_random.chance(60)) {
      disturbance.value = edgeValue(anyType(), m_random);
    }
    languageCase.disturbance = disturbance;
  }
  if (languageCase.target == Type::Double && m_random.chance(50)) {
    languageCase.rows.resize(1 + m_random.below(5));
    for (auto &row : languageCase.rows) {
      for (double &value : row) {
        value = edgeValue(Type::Double, m_random).real;
      }
    }
  }
  return languageCase;
}

ExpressionGenerator::Piece ExpressionGenerator::expression(Type type, int budget, bool isSpine) {
  if (isSpine && budget == m_flawDepth && m_flaw != Flaw::None && m_flaw < Flaw::WrongTokens) {
    return flawed(type);
  }
  if (budget == 0 || (!isSpine && m_random.chance(25))) {
    return leaf(type);
  }
  return inner(type, budget, isSpine);
}

ExpressionGenerator::Piece ExpressionGenerator::leaf(Type type) {
  Piece piece;
  if (type == Type::Double && m_random.chance(10)) {
    piece.tokens = {{m_random.chance(50) ? "pi" : "e", false}};
  } else if (type != Type::Bool && type != Type::LongLong && m_random.chance(45)) {
    piece.tokens = {{literal(type, m_random), false}};
  } else {
    const std::vector<std::string> &names = variableNames(type);
    piece.tokens = {
        {'%' + names[m_random.chance(75) ? m_random.below(2) : m_random.below(names.size())] + '%', false}};
  }
  return piece;
}

ExpressionGenerator::Piece ExpressionGenerator::inner(Type type, int budget, bool isSpine) {
  const std::size_t choice = m_random.below(100);
  if (choice < 50) {
    return binary(type, budget, isSpine);
  }
  if (choice < 62) {
    return prefix(type, budget, isSpine);
  }
  if (choice < 72 && type != Type::LongLong) {
    return cast(type, budget, isSpine);
  }
  if (choice < 87 && type != Type::Bool && type != Type::String) {
    return call(type, budget, isSpine);
  }
  return conditional(type, budget, isSpine);
}

// An operator whose result has the type, and the type of its right operand.
std::pair<Binary, Type> ExpressionGenerator::operatorFor(Type type) {
  for (;;) {
    const Binary op = m_random.of(kBinaries);
    const Type operand = m_random.chance(70) ? type : anyType();
    const bool isRareQuotient = op == Binary::Divide && operand != Type::Double && !m_random.chance(40);
    if (!isRareQuotient && resultType(op, operand) == std::optional(type)) {
      return {op, operand};
    }
  }
}

ExpressionGenerator::Piece ExpressionGenerator::binary(Type type, int budget, bool isSpine) {
  const auto [op, rightType] = operatorFor(type);
  const Type leftType = m_random.chance(65) ? rightType : anyType();
  const bool leftIsSpine = isSpine && m_random.chance(50);
  const int low = lowBudget(budget - 1);
  Piece left = expression(leftType, leftIsSpine ? budget - 1 : low, leftIsSpine);
  Piece right = expression(rightType, isSpine && !leftIsSpine ? budget - 1 : low, isSpine && !leftIsSpine);
  return binaryOf(op, std::move(left), std::move(right));
}

ExpressionGenerator::Piece ExpressionGenerator::prefix(Type type, int budget, bool isSpine) {
  for (;;) {
    const Prefix op = m_random.of(kPrefixes);
    const Type operand = m_random.chance(60) ? type : anyType();
    if (resultType(op, operand) == std::optional(type)) {
      return prefixOf(symbol(op), expression(operand, budget - 1, isSpine));
    }
  }
}

ExpressionGenerator::Piece ExpressionGenerator::cast(Type type, int budget, bool isSpine) {
  return prefixOf('(' + std::string(typeName(type)) + ')', expression(anyType(), budget - 1, isSpine));
}

ExpressionGenerator::Piece ExpressionGenerator::conditional(Type type, int budget, bool isSpine) {
  // A branch may have a type that gives way to the other one's.
  static const std::vector<Type> kYielding = {Type::Bool, Type::LongLong, Type::Int, Type::Double,
                                              Type::String};
  const auto rank = std::find(kYielding.begin(), kYielding.end(), type) - kYielding.begin();
  const Type yielding =
      m_random.chance(60) ? type : kYielding[m_random.below(static_cast<std::size_t>(rank) + 1)];
  const Type conditionType = m_random.chance(75) ? Type::Bool : anyType();
  const int spine = isSpine ? m_random.between(0, 2) : -1;
  const int low = lowBudget(budget - 1);
  const auto part = [&](Type partType, int place) {
    return expression(partType, place == spine ? budget - 1 : low, place == spine);
  };
  const bool firstYields = m_random.chance(50);
  Piece condition = part(conditionType, 0);
  Piece whenTrue = part(firstYields ? yielding : type, 1);
  Piece whenFalse = part(firstYields ? type : yielding, 2);
  return conditionalOf(std::move(condition), std::move(whenTrue), std::move(whenFalse));
}

ExpressionGenerator::Piece ExpressionGenerator::call(Type type, int budget, bool isSpine) {
  const Function *function = nullptr;
  while (function == nullptr || !accepts(*function, std::vector<Type>(function->arity, type))) {
    function = &m_random.of(functions());
  }
  const std::size_t spine = m_random.below(function->arity);
  const int low = lowBudget(budget - 1);
  std::vector<Piece> arguments;
  for (std::size_t place = 0; place < function->arity; ++place) {
    const bool isOnSpine = isSpine && place == spine;
    arguments.push_back(expression(type, isOnSpine ? budget - 1 : low, isOnSpine));
  }
  return callOf(function->name, std::move(arguments));
}

ExpressionGenerator::Piece ExpressionGenerator::bound(Piece piece, int loosest) {
  const bool needsBrackets = piece.precedence > loosest ? !m_random.chance(3) : m_random.chance(6);
  if (!needsBrackets) {
    return piece;
  }
  Piece result;
  result.depth = piece.depth;
  result.tokens = {{"(", false}};
  append(result.tokens, std::move(piece.tokens));
  result.tokens.push_back({")", false});
  return result;
}

ExpressionGenerator::Piece ExpressionGenerator::binaryOf(Binary op, Piece left, Piece right) {
  Piece result;
  result.depth = 1 + std::max(left.depth, right.depth);
  result.precedence = precedence(op);
  result.tokens = bound(std::move(left), result.precedence).tokens;
  result.tokens.push_back({symbol(op), false});
  append(result.tokens, bound(std::move(right), result.precedence - 1).tokens);
  return result;
}

ExpressionGenerator::Piece ExpressionGenerator::prefixOf(const std::string &symbol, Piece operand) {
  Piece result;
  result.depth = 1 + operand.depth;
  result.precedence = 0;
  result.tokens = {{symbol, false}};
  append(result.tokens, bound(std::move(operand), 0).tokens);
  return result;
}

ExpressionGenerator::Piece ExpressionGenerator::conditionalOf(Piece condition, Piece whenTrue,
                                                              Piece whenFalse) {
  Piece result;
  result.depth = 1 + std::max({condition.depth, whenTrue.depth, whenFalse.depth});
  result.precedence = 10;
  result.tokens = bound(std::move(condition), 9).tokens;
  result.tokens.push_back({"?", false});
  append(result.tokens, bound(std::move(whenTrue), 10).tokens);
  result.tokens.push_back({":", false});
  append(result.tokens, bound(std::move(whenFalse), 10).tokens);
  return result;
}

ExpressionGenerator::Piece ExpressionGenerator::callOf(const std::string &name,
                                                       std::vector<Piece> arguments) {
  Piece result;
  result.tokens = {{name, false}};
  Token separator{"(", true};
  for (Piece &argument : arguments) {
    result.depth = std::max(result.depth, argument.depth);
    result.tokens.push_back(separator);
    append(result.tokens, bound(std::move(argument), 10).tokens);
    separator = {",", false};
  }
  result.tokens.push_back({")", false});
  ++result.depth;
  return result;
}

} // namespace LanguageOracle
