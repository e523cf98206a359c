#include "EmbeddedHost/LinePattern.h"

#include <locale>
#include <regex>
#include <utility>

namespace EmbeddedHost {

class LinePattern::Expression {
public:
  std::regex regex;
};

LinePattern::LinePattern(std::string pattern, std::shared_ptr<const Expression> expression)
    : m_pattern(std::move(pattern)), m_expression(std::move(expression)) {}

std::optional<LinePattern> LinePattern::create(const std::string &pattern, std::string &problem) {
  // The library's default matcher recurses once per character of the line and overruns the stack on a long
  // one; its polynomial matcher does not, and cannot take exponential time either.
  constexpr auto kFlags = std::regex_constants::ECMAScript | std::regex_constants::__polynomial;
  const auto expression = std::make_shared<Expression>();
  expression->regex.imbue(std::locale::classic());
  try {
    expression->regex.assign(pattern, kFlags);
  } catch (const std::regex_error &error) {
    problem = quotedBeginning(pattern) + " is no regular expression: " + error.what();
    return std::nullopt;
  }
  return LinePattern(pattern, expression);
}

std::size_t LinePattern::groupCount() const {
  return m_expression->regex.mark_count();
}

bool LinePattern::isIn(std::string_view line) const {
  return std::regex_search(line.begin(), line.end(), m_expression->regex);
}

std::vector<std::string> LinePattern::find(std::string_view line, std::size_t group) const {
  using Matches = std::regex_iterator<const char *>;
  std::vector<std::string> found;
  for (Matches match(line.data(), line.data() + line.size(), m_expression->regex); match != Matches();
       ++match) {
    found.push_back((*match)[group].str());
  }
  return found;
}

std::string_view takeLine(std::string_view &text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  return line;
}

// A solver may write anything.
std::string quotedBeginning(std::string_view text) {
  constexpr std::size_t kLongestQuote = 40;
  std::string quote = "\"";
  for (const char character : text.substr(0, kLongestQuote)) {
    quote += static_cast<unsigned char>(character) < 0x20 ? '?' : character;
  }
  return quote + (text.size() > kLongestQuote ? "...\"" : "\"");
}

} // namespace EmbeddedHost
