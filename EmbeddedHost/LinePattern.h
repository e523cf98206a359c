#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

/// A regular expression (ECMAScript) that is matched against one line at a time, so "^" and "$" are the line's ends.
/// Matching takes no more stack for a long line than for a short one; back-references are refused.
class LinePattern {
public:
  /// \return empty when the text is no such expression; `problem` then says why
  static std::optional<LinePattern> create(const std::string &pattern, std::string &problem);

  const std::string &pattern() const { return m_pattern; }
  std::size_t groupCount() const;

  /// Whether the line holds a match.
  bool isIn(std::string_view line) const;
  /// What the group holds in every match of the line; group 0 is the whole match. A group that takes no part in a
  /// match holds "".
  std::vector<std::string> find(std::string_view line, std::size_t group) const;

private:
  class Expression;

  LinePattern(std::string pattern, std::shared_ptr<const Expression> expression);

  std::string m_pattern;
  std::shared_ptr<const Expression> m_expression; // immutable, so that copies may share it
};

/// Takes the first line off a text; a carriage return before the line feed does not belong to the line.
std::string_view takeLine(std::string_view &text);

/// A readable beginning of any bytes, in double quotes.
std::string quotedBeginning(std::string_view text);

} // namespace EmbeddedHost
