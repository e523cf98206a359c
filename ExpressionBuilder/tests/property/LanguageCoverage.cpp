#include "ExpressionBuilder/tests/property/LanguageCoverage.h"

#include <cmath>
#include <iomanip>
#include <numeric>

namespace LanguageOracle {
namespace {

std::size_t place(Type type) {
  return static_cast<std::size_t>(type) - 1;
}

std::string callText(const Function &function, const std::vector<Type> &arguments) {
  std::string text = function.name;
  char separator = '(';
  for (const Type argument : arguments) {
    text += separator;
    text += typeName(argument);
    separator = ',';
  }
  return text + ')';
}

// All lists of types of the function's arity.
std::vector<std::vector<Type>> argumentLists(const Function &function) {
  std::vector<std::vector<Type>> lists = {{}};
  for (std::size_t argument = 0; argument < function.arity; ++argument) {
    std::vector<std::vector<Type>> longer;
    for (const std::vector<Type> &list : lists) {
      for (const Type type : kTypes) {
        longer.push_back(list);
        longer.back().push_back(type);
      }
    }
    lists = std::move(longer);
  }
  return lists;
}

void printHeading(std::ostream &stream, const std::string &corner) {
  stream << std::setw(12) << corner;
  for (const Type left : kTypes) {
    for (const Type right : kTypes) {
      stream << std::setw(7) << (std::string(typeName(left), 1) + ',' + std::string(typeName(right), 1));
    }
  }
  stream << '\n';
}

template <class Pairs> void printPairs(std::ostream &stream, const std::string &name, const Pairs &pairs) {
  stream << std::setw(12) << name;
  for (const auto &row : pairs) {
    for (const std::size_t count : row) {
      stream << std::setw(7) << count;
    }
  }
  stream << '\n';
}

template <class Row> void printRow(std::ostream &stream, const std::string &name, const Row &row) {
  stream << std::setw(12) << name;
  for (const std::size_t count : row) {
    stream << std::setw(11) << count;
  }
  stream << '\n';
}

template <class Pairs>
void addMissingPairs(std::vector<std::string> &missing, const std::string &name, const Pairs &pairs) {
  for (const Type left : kTypes) {
    for (const Type right : kTypes) {
      if (pairs[place(left)][place(right)] == 0) {
        missing.push_back(name + " of " + typeName(left) + " and " + typeName(right));
      }
    }
  }
}

template <class Row>
void addMissing(std::vector<std::string> &missing, const std::string &name, const Row &row) {
  for (const Type type : kTypes) {
    if (row[place(type)] == 0) {
      missing.push_back(name + " of " + typeName(type));
    }
  }
}

} // namespace

void LanguageCoverage::countBinary(Binary op, Type left, Type right) {
  ++m_binaries.at(static_cast<std::size_t>(op))[place(left)][place(right)];
}

void LanguageCoverage::countPrefix(Prefix op, Type operand) {
  ++m_prefixes.at(static_cast<std::size_t>(op))[place(operand)];
}

void LanguageCoverage::countCast(Type to, Type from) {
  ++m_casts[place(to)][place(from)];
}

void LanguageCoverage::countConditional(Type condition, Type whenTrue, Type whenFalse) {
  ++m_conditions[place(condition)];
  ++m_branches[place(whenTrue)][place(whenFalse)];
}

void LanguageCoverage::countCall(const Function &function, const std::vector<Type> &arguments) {
  ++m_calls[callText(function, arguments)];
}

void LanguageCoverage::print(std::ostream &stream) const {
  stream << "types: d double, i int, b bool, s string, l long long; pairs are left,right\n";
  printHeading(stream, "operator");
  for (const Binary op : kBinaries) {
    printPairs(stream, symbol(op), m_binaries.at(static_cast<std::size_t>(op)));
  }
  printPairs(stream, "? x : y", m_branches);
  printPairs(stream, "cast to,from", m_casts);
  stream << std::setw(12) << "prefix";
  for (const Type type : kTypes) {
    stream << std::setw(11) << typeName(type);
  }
  stream << '\n';
  for (const Prefix op : kPrefixes) {
    printRow(stream, symbol(op), m_prefixes.at(static_cast<std::size_t>(op)));
  }
  printRow(stream, "x ? :", m_conditions);
  stream << "function: calls of its overloads; argument lists of its arity met, of all; least met list\n";
  for (const Function &function : functions()) {
    std::string overloads;
    std::size_t met = 0;
    std::size_t least = SIZE_MAX;
    const auto lists = argumentLists(function);
    for (const std::vector<Type> &list : lists) {
      const auto found = m_calls.find(callText(function, list));
      const std::size_t count = found == m_calls.end() ? 0 : found->second;
      met += count != 0 ? 1 : 0;
      least = std::min(least, count);
      if (accepts(function, list)) {
        overloads += "  " + std::string(typeName(list.front())) + " " + std::to_string(count);
      }
    }
    stream << std::setw(12) << function.name << ':' << overloads << "; " << met << " of " << lists.size()
           << "; " << least << '\n';
  }
}

std::vector<std::string> LanguageCoverage::missing() const {
  std::vector<std::string> missing;
  for (const Binary op : kBinaries) {
    addMissingPairs(missing, symbol(op), m_binaries.at(static_cast<std::size_t>(op)));
  }
  for (const Prefix op : kPrefixes) {
    addMissing(missing, std::string("prefix ") + symbol(op), m_prefixes.at(static_cast<std::size_t>(op)));
  }
  addMissing(missing, "condition", m_conditions);
  addMissingPairs(missing, "branches", m_branches);
  for (const Type to : kTypes) {
    // There is no way to write a cast to long long.
    if (to != Type::LongLong) {
      addMissing(missing, std::string("cast to ") + typeName(to), m_casts[place(to)]);
    }
  }
  for (const Function &function : functions()) {
    for (const std::vector<Type> &list : argumentLists(function)) {
      if (m_calls.count(callText(function, list)) == 0) {
        missing.push_back(callText(function, list));
      }
    }
  }
  return missing;
}

std::vector<std::string> LanguageCoverage::missingFunctions() const {
  std::vector<std::string> missing;
  for (const Function &function : functions()) {
    for (const Type type : kTypes) {
      const std::vector<Type> list(function.arity, type);
      if (accepts(function, list) && m_calls.count(callText(function, list)) == 0) {
        missing.push_back(callText(function, list));
      }
    }
  }
  return missing;
}

} // namespace LanguageOracle
