#include "ExpressionBuilder/BuilderBase.h"

#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/Functions.h"
#include "ExpressionBuilder/src/ExpressionParser.h"
#include "ExpressionBuilder/src/Literals.h"
#include "ExpressionBuilder/src/WarningRecorder.h"

#include <stdexcept>
#include <utility>

namespace ExpressionBuilder {

namespace {

/// Loosest precedence of a text as a whole.
constexpr int kWholeLevel = 11;

std::unique_ptr<ElementAbstract> buildText(const BuilderBase &builder, const std::string &text,
                                           WarningRecorder *recorder) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) {
    throw ParserError("Empty expression", text.size());
  }
  // Begins at the text's own beginning, so that offsets count from there; the parser skips the blanks again.
  ExpressionParser parser(builder, text.begin(), text.end(), recorder);
  std::unique_ptr<ElementAbstract> root = parser.parse(kWholeLevel, true, ParseMode::Whole);
  if (root == nullptr || parser.position() != text.end()) {
    throw ParserError("Syntax error", static_cast<std::size_t>(parser.position() - text.begin()));
  }
  return root;
}

} // namespace

BuilderInterface::~BuilderInterface() = default;

BuilderBase::BuilderBase() {
  registerConstant("pi", makeConstant<double>(3.141592653589793));
  registerConstant("e", makeConstant<double>(2.718281828459045));
  registerDefaultFunctions<double>();
  registerDefaultFunctions<int>();
  registerDefaultFunctions<long long>();
}

BuilderBase::~BuilderBase() = default;

void BuilderBase::parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                                  TextPosition end, int level, bool sameLevel, ParseMode mode) const {
  ExpressionParser parser(*this, position, end);
  result = parser.parse(level, sameLevel, mode);
  position = parser.position();
}

std::unique_ptr<ElementAbstract> BuilderBase::resolveVariable(const std::string &name) const {
  const ElementAbstract *const definition = m_variables.find(name);
  return definition == nullptr ? nullptr : makeVariable(definition->type(), name);
}

std::unique_ptr<ElementAbstract> BuilderBase::resolveConstant(const std::string &name) const {
  const auto entry = m_constants.find(name);
  return entry == m_constants.end() ? nullptr : entry->second->cloneAbstract();
}

const OverloadTable *BuilderBase::resolveFunction(const std::string &name) const {
  const auto entry = m_functions.find(name);
  return entry == m_functions.end() ? nullptr : &entry->second;
}

void BuilderBase::parseLiteral(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                               TextPosition end) const {
  Literal literal = readLiteral(position, end, m_allowEscapes);
  if (literal.error != nullptr) {
    throw ParserError(literal.error, 0);
  }
  result = std::move(literal.element);
}

std::unique_ptr<ElementAbstract> BuilderBase::build(const std::string &text) const {
  return buildText(*this, text, nullptr);
}

std::unique_ptr<ElementAbstract> BuilderBase::buildWithWarnings(const std::string &text,
                                                                std::vector<Warning> &warnings) const {
  WarningRecorder recorder(text.begin(), text.end());
  std::unique_ptr<ElementAbstract> root = buildText(*this, text, &recorder);
  warnings = recorder.take();
  return root;
}

std::vector<Warning> BuilderBase::warnings(const std::string &text) const {
  std::vector<Warning> warnings;
  buildWithWarnings(text, warnings);
  return warnings;
}

bool BuilderBase::foldConstants() const noexcept {
  return m_foldConstants;
}

void BuilderBase::setFoldConstants(bool fold) noexcept {
  m_foldConstants = fold;
}

bool BuilderBase::allowEscapes() const noexcept {
  return m_allowEscapes;
}

void BuilderBase::setAllowEscapes(bool allow) noexcept {
  m_allowEscapes = allow;
}

SimpleVariableCollection &BuilderBase::variables() noexcept {
  return m_variables;
}

const SimpleVariableCollection &BuilderBase::variables() const noexcept {
  return m_variables;
}

void BuilderBase::registerConstant(const std::string &name, std::unique_ptr<ElementAbstract> element) {
  if (element == nullptr) {
    throw std::logic_error("Invalid Cast");
  }
  m_constants[name] = std::move(element);
}

void BuilderBase::registerOverload(const std::string &name, const std::vector<ValueType> &argumentTypes,
                                   std::unique_ptr<ElementFunctionConstructorOverloadAbstract> constructor) {
  m_functions[name][argumentTypes] = std::move(constructor);
}

template <class T> void BuilderBase::registerDefaultFunctions() {
  enterDefaultFunctions<T>(m_functions);
}

template void BuilderBase::registerDefaultFunctions<double>();
template void BuilderBase::registerDefaultFunctions<int>();
template void BuilderBase::registerDefaultFunctions<long long>();

std::vector<std::string> BuilderBase::functionNames() const {
  std::vector<std::string> names;
  names.reserve(m_functions.size());
  for (const auto &entry : m_functions) {
    names.push_back(entry.first);
  }
  return names;
}

std::unique_ptr<ElementAbstract> BuilderBase::castTo(ValueType type,
                                                     std::unique_ptr<ElementAbstract> element) const {
  return visitValueType(type, [&](auto tag) -> std::unique_ptr<ElementAbstract> {
    return castTo<typename decltype(tag)::Type>(std::move(element));
  });
}

template <class T>
std::unique_ptr<Element<T>> BuilderBase::castTo(std::unique_ptr<ElementAbstract> element) const {
  if (element != nullptr && element->type() == ValueTypeOf<T>::code) {
    return elementAs<T>(std::move(element));
  }
  return elementAs<T>(fold(makeCast(ValueTypeOf<T>::code, std::move(element))));
}

template std::unique_ptr<Element<double>> BuilderBase::castTo<double>(std::unique_ptr<ElementAbstract>) const;
template std::unique_ptr<Element<int>> BuilderBase::castTo<int>(std::unique_ptr<ElementAbstract>) const;
template std::unique_ptr<Element<bool>> BuilderBase::castTo<bool>(std::unique_ptr<ElementAbstract>) const;
template std::unique_ptr<Element<std::string>>
    BuilderBase::castTo<std::string>(std::unique_ptr<ElementAbstract>) const;
template std::unique_ptr<Element<long long>>
    BuilderBase::castTo<long long>(std::unique_ptr<ElementAbstract>) const;

std::unique_ptr<ElementAbstract> BuilderBase::fold(std::unique_ptr<ElementAbstract> element) const {
  if (!m_foldConstants || !element->isConstant() || element->kind() == ElementKind::Constant) {
    return element;
  }
  return makeConstantFrom(*element);
}

} // namespace ExpressionBuilder
