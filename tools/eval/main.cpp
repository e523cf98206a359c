// Prints the type and the value of one expression, as the parser sees it: optstudy_eval "2 * pi + 1". What is
// legal in it and seldom meant goes to standard error.

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/NumberText.h"
#include "ExpressionBuilder/Warnings.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

const char *const kUsageText =
    "usage: optstudy_eval \"EXPRESSION\" [--var NAME=VALUE]...\n"
    "A value is a literal: 2.7 is a double, 3 an int, \"text\" in double quotes a string, true and false are "
    "bools.\n";

/// The command line is wrong.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Arguments {
  std::string text;
  std::vector<std::string> variables;
};

void print(std::FILE *stream, const std::string &text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

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

/// "int 7"
std::string typeAndValue(std::unique_ptr<ExpressionBuilder::ElementAbstract> root,
                         const ExpressionBuilder::VariableCollectionAbstract &variables) {
  const ExpressionBuilder::ValueType type = root->type();
  return ExpressionBuilder::visitValueType(type, [&](auto tag) {
    using T = typename decltype(tag)::Type;
    const auto element = ExpressionBuilder::elementAs<T>(std::move(root));
    const T value = element->evaluate(variables);
    return std::string(ExpressionBuilder::valueTypeName(type)) + " " + textOf(value);
  });
}

/// "at byte 4: 2 + ^* 3"; the caret stands before the byte.
std::string placeText(const std::string &text, std::size_t offset) {
  return "at byte " + std::to_string(offset) + ": " + text.substr(0, offset) + "^" + text.substr(offset);
}

/// "at bytes 4 to 6: 2 + ^%x%^ * 3"; the carets stand around the bytes, of which the last one is named.
std::string placeText(const std::string &text, const ExpressionBuilder::TextRange &range) {
  if (range.length == 1) {
    return placeText(text, range.offset);
  }
  const std::size_t end = range.offset + range.length;
  return "at bytes " + std::to_string(range.offset) + " to " + std::to_string(end - 1) + ": " +
         text.substr(0, range.offset) + "^" + text.substr(range.offset, range.length) + "^" +
         text.substr(end);
}

/// The constant that the text is as a whole.
std::unique_ptr<ExpressionBuilder::ElementAbstract> constantOf(const ExpressionBuilder::BuilderBase &builder,
                                                               const std::string &assignment,
                                                               const std::string &text) {
  const std::string where = "--var " + assignment + ": ";
  ExpressionBuilder::TextPosition position = text.begin();
  std::unique_ptr<ExpressionBuilder::ElementAbstract> constant;
  try {
    builder.parseLiteral(constant, position, text.end());
  } catch (const ExpressionBuilder::ParserError &error) {
    throw UsageError(where + error.what());
  }
  if (constant == nullptr || position != text.end()) {
    throw UsageError(where + "the value is no number, no text in double quotes, and neither true nor false");
  }
  return constant;
}

/// Declares what "x=2.7" says.
void declare(ExpressionBuilder::BuilderBase &builder, const std::string &assignment) {
  const std::size_t equals = assignment.find('=');
  const std::string name = assignment.substr(0, equals);
  if (equals == std::string::npos || name.empty()) {
    throw UsageError("--var " + assignment + ": write NAME=VALUE");
  }
  if (name.find('%') != std::string::npos) {
    throw UsageError("--var " + assignment + R"(: a name holds no "%")");
  }
  if (!builder.variables().declare(name, constantOf(builder, assignment, assignment.substr(equals + 1)))) {
    throw UsageError("--var " + assignment + ": the variable has a value already");
  }
}

Arguments readArguments(const std::vector<std::string> &words) {
  const std::string option = "--var";
  Arguments arguments;
  bool hasText = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == option) {
      if (++i == words.size()) {
        throw UsageError("--var: write --var NAME=VALUE");
      }
      arguments.variables.push_back(words[i]);
    } else if (words[i].compare(0, option.size() + 1, option + "=") == 0) {
      arguments.variables.push_back(words[i].substr(option.size() + 1));
    } else if (hasText) {
      throw UsageError("more than one expression: put it in quotes, '" + arguments.text + "' or '" +
                       words[i] + "'?");
    } else {
      // Whatever else begins with a "-" is an expression: "--5" is 5.
      arguments.text = words[i];
      hasText = true;
    }
  }
  if (!hasText) {
    throw UsageError("the expression is missing");
  }
  return arguments;
}

int evaluate(const Arguments &arguments) {
  ExpressionBuilder::BuilderBase builder;
  for (const std::string &assignment : arguments.variables) {
    declare(builder, assignment);
  }
  const std::string &text = arguments.text;
  try {
    std::vector<ExpressionBuilder::Warning> warnings;
    std::unique_ptr<ExpressionBuilder::ElementAbstract> root = builder.buildWithWarnings(text, warnings);
    for (const ExpressionBuilder::Warning &warning : warnings) {
      print(stderr, "warning: " + ExpressionBuilder::warningMessage(warning, text) + "\n" +
                        placeText(text, warning.place) + "\n");
    }
    print(stdout, typeAndValue(std::move(root), builder.variables()) + "\n");
    return 0;
  } catch (const ExpressionBuilder::ParserError &error) {
    print(stderr, std::string(error.what()) + "\n" + placeText(text, error.offset()) + "\n");
  } catch (const std::exception &error) {
    print(stderr, std::string(error.what()) + "\n");
  }
  return kFailed;
}

} // namespace

int main(int argc, char **argv) {
  try {
    return evaluate(readArguments(std::vector<std::string>(argv + 1, argv + argc)));
  } catch (const UsageError &error) {
    print(stderr, std::string(error.what()) + "\n" + kUsageText);
  }
  return kUsage;
}
