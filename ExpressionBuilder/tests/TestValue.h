#pragma once

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace ExpressionBuilder::Testing {

/// A value with its type; the alternative is the type.
using Value = std::variant<double, int, bool, std::string, long long>;

/// "double 0.5", "string abc"; for messages.
std::string shown(const Value &value);

/// A constant node.
std::unique_ptr<ElementAbstract> constant(const Value &value);

/// Value of an element of any type.
Value valueOf(const ElementAbstract &element, const VariableCollectionAbstract &collection);
Value valueOf(const ElementAbstract &element);

/// The pattern with one of the parts, in their order, in the place of each "@".
std::string filled(const std::string &pattern, const std::vector<std::string> &parts);

/// What building the text and evaluating the root against the builder's variables gives.
Value builtValue(const BuilderBase &builder, const std::string &text);

/// How the building of a text fails.
struct Failure {
  std::string message;
  std::size_t offset;
};

/// Fails the running test and gives an empty message when the text builds.
Failure buildFailure(const BuilderBase &builder, const std::string &text);

/// Message of the std::runtime_error that the call throws; "(nothing thrown)" without one. A std::logic_error
/// gives "logic_error: " and its message.
template <class Function> std::string errorOf(Function &&function) {
  try {
    function();
  } catch (const std::runtime_error &error) {
    return error.what();
  } catch (const std::logic_error &error) {
    return std::string("logic_error: ") + error.what();
  }
  return "(nothing thrown)";
}

} // namespace ExpressionBuilder::Testing
