#pragma once

#include "ExpressionBuilder/ValueType.h"

#include <cstddef>
#include <string>

namespace ExpressionBuilder {

/// What is legal in a text and yet seldom meant.
enum class WarningKind {
  /// An operator converts a double to an int, long long or bool: the left operand because the right one has
  /// that type, or an operand of "&&", "||" and "!" or the condition of "?:" because it is asked for its truth.
  NarrowedDouble,
  /// The result of a comparison or logical operator is an operand of "+", "-", "*" or "/".
  ComparisonInArithmetic,
  /// Both operands of "/" are whole numbers, int or long long.
  IntegerDivision,
};

/// A part of a text, in bytes.
struct TextRange {
  std::size_t offset;
  std::size_t length;
};

/// One warning. It quotes nothing, so that a long text with a warning at every operator needs little memory;
/// `warningMessage` writes it out. A conversion that the text itself asks for, "(int)", is never warned of.
struct Warning {
  WarningKind kind;
  /// What to look at: the operand, brackets included, without blanks around it; the "/" of a division.
  TextRange place;
  /// The right operand for which another one is to be written; of no length when there is none.
  TextRange rightOperand;
  /// NarrowedDouble: what the double becomes. Otherwise the type of the operation.
  ValueType becomes;
  /// The type that the proposed change brings in: Bool where the change is a comparison with 0.0.
  ValueType remedy;
};

/// The warning in words, with the change that removes it. Operands longer than 40 bytes are cut.
/// \param text  the text that the warning is about
std::string warningMessage(const Warning &warning, const std::string &text);

} // namespace ExpressionBuilder
