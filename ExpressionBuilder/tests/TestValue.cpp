#include "ExpressionBuilder/tests/TestValue.h"

#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/Exceptions.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

namespace ExpressionBuilder::Testing {

std::string shown(const Value &value) {
  static const char *const kTypes[] = {"double", "int", "bool", "string", "long long"};
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(17);
  stream << kTypes[value.index()] << ' ';
  std::visit([&stream](const auto &content) { stream << content; }, value);
  return stream.str();
}

std::unique_ptr<ElementAbstract> constant(const Value &value) {
  return std::visit(
      [](const auto &content) -> std::unique_ptr<ElementAbstract> {
        return makeConstant<std::decay_t<decltype(content)>>(content);
      },
      value);
}

Value valueOf(const ElementAbstract &element, const VariableCollectionAbstract &collection) {
  return visitValueType(element.type(), [&](auto tag) {
    using T = typename decltype(tag)::Type;
    return Value(std::in_place_type<T>, dynamic_cast<const Element<T> &>(element).evaluate(collection));
  });
}

Value valueOf(const ElementAbstract &element) {
  return valueOf(element, EmptyVariableCollection::instance());
}

std::string filled(const std::string &pattern, const std::vector<std::string> &parts) {
  std::string text;
  std::size_t next = 0;
  for (const char c : pattern) {
    if (c == '@') {
      text += parts.at(next);
      ++next;
    } else {
      text += c;
    }
  }
  return text;
}

Value builtValue(const BuilderBase &builder, const std::string &text) {
  return valueOf(*builder.build(text), builder.variables());
}

Failure buildFailure(const BuilderBase &builder, const std::string &text) {
  try {
    builder.build(text);
  } catch (const ParserError &error) {
    return {error.what(), error.offset()};
  }
  ADD_FAILURE() << "builds: " << text;
  return {"", 0};
}

} // namespace ExpressionBuilder::Testing
