#include "ExpressionBuilder/fuzz/ExpressionCase.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TextErrors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

namespace ExpressionBuilder::Fuzzing {

namespace {

const std::array<const char *, 3> kColumns = {"a", "b", "c"};

const std::set<std::string> kBuildErrors = textErrors();
const std::set<std::string> kArithmeticErrors = arithmeticErrors();
const std::set<std::string> kEvaluationErrors = {"Invalid expression", "Circular Dependency"};

const std::string kUndefined = "Undefined variable : ";
const char *const kForeign = "not a documented error: ";

/// A value, or the text of an error.
struct Outcome {
  bool isValue = false;
  std::string bytes;

  bool operator==(const Outcome &other) const { return isValue == other.isValue && bytes == other.bytes; }
  bool operator!=(const Outcome &other) const { return !(*this == other); }
};

template <class T> Outcome valueOutcome(const T &value) {
  Outcome outcome;
  outcome.isValue = true;
  if constexpr (std::is_same_v<T, std::string>) {
    outcome.bytes = value;
  } else {
    outcome.bytes.resize(sizeof value);
    std::memcpy(outcome.bytes.data(), &value, sizeof value);
    if constexpr (std::is_same_v<T, double>) {
      // Which of two NaNs an operation passes on is the processor's choice.
      outcome.bytes = std::isnan(value) ? "nan" : outcome.bytes;
    }
  }
  return outcome;
}

Outcome errorOutcome(const std::exception &error, const std::set<std::string> &documented) {
  Outcome outcome;
  outcome.bytes = error.what();
  if (documented.count(outcome.bytes) == 0 && kArithmeticErrors.count(outcome.bytes) == 0 &&
      outcome.bytes.compare(0, kUndefined.size(), kUndefined) != 0) {
    outcome.bytes.insert(0, kForeign);
  }
  return outcome;
}

template <class Function> auto evaluation(Function &&function) -> Outcome {
  try {
    return valueOutcome(function());
  } catch (const std::exception &error) {
    return errorOutcome(error, kEvaluationErrors);
  }
}

std::string shown(const Outcome &outcome) {
  static const char *const kDigits = "0123456789abcdef";
  if (!outcome.isValue) {
    return "error \"" + outcome.bytes + '"';
  }
  std::string text = "value";
  for (const char byte : outcome.bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text.append({' ', kDigits[code / 16U], kDigits[code % 16U]});
  }
  return text;
}

/// Numbers that branch and overflow in different ways, the same ones for the same text.
double valueAt(const std::string &text, std::size_t column, std::size_t row) {
  static const std::array<double, 16> kValues = {0.0,
                                                 -0.0,
                                                 1.0,
                                                 -1.5,
                                                 2.0,
                                                 0.1,
                                                 -7.0,
                                                 3.0,
                                                 1e300,
                                                 -1e-300,
                                                 2147483648.0,
                                                 -9.3e18,
                                                 0.5,
                                                 std::numeric_limits<double>::infinity(),
                                                 std::numeric_limits<double>::quiet_NaN(),
                                                 1e-320};
  const std::size_t seed = text.size() + (text.empty() ? 0U : static_cast<unsigned char>(text.back()));
  return kValues[(seed * 7U + column * 5U + row * (column + 1U) + row / 16U) % kValues.size()];
}

template <class T> class Examination {
public:
  Examination(const ExpressionCase &input, BuilderSingleType<T> &builder)
      : m_input(input), m_builder(builder) {
    m_builder.setFoldConstants(input.foldConstants);
    m_builder.setAllowEscapes(input.allowEscapes);
  }

  /// Stops at the first contradiction: what follows would repeat it.
  std::string contradiction() {
    if (!checkBuilding() || m_expression == nullptr) {
      return m_found;
    }
    checkTree() && checkEvaluation() && checkNames() && checkRows() && checkWithoutFolding();
    m_expression.reset();
    return m_found;
  }

private:
  using TypedExpression = Expression<T, SimpleVariableCollection>;

  bool expect(bool holds, const std::string &what) {
    if (!holds && m_found.empty()) {
      m_found = what;
    }
    return holds;
  }

  bool expectSame(const Outcome &one, const Outcome &other, const std::string &what) {
    return expect(one == other, what + ": " + shown(one) + " and " + shown(other));
  }

  bool expectDocumented(const Outcome &outcome) {
    return expect(outcome.isValue || outcome.bytes.rfind(kForeign, 0) != 0, outcome.bytes);
  }

  bool checkBuilding() {
    Outcome built;
    std::size_t place = 0;
    try {
      m_expression = m_builder.buildExpression(m_input.text);
      built.isValue = true;
    } catch (const ParserError &error) {
      built = errorOutcome(error, kBuildErrors);
      place = error.offset();
    } catch (const std::exception &error) {
      built = errorOutcome(error, {});
    }
    Outcome warned;
    std::vector<Warning> warnings;
    try {
      const std::unique_ptr<ElementAbstract> root = m_builder.buildWithWarnings(m_input.text, warnings);
      warned.isValue = true;
      expect(m_expression == nullptr || root->type() == m_expression->root()->type(), "type with warnings");
    } catch (const ParserError &error) {
      warned = errorOutcome(error, kBuildErrors);
    } catch (const std::exception &error) {
      warned = errorOutcome(error, {});
    }
    for (const Warning &warning : warnings) {
      expect(warning.place.offset + warning.place.length <= m_input.text.size(), "place of a warning");
      expect(!warningMessage(warning, m_input.text).empty(), "message of a warning");
    }
    return expectDocumented(built) && expect(place <= m_input.text.size(), "place of an error") &&
           expectSame(built, warned, "build and buildWithWarnings") && m_found.empty();
  }

  bool checkTree() {
    const Element<T> &root = *m_expression->root();
    const std::unique_ptr<Element<T>> copy = root.clone();
    // A tree with a NaN equals nothing, itself included.
    const bool equalsItself = root.equals(root);
    return expect(root.equals(*copy) == equalsItself, "tree and copy") &&
           expect(copy->equals(root) == equalsItself, "copy and tree") &&
           expect(copy->isConstant() == root.isConstant(), "isConstant of the copy") &&
           expect(evaluationOf(*copy) == evaluationOf(root), "value of tree and copy");
  }

  Outcome evaluationOf(const Element<T> &root) const {
    return evaluation([&] { return root.evaluate(m_expression->variables()); });
  }

  bool checkEvaluation() {
    const Outcome value = evaluation([&] { return m_expression->evaluate(); });
    const std::unique_ptr<ExpressionGenericAbstract<T>> copy = m_expression->clone();
    const bool isValid = m_expression->isValid();
    return expectDocumented(value) &&
           expectSame(value, evaluation([&] { return m_expression->evaluate(); }),
                      "first and second value") &&
           expectSame(value, evaluation([&] { return copy->evaluate(); }), "value of the copy") &&
           expect(isValid == (value.isValue || value.bytes != "Invalid expression"),
                  "isValid and evaluate") &&
           expect(!isValid || evaluationOf(*m_expression->root()) == value, "expression and tree");
  }

  /// Values set through handles and definitions replaced by name are the same thing.
  bool checkNames() {
    const auto copy = std::make_unique<TypedExpression>(*m_expression);
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < kColumns.size(); ++column) {
        const double value = valueAt(m_input.text, column, row);
        copy->variables().replace(kColumns[column], std::make_unique<ElementConstant<double>>(value));
      }
      if (!expectSame(evaluation([&] { return copy->evaluate(); }), rowOutcome(row), "replaced and set")) {
        return false;
      }
    }
    return true;
  }

