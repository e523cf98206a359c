#include "ExpressionBuilder/src/WarningRecorder.h"

#include <algorithm>
#include <utility>

namespace ExpressionBuilder {

namespace {

bool isWhole(ValueType type) noexcept {
  return type == ValueType::Int || type == ValueType::LongLong;
}

bool isLogical(BinaryOperator operation) noexcept {
  return operation == BinaryOperator::And || operation == BinaryOperator::Or;
}

bool isArithmetic(BinaryOperator operation) noexcept {
  return operation == BinaryOperator::Add || operation == BinaryOperator::Subtract ||
         operation == BinaryOperator::Multiply || operation == BinaryOperator::Divide;
}

/// Without the blanks before the end.
TextPosition trimmedEnd(TextPosition begin, TextPosition end) {
  while (end != begin && *(end - 1) == ' ') {
    --end;
  }
  return end;
}

/// What a truth value on the left is best converted to.
ValueType remedyOnTheLeft(ValueType right) noexcept {
  return right == ValueType::Double ? ValueType::Double : ValueType::Int;
}

/// On the right it decides the type of the operation, so the left operand counts. A cast to long long cannot
/// be written; a double keeps most of one.
ValueType remedyOnTheRight(BinaryOperator operation, ValueType left) noexcept {
  if (left == ValueType::Double || left == ValueType::LongLong) {
    return ValueType::Double;
  }
  return left == ValueType::String && operation == BinaryOperator::Add ? ValueType::String : ValueType::Int;
}

} // namespace

void WarningRecorder::open(TextPosition place) {
  while (place != m_end && *place == ' ') {
    ++place;
  }
  m_calls.push_back({place, place, false, false});
}

void WarningRecorder::close(TextPosition place) {
  const Operand &call = m_calls.back();
  const TextPosition end = place == m_closingPlace ? m_closed.end : trimmedEnd(call.begin, place);
  m_closed = {call.begin, end, call.isTruth, call.isTrueBranchTruth};
  m_closingPlace = place;
  m_calls.pop_back();
}

void WarningRecorder::pass() {
  m_calls.back().isTruth = m_closed.isTruth;
}

void WarningRecorder::logicalNot(ValueType operand) {
  askForTruth(closedRange(), operand, ValueType::Bool);
  m_calls.back().isTruth = true;
}

void WarningRecorder::binary(BinaryOperator operation, TextPosition place, ValueType left, ValueType right) {
  if (isLogical(operation)) {
    askForTruth(leftRange(place), left, isWhole(right) ? right : ValueType::Bool);
    askForTruth(closedRange(), right, ValueType::Bool);
  } else if (left == ValueType::Double && (isWhole(right) || right == ValueType::Bool)) {
    m_warnings.push_back(
        {WarningKind::NarrowedDouble, leftRange(place), closedRange(), right, ValueType::Double});
  }
  if (isArithmetic(operation)) {
    arithmetic(operation, place, left, right);
  }
  m_calls.back().isTruth = !isArithmetic(operation);
}

void WarningRecorder::arithmetic(BinaryOperator operation, TextPosition place, ValueType left,
                                 ValueType right) {
  const TextRange none{0, 0};
  // "+" of texts puts them together; that is no arithmetic.
  if (m_calls.back().isTruth && right != ValueType::String) {
    m_warnings.push_back(
        {WarningKind::ComparisonInArithmetic, leftRange(place), none, right, remedyOnTheLeft(right)});
  }
  if (m_closed.isTruth) {
    m_warnings.push_back(
        {WarningKind::ComparisonInArithmetic, closedRange(), none, right, remedyOnTheRight(operation, left)});
  }
  if (operation == BinaryOperator::Divide && isWhole(left) && isWhole(right)) {
    m_warnings.push_back(
        {WarningKind::IntegerDivision, rangeOf(place, place + 1), closedRange(), right, ValueType::Double});
  }
}

void WarningRecorder::trueBranch() {
  m_calls.back().isTrueBranchTruth = m_closed.isTruth;
}

void WarningRecorder::conditional(TextPosition place, ValueType condition, ValueType result) {
  askForTruth(leftRange(place), condition, ValueType::Bool);
  Operand &call = m_calls.back();
  call.isTruth = result == ValueType::Bool && (call.isTrueBranchTruth || m_closed.isTruth);
}

std::vector<Warning> WarningRecorder::take() {
  // An inner operator is finished before an outer one whose left operand begins before it.
  std::stable_sort(m_warnings.begin(), m_warnings.end(), [](const Warning &first, const Warning &second) {
    return first.place.offset < second.place.offset;
  });
  return std::move(m_warnings);
}

void WarningRecorder::askForTruth(TextRange place, ValueType type, ValueType becomes) {
  if (type == ValueType::Double) {
    m_warnings.push_back({WarningKind::NarrowedDouble, place, {0, 0}, becomes, ValueType::Bool});
  }
}

TextRange WarningRecorder::rangeOf(TextPosition begin, TextPosition end) const {
  return {static_cast<std::size_t>(begin - m_begin), static_cast<std::size_t>(end - begin)};
}

TextRange WarningRecorder::leftRange(TextPosition place) const {
  const TextPosition begin = m_calls.back().begin;
  return rangeOf(begin, trimmedEnd(begin, place));
}

} // namespace ExpressionBuilder
