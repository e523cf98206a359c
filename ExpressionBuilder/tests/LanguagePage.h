#pragma once

#include "ExpressionBuilder/BuilderBase.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ExpressionBuilder::Testing {

/// The examples of the user's reference, read from blocks that begin with "```expr" and end with "```". A line
/// of a block is empty or one of
///
///     TEXT => TYPE VALUE              the value as `./dev eval` prints it
///     TEXT => error: MESSAGE          of building it, or of evaluating the expression
///     TEXT => cause: MESSAGE          of validating its root
///       warning at BYTE: MESSAGE      indented, below an example: one of its warnings
///     with NAME = LITERAL             a variable of the block; "long long 5" as literal gives that type
///     with NAME := TEXT               a variable that is defined by an expression
///     then NAME ...                   the same, only after the text was built
///     then without NAME               the variable is gone after the text was built
///     as double                       results are converted to double as a whole
///     all warnings                    an example has no other warnings than those below it
///
/// An example without warnings below it, in a block without "all warnings", may have any.
struct Example {
  enum class Outcome { Value, Error, Cause };

  std::size_t line;
  std::string text;
  Outcome outcome;
  /// "int 4", or the message.
  std::string expected;
  /// "at 0: MESSAGE".
  std::vector<std::string> warnings;
};

struct ExampleVariable {
  enum class Change { Value, Definition, Removal };

  std::string name;
  Change change;
  /// The literal or the expression.
  std::string text;
};

struct ExampleBlock {
  std::vector<ExampleVariable> with;
  std::vector<ExampleVariable> then;
  bool isDouble = false;
  bool hasAllWarnings = false;
  std::vector<Example> examples;
};

struct LanguagePage {
  std::vector<ExampleBlock> blocks;
  /// What could not be read: "line 7: ...".
  std::vector<std::string> problems;

  std::vector<Example> examples() const;
};

LanguagePage readPage(const std::string &content);

/// What is wrong with the block's examples when they are executed: "line 7: ...".
std::vector<std::string> executionProblems(const ExampleBlock &block);

/// The words of an expression for which the reference needs an example: names, a function's with its bracket,
/// "sqrt("; operators, a prefix one as "prefix -"; "?:"; casts, "(int)"; "(" and ",".
std::vector<std::string> languageElements(const std::string &text);

} // namespace ExpressionBuilder::Testing
