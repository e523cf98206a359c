#include "ExpressionBuilder/src/ExpressionParser.h"

#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/src/Characters.h"
#include "ExpressionBuilder/src/Literals.h"
#include "ExpressionBuilder/src/WarningRecorder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ExpressionBuilder {

namespace {

/// Precedences; a smaller number binds tighter.
constexpr int kPrefix = 0;
constexpr int kProduct = 1;
constexpr int kSum = 2;
constexpr int kOrder = 3;
constexpr int kEquality = 4;
constexpr int kAnd = 8;
constexpr int kOr = 9;
constexpr int kConditional = 10;
constexpr int kBracket = 11;

/// Runs a step that computes or builds nodes; its errors get the place in the text.
template <class Function> auto withPlace(std::size_t offset, Function &&function) {
  try {
    return function();
  } catch (const ParserError &) {
    throw;
  } catch (const std::runtime_error &error) {
    throw ParserError(error.what(), offset);
  }
}

} // namespace

ExpressionParser::ExpressionParser(const BuilderBase &builder, TextPosition begin, TextPosition end,
                                   WarningRecorder *recorder)
    : m_builder(builder), m_begin(begin), m_end(end), m_position(begin), m_recorder(recorder) {}

std::unique_ptr<ElementAbstract> ExpressionParser::parse(int level, bool sameLevel, ParseMode mode) {
  if (static_cast<std::size_t>(m_end - m_begin) > BuilderBase::kMaximumTextBytes) {
    fail("Syntax error", m_begin);
  }
  constexpr std::size_t kUsualDepth = 16;
  m_calls.reserve(kUsualDepth);
  open(Purpose::Whole, level, sameLevel, mode);
  for (;;) {
    const Step ending = step();
    if (ending == Step::GoesOn) {
      continue;
    }
    const Purpose purpose = call().purpose;
    std::unique_ptr<ElementAbstract> value = std::move(call().left);
    m_calls.pop_back();
    if (m_recorder != nullptr) {
      m_recorder->close(m_position);
    }
    if (purpose == Purpose::Whole) {
      return value;
    }
    resume(purpose, ending, std::move(value));
  }
}

void ExpressionParser::open(Purpose purpose, int level, bool sameLevel, ParseMode mode) {
  if (m_calls.size() >= BuilderBase::kMaximumNesting) {
    fail("Syntax error", m_position);
  }
  m_calls.push_back(Call{nullptr, nullptr, m_position, level, mode, purpose, sameLevel, BinaryOperator::Add,
                         ValueType::Double});
  if (m_recorder != nullptr) {
    m_recorder->open(m_position);
  }
}

bool ExpressionParser::takes(int precedence) {
  return call().sameLevel ? call().level >= precedence : call().level > precedence;
}

/// Whether the byte behind the current one is c.
bool ExpressionParser::follows(char c) const {
  return m_end - m_position > 1 && *(m_position + 1) == c;
}

void ExpressionParser::skipBlanks() {
  while (m_position != m_end && *m_position == ' ') {
    ++m_position;
  }
}

void ExpressionParser::fail(const std::string &message, TextPosition place) const {
  throw ParserError(message, static_cast<std::size_t>(place - m_begin));
}

ExpressionParser::Step ExpressionParser::step() {
  skipBlanks();
  if (m_position == m_end) {
    return Step::Ends;
  }
  switch (byteClassOf(*m_position)) {
  case ByteClass::Other:
    return Step::Ends;
  case ByteClass::Literal:
    return stepLiteral();
  case ByteClass::Percent:
    return stepVariable();
  case ByteClass::Letter:
    return stepName();
  case ByteClass::Plus:
    return stepSign(BinaryOperator::Add, Purpose::PlusOperand);
  case ByteClass::Minus:
    return stepSign(BinaryOperator::Subtract, Purpose::NegateOperand);
  case ByteClass::Star:
    return stepBinary(BinaryOperator::Multiply, kProduct, 1);
  case ByteClass::Slash:
    return stepBinary(BinaryOperator::Divide, kProduct, 1);
  case ByteClass::Exclamation:
    return follows('=') ? stepBinary(BinaryOperator::NotEqual, kEquality, 2)
                        : stepPrefix(Purpose::NotOperand);
  case ByteClass::Equals:
    return follows('=') ? stepBinary(BinaryOperator::Equal, kEquality, 2) : Step::Ends;
  case ByteClass::Greater:
    return follows('=') ? stepBinary(BinaryOperator::GreaterEqual, kOrder, 2)
                        : stepBinary(BinaryOperator::Greater, kOrder, 1);
  case ByteClass::Less:
    return follows('=') ? stepBinary(BinaryOperator::LessEqual, kOrder, 2)
                        : stepBinary(BinaryOperator::Less, kOrder, 1);
  case ByteClass::Ampersand:
    return follows('&') ? stepBinary(BinaryOperator::And, kAnd, 2) : Step::Ends;
  case ByteClass::Bar:
    return follows('|') ? stepBinary(BinaryOperator::Or, kOr, 2) : Step::Ends;
  case ByteClass::OpeningBracket:
    return stepOpeningBracket();
  case ByteClass::ClosingBracket:
    return stepClosingBracket();
  case ByteClass::Comma:
    return stepComma();
  case ByteClass::Question:
    return stepQuestionMark();
  case ByteClass::Colon:
    return stepColon();
  }
  return Step::Ends;
}

