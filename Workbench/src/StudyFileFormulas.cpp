#include "Workbench/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>

namespace Workbench {

namespace {

// Attributes with a number; a text cannot be computed with.
std::vector<std::string> numericNames(const StudyFile &file, bool withResults) {
  std::vector<std::string> names;
  for (const StudyAttribute &attribute : file.attributes) {
    if (attribute.kind != AttributeKind::Text && (withResults || !attribute.isResult)) {
      names.push_back(attribute.fullName());
    }
  }
  return names;
}

// The formula's place in the list of formulas; the number of formulas when there is none.
std::size_t findFormula(const StudyFile &file, const std::string &attribute) {
  const auto found =
      std::find_if(file.formulas.begin(), file.formulas.end(),
                   [&attribute](const StudyFormula &formula) { return formula.attribute == attribute; });
  return static_cast<std::size_t>(found - file.formulas.begin());
}

// Puts formulas behind those that they use.
class FormulaOrder {
public:
  explicit FormulaOrder(const StudyFile &file) : m_file(file), m_states(file.formulas.size(), State::New) {}

  // Appends the formula and what it uses to the order; false when it leads back to itself.
  bool visit(std::size_t first) {
    std::vector<std::pair<std::size_t, std::size_t>> path{{first, 0}};
    while (!path.empty()) {
      auto &[formula, next] = path.back();
      const std::vector<std::string> &variables = m_file.formulas[formula].variables;
      if (next == 0 && m_states[formula] == State::Done) {
        path.pop_back();
        continue;
      }
      m_states[formula] = State::Open;
      if (next == variables.size()) {
        m_states[formula] = State::Done;
        m_order.push_back(formula);
        path.pop_back();
        continue;
      }
      const std::size_t used = findFormula(m_file, variables[next++]);
      if (used == m_states.size() || m_states[used] == State::Done) {
        continue;
      }
      if (m_states[used] == State::Open) {
        describeCircle(path, used);
        return false;
      }
      path.emplace_back(used, 0);
    }
    return true;
  }

  const std::vector<std::size_t> &order() const { return m_order; }
  const std::string &circle() const { return m_circle; }

private:
  enum class State { New, Open, Done };

  void describeCircle(const std::vector<std::pair<std::size_t, std::size_t>> &path, std::size_t back) {
    auto begin = path.begin();
    while (begin->first != back) {
      ++begin;
    }
    for (; begin != path.end(); ++begin) {
      m_circle += "\"" + m_file.formulas[begin->first].attribute + "\" uses ";
      m_circle +=
          begin + 1 == path.end() ? "" : "\"" + m_file.formulas[(begin + 1)->first].attribute + "\", ";
    }
    m_circle += "\"" + m_file.formulas[back].attribute + "\"";
  }

