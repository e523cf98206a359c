#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ValueType.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LanguageCommands.h"
#include "Workbench/src/CsvText.h"
#include "Workbench/src/JsonText.h"

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {

namespace {

using ExpressionBuilder::BuilderBase;
using ExpressionBuilder::ValueType;

constexpr std::array<ValueType, 5> kTypes{ValueType::Double, ValueType::Int, ValueType::LongLong,
                                          ValueType::Bool, ValueType::String};

// One line of the table.
struct Entry {
  std::string form;  // "a * b"; the letters stand for operands
  std::string types; // what it takes and gives
  std::string meaning;
};

struct Operator {
  const char *form;
  const char *meaning;
};

// Tighter binding first. What types they take is asked of the language itself.
constexpr std::array<Operator, 21> kOperators{{
    {"(a)", "grouping"},
    {"(int)a", "conversion; the fraction is dropped"},
    {"(double)a", "conversion"},
    {"(bool)a", "conversion; what is not zero is true"},
    {"(string)a", "conversion"},
    {"!a", "true when a is zero or false"},
    {"-a", "negation"},
    {"+a", "a itself"},
    {"a * b", "product"},
    {"a / b", "quotient; of two whole numbers without the fraction"},
    {"a + b", "sum; strings are put together"},
    {"a - b", "difference"},
    {"a < b", "a is below b"},
    {"a <= b", "a is not above b"},
    {"a > b", "a is above b"},
    {"a >= b", "a is not below b"},
    {"a == b", "both are exactly equal"},
    {"a != b", "they differ"},
    {"a && b", "both are true; both are always computed"},
    {"a || b", "one is true; both are always computed"},
    {"a ? b : c", "b when a is true, else c; only that one is computed"},
}};

const std::map<std::string, const char *> &functionMeanings() {
  static const std::map<std::string, const char *> meanings{
      {"abs", "absolute value"},
      {"acos", "angle in radians whose cosine is a"},
      {"acosh", "inverse of cosh"},
      {"asin", "angle in radians whose sine is a"},
      {"asinh", "inverse of sinh"},
      {"atan", "angle in radians whose tangent is a"},
      {"atan2", "angle in radians of the point (b, a), from -pi to pi"},
      {"atanh", "inverse of tanh"},
      {"cbrt", "cube root"},
      {"clamp", "c when a is above c, else b when a is below b, else a"},
      {"cos", "cosine of an angle in radians"},
      {"cosh", "hyperbolic cosine"},
      {"exp", "e to the power a"},
      {"hypot", "square root of a * a + b * b"},
      {"log", "logarithm to the base e"},
      {"log10", "logarithm to the base 10"},
      {"max", "the larger one"},
      {"min", "the smaller one"},
      {"mod", "remainder of a / b, with the sign of a"},
      {"pow", "a to the power b"},
      {"sin", "sine of an angle in radians"},
      {"sinh", "hyperbolic sine"},
      {"sqrt", "square root"},
      {"tan", "tangent of an angle in radians"},
      {"tanh", "hyperbolic tangent"},
  };
  return meanings;
}

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// The form with a variable for every letter that stands alone.
std::string withOperands(const std::string &form, ValueType type) {
  std::string text;
  for (std::size_t index = 0; index < form.size(); ++index) {
    const bool isPart = !isLetter(form[index]) || (index > 0 && isLetter(form[index - 1])) ||
                        (index + 1 < form.size() && isLetter(form[index + 1]));
    text += isPart ? std::string(1, form[index])
                   : std::string("%") + ExpressionBuilder::valueTypeName(type) + "%";
  }
  return text;
}

// The language with a variable of each type, called like the type.
void declareTypes(BuilderBase &builder) {
  for (const ValueType type : kTypes) {
    ExpressionBuilder::visitValueType(type, [&](auto tag) {
      using T = typename decltype(tag)::Type;
      builder.variables().declare(ExpressionBuilder::valueTypeName(type),
                                  ExpressionBuilder::makeConstant<T>(T{}));
    });
  }
}

// The type of the value for operands of one type; empty when they are refused.
std::optional<ValueType> resultFor(const BuilderBase &builder, const std::string &form, ValueType type) {
  try {
    return builder.build(withOperands(form, type))->type();
  } catch (const std::exception &) {
    return std::nullopt;
  }
}

std::string arrowTo(ValueType type) {
  return std::string(" -> ") + ExpressionBuilder::valueTypeName(type);
}

// "double, int; bool -> int": what gives another type than itself comes last and says so, unless all give the same.
std::string typesOf(const BuilderBase &builder, const std::string &form) {
  std::vector<std::pair<ValueType, ValueType>> known;
  for (const ValueType type : kTypes) {
    if (const std::optional<ValueType> result = resultFor(builder, form, type)) {
      known.emplace_back(type, *result);
    }
  }
  const auto givesSame = [&](const auto &pair) {
    return pair.second == known.front().second;
  };
  const auto givesItself = [](const auto &pair) {
    return pair.first == pair.second;
  };
  const bool isOneResult = known.size() > 1 && std::all_of(known.begin(), known.end(), givesSame);
  const bool isAny =
      known.size() == kTypes.size() && (isOneResult || std::all_of(known.begin(), known.end(), givesItself));
  std::string text = isAny ? "any type" : "";
  std::string others;
  for (const auto &[type, result] : known) {
    const std::string name = ExpressionBuilder::valueTypeName(type);
    if (!isAny && (isOneResult || type == result)) {
      text.append(text.empty() ? "" : ", ").append(name);
    } else if (!isAny) {
      others.append("; ").append(name).append(arrowTo(result));
    }
  }
  return text + others + (isOneResult ? arrowTo(known.front().second) : "");
}

// "atan2(a, b)"
std::string callOf(const std::string &name, std::size_t arguments) {
  std::string form = name + "(";
  for (std::size_t index = 0; index < arguments; ++index) {
    form.append(index == 0 ? "" : ", ").append(1, static_cast<char>('a' + index));
  }
  return form + ")";
}

void print(const std::string &title, const std::vector<Entry> &entries, std::ostream &out) {
  std::size_t forms = 0;
  std::size_t types = 0;
  for (const Entry &entry : entries) {
    forms = std::max(forms, entry.form.size());
    types = std::max(types, entry.types.size());
  }
  out << title << "\n";
  for (const Entry &entry : entries) {
    out << "  " << entry.form << std::string(forms - entry.form.size() + 2, ' ') << entry.types
        << std::string(types - entry.types.size() + 2, ' ') << entry.meaning << "\n";
  }
}

std::vector<Entry> operatorEntries(const BuilderBase &builder) {
  std::vector<Entry> entries;
  entries.reserve(kOperators.size());
  for (const Operator &known : kOperators) {
    entries.push_back({known.form, typesOf(builder, known.form), known.meaning});
  }
  return entries;
}

std::vector<Entry> functionEntries(const BuilderBase &builder) {
  std::vector<Entry> entries;
  for (const std::string &name : builder.functionNames()) {
    const std::string form = callOf(name, builder.resolveFunction(name)->begin()->first.size());
    const auto meaning = functionMeanings().find(name);
    entries.push_back(
        {form, typesOf(builder, form), meaning == functionMeanings().end() ? "" : meaning->second});
  }
  return entries;
}

void printForPeople(const std::vector<Entry> &operators, const std::vector<Entry> &functions,
                    std::ostream &out) {
  print("Operators, tighter binding first. The right operand decides the type: write %x% * 2.0, not %x% * 2.",
        operators, out);
  out << "\n";
  print("Functions. Arguments are not converted, and all have one type: write sqrt(2.0), not sqrt(2).",
        functions, out);
  out << "\nA variable of a cost is %Entity.Attribute%, a double in the declared unit. 2.0 is a double, 2 an "
         "int, \"text\"\na string; pi and e are constants.\n";
}

std::string csvText(const std::vector<Entry> &operators, const std::vector<Entry> &functions) {
  std::string text;
  appendCsvLine(text, {"kind", "form", "types", "meaning"});
  for (const Entry &entry : operators) {
    appendCsvLine(text, {"operator", entry.form, entry.types, entry.meaning});
  }
  for (const Entry &entry : functions) {
    appendCsvLine(text, {"function", entry.form, entry.types, entry.meaning});
  }
  return text;
}

Json entriesNode(const std::vector<Entry> &entries) {
  Json nodes = Json::array();
  for (const Entry &entry : entries) {
    nodes.push_back({{"form", entry.form}, {"types", entry.types}, {"meaning", entry.meaning}});
  }
  return nodes;
}

} // namespace

int functionsCommand(OutputFormat format, const Console &console) {
  BuilderBase builder;
  declareTypes(builder);
  const std::vector<Entry> operators = operatorEntries(builder);
  const std::vector<Entry> functions = functionEntries(builder);
  switch (format) {
  case OutputFormat::Csv:
    console.out << csvText(operators, functions);
    break;
  case OutputFormat::Json:
    console.out << jsonText({{"version", kJsonVersion},
                             {"operators", entriesNode(operators)},
                             {"functions", entriesNode(functions)}});
    break;
  case OutputFormat::Table:
    printForPeople(operators, functions, console.out);
    break;
  }
  return ExitCode::kDone;
}

} // namespace Workbench