ExpressionParser::Step ExpressionParser::stepLiteral() {
  const TextPosition place = m_position;
  if (call().left != nullptr) {
    fail("Syntax error", place);
  }
  Literal literal = readLiteral(m_position, m_end, m_builder.allowEscapes());
  if (literal.element == nullptr) {
    // Without an error of its own the literal is text that lacks the closing quote.
    fail(literal.error == nullptr ? "Syntax error" : literal.error, place);
  }
  call().left = std::move(literal.element);
  return Step::GoesOn;
}

ExpressionParser::Step ExpressionParser::stepVariable() {
  const TextPosition place = m_position;
  if (call().left != nullptr) {
    fail("Syntax error", place);
  }
  ++m_position;
  std::string name;
  readDelimited(m_position, m_end, '%', m_builder.allowEscapes(), name);
  call().left = m_builder.resolveVariable(name);
  if (call().left == nullptr) {
    fail("Undefined variable : " + name, place);
  }
  return Step::GoesOn;
}

ExpressionParser::Step ExpressionParser::stepName() {
  const TextPosition place = m_position;
  if (call().left != nullptr) {
    fail("Syntax error", place);
  }
  m_position = std::find_if_not(m_position, m_end, isNameByte);
  const std::string name(place, m_position);
  if (m_position != m_end && *m_position == '(') {
    const OverloadTable *const overloads = m_builder.resolveFunction(name);
    if (overloads == nullptr) {
      fail("Syntax error", place);
    }
    ++m_position;
    openFunction(*overloads, place);
    open(Purpose::Argument, kBracket, true, ParseMode::Argument);
    return Step::GoesOn;
  }
  call().left = m_builder.resolveConstant(name);
  if (call().left == nullptr) {
    fail("Syntax error", place);
  }
  return Step::GoesOn;
}

/// A sign behind an operand is an operator, one right before a digit belongs to the number, any other one is a
/// prefix.
ExpressionParser::Step ExpressionParser::stepSign(BinaryOperator operation, Purpose prefix) {
  if (call().left != nullptr) {
    return stepBinary(operation, kSum, 1);
  }
  const bool isNumber = m_end - m_position > 1 && isDigit(*(m_position + 1));
  return isNumber ? stepLiteral() : stepPrefix(prefix);
}

ExpressionParser::Step ExpressionParser::stepPrefix(Purpose purpose) {
  if (!takes(kPrefix)) {
    return Step::Ends;
  }
  if (call().left != nullptr) {
    // Only "!" gets here with an operand before it: the signs are binary then.
    fail("Syntax error - No left hand side expected", m_position);
  }
  call().place = m_position;
  ++m_position;
  open(purpose, kPrefix, true, ParseMode::Whole);
  return Step::GoesOn;
}

ExpressionParser::Step ExpressionParser::stepBinary(BinaryOperator operation, int precedence, int length) {
  if (!takes(precedence)) {
    return Step::Ends;
  }
  if (call().left == nullptr) {
    fail("Syntax error - Unexpected left hand side", m_position);
  }
  call().place = m_position;
  call().operation = operation;
  m_position += length;
  open(Purpose::RightOperand, precedence, false, ParseMode::Whole);
  return Step::GoesOn;
}

ExpressionParser::Step ExpressionParser::stepOpeningBracket() {
  if (call().left != nullptr) {
    fail("Syntax error", m_position);
  }
  call().place = m_position;
  ++m_position;
  if (!openCast()) {
    open(Purpose::Bracket, kBracket, true, ParseMode::Bracket);
  }
  return Step::GoesOn;
}

