#pragma once

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/ElementFactory.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ExpressionBuilder {

class WarningRecorder;

/// One run of the precedence parser. What reads like calls of one function within another - the operand of
/// an operator, the inside of brackets, an argument, a branch - is a stack of `Call`s on the heap, so that
/// nesting does not use the thread's stack.
class ExpressionParser {
public:
  /// \param recorder  what is told about calls and operands, so that it finds what to warn of; null for nothing
  ExpressionParser(const BuilderBase &builder, TextPosition begin, TextPosition end,
                   WarningRecorder *recorder = nullptr);

  /// The root, empty when nothing was parsed.
  std::unique_ptr<ElementAbstract> parse(int level, bool sameLevel, ParseMode mode);

  /// Where the run has stopped.
  TextPosition position() const noexcept { return m_position; }

private:
  /// What a call was opened for, and so what becomes of its result.
  enum class Purpose : unsigned char {
    Whole,
    NotOperand,
    NegateOperand,
    PlusOperand,
    CastOperand,
    RightOperand,
    Bracket,
    Argument,
    TrueBranch,
    FalseBranch,
  };

  /// How a step left its call.
  enum class Step : unsigned char {
    GoesOn,
    Ends,
    EndsOnBracket, ///< on a ")" that was consumed
    EndsOnColon,   ///< on a ":" that was consumed
  };

  struct Call {
    std::unique_ptr<ElementAbstract> left;
    /// The finished true branch while the false branch is parsed.
    std::unique_ptr<ElementAbstract> trueBranch;
    /// Where the operator, bracket or cast stands whose operand is being parsed for this call.
    TextPosition place;
    int level;
    ParseMode mode;
    Purpose purpose;
    bool sameLevel;
    /// The operator, and the type of the cast, for which this call has opened another one.
    BinaryOperator operation;
    ValueType castType;
  };

  struct FunctionCall {
    const OverloadTable *overloads = nullptr;
    TextPosition place;
    FunctionArguments arguments;
    std::vector<ValueType> types;
  };

  Call &call() { return m_calls.back(); }
  void open(Purpose purpose, int level, bool sameLevel, ParseMode mode);
  bool takes(int precedence);
  bool follows(char c) const;
  void skipBlanks();
  [[noreturn]] void fail(const std::string &message, TextPosition place) const;

  Step step();
  Step stepLiteral();
  Step stepVariable();
  Step stepName();
  Step stepSign(BinaryOperator operation, Purpose prefix);
  Step stepPrefix(Purpose purpose);
  Step stepBinary(BinaryOperator operation, int precedence, int length);
  Step stepOpeningBracket();
  Step stepClosingBracket();
  Step stepComma();
  Step stepQuestionMark();
  Step stepColon();
  bool openCast();

  /// Hands the result of the call that has just ended to the one that had opened it.
  void resume(Purpose purpose, Step ending, std::unique_ptr<ElementAbstract> value);
  void resumeOperand(Purpose purpose, std::unique_ptr<ElementAbstract> value);
  void resumeBinary(std::unique_ptr<ElementAbstract> value);
  void resumeArgument(std::unique_ptr<ElementAbstract> value);
  void resumeTrueBranch(Step ending, std::unique_ptr<ElementAbstract> value);
  void resumeFalseBranch(std::unique_ptr<ElementAbstract> value);
  void openFunction(const OverloadTable &overloads, TextPosition place);
  std::unique_ptr<ElementAbstract> finishFunction();

  const BuilderBase &m_builder;
  const TextPosition m_begin;
  const TextPosition m_end;
  TextPosition m_position;
  std::vector<Call> m_calls;
  /// The first m_openFunctions are under way.
  std::vector<FunctionCall> m_functionCalls;
  std::size_t m_openFunctions = 0;
  WarningRecorder *const m_recorder;
};

} // namespace ExpressionBuilder