  const StudyFile &m_file;
  std::vector<State> m_states;
  std::vector<std::size_t> m_order;
  std::string m_circle;
};

} // namespace

std::string onOneLine(std::string text) {
  for (char &character : text) {
    character = character == '\n' || character == '\r' || character == '\t' ? ' ' : character;
  }
  return text;
}

// Builds the expression to find what is wrong with it; `otherwise` says why a known attribute cannot be used.
std::optional<StudyExpression> StudyFileReader::readExpression(const StudyNode &node, const std::string &what,
                                                               const std::vector<std::string> &names,
                                                               const std::string &otherwise,
                                                               StudyFile &file) {
  const std::string text = onOneLine(node.text());
  std::vector<ExpressionNote> warnings;
  ExpressionNote problem;
  auto expression = StudyExpression::create(text, names, warnings, problem);
  if (!expression) {
    const std::string undefined = undefinedName(problem);
    std::string message = what + ": " + problem.message;
    if (!undefined.empty() && file.findAttribute(undefined) != nullptr) {
      message = what + ": \"" + undefined + "\" " + otherwise;
    } else {
      message +=
          undefined.empty() ? " at character " + std::to_string(problem.offset + 1) + " of its text" : "";
      message += expressionHint(text, problem, names);
    }
    m_nodes.report(m_nodes.placeIn(node, problem.offset), message);
    return std::nullopt;
  }
  for (const ExpressionNote &warning : warnings) {
    const FilePlace place = m_nodes.placeIn(node, warning.offset);
    file.warnings.push_back({m_nodes.file(), place.line, place.column, what + ": " + warning.message});
  }
  return expression;
}

void StudyFileReader::readFormulas(const StudyNode &node, StudyFile &file) {
  for (const NodeReader::Entry &entry : m_nodes.entries(node, "formulas")) {
    readFormula(entry, file);
  }
  if (node.isMap() && node.entries().empty()) {
    m_nodes.report(node, "formulas are a map of results, each with an expression");
  }
  orderFormulas(file);
}

// An expression alone, or a map that says besides what is plausible.
void StudyFileReader::readFormula(const NodeReader::Entry &entry, StudyFile &file) {
  const StudyAttribute *attribute = readResultName(entry, file);
  const std::string what = "the formula of \"" + entry.key + "\"";
  StudyFormula formula;
  formula.attribute = entry.key;
  const StudyNode *expression = &entry.value;
  if (entry.value.isMap()) {
    const auto map = m_nodes.map(entry.value, what, {"expression", "minimum", "maximum"});
    expression = map ? map->find("expression") : nullptr;
    if (map && expression == nullptr) {
      m_nodes.report(entry.value, what + " needs an expression");
    }
    if (map) {
      readPlausible(*map, attribute, formula.minimum, formula.maximum);
    }
  }
  const std::optional<std::string> text =
      expression == nullptr ? std::nullopt : m_nodes.word(*expression, what);
  if (!text) {
    return;
  }
  formula.text = onOneLine(*text);
  formula.place = expression->place();
  const auto built = readExpression(*expression, what, numericNames(file, true),
                                    "is a text and cannot be computed with", file);
  if (!built) {
    return;
  }
  formula.variables = built->variables();
  if (built->isTruth()) {
    file.warnings.push_back({m_nodes.file(), formula.place.line, formula.place.column,
                             what + ": it is true or false and not a number; the result is 1 or 0"});
  }
  file.formulas.push_back(std::move(formula));
}

void StudyFileReader::orderFormulas(StudyFile &file) {
  FormulaOrder order(file);
  for (std::size_t index = 0; index < file.formulas.size(); ++index) {
    if (!order.visit(index)) {
      m_nodes.report(file.formulas[index].place, "the formulas lead in a circle: " + order.circle());
      return;
    }
  }
  std::vector<StudyFormula> ordered;
  ordered.reserve(file.formulas.size());
  for (const std::size_t index : order.order()) {
    ordered.push_back(std::move(file.formulas[index]));
  }
  file.formulas = std::move(ordered);
}

void StudyFileReader::readRule(const StudyNode &node, StudyFile &file) {
  const std::optional<std::string> text = m_nodes.word(node, "rule");
  if (!text) {
    return;
  }
  const auto rule =
      readExpression(node, "the rule", numericNames(file, false),
                     "cannot be used: a rule knows the inputs only, not results and texts", file);
  if (!rule) {
    return;
  }
  file.rule = {onOneLine(*text), rule->variables(), node.place()};
  if (!rule->isTruth()) {
    file.warnings.push_back({m_nodes.file(), node.place().line, node.place().column,
                             "the rule: it is a number, which counts as met unless it is 0; compare it with "
                             "something"});
  }
  std::string problem;
  const auto baseline = [&file](const std::string &name) {
    return std::optional<double>(file.findAttribute(name)->value.number);
  };
  const std::optional<double> value = rule->evaluate(baseline, problem);
  if (!value) {
    m_nodes.report(node, "the rule: " + problem + " for the baseline");
  } else if (*value == 0.0) {
    m_nodes.report(node, "the baseline does not meet the rule");
  }
}

// The variables of a cost are the first attributes of all groups. An empty cost is none.
void StudyFileReader::checkCost(const StudyNode &node, StudyFile &file) {
  if (file.cost.find_first_not_of(" \t\n") == std::string::npos) {
    return;
  }
  std::vector<std::string> names;
  for (const auto *groups : {&file.inputs, &file.outputs}) {
    for (const StudyGroup &group : *groups) {
      names.push_back(group.macro());
    }
  }
  const auto cost =
      readExpression(node, "the cost", names,
                     "cannot be used: a cost knows the first attribute of each input and output", file);
  if (cost && cost->isTruth()) {
    file.warnings.push_back({m_nodes.file(), node.place().line, node.place().column,
                             "the cost: it is true or false and not a number; every row costs 1 or 0"});
  }
}

} // namespace Workbench