/// Behind a "(": a word of letters that is closed at once and names a type makes a cast. The name with a
/// blank in it, "long long", can therefore not be written.
bool ExpressionParser::openCast() {
  const TextPosition wordEnd = std::find_if_not(m_position, m_end, isLetter);
  if (wordEnd == m_position || wordEnd == m_end || *wordEnd != ')') {
    return false;
  }
  const std::string word(m_position, wordEnd);
  for (const ValueType type :
       {ValueType::String, ValueType::Int, ValueType::LongLong, ValueType::Double, ValueType::Bool}) {
    if (word == valueTypeName(type)) {
      call().castType = type;
      m_position = wordEnd + 1;
      open(Purpose::CastOperand, kPrefix, true, ParseMode::Whole);
      return true;
    }
  }
  return false;
}

ExpressionParser::Step ExpressionParser::stepClosingBracket() {
  if (!takes(kBracket)) {
    return Step::Ends;
  }
  if (call().left == nullptr || call().mode == ParseMode::Whole) {
    fail("Syntax error : unbalanced brackets", m_position);
  }
  if (call().mode == ParseMode::Argument) {
    return Step::Ends;
  }
  ++m_position;
  return Step::EndsOnBracket;
}

ExpressionParser::Step ExpressionParser::stepComma() {
  if (!takes(kBracket)) {
    return Step::Ends;
  }
  if (call().mode != ParseMode::Argument) {
    fail("Syntax error : unbalanced brackets", m_position);
  }
  if (call().left == nullptr) {
    fail("Syntax error", m_position);
  }
  return Step::Ends;
}

ExpressionParser::Step ExpressionParser::stepQuestionMark() {
  if (!takes(kConditional)) {
    return Step::Ends;
  }
  if (call().left == nullptr) {
    fail("Syntax error - Condition", m_position);
  }
  call().place = m_position;
  ++m_position;
  open(Purpose::TrueBranch, kConditional, true, ParseMode::Whole);
  return Step::GoesOn;
}

ExpressionParser::Step ExpressionParser::stepColon() {
  if (!takes(kConditional)) {
    return Step::Ends;
  }
  if (call().level > kConditional) {
    fail("Syntax error", m_position);
  }
  if (call().purpose == Purpose::FalseBranch) {
    // It belongs to a conditional further out, whose true branch contains this one.
    return Step::Ends;
  }
  ++m_position;
  return Step::EndsOnColon;
}

void ExpressionParser::resume(Purpose purpose, Step ending, std::unique_ptr<ElementAbstract> value) {
  switch (purpose) {
  case Purpose::Whole:
    return; // nothing has opened it
  case Purpose::NotOperand:
  case Purpose::NegateOperand:
  case Purpose::PlusOperand:
  case Purpose::CastOperand:
    resumeOperand(purpose, std::move(value));
    return;
  case Purpose::RightOperand:
    resumeBinary(std::move(value));
    return;
  case Purpose::Bracket:
    if (ending != Step::EndsOnBracket) {
      fail("Syntax error", m_position);
    }
    call().left = std::move(value);
    if (m_recorder != nullptr) {
      m_recorder->pass();
    }
    return;
  case Purpose::Argument:
    resumeArgument(std::move(value));
    return;
  case Purpose::TrueBranch:
    resumeTrueBranch(ending, std::move(value));
    return;
  case Purpose::FalseBranch:
    resumeFalseBranch(std::move(value));
    return;
  }
}

void ExpressionParser::resumeOperand(Purpose purpose, std::unique_ptr<ElementAbstract> value) {
  if (value == nullptr) {
    fail("No right hand side of unary operator", m_position);
  }
  if (m_recorder != nullptr && purpose == Purpose::NotOperand) {
    m_recorder->logicalNot(value->type());
  } else if (m_recorder != nullptr && purpose == Purpose::PlusOperand) {
    m_recorder->pass();
  }
  const auto offset = static_cast<std::size_t>(call().place - m_begin);
  call().left = withPlace(offset, [&]() -> std::unique_ptr<ElementAbstract> {
    switch (purpose) {
    case Purpose::NotOperand:
      return m_builder.fold(makeUnary(UnaryOperator::LogicalNot, std::move(value)));
    case Purpose::NegateOperand:
      return m_builder.fold(makeUnary(UnaryOperator::Negate, std::move(value)));
    case Purpose::CastOperand:
      return m_builder.castTo(call().castType, std::move(value));
    default:
      return std::move(value);
    }
  });
}

