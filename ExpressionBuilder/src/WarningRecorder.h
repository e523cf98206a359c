#pragma once

#include "ExpressionBuilder/BuilderInterface.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Warnings.h"

#include <vector>

namespace ExpressionBuilder {

/// Collects the warnings while a text is parsed. The parser tells it when a call begins and ends, and which
/// operators take operands of which types; from that it knows where each operand stands and whether it is the
/// result of a comparison. Without a recorder the parser does none of this.
class WarningRecorder {
public:
  WarningRecorder(TextPosition begin, TextPosition end)
      : m_begin(begin), m_end(end), m_closed{begin, begin, false, false}, m_closingPlace(begin) {}

  /// A call inside the current one begins at the place, or before the blanks behind it.
  void open(TextPosition place);
  /// The current call has ended before the place. Its value is the operand that the operations below take.
  void close(TextPosition place);

  /// The closed call's value becomes the current call's, unchanged: brackets and the prefix "+".
  void pass();
  /// Prefix "!".
  void logicalNot(ValueType operand);
  /// \param place  where the operator stands
  void binary(BinaryOperator operation, TextPosition place, ValueType left, ValueType right);
  /// The closed call was the true branch.
  void trueBranch();
  /// The closed call was the false branch.
  /// \param place  where the "?" stands
  void conditional(TextPosition place, ValueType condition, ValueType result);

  /// The warnings, ordered by their places.
  std::vector<Warning> take();

private:
  struct Operand {
    TextPosition begin;
    TextPosition end;
    /// Whether it is what a comparison or logical operator gives.
    bool isTruth;
    bool isTrueBranchTruth;
  };

  TextRange rangeOf(TextPosition begin, TextPosition end) const;
  /// The current call's value so far, the left operand of what stands at the place.
  TextRange leftRange(TextPosition place) const;
  TextRange closedRange() const { return rangeOf(m_closed.begin, m_closed.end); }
  void askForTruth(TextRange place, ValueType type, ValueType becomes);
  void arithmetic(BinaryOperator operation, TextPosition place, ValueType left, ValueType right);

  const TextPosition m_begin;
  const TextPosition m_end;
  std::vector<Operand> m_calls;
  Operand m_closed;
  /// Where the last call was closed. Many calls can end at one place, and the blanks before it are skipped once.
  TextPosition m_closingPlace;
  std::vector<Warning> m_warnings;
};

} // namespace ExpressionBuilder