  VariableHandle<double> handleOf(std::size_t column) const {
    const SimpleVariableCollection &variables = m_expression->variables();
    return variables.handle<double>(kColumns[column]);
  }

  Outcome rowOutcome(std::size_t row) {
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      m_expression->variables().set(handleOf(column), valueAt(m_input.text, column, row));
    }
    return evaluation([&] { return m_expression->evaluate(); });
  }

  bool checkRows() {
    const std::size_t rows = m_input.hasManyRows ? 530 : 9;
    std::vector<std::vector<double>> values(kColumns.size());
    std::vector<VariableColumn> columns;
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      for (std::size_t row = 0; row < rows; ++row) {
        values[column].push_back(valueAt(m_input.text, column, row));
      }
      columns.push_back({handleOf(column), values[column].data()});
    }
    const std::unique_ptr<T[]> results = std::make_unique<T[]>(rows);
    std::fill_n(results.get(), rows, untouched());
    Outcome end;
    end.isValue = true;
    try {
      m_expression->evaluateRows(columns, rows, results.get());
    } catch (const std::exception &error) {
      end = errorOutcome(error, kEvaluationErrors);
    }
    std::size_t row = 0;
    for (; row < rows; ++row) {
      const Outcome single = rowOutcome(row);
      if (!single.isValue) {
        expectSame(single, end, "error of row " + std::to_string(row));
        break;
      }
      if (!expectSame(single, valueOutcome(results[row]), "row " + std::to_string(row))) {
        return false;
      }
    }
    expect(row < rows || end.isValue, "rows fail, and each row has a value");
    for (; row < rows; ++row) {
      expectSame(valueOutcome(results[row]), valueOutcome(untouched()), "row behind the error");
    }
    return m_found.empty();
  }

  static T untouched() {
    if constexpr (std::is_same_v<T, std::string>) {
      return "untouched";
    } else {
      return static_cast<T>(77);
    }
  }

  /// Folding brings errors forward and changes nothing else.
  bool checkWithoutFolding() {
    if (!m_input.foldConstants) {
      return true;
    }
    m_builder.setFoldConstants(false);
    const std::unique_ptr<TypedExpression> unfolded = m_builder.buildExpression(m_input.text);
    for (std::size_t row = 0; row < 3; ++row) {
      const Outcome folded = rowOutcome(row);
      for (const char *name : kColumns) {
        unfolded->variables().replace(name, m_expression->variables().find(name)->cloneAbstract());
      }
      if (!expectSame(folded, evaluation([&] { return unfolded->evaluate(); }), "folded and unfolded")) {
        return false;
      }
    }
    return true;
  }

  const ExpressionCase &m_input;
  BuilderSingleType<T> &m_builder;
  std::unique_ptr<TypedExpression> m_expression;
  std::string m_found;
};

