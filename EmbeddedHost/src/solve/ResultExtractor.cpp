#include "EmbeddedHost/ResultExtractor.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"

#include <cerrno>
#include <locale>
#include <regex>
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

std::string_view takeLine(std::string_view &text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  return line;
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

// A solver may write anything; a message quotes a readable beginning of it.
std::string quoted(std::string_view text) {
  constexpr std::size_t kLongestQuote = 40;
  std::string quote = "\"";
  for (const char character : text.substr(0, kLongestQuote)) {
    quote += static_cast<unsigned char>(character) < 0x20 ? '?' : character;
  }
  return quote + (text.size() > kLongestQuote ? "...\"" : "\"");
}

} // namespace

class ResultExtractor::Expression {
public:
  std::regex regex;
};

ResultExtractor::ResultExtractor(std::string pattern, std::shared_ptr<const Expression> expression,
                                 std::size_t group)
    : m_pattern(std::move(pattern)), m_expression(std::move(expression)), m_group(group) {}

std::optional<ResultExtractor> ResultExtractor::create(const std::string &pattern, std::size_t group,
                                                       std::string &problem) {
  // The library's default matcher recurses once per character of the line and overruns the stack on a long
  // one; its polynomial matcher does not, and cannot take exponential time either.
  constexpr auto kFlags = std::regex_constants::ECMAScript | std::regex_constants::__polynomial;
  const auto expression = std::make_shared<Expression>();
  expression->regex.imbue(std::locale::classic());
  try {
    expression->regex.assign(pattern, kFlags);
  } catch (const std::regex_error &error) {
    problem = quoted(pattern) + " is no regular expression: " + error.what();
    return std::nullopt;
  }
  if (group > expression->regex.mark_count()) {
    problem = quoted(pattern) + " has no group " + std::to_string(group);
    return std::nullopt;
  }
  return ResultExtractor(pattern, expression, group);
}

ExtractedResult ResultExtractor::extract(std::string_view text, const std::string &source) const {
  if (text.empty()) {
    return failed(ExtractionFailure::FileEmpty, source + " is empty");
  }
  ExtractedResult result;
  for (std::size_t lineNumber = 1; !text.empty(); ++lineNumber) {
    const std::string_view line = takeLine(text);
    using Matches = std::regex_iterator<const char *>;
    for (Matches match(line.data(), line.data() + line.size(), m_expression->regex); match != Matches();
         ++match) {
      const auto &group = (*match)[m_group];
      const std::string found = group.str();
      const std::string place = source + ":" + std::to_string(lineNumber);
      if (isBlank(found)) {
        return failed(ExtractionFailure::EmptyValue, place + ": nothing stands where the number should",
                      lineNumber);
      }
      const std::optional<double> value = readSolverNumber(found);
      if (!value) {
        return failed(ExtractionFailure::NotANumber, place + ": " + quoted(found) + " is not a number",
                      lineNumber);
      }
      if (result.value && *result.value != *value) {
        return failed(ExtractionFailure::Ambiguous,
                      place + ": a second, different number " + quoted(found) + " after the one in line " +
                          std::to_string(result.line),
                      lineNumber);
      }
      if (!result.value) {
        result.value = value;
        result.line = lineNumber;
      }
    }
  }
  if (!result.value) {
    return failed(ExtractionFailure::NoMatch, source + ": no line matches " + quoted(m_pattern));
  }
  return result;
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
