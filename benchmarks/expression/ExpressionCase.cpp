#include "benchmarks/expression/ExpressionCase.h"

#include <cstdint>
#include <fstream>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace ExpressionBenchmark {

namespace {

// Pseudo-random bits from a counter (splitmix64), the same on every machine and with every library.
class ValueSource {
public:
  explicit ValueSource(std::uint64_t seed) noexcept : m_state(seed) {}

  double between(double lowest, double highest) noexcept {
    m_state += 0x9E3779B97F4A7C15U;
    std::uint64_t bits = m_state;
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    bits ^= bits >> 31U;
    return lowest + (highest - lowest) * (static_cast<double>(bits >> 11U) * 0x1.0p-53);
  }

private:
  std::uint64_t m_state;
};

std::string replaceAll(std::string text, const std::string &from, const std::string &to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// The arguments of the call whose opening bracket is at `open`; `end` becomes the place behind its closing one.
std::vector<std::string> callArguments(const std::string &text, std::size_t open, std::size_t &end) {
  std::vector<std::string> arguments(1);
  int depth = 1;
  for (std::size_t at = open + 1; at < text.size(); ++at) {
    const char character = text[at];
    depth += character == '(' ? 1 : 0;
    depth -= character == ')' ? 1 : 0;
    if (depth == 0) {
      end = at + 1;
      return arguments;
    }
    if (character == ',' && depth == 1) {
      arguments.emplace_back();
    } else {
      arguments.back() += character;
    }
  }
  throw std::runtime_error("A call is not closed: " + text);
}

// Puts `form` in the place of each call, with the call's arguments for the digits 0, 1, ... in it.
std::string rewriteCalls(std::string text, const std::string &name, const std::string &form) {
  const std::string call = name + '(';
  for (std::size_t at = text.find(call); at != std::string::npos; at = text.find(call, at)) {
    std::size_t end = 0;
    const std::vector<std::string> arguments = callArguments(text, at + name.size(), end);
    std::string replacement;
    for (const char character : form) {
      if (character >= '0' && character <= '9') {
        replacement += arguments.at(static_cast<std::size_t>(character - '0'));
      } else {
        replacement += character;
      }
    }
    text.replace(at, end - at, replacement);
  }
  return text;
}

} // namespace

std::string ExpressionCase::variableName(const std::string &prefix, std::size_t variable) {
  return prefix + std::to_string(variable);
}

std::vector<std::string> ExpressionCase::variableNames(const std::string &prefix) const {
  std::vector<std::string> names;
  names.reserve(variableCount);
  for (std::size_t variable = 0; variable < variableCount; ++variable) {
    names.push_back(variableName(prefix, variable));
  }
  return names;
}

std::string ExpressionCase::textWithNames(const std::string &prefix) const {
  return replaceAll(text, "%x", "%" + prefix);
}

std::string ExpressionCase::rivalText() const {
  std::string rival = replaceAll(text, "%", "");
  rival = rewriteCalls(rival, "clamp", "max(1,min(0,2))");
  rival = rewriteCalls(rival, "pow", "((0)^(1))");
  return rewriteCalls(rival, "log", "ln(0)");
}

std::vector<double> ExpressionCase::drawRows(std::size_t rows) const {
  ValueSource source(20240229);
  std::vector<double> values(rows * variableCount);
  for (double &value : values) {
    value = source.between(lowest, highest);
  }
  return values;
}

std::vector<ExpressionCase> readExpressionCases(const std::string &path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error("Cannot read " + path);
  }
  std::vector<ExpressionCase> cases;
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line.front() == '#') {
      continue;
    }
    std::istringstream fields(line);
    fields.imbue(std::locale::classic());
    ExpressionCase read;
    fields >> read.name >> read.variableCount >> read.lowest >> read.highest >> read.text;
    if (!fields || read.variableCount == 0 || !(read.lowest < read.highest)) {
      std::string what = "Not an expression in ";
      throw std::runtime_error(what.append(path).append(": ").append(line));
    }
    cases.push_back(read);
  }
  return cases;
}

} // namespace ExpressionBenchmark
