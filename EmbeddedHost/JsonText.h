#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// A place in a text. Lines and columns count from 1; a column counts bytes.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

enum class JsonKind { Null, Boolean, Number, Text };

/// Receives the parts of a JSON text in their order, each with the place where it begins.
class JsonHandler {
public:
  JsonHandler() = default;
  JsonHandler(const JsonHandler &) = delete;
  JsonHandler &operator=(const JsonHandler &) = delete;
  virtual ~JsonHandler();

  virtual void beginObject(TextPlace place) = 0;
  virtual void endObject() = 0;
  virtual void beginArray(TextPlace place) = 0;
  virtual void endArray() = 0;
  /// The name of the value that follows. A name may come twice: the text decides, the handler judges.
  virtual void key(std::string name, TextPlace place) = 0;
  /// \param text  a text without its quotes and escapes; a number as it is written, so that no digit of it is lost;
  ///              "true", "false" or "null"
  virtual void value(JsonKind kind, std::string text, TextPlace place) = 0;
};

/// Why a text is not JSON.
struct JsonProblem {
  TextPlace place;
  std::string message;
};

/// Reads one JSON value (RFC 8259) from the beginning to the end of the text. A byte order mark is skipped. Nesting
/// takes no stack and ends at kDeepestJson levels. Whether texts are UTF-8 is not examined.
/// \return false with the first problem; the handler then has received the parts before it
bool parseJson(std::string_view text, JsonHandler &handler, JsonProblem &problem);

constexpr std::size_t kDeepestJson = 1000;

} // namespace EmbeddedHost
