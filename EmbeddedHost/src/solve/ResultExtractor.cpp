#include "EmbeddedHost/ResultExtractor.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/src/solve/ExtractionSearch.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

ExtractedResult failed(ExtractionFailure failure, std::string reason, std::size_t line = 0) {
  ExtractedResult result;
  result.failure = failure;
  result.reason = std::move(reason);
  result.line = line;
  return result;
}

std::string placeText(const std::string &source, std::size_t line) {
  return line == 0 ? source : source + ":" + std::to_string(line);
}

// What was looked for, as a message says it.
std::string wanted(const ExtractionRule &rule) {
  switch (rule.kind) {
  case ExtractionKind::Pattern:
    return "no line matches " + quotedBeginning(rule.pattern);
  case ExtractionKind::KeyValue:
    return "no line holds the key " + quotedBeginning(rule.key) + " with a value";
  case ExtractionKind::FixedColumns:
    return rule.lineNumber == 0 ? "no line matches " + quotedBeginning(rule.pattern)
                                : "there is no line " + std::to_string(rule.lineNumber);
  case ExtractionKind::TableColumn:
    return rule.whereColumn ? "no row of the table is asked for" : "the table has no row";
  case ExtractionKind::JsonPointer:
    return "there is nothing at " + quotedBeginning(rule.pointer);
  case ExtractionKind::WholeText:
    break;
  }
  return "there is no number";
}

struct Number {
  double value;
  std::size_t line;
};

// The numbers of all matches; a failure when one is none.
ExtractedResult readNumbers(const ExtractionMatches &found, const std::string &source,
                            std::vector<Number> &numbers) {
  numbers.reserve(found.matches.size());
  for (const ExtractionMatch &match : found.matches) {
    const std::string place = placeText(source, match.line);
    if (match.text.find_first_not_of(" \t") == std::string::npos) {
      return failed(ExtractionFailure::EmptyValue, place + ": nothing stands where the number should",
                    match.line);
    }
    const std::optional<double> value = readSolverNumber(match.text);
    if (!value) {
      return failed(ExtractionFailure::NotANumber,
                    place + ": " + quotedBeginning(match.text) + " is not a number", match.line);
    }
    numbers.push_back({*value, match.line});
  }
  return {};
}

// Every place has to give the same number.
ExtractedResult onlyNumber(const std::vector<Number> &numbers, const ExtractionMatches &found,
                           const std::string &source) {
  for (std::size_t index = 1; index < numbers.size(); ++index) {
    if (numbers[index].value != numbers.front().value) {
      return failed(ExtractionFailure::Ambiguous,
                    placeText(source, numbers[index].line) + ": a second, different number " +
                        quotedBeginning(found.matches[index].text) + " after the one in line " +
                        std::to_string(numbers.front().line),
                    numbers[index].line);
    }
  }
  return {numbers.front().value, ExtractionFailure::None, "", numbers.front().line};
}

ExtractedResult reduce(Reduction reduction, const std::vector<Number> &numbers, const std::string &source) {
  const auto isLess = [](const Number &left, const Number &right) {
    return left.value < right.value;
  };
  Number result = numbers.front();
  switch (reduction) {
  case Reduction::Last:
    result = numbers.back();
    break;
  case Reduction::Minimum:
    result = *std::min_element(numbers.begin(), numbers.end(), isLess);
    break;
  case Reduction::Maximum:
    result = *std::max_element(numbers.begin(), numbers.end(), isLess);
    break;
  case Reduction::Sum:
  case Reduction::Mean:
    for (std::size_t index = 1; index < numbers.size(); ++index) {
      result.value += numbers[index].value;
    }
    if (reduction == Reduction::Mean) {
      result.value /= static_cast<double>(numbers.size());
    }
    break;
  default:
    break;
  }
  if (!std::isfinite(result.value)) {
    return failed(ExtractionFailure::NotANumber, source + ": the sum of the numbers is too large");
  }
  return {result.value, ExtractionFailure::None, "", result.line};
}

} // namespace

class ResultExtractor::Patterns {
public:
  std::optional<LinePattern> main;
  std::optional<LinePattern> after;
  std::optional<LinePattern> until;

  // The part of the text between `after` and `until`; false when `after` is not there.
  bool cut(ExtractionText &part) const {
    if (after) {
      bool isFound = false;
      for (; !isFound && !part.text.empty(); ++part.firstLine) {
        isFound = after->isIn(takeLine(part.text));
      }
      if (!isFound) {
        return false;
      }
    }
    std::string_view rest = part.text;
    while (until && !rest.empty()) {
      const std::size_t before = part.text.size() - rest.size();
      if (until->isIn(takeLine(rest))) {
        part.text = part.text.substr(0, before);
        break;
      }
    }
    return true;
  }
};

