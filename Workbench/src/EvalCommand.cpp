#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/NumberText.h"
#include "ExpressionBuilder/Warnings.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LanguageCommands.h"

#include <exception>
#include <memory>
#include <ostream>
#include <type_traits>
#include <utility>

namespace Workbench {

namespace {

using ExpressionBuilder::BuilderBase;
using ExpressionBuilder::ElementAbstract;

constexpr const char *kLiterals =
    "A value is a literal: 2.7 is a double, 3 an int, \"text\" in double quotes a "
    "string, true and false are bools.";

template <class T> std::string textOf(const T &value) {
  if constexpr (std::is_same_v<T, std::string>) {
    return value;
  } else if constexpr (std::is_same_v<T, double>) {
    return ExpressionBuilder::shortestText(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    return value ? "true" : "false";
  } else {
    return ExpressionBuilder::textFromNumber(value);
  }
}

// "int 7"
std::string typeAndValue(std::unique_ptr<ElementAbstract> root,
                         const ExpressionBuilder::VariableCollectionAbstract &variables) {
  const ExpressionBuilder::ValueType type = root->type();
  return ExpressionBuilder::visitValueType(type, [&](auto tag) {
    using T = typename decltype(tag)::Type;
    const auto element = ExpressionBuilder::elementAs<T>(std::move(root));
    const T value = element->evaluate(variables);
    return std::string(ExpressionBuilder::valueTypeName(type)) + " " + textOf(value);
  });
}

// "at byte 4: 2 + ^* 3"; the caret stands before the byte.
std::string placeText(const std::string &text, std::size_t offset) {
  return "at byte " + std::to_string(offset) + ": " + text.substr(0, offset) + "^" + text.substr(offset);
}

// "at bytes 4 to 6: 2 + ^%x%^ * 3"; the carets stand around the bytes, of which the last one is named.
std::string placeText(const std::string &text, const ExpressionBuilder::TextRange &range) {
  if (range.length == 1) {
    return placeText(text, range.offset);
  }
  const std::size_t end = range.offset + range.length;
  return "at bytes " + std::to_string(range.offset) + " to " + std::to_string(end - 1) + ": " +
         text.substr(0, range.offset) + "^" + text.substr(range.offset, range.length) + "^" +
         text.substr(end);
}

// The constant that the text is as a whole; null with what is wrong in `problem`.
std::unique_ptr<ElementAbstract> constantOf(const BuilderBase &builder, const std::string &text,
                                            std::string &problem) {
  ExpressionBuilder::TextPosition position = text.begin();
  std::unique_ptr<ElementAbstract> constant;
  try {
    builder.parseLiteral(constant, position, text.end());
  } catch (const ExpressionBuilder::ParserError &error) {
    problem = error.what();
    return nullptr;
  }
  if (constant == nullptr || position != text.end()) {
    problem = "the value is no number, no text in double quotes, and neither true nor false";
    return nullptr;
  }
  return constant;
}

// Declares what "x=2.7" says. "" or what is wrong with it.
std::string declare(BuilderBase &builder, const std::string &assignment) {
  const std::size_t equals = assignment.find('=');
  const std::string name = assignment.substr(0, equals);
  if (equals == std::string::npos || name.empty()) {
    return "write NAME=VALUE";
  }
  if (name.find('%') != std::string::npos) {
    return R"(a name holds no "%")";
  }
  std::string problem;
  std::unique_ptr<ElementAbstract> constant = constantOf(builder, assignment.substr(equals + 1), problem);
  if (constant != nullptr && !builder.variables().declare(name, std::move(constant))) {
    problem = "the variable has a value already";
  }
  return problem;
}

int evaluate(const BuilderBase &builder, const std::string &text, const Console &console) {
  try {
    std::vector<ExpressionBuilder::Warning> warnings;
    std::unique_ptr<ElementAbstract> root = builder.buildWithWarnings(text, warnings);
    for (const ExpressionBuilder::Warning &warning : warnings) {
      console.note("warning: " + ExpressionBuilder::warningMessage(warning, text) + "\n" +
                   placeText(text, warning.place));
    }
    console.out << typeAndValue(std::move(root), builder.variables()) << "\n";
    return ExitCode::kDone;
  } catch (const ExpressionBuilder::ParserError &error) {
    console.error(std::string(error.what()) + "\n" + placeText(text, error.offset()));
  } catch (const std::exception &error) {
    console.error(error.what());
  }
  return ExitCode::kInvalid;
}

} // namespace

int evalCommand(const EvalOptions &options, const Console &console) {
  if (options.texts.size() != 1) {
    console.error(options.texts.empty() ? "The text is missing."
                                        : "More than one text: put it in quotes, '" + options.texts[0] +
                                              "' or '" + options.texts[1] + "'?");
    return ExitCode::kUsage;
  }
  BuilderBase builder;
  for (const std::string &assignment : options.variables) {
    const std::string problem = declare(builder, assignment);
    if (!problem.empty()) {
      console.error(std::string("--var ").append(assignment).append(": ").append(problem).append("\n") +
                    kLiterals);
      return ExitCode::kUsage;
    }
  }
  return evaluate(builder, options.texts.front(), console);
}

} // namespace Workbench
