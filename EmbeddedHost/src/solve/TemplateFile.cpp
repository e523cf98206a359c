#include "EmbeddedHost/TemplateFile.h"

#include <utility>

namespace EmbeddedHost {

namespace {

std::string_view withoutBlanksAround(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Counts lines and columns forward through a text.
class TextPosition {
public:
  explicit TextPosition(std::string_view text) : m_text(text) {}

  void advanceTo(std::size_t offset) {
    for (; m_offset < offset; ++m_offset) {
      if (m_text[m_offset] == '\n') {
        ++m_line;
        m_lineStart = m_offset + 1;
      }
    }
  }
  std::size_t line() const { return m_line; }
  std::size_t column() const { return m_offset - m_lineStart + 1; }

private:
  std::string_view m_text;
  std::size_t m_offset = 0;
  std::size_t m_line = 1;
  std::size_t m_lineStart = 0;
};

// Reads what stands between the braces; false with the reason in `problem`.
bool readPlaceholder(std::string_view body, TemplatePlaceholder &placeholder, std::string &problem) {
  std::string_view rest = withoutBlanksAround(body);
  const std::size_t as = rest.rfind(" as ");
  if (as != std::string_view::npos) {
    placeholder.formatText = withoutBlanksAround(rest.substr(as + 4));
    const std::optional<SolverNumberFormat> format =
        SolverNumberFormat::parse(placeholder.formatText, problem);
    if (!format) {
      problem = "\"" + placeholder.formatText + "\" is no number format: " + problem;
      return false;
    }
    placeholder.format = *format;
    rest = withoutBlanksAround(rest.substr(0, as));
  }
  const std::size_t in = rest.rfind(" in ");
  if (in != std::string_view::npos) {
    placeholder.unit = withoutBlanksAround(rest.substr(in + 4));
    rest = withoutBlanksAround(rest.substr(0, in));
  }
  // An entity's name may hold a full stop, an attribute's may not.
  const std::size_t stop = rest.rfind('.');
  if (stop == std::string_view::npos || stop == 0 || stop + 1 == rest.size()) {
    problem = "a placeholder reads {{Entity.Attribute}}, not \"" + std::string(body) + "\"";
    return false;
  }
  placeholder.entity = rest.substr(0, stop);
  placeholder.attribute = rest.substr(stop + 1);
  return true;
}

// The value as the template shows it; empty with the reason in `problem`.
std::optional<std::string> writeValue(const TemplatePlaceholder &placeholder, const TemplateValue &value,
                                      std::string &problem) {
  if (const auto *none = std::get_if<TemplateNoValue>(&value)) {
    problem = placeholder.name() + ": " + none->reason;
    return std::nullopt;
  }
  if (const auto *text = std::get_if<std::string>(&value)) {
    if (!placeholder.formatText.empty()) {
      problem = placeholder.name() + " is a text and takes no number format";
      return std::nullopt;
    }
    return *text;
  }
  if (const auto *truth = std::get_if<bool>(&value)) {
    return placeholder.format.write(*truth ? 1.0 : 0.0);
  }
  if (const auto *whole = std::get_if<long long>(&value)) {
    // A double would round beyond 2^53, so the plain form never passes through one.
    return placeholder.formatText.empty() ? std::to_string(*whole)
                                          : placeholder.format.write(static_cast<double>(*whole));
  }
  const double number = std::get<double>(value);
  std::optional<std::string> written = placeholder.format.write(number);
  if (!written) {
    problem =
        placeholder.name() + ": " + writeSolverNumber(number) + " cannot be written" +
        (placeholder.formatText.empty() ? std::string(" as a number") : " as " + placeholder.formatText);
  }
  return written;
}

} // namespace

std::string FileProblem::toText() const {
  return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + message;
}

std::string TemplatePlaceholder::name() const {
  return entity + "." + attribute;
}

TemplateValueSource::~TemplateValueSource() = default;

std::optional<TemplateFile> TemplateFile::parse(std::string name, std::string_view text,
                                                std::vector<FileProblem> &problems) {
  TemplateFile file;
  file.m_name = std::move(name);
  const std::size_t problemsBefore = problems.size();
  TextPosition position(text);
  std::size_t copied = 0;
  for (std::size_t open = text.find("{{"); open != std::string_view::npos; open = text.find("{{", copied)) {
    position.advanceTo(open);
    TemplatePlaceholder placeholder;
    placeholder.line = position.line();
    placeholder.column = position.column();
    const std::size_t close = text.find("}}", open + 2);
    const std::size_t lineEnd = text.find('\n', open);
    std::string problem;
    if (close == std::string_view::npos || close > lineEnd) {
      problems.push_back({file.m_name, placeholder.line, placeholder.column,
                          "this placeholder is not closed with }} on its line"});
      copied = lineEnd == std::string_view::npos ? text.size() : lineEnd;
      continue;
    }
    if (!readPlaceholder(text.substr(open + 2, close - open - 2), placeholder, problem)) {
      problems.push_back({file.m_name, placeholder.line, placeholder.column, problem});
    }
    file.m_literals.emplace_back(text.substr(copied, open - copied));
    file.m_placeholders.push_back(std::move(placeholder));
    copied = close + 2;
  }
  file.m_literals.emplace_back(text.substr(copied));
  if (problems.size() != problemsBefore) {
    return std::nullopt;
  }
  return file;
}

std::optional<std::string> TemplateFile::render(const TemplateValueSource &values,
                                                std::vector<FileProblem> &problems,
                                                std::vector<FileProblem> *warnings) const {
  std::string text = m_literals.front();
  bool complete = true;
  for (std::size_t index = 0; index < m_placeholders.size(); ++index) {
    const TemplatePlaceholder &placeholder = m_placeholders[index];
    std::string problem;
    const TemplateValue value = values.value(placeholder);
    const std::optional<std::string> written = writeValue(placeholder, value, problem);
    if (!written) {
      complete = false;
      problems.push_back({m_name, placeholder.line, placeholder.column, problem});
      continue;
    }
    const bool isNumber = std::holds_alternative<double>(value) || std::holds_alternative<long long>(value);
    if (warnings != nullptr && isNumber && written->size() > kLongestNumber) {
      warnings->push_back({m_name, placeholder.line, placeholder.column,
                           placeholder.name() + ": " + *written + " has " + std::to_string(written->size()) +
                               " characters, and some solvers leave out what follows the first " +
                               std::to_string(kLongestNumber) + "; give it a format, {{" +
                               placeholder.name() +
                               (placeholder.unit.empty() ? "" : " in " + placeholder.unit) + " as %.12e}}"});
    }
    text += *written;
    text += m_literals[index + 1];
  }
  if (!complete) {
    return std::nullopt;
  }
  return text;
}

} // namespace EmbeddedHost
