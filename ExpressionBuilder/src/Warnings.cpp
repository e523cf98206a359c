#include "ExpressionBuilder/Warnings.h"

#include "ExpressionBuilder/src/Characters.h"

#include <algorithm>

namespace ExpressionBuilder {

namespace {

/// Longer operands are cut in messages.
constexpr std::size_t kShownBytes = 40;

bool isContinuationByte(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::string textIn(const TextRange &range, const std::string &text) {
  std::string part = text.substr(std::min(range.offset, text.size()), range.length);
  if (part.size() <= kShownBytes) {
    return part;
  }
  std::size_t end = kShownBytes;
  while (end > 0 && isContinuationByte(part[end])) {
    --end;
  }
  return part.substr(0, end) + "...";
}

std::string quoted(const std::string &part) {
  return '"' + part + '"';
}

bool isWholeNumber(const std::string &operand) {
  const std::size_t first = !operand.empty() && (operand[0] == '+' || operand[0] == '-') ? 1 : 0;
  return first < operand.size() &&
         std::all_of(operand.begin() + static_cast<std::ptrdiff_t>(first), operand.end(), isDigit);
}

/// Whether a cast written in front of the operand takes the whole of it: one variable, or one pair of brackets
/// from the first byte to the last.
bool isOnePiece(const std::string &operand) {
  int depth = 0;
  for (std::size_t i = 0; i < operand.size(); ++i) {
    const char c = operand[i];
    if (c == '%' || c == '"') {
      i = operand.find(c, i + 1);
      if (i == std::string::npos) {
        return false;
      }
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      --depth;
    } else if (depth == 0) {
      return false;
    }
    if (depth == 0) {
      return i + 1 == operand.size();
    }
  }
  return false;
}

std::string castOf(ValueType type, const std::string &operand) {
  const std::string cast = std::string("(") + valueTypeName(type) + ")";
  return isOnePiece(operand) ? cast + operand : cast + "(" + operand + ")";
}

std::string asDouble(const std::string &operand) {
  return isWholeNumber(operand) ? operand + ".0" : castOf(ValueType::Double, operand);
}

std::string insteadOf(const std::string &remedy, const std::string &operand) {
  return "Write " + quoted(remedy) + " instead of " + quoted(operand);
}

std::string truthMessage(const Warning &warning, const std::string &operand) {
  const char *const use = warning.becomes == ValueType::Bool
                              ? " is a double used as true or false: everything but zero is true. "
                              : " is a double used as true or false after its fraction is dropped. ";
  // In brackets, so that it also fits behind a "!".
  return quoted(operand) + use + insteadOf("(" + operand + " != 0.0)", operand);
}

std::string narrowedMessage(const Warning &warning, const std::string &text) {
  const std::string operand = textIn(warning.place, text);
  if (warning.remedy == ValueType::Bool) {
    return truthMessage(warning, operand);
  }
  const std::string right = textIn(warning.rightOperand, text);
  return quoted(operand) + " is a double and becomes " + (warning.becomes == ValueType::Int ? "an " : "a ") +
         valueTypeName(warning.becomes) + ", the type of the right operand " + quoted(right) + ". " +
         insteadOf(asDouble(right), right);
}

} // namespace

std::string warningMessage(const Warning &warning, const std::string &text) {
  switch (warning.kind) {
  case WarningKind::NarrowedDouble:
    return narrowedMessage(warning, text);
  case WarningKind::ComparisonInArithmetic: {
    const std::string operand = textIn(warning.place, text);
    return quoted(operand) + " is true or false and counts as 1 or 0 in arithmetic. " +
           insteadOf(castOf(warning.remedy, operand), operand) + " if that is meant";
  }
  case WarningKind::IntegerDivision:
    break;
  }
  const std::string right = textIn(warning.rightOperand, text);
  return "\"/\" divides two whole numbers and drops the fraction. " + insteadOf(asDouble(right), right) +
         " to keep it";
}

} // namespace ExpressionBuilder
