#include "ExpressionBuilder/tests/LanguagePage.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/NumberText.h"
#include "ExpressionBuilder/src/Characters.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace ExpressionBuilder::Testing {

namespace {

using Outcome = Example::Outcome;
using Change = ExampleVariable::Change;

bool startsWith(const std::string &text, const std::string &begin) {
  return text.compare(0, begin.size(), begin) == 0;
}

std::string withoutTrailingBlanks(const std::string &text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string lineNumber(std::size_t line) {
  return "line " + std::to_string(line) + ": ";
}

class PageReader {
public:
  LanguagePage read(const std::string &content) {
    std::istringstream stream(content);
    std::string line;
    while (std::getline(stream, line)) {
      ++m_line;
      readLine(line);
    }
    if (m_place != Place::Prose) {
      report("the last block is not closed");
    }
    return std::move(m_page);
  }

private:
  enum class Place { Prose, Examples, OtherBlock };

  void report(const std::string &problem) { m_page.problems.push_back(lineNumber(m_line) + problem); }

  void readLine(const std::string &line) {
    if (startsWith(line, "```")) {
      readFence(line);
    } else if (m_place == Place::Examples) {
      readBlockLine(line);
    } else if (m_place == Place::Prose && line.find("=> ") != std::string::npos) {
      report("an example outside of a block: " + line);
    }
  }

  void readFence(const std::string &line) {
    if (m_place != Place::Prose) {
      m_place = Place::Prose;
    } else if (line == "```expr") {
      m_place = Place::Examples;
      m_page.blocks.emplace_back();
    } else {
      m_place = Place::OtherBlock;
    }
  }

  void readBlockLine(const std::string &line) {
    ExampleBlock &block = m_page.blocks.back();
    if (startsWith(line, "  warning at ")) {
      readWarning(block, line.substr(std::string("  warning ").size()));
    } else if (line.find("=> ") != std::string::npos) {
      readExample(block, line);
    } else if (startsWith(line, "with ")) {
      readVariable(block.with, line.substr(5));
    } else if (startsWith(line, "then without ")) {
      block.then.push_back({line.substr(13), Change::Removal, ""});
    } else if (startsWith(line, "then ")) {
      readVariable(block.then, line.substr(5));
    } else if (line == "as double") {
      block.isDouble = true;
    } else if (line == "all warnings") {
      block.hasAllWarnings = true;
    } else if (!line.empty()) {
      report("not understood: " + line);
    }
  }

  void readWarning(ExampleBlock &block, const std::string &warning) {
    if (block.examples.empty()) {
      report("a warning without an example");
    } else {
      block.examples.back().warnings.push_back(warning);
    }
  }

  void readExample(ExampleBlock &block, const std::string &line) {
    const std::size_t arrow = line.find("=> ");
    const std::string text = withoutTrailingBlanks(line.substr(0, arrow));
    const std::string expected = line.substr(arrow + 3);
    if (startsWith(expected, "error: ")) {
      block.examples.push_back({m_line, text, Outcome::Error, expected.substr(7), {}});
    } else if (startsWith(expected, "cause: ")) {
      block.examples.push_back({m_line, text, Outcome::Cause, expected.substr(7), {}});
    } else {
      block.examples.push_back({m_line, text, Outcome::Value, expected, {}});
    }
  }

  void readVariable(std::vector<ExampleVariable> &variables, const std::string &declaration) {
    const std::size_t definition = declaration.find(" := ");
    const std::size_t value = declaration.find(" = ");
    if (definition != std::string::npos) {
      variables.push_back(
          {declaration.substr(0, definition), Change::Definition, declaration.substr(definition + 4)});
    } else if (value != std::string::npos) {
      variables.push_back({declaration.substr(0, value), Change::Value, declaration.substr(value + 3)});
    } else {
      report("not understood: " + declaration);
    }
  }

  LanguagePage m_page;
  std::size_t m_line = 0;
  Place m_place = Place::Prose;
};

std::unique_ptr<ElementAbstract> literalElement(const BuilderBase &builder, const std::string &text) {
  const std::string longLong = "long long ";
  if (startsWith(text, longLong)) {
    return builder.castTo(ValueType::LongLong, makeConstant<std::string>(text.substr(longLong.size())));
  }
  std::unique_ptr<ElementAbstract> element;
  TextPosition position = text.begin();
  builder.parseLiteral(element, position, text.end());
  if (element == nullptr || position != text.end()) {
    throw std::invalid_argument("no literal: " + text);
  }
  return element;
}

void declareVariables(BuilderBase &builder, const std::vector<ExampleVariable> &variables) {
  for (const ExampleVariable &variable : variables) {
    if (!builder.variables().declare(variable.name, variable.change == Change::Value
                                                        ? literalElement(builder, variable.text)
                                                        : builder.build(variable.text))) {
      throw std::invalid_argument("declared twice: " + variable.name);
    }
  }
}

/// The builder's variables after the changes. A new collection, since replacing keeps the type.
SimpleVariableCollection changedVariables(const BuilderBase &builder,
                                          const std::vector<ExampleVariable> &changes) {
  SimpleVariableCollection changed;
  for (const ExampleVariable &change : changes) {
    if (builder.variables().find(change.name) == nullptr) {
      throw std::invalid_argument("changed without being declared: " + change.name);
    }
    if (change.change != Change::Removal) {
      changed.declare(change.name, change.change == Change::Value ? literalElement(builder, change.text)
                                                                  : builder.build(change.text));
    }
  }
  for (const std::string &name : builder.variables().names()) {
    const bool isChanged = std::any_of(changes.begin(), changes.end(),
                                       [&](const ExampleVariable &change) { return change.name == name; });
    if (!isChanged) {
      changed.declare(name, builder.variables().find(name)->cloneAbstract());
    }
  }
  return changed;
}

template <class T> std::string valueText(const T &value) {
  const std::string type = std::string(valueTypeName(ValueTypeOf<T>::code)) + " ";
  if constexpr (std::is_same_v<T, std::string>) {
    return type + value;
  } else if constexpr (std::is_same_v<T, double>) {
    return type + shortestText(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    return type + (value ? "true" : "false");
  } else {
    return type + textFromNumber(value);
  }
}

/// The builder for a block.
std::unique_ptr<BuilderBase> builderOf(const ExampleBlock &block) {
  std::unique_ptr<BuilderBase> builder =
      block.isDouble ? std::make_unique<BuilderSingleType<double>>() : std::make_unique<BuilderBase>();
  declareVariables(*builder, block.with);
  return builder;
}

/// "int 4", "error: MESSAGE" or "cause: MESSAGE".
std::string outcomeOf(const ExampleBlock &block, const Example &example) {
  const std::unique_ptr<BuilderBase> builder = builderOf(block);
  const SimpleVariableCollection variables = changedVariables(*builder, block.then);
  try {
    std::unique_ptr<ElementAbstract> root = builder->build(example.text);
    if (example.outcome == Outcome::Cause) {
      try {
        root->validate(variables);
      } catch (const std::runtime_error &error) {
        return std::string("cause: ") + error.what();
      }
      return "cause: (none)";
    }
    return visitValueType(root->type(), [&](auto tag) {
      using T = typename decltype(tag)::Type;
      const Expression<T, SimpleVariableCollection> expression(elementAs<T>(std::move(root)), variables);
      return withoutTrailingBlanks(valueText<T>(expression.evaluate()));
    });
  } catch (const std::runtime_error &error) {
    return std::string("error: ") + error.what();
  }
}

std::string expectedOutcome(const Example &example) {
  switch (example.outcome) {
  case Outcome::Error:
    return "error: " + example.expected;
  case Outcome::Cause:
    return "cause: " + example.expected;
  case Outcome::Value:
    break;
  }
  return example.expected;
}

std::string joined(const std::vector<std::string> &lines) {
  std::string all;
  for (const std::string &line : lines) {
    all += "\n  " + line;
  }
  return all.empty() ? "\n  (none)" : all;
}

/// Empty when the warnings are as they are said to be.
std::string warningProblem(const ExampleBlock &block, const Example &example) {
  if (example.warnings.empty() && !block.hasAllWarnings) {
    return "";
  }
  std::vector<std::string> found;
  for (const Warning &warning : builderOf(block)->warnings(example.text)) {
    found.push_back("at " + std::to_string(warning.place.offset) + ": " +
                    warningMessage(warning, example.text));
  }
  return found == example.warnings ? "" : "warnings are" + joined(found);
}

class ElementReader {
public:
  explicit ElementReader(const std::string &text) : m_text(text) {}

  std::vector<std::string> read() {
    while (m_at < m_text.size()) {
      readOne();
    }
    return std::move(m_elements);
  }

private:
  void readOne() {
    const char c = m_text[m_at];
    if (c == ' ') {
      ++m_at;
    } else if (c == '"' || c == '%') {
      const std::size_t end = m_text.find(c, m_at + 1);
      m_at = end == std::string::npos ? m_text.size() : end + 1;
      m_isBehindOperand = true;
    } else if (isDigit(c) || c == '.') {
      skipNumber();
    } else if (isLetter(c)) {
      readName();
    } else if (!readCast()) {
      readOperator();
    }
  }

  void skipNumber() {
    while (m_at < m_text.size() &&
           (isDigit(m_text[m_at]) || m_text[m_at] == '.' || m_text[m_at] == 'e' || m_text[m_at] == 'E' ||
            ((m_text[m_at] == '-' || m_text[m_at] == '+') &&
             (m_text[m_at - 1] == 'e' || m_text[m_at - 1] == 'E')))) {
      ++m_at;
    }
    m_isBehindOperand = true;
  }

  void readName() {
    const std::size_t begin = m_at;
    while (m_at < m_text.size() && isNameByte(m_text[m_at])) {
      ++m_at;
    }
    m_isBehindOperand = true;
    if (m_at < m_text.size() && m_text[m_at] == '(') {
      ++m_at;
      m_isBehindOperand = false;
    }
    m_elements.push_back(m_text.substr(begin, m_at - begin));
  }

  bool readCast() {
    for (const std::string cast : {"(int)", "(double)", "(bool)", "(string)"}) {
      if (m_text.compare(m_at, cast.size(), cast) == 0) {
        m_elements.push_back(cast);
        m_at += cast.size();
        m_isBehindOperand = false;
        return true;
      }
    }
    return false;
  }

  void readOperator() {
    const char c = m_text[m_at];
    std::string word = m_text.substr(m_at, 1);
    for (const std::string longer : {"==", "!=", "<=", ">=", "&&", "||"}) {
      if (m_text.compare(m_at, 2, longer) == 0) {
        word = longer;
      }
    }
    // A sign of a number is not an operator.
    const bool isSign =
        (c == '-' || c == '+') && !m_isBehindOperand && m_at + 1 < m_text.size() && isDigit(m_text[m_at + 1]);
    m_at += word.size();
    if (word == "?") {
      m_elements.emplace_back("?:");
    } else if (word != ")" && word != ":" && !isSign) {
      const bool isPrefix = !m_isBehindOperand && word != "(";
      m_elements.push_back(isPrefix ? "prefix " + word : word);
    }
    m_isBehindOperand = word == ")";
  }

  const std::string &m_text;
  std::size_t m_at = 0;
  bool m_isBehindOperand = false;
  std::vector<std::string> m_elements;
};

} // namespace

std::vector<Example> LanguagePage::examples() const {
  std::vector<Example> all;
  for (const ExampleBlock &block : blocks) {
    all.insert(all.end(), block.examples.begin(), block.examples.end());
  }
  return all;
}

LanguagePage readPage(const std::string &content) {
  return PageReader().read(content);
}

std::vector<std::string> executionProblems(const ExampleBlock &block) {
  std::vector<std::string> problems;
  for (const Example &example : block.examples) {
    try {
      const std::string outcome = outcomeOf(block, example);
      if (outcome != expectedOutcome(example)) {
        problems.push_back(lineNumber(example.line) + "'" + example.text + "' gives " + outcome);
      }
      // Where the page tells an error there is nothing to warn of.
      const std::string warnings = example.outcome == Outcome::Value ? warningProblem(block, example) : "";
      if (!warnings.empty()) {
        problems.push_back(lineNumber(example.line) + "'" + example.text + "': " + warnings);
      }
    } catch (const std::exception &error) {
      problems.push_back(lineNumber(example.line) + error.what());
    }
  }
  return problems;
}

std::vector<std::string> languageElements(const std::string &text) {
  return ElementReader(text).read();
}

} // namespace ExpressionBuilder::Testing
