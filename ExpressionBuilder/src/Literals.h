#pragma once

#include "ExpressionBuilder/BuilderInterface.h"

#include <memory>
#include <string>

namespace ExpressionBuilder {

enum class DelimitedEnd {
  Delimiter, ///< the closing byte was met and consumed
  Escape,    ///< a backslash carried the content to the end of the text
  TextEnd,   ///< the text ended first
};

/// Reads the content of a string literal or variable reference. With escapes, the first backslash is dropped
/// and everything after it belongs to the content, the delimiter and further backslashes included.
/// \param position  behind the opening byte; afterwards behind the closing one
DelimitedEnd readDelimited(TextPosition &position, TextPosition end, char delimiter, bool allowEscapes,
                           std::string &content);

struct Literal {
  /// The constant; empty when there was no literal or an error was met.
  std::unique_ptr<ElementAbstract> element;
  /// Message of the error; null when there was none.
  const char *error;
};

/// As BuilderInterface::parseLiteral, with the error returned.
Literal readLiteral(TextPosition &position, TextPosition end, bool allowEscapes);

} // namespace ExpressionBuilder
