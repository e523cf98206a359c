#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// Why an extractor found no number.
enum class ExtractionFailure {
  None,
  FileMissing, ///< there is no such file, or it cannot be read
  FileEmpty,   ///< the file holds nothing
  NoMatch,     ///< nothing is where the number should be
  EmptyValue,  ///< its place is there and holds nothing
  NotANumber,  ///< its place holds something that is no finite number
  Ambiguous,   ///< several places match, with different numbers
  Malformed    ///< the file is not of the kind that is declared, or was cut short
};

/// What an extractor found.
struct ExtractedResult {
  std::optional<double> value;
  ExtractionFailure failure = ExtractionFailure::None;
  std::string reason;   ///< one sentence for people; empty when there is a value
  std::size_t line = 0; ///< where the value, or what is wrong, stands, from 1; 0 when nowhere
};

/// How a text holds a number.
enum class ExtractionKind {
  Pattern,      ///< a regular expression with a group around the number
  KeyValue,     ///< a name, a separator, the number
  TableColumn,  ///< a column of a table with delimiters
  JsonPointer,  ///< a value of a JSON text
  FixedColumns, ///< the characters between two columns of a line
  WholeText     ///< the text is the number
};

/// Which number counts when several places match.
enum class Reduction {
  Single, ///< all have to be the same number
  First,
  Last,
  Minimum,
  Maximum,
  Sum,
  Mean,
  Count ///< how many places match, whatever they hold
};

/// A column of a table: by the title in the first row, or by its number from 1 when there is no title.
struct TableColumn {
  std::string title;
  std::size_t number = 0;
};

/// Where a number is found, and which.
struct ExtractionRule {
  ExtractionKind kind = ExtractionKind::Pattern;
  Reduction reduction = Reduction::Single;

  std::string
      after; ///< a pattern: only what follows the first line that it matches counts; "" for everything
  std::string
      until; ///< a pattern: the line that it matches first (after `after`) and what follows do not count

  std::string pattern;   ///< Pattern; FixedColumns: the lines that count, "" for those of `lineNumber`
  std::size_t group = 1; ///< Pattern: the group that holds the number, 0 for the whole match

  std::string key; ///< KeyValue: a whole word, or several
  std::string separators =
      "=: "; ///< KeyValue: what may stand between key and number; blanks around it never matter

  TableColumn column;                     ///< TableColumn
  char delimiter = ',';                   ///< TableColumn; a blank stands for any number of blanks and tabs
  std::size_t skippedLines = 0;           ///< TableColumn: lines before the table
  std::optional<TableColumn> whereColumn; ///< TableColumn: count only the rows where this column
  std::string whereValue;                 ///< is this
  bool isNearest = false;                 ///< or, of all rows, nearest to this

  std::string pointer; ///< JsonPointer, such as "/results/0/mass"; of a list every number in it counts

  std::size_t lineNumber = 0;  ///< FixedColumns: the line that counts, from 1; 0 for those of `pattern`
  std::size_t firstColumn = 0; ///< FixedColumns: from 1, both included
  std::size_t lastColumn = 0;
};

/// Finds one number in a solver's output. A text that is empty, in which nothing matches, or that holds anything else
/// than a number where it matches has no result. Lines end with a line feed, before which a carriage return may stand.
class ResultExtractor {
public:
  /// \return empty when the rule can never find anything, such as one whose pattern does not compile; `problem` then
  ///         says why
  static std::optional<ResultExtractor> create(ExtractionRule rule, std::string &problem);
  /// A regular expression.
  static std::optional<ResultExtractor> create(const std::string &pattern, std::size_t group,
                                               std::string &problem);

  const ExtractionRule &rule() const { return m_rule; }

  /// Searches a text. An empty text is reported as an empty file.
  /// \param source  the name of the text in the reason, such as "result.txt"
  ExtractedResult extract(std::string_view text, const std::string &source) const;

  /// Searches a file, which is read up to kLargestFile bytes; a larger one counts as not readable.
  ExtractedResult extractFromFile(const std::string &path, const std::string &source) const;

  static constexpr std::size_t kLargestFile = std::size_t{256} * 1024 * 1024;

private:
  class Patterns;

  ResultExtractor(ExtractionRule rule, std::shared_ptr<const Patterns> patterns);

  ExtractionRule m_rule;
  std::shared_ptr<const Patterns> m_patterns; // immutable, so that copies may share it
};

} // namespace EmbeddedHost