void ExpressionParser::resumeBinary(std::unique_ptr<ElementAbstract> value) {
  if (value == nullptr) {
    fail("Syntax error - Right hand side invalid", m_position);
  }
  if (m_recorder != nullptr) {
    m_recorder->binary(call().operation, call().place, call().left->type(), value->type());
  }
  const auto offset = static_cast<std::size_t>(call().place - m_begin);
  call().left = withPlace(offset, [&] {
    const ValueType type = value->type();
    if (call().left->type() != type) {
      call().left = m_builder.castTo(type, std::move(call().left));
    }
    return m_builder.fold(makeBinary(call().operation, type, std::move(call().left), std::move(value)));
  });
}

void ExpressionParser::resumeArgument(std::unique_ptr<ElementAbstract> value) {
  FunctionCall &function = m_functionCalls[m_openFunctions - 1];
  function.types.push_back(value == nullptr ? ValueType{} : value->type());
  function.arguments.push_back(std::move(value));
  skipBlanks();
  if (m_position == m_end || (*m_position != ',' && *m_position != ')')) {
    fail("Syntax Error", m_position);
  }
  const bool isLast = *m_position == ')';
  ++m_position;
  if (isLast) {
    call().left = finishFunction();
  } else {
    open(Purpose::Argument, kBracket, true, ParseMode::Argument);
  }
}

void ExpressionParser::openFunction(const OverloadTable &overloads, TextPosition place) {
  // A finished call's place is used again, so that its vectors need not allocate.
  if (m_openFunctions == m_functionCalls.size()) {
    m_functionCalls.emplace_back();
  }
  FunctionCall &function = m_functionCalls[m_openFunctions];
  ++m_openFunctions;
  function.overloads = &overloads;
  function.place = place;
  function.arguments.clear();
  function.types.clear();
}

std::unique_ptr<ElementAbstract> ExpressionParser::finishFunction() {
  --m_openFunctions;
  FunctionCall &function = m_functionCalls[m_openFunctions];
  const auto overload = function.overloads->find(function.types);
  if (overload == function.overloads->end()) {
    fail("Function does not support the current argument types", function.place);
  }
  if (overload->second == nullptr) {
    fail("Syntax Error : No Overload", function.place);
  }
  return withPlace(static_cast<std::size_t>(function.place - m_begin), [&] {
    std::unique_ptr<ElementAbstract> node;
    overload->second->construct(node, m_builder, function.arguments);
    return node;
  });
}

void ExpressionParser::resumeTrueBranch(Step ending, std::unique_ptr<ElementAbstract> value) {
  if (value == nullptr) {
    fail("Syntax error - True expression", ending == Step::EndsOnColon ? m_position - 1 : m_position);
  }
  // The byte is looked at, not how the branch ended: a variable name without its closing "%" that runs to the
  // end of the text and ends with a colon counts, and the missing false branch is reported.
  if (*(m_position - 1) != ':') {
    fail("Syntax error", m_position);
  }
  call().trueBranch = std::move(value);
  if (m_recorder != nullptr) {
    m_recorder->trueBranch();
  }
  open(Purpose::FalseBranch, kConditional, true, ParseMode::Whole);
}

void ExpressionParser::resumeFalseBranch(std::unique_ptr<ElementAbstract> value) {
  if (value == nullptr) {
    fail("Syntax error - False expression", m_position);
  }
  if (m_recorder != nullptr) {
    m_recorder->conditional(call().place, call().left->type(),
                            mergedValueType(call().trueBranch->type(), value->type()));
  }
  const auto offset = static_cast<std::size_t>(call().place - m_begin);
  call().left = withPlace(offset, [&] {
    std::unique_ptr<ElementAbstract> condition = m_builder.castTo(ValueType::Bool, std::move(call().left));
    const ValueType type = mergedValueType(call().trueBranch->type(), value->type());
    std::unique_ptr<ElementAbstract> trueBranch = m_builder.castTo(type, std::move(call().trueBranch));
    std::unique_ptr<ElementAbstract> falseBranch = m_builder.castTo(type, std::move(value));
    return m_builder.fold(
        makeConditional(type, std::move(condition), std::move(trueBranch), std::move(falseBranch)));
  });
}

} // namespace ExpressionBuilder