template <class T> std::unique_ptr<ElementAbstract> constant(T value) {
  return std::make_unique<ElementConstant<T>>(std::move(value));
}

} // namespace

ExpressionCase caseOf(const std::uint8_t *bytes, std::size_t size) {
  // 'Z' is 90, so that the letters before it make doubles, too: every fifth of them.
  const unsigned choice = size == 0 ? 0U : bytes[0];
  ExpressionCase input;
  input.type = static_cast<ValueType>(1U + choice % 5U);
  input.foldConstants = choice / 5U % 2U == 0;
  input.allowEscapes = choice / 10U % 4U == 3;
  input.hasManyRows = choice / 40U % 4U == 3;
  if (size > 1) {
    input.text.assign(reinterpret_cast<const char *>(bytes) + 1, size - 1);
  }
  return input;
}

void declareVariables(BuilderBase &builder) {
  SimpleVariableCollection &variables = builder.variables();
  variables.declare("a", constant(1.5));
  variables.declare("b", constant(-2.25));
  variables.declare("c", constant(0.0));
  variables.declare("i", constant(7));
  variables.declare("j", constant(-3));
  variables.declare("t", constant(true));
  variables.declare("s", constant<std::string>("12abc"));
  variables.declare("l", constant(4000000000LL));
  // Of the types that their texts have, whatever type the builder is for.
  BuilderBase definitions;
  definitions.variables() = variables;
  const auto define = [&](const char *name, const char *text) {
    const std::unique_ptr<ElementAbstract> definition = definitions.build(text);
    definitions.variables().declare(name, definition->cloneAbstract());
    variables.declare(name, definition->cloneAbstract());
  };
  define("sum", "%a%+%b%*%a%");
  define("sums", "%sum%*%sum%-%c%");
  define("quotient", "%i%/(%j%+(int)%a%)");
  define("word", "%s%+%t%");
  define("self", "%a%");
  variables.replace("self", definitions.build("%self%+1.0"));
}

struct Examiner::Builders {
  std::tuple<BuilderSingleType<double>, BuilderSingleType<int>, BuilderSingleType<bool>,
             BuilderSingleType<std::string>, BuilderSingleType<long long>>
      ofType;
};

Examiner::Examiner(const std::function<void(BuilderBase &)> &prepare)
    : m_builders(std::make_unique<Builders>()) {
  std::apply([&](auto &...builder) { (prepare(builder), ...); }, m_builders->ofType);
}

Examiner::~Examiner() = default;

std::string Examiner::contradictionIn(const ExpressionCase &input) {
  return visitValueType(input.type, [&](auto tag) {
    using T = typename decltype(tag)::Type;
    return Examination<T>(input, std::get<BuilderSingleType<T>>(m_builders->ofType)).contradiction();
  });
}

} // namespace ExpressionBuilder::Fuzzing
