#pragma once

#include "EmbeddedHost/SolverNumber.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace EmbeddedHost {

/// One thing wrong with a file, with its place. Lines and columns count from 1; a column counts bytes.
struct FileProblem {
  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;
  std::string message;

  /// "file:line:column: message"
  std::string toText() const;
};

/// A place in a template that takes a value: "{{Entity.Attribute}}", optionally with a unit and a number
/// format:
/// "{{Entity.Attribute in kohm as %.4e}}".
struct TemplatePlaceholder {
  std::string entity;
  std::string attribute;
  std::string unit;       ///< empty: the unit declared for the attribute
  std::string formatText; ///< empty: the shortest exact form
  SolverNumberFormat format;
  std::size_t line = 0;
  std::size_t column = 0;

  /// "Entity.Attribute"
  std::string name() const;
};

/// Why a placeholder has no value.
struct TemplateNoValue {
  std::string reason;
};

/// What a placeholder is filled with. Whole numbers and truth values are written as digits, "1" and "0".
using TemplateValue = std::variant<TemplateNoValue, double, long long, bool, std::string>;

/// Where a template finds its values.
class TemplateValueSource {
public:
  TemplateValueSource() = default;
  TemplateValueSource(const TemplateValueSource &) = delete;
  TemplateValueSource &operator=(const TemplateValueSource &) = delete;
  virtual ~TemplateValueSource();

  /// The value that the placeholder asks for, a number already in the placeholder's unit.
  virtual TemplateValue value(const TemplatePlaceholder &placeholder) const = 0;
};

/// A text file with placeholders, which becomes a solver's input file. Everything outside "{{" and "}}" is
/// copied byte by byte; inside a comment of the solver's language a placeholder counts like anywhere else.
class TemplateFile {
public:
  /// Reads the placeholders of `text`.
  /// \param name  the file's name for messages
  /// \return empty when a placeholder is malformed or left open at its line's end; every such place is added
  /// to
  ///         `problems`
  static std::optional<TemplateFile> parse(std::string name, std::string_view text,
                                           std::vector<FileProblem> &problems);

  const std::string &name() const { return m_name; }
  const std::vector<TemplatePlaceholder> &placeholders() const { return m_placeholders; }

  /// The text with every placeholder filled.
  /// \param warnings  when given, receives every number that is longer than kLongestNumber
  /// \return empty when a value is missing or cannot be written in the form asked for; every such placeholder
  ///         is added to `problems`
  std::optional<std::string> render(const TemplateValueSource &values, std::vector<FileProblem> &problems,
                                    std::vector<FileProblem> *warnings = nullptr) const;

  /// Some solvers read this many characters of a number and silently leave out the rest.
  static constexpr std::size_t kLongestNumber = 20;

private:
  std::string m_name;
  std::vector<std::string> m_literals; // one before each placeholder and one after the last
  std::vector<TemplatePlaceholder> m_placeholders;
};

} // namespace EmbeddedHost