ResultExtractor::ResultExtractor(ExtractionRule rule, std::shared_ptr<const Patterns> patterns)
    : m_rule(std::move(rule)), m_patterns(std::move(patterns)) {}

std::optional<ResultExtractor> ResultExtractor::create(const std::string &pattern, std::size_t group,
                                                       std::string &problem) {
  ExtractionRule rule;
  rule.pattern = pattern;
  rule.group = group;
  return create(std::move(rule), problem);
}

std::optional<ResultExtractor> ResultExtractor::create(ExtractionRule rule, std::string &problem) {
  const auto patterns = std::make_shared<Patterns>();
  const bool needsPattern = rule.kind == ExtractionKind::Pattern ||
                            (rule.kind == ExtractionKind::FixedColumns && rule.lineNumber == 0);
  const struct {
    const std::string &text;
    std::optional<LinePattern> &pattern;
    bool isWanted;
  } rows[] = {{rule.pattern, patterns->main, needsPattern},
              {rule.after, patterns->after, !rule.after.empty()},
              {rule.until, patterns->until, !rule.until.empty()}};
  for (const auto &row : rows) {
    if (row.isWanted) {
      row.pattern = LinePattern::create(row.text, problem);
      if (!row.pattern) {
        return std::nullopt;
      }
    }
  }
  if (rule.kind == ExtractionKind::Pattern && rule.group > patterns->main->groupCount()) {
    problem = quotedBeginning(rule.pattern) + " has no group " + std::to_string(rule.group);
  } else if (rule.kind == ExtractionKind::FixedColumns &&
             (rule.firstColumn == 0 || rule.lastColumn < rule.firstColumn)) {
    problem = "columns count from 1, and the last one is not before the first";
  } else if (rule.kind == ExtractionKind::KeyValue && rule.key.empty()) {
    problem = "a key must not be empty";
  } else if (rule.kind == ExtractionKind::JsonPointer && !jsonPointerSteps(rule.pointer)) {
    problem = quotedBeginning(rule.pointer) + " is no JSON pointer, such as /results/0/mass";
  } else {
    return ResultExtractor(std::move(rule), patterns);
  }
  return std::nullopt;
}

ExtractedResult ResultExtractor::extract(std::string_view text, const std::string &source) const {
  if (text.empty()) {
    return failed(ExtractionFailure::FileEmpty, source + " is empty");
  }
  ExtractionText part{text, 1};
  if (!m_patterns->cut(part)) {
    return failed(ExtractionFailure::NoMatch, source + ": no line matches " + quotedBeginning(m_rule.after));
  }
  ExtractionMatches found;
  switch (m_rule.kind) {
  case ExtractionKind::Pattern:
    findPattern(m_rule, *m_patterns->main, part, found);
    break;
  case ExtractionKind::KeyValue:
    findKey(m_rule, part, found);
    break;
  case ExtractionKind::TableColumn:
    findTableColumn(m_rule, part, found);
    break;
  case ExtractionKind::JsonPointer:
    findJsonPointer(m_rule, part, found);
    break;
  case ExtractionKind::FixedColumns:
    findFixedColumns(m_rule, m_patterns->main ? &*m_patterns->main : nullptr, part, found);
    break;
  case ExtractionKind::WholeText:
    findWholeText(part, found);
    break;
  }
  if (found.failure != ExtractionFailure::None) {
    return failed(found.failure, placeText(source, found.line) + ": " + found.reason, found.line);
  }
  if (found.matches.empty()) {
    return failed(ExtractionFailure::NoMatch, source + ": " + wanted(m_rule));
  }
  if (m_rule.reduction == Reduction::Count) {
    return {static_cast<double>(found.matches.size()), ExtractionFailure::None, "",
            found.matches.front().line};
  }
  std::vector<Number> numbers;
  ExtractedResult problem = readNumbers(found, source, numbers);
  if (problem.failure != ExtractionFailure::None) {
    return problem;
  }
  return m_rule.reduction == Reduction::Single ? onlyNumber(numbers, found, source)
                                               : reduce(m_rule.reduction, numbers, source);
}

ExtractedResult ResultExtractor::extractFromFile(const std::string &path, const std::string &source) const {
  if (::access(path.c_str(), F_OK) != 0 && errno == ENOENT) {
    return failed(ExtractionFailure::FileMissing, source + " was not written");
  }
  std::string problem;
  const std::optional<std::string> text = readWholeFile(path, kLargestFile, problem);
  if (!text) {
    return failed(ExtractionFailure::FileMissing, source + " cannot be read: " + problem);
  }
  return extract(*text, source);
}

} // namespace EmbeddedHost
