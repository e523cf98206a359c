#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace ExpressionBuilder {

/// A variable is defined, directly or through others, by itself. The message is "Circular Dependency".
class CircularDependency : public std::runtime_error {
public:
  explicit CircularDependency(const std::string &name);
  CircularDependency(const CircularDependency &) = default;
  CircularDependency &operator=(const CircularDependency &) = default;
  ~CircularDependency() override;

  /// The variable whose look-up was begun a second time.
  const std::string &name() const noexcept;

private:
  std::string m_name;
};

/// A variable is not in the collection. The message is "Missing Variable".
class MissingVariable : public std::runtime_error {
public:
  explicit MissingVariable(const std::string &name);
  MissingVariable(const MissingVariable &) = default;
  MissingVariable &operator=(const MissingVariable &) = default;
  ~MissingVariable() override;

  /// The name that was looked up.
  const std::string &name() const noexcept;

private:
  std::string m_name;
};

/// A text cannot be built. `what()` is the message of the error and nothing else; the place stands beside it.
class ParserError : public std::runtime_error {
public:
  ParserError(const std::string &message, std::size_t offset);
  ParserError(const ParserError &) = default;
  ParserError &operator=(const ParserError &) = default;
  ~ParserError() override;

  /// Bytes from the start of the text to the place of the error, 0..length of the text. An operator, name,
  /// literal or bracket that is wrong is pointed at; where something is missing, the place where it should
  /// have begun (the length of the text when the text ends too early).
  std::size_t offset() const noexcept;

private:
  std::size_t m_offset;
};

} // namespace ExpressionBuilder
