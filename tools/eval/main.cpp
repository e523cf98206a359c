// Prints the type and the value of one expression, as the parser sees it: optstudy_eval "2 * pi + 1".

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/NumberText.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <type_traits>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

void print(std::FILE *stream, const std::string &text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

template <class T> std::string textOf(const T &value) {
  if constexpr (std::is_same_v<T, std::string>) {
    return value;
  } else if constexpr (std::is_same_v<T, double>) {
    return ExpressionBuilder::shortestText(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    return value ? "true" : "false";
  } else {
    return ExpressionBuilder::textFromNumber(value);
  }
}

/// "int 7"
std::string typeAndValue(std::unique_ptr<ExpressionBuilder::ElementAbstract> root) {
  const ExpressionBuilder::ValueType type = root->type();
  return ExpressionBuilder::visitValueType(type, [&](auto tag) {
    using T = typename decltype(tag)::Type;
    const auto element = ExpressionBuilder::elementAs<T>(std::move(root));
    const T value = element->evaluate(ExpressionBuilder::EmptyVariableCollection::instance());
    return std::string(ExpressionBuilder::valueTypeName(type)) + " " + textOf(value);
  });
}

/// "at byte 4: 2 + ^* 3"; the caret stands before the byte.
std::string placeText(const std::string &text, std::size_t offset) {
  return "at byte " + std::to_string(offset) + ": " + text.substr(0, offset) + "^" + text.substr(offset);
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    print(stderr, "usage: optstudy_eval \"EXPRESSION\"\n");
    return kUsage;
  }
  const std::string text = argv[1];
  try {
    const ExpressionBuilder::BuilderBase builder;
    print(stdout, typeAndValue(builder.build(text)) + "\n");
    return 0;
  } catch (const ExpressionBuilder::ParserError &error) {
    print(stderr, std::string(error.what()) + "\n" + placeText(text, error.offset()) + "\n");
  } catch (const std::exception &error) {
    print(stderr, std::string(error.what()) + "\n");
  }
  return kFailed;
}
