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
  NoMatch,     ///< no line matches the pattern
  EmptyValue,  ///< the pattern matched, its group holds nothing
  NotANumber,  ///< the group holds something that is no finite number
  Ambiguous    ///< the pattern matched more than once, with different numbers
};

/// What an extractor found.
struct ExtractedResult {
  std::optional<double> value;
  ExtractionFailure failure = ExtractionFailure::None;
  std::string reason;   ///< one sentence for people; empty when there is a value
  std::size_t line = 0; ///< where the value, or the text that is no number, stands, from 1; 0 when nowhere
};

/// Finds one number in a solver's output by a regular expression (ECMAScript) with a group around the number.
/// The pattern is matched against one line at a time, so "^" and "$" are the line's ends; a carriage return
/// before the line feed does not belong to the line. A pattern that matches several times is accepted when
/// every match gives the same number. Matching takes no more stack for a long line than for a short one;
/// back-references are refused.
class ResultExtractor {
public:
  /// \param group  the number of the group that holds the number, 0 for the whole match
  /// \return empty when the pattern does not compile or has no such group; `problem` then says why
  static std::optional<ResultExtractor> create(const std::string &pattern, std::size_t group,
                                               std::string &problem);

  const std::string &pattern() const { return m_pattern; }
  std::size_t group() const { return m_group; }

  /// Searches a text. An empty text is reported as an empty file.
  /// \param source  the name of the text in the reason, such as "result.txt"
  ExtractedResult extract(std::string_view text, const std::string &source) const;

  /// Searches a file, which is read up to `largestFile` bytes; a larger one counts as not readable.
  ExtractedResult extractFromFile(const std::string &path, const std::string &source) const;

  static constexpr std::size_t kLargestFile = std::size_t{256} * 1024 * 1024;

private:
  class Expression;

  ResultExtractor(std::string pattern, std::shared_ptr<const Expression> expression, std::size_t group);

  std::string m_pattern;
  std::shared_ptr<const Expression> m_expression; // immutable, so that copies may share it
  std::size_t m_group;
};

} // namespace EmbeddedHost
