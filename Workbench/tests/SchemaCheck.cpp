#include "Workbench/tests/SchemaCheck.h"

#include "EmbeddedHost/SolverNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <set>

namespace Workbench {

namespace {

const StudyNode *find(const StudyNode &map, const std::string &key) {
  for (const auto &[name, value] : map.entries()) {
    if (name.text() == key) {
      return &value;
    }
  }
  return nullptr;
}

std::optional<double> numberOf(const StudyNode &node) {
  return node.isScalar() && node.isPlain() ? EmbeddedHost::readSolverNumber(node.text()) : std::nullopt;
}

std::set<std::string> typesOf(const StudyNode &node) {
  switch (node.kind()) {
  case StudyNode::Kind::Map:
    return {"object"};
  case StudyNode::Kind::List:
    return {"array"};
  case StudyNode::Kind::Nothing:
    return {"null"};
  case StudyNode::Kind::Scalar:
    break;
  }
  if (const std::optional<double> number = numberOf(node)) {
    return *number == std::trunc(*number) ? std::set<std::string>{"number", "integer"}
                                          : std::set<std::string>{"number"};
  }
  const bool isTruth = node.isPlain() && (node.text() == "true" || node.text() == "false");
  return {isTruth ? "boolean" : "string"};
}

double limitOf(const StudyNode &schema, const char *key, double otherwise) {
  const StudyNode *limit = find(schema, key);
  return limit == nullptr ? otherwise : numberOf(*limit).value_or(otherwise);
}

const std::set<std::string> kKnown{"$schema",       "$ref",       "title",
                                   "description",   "type",       "const",
                                   "enum",          "required",   "additionalProperties",
                                   "properties",    "items",      "definitions",
                                   "anyOf",         "oneOf",      "minLength",
                                   "maxLength",     "minimum",    "maximum",
                                   "pattern",       "minItems",   "maxItems",
                                   "minProperties", "uniqueItems"};

} // namespace

const StudyNode &SchemaCheck::resolved(const StudyNode &schema) const {
  const StudyNode *reference = find(schema, "$ref");
  if (reference == nullptr) {
    return schema;
  }
  const std::string beginning = "#/definitions/";
  const StudyNode *target = find(*find(m_schema, "definitions"), reference->text().substr(beginning.size()));
  EXPECT_NE(target, nullptr) << reference->text();
  return target == nullptr ? schema : resolved(*target);
}

std::string SchemaCheck::refusal(const StudyNode &node, const StudyNode &reference,
                                 const std::string &where) const {
  const StudyNode &schema = resolved(reference);
  for (const auto &[key, value] : schema.entries()) {
    EXPECT_TRUE(kKnown.count(key.text()) != 0) << "the check does not know " << key.text();
  }
  if (const StudyNode *type = find(schema, "type")) {
    const std::set<std::string> types = typesOf(node);
    bool isRight = type->isScalar() && types.count(type->text()) != 0;
    for (const StudyNode &allowed : type->items()) {
      isRight = isRight || types.count(allowed.text()) != 0;
    }
    if (!isRight) {
      return where + ": type";
    }
  }
  if (const StudyNode *constant = find(schema, "const")) {
    if (!node.isScalar() || node.text() != constant->text()) {
      return where + ": const";
    }
  }
  if (const StudyNode *words = find(schema, "enum")) {
    bool isOne = false;
    for (const StudyNode &word : words->items()) {
      isOne = isOne || (node.isScalar() && node.text() == word.text());
    }
    if (!isOne) {
      return where + ": enum";
    }
  }
  for (const auto check : {&SchemaCheck::refusalOfChoice, &SchemaCheck::refusalOfObject,
                           &SchemaCheck::refusalOfList, &SchemaCheck::refusalOfScalar}) {
    std::string why = (this->*check)(node, schema, where);
    if (!why.empty()) {
      return why;
    }
  }
  return "";
}

std::string SchemaCheck::refusalOfChoice(const StudyNode &node, const StudyNode &schema,
                                         const std::string &where) const {
  for (const char *key : {"anyOf", "oneOf"}) {
    const StudyNode *choices = find(schema, key);
    if (choices == nullptr) {
      continue;
    }
    std::size_t right = 0;
    std::string why;
    for (const StudyNode &choice : choices->items()) {
      const std::string refused = refusal(node, choice, where);
      right += refused.empty() ? 1 : 0;
      why = why.size() > refused.size() ? why : refused;
    }
    if (right == 0 || (right > 1 && std::string(key) == "oneOf")) {
      return right == 0 ? why : where + ": oneOf";
    }
  }
  return "";
}

std::string SchemaCheck::refusalOfObject(const StudyNode &node, const StudyNode &schema,
                                         const std::string &where) const {
  if (!node.isMap()) {
    return "";
  }
  if (const StudyNode *required = find(schema, "required")) {
    for (const StudyNode &key : required->items()) {
      if (find(node, key.text()) == nullptr) {
        return where + ": required " + key.text();
      }
    }
  }
  if (static_cast<double>(node.entries().size()) < limitOf(schema, "minProperties", 0.0)) {
    return where + ": minProperties";
  }
  const StudyNode *properties = find(schema, "properties");
  const StudyNode *others = find(schema, "additionalProperties");
  for (const auto &[key, value] : node.entries()) {
    const std::string place = where + "/" + key.text();
    const StudyNode *property = properties == nullptr ? nullptr : find(*properties, key.text());
    if (property == nullptr && others != nullptr && others->isScalar() && others->text() == "false") {
      return place + ": additionalProperties";
    }
    if (property == nullptr && others != nullptr && others->isMap()) {
      property = others;
    }
    std::string why = property == nullptr ? "" : refusal(value, *property, place);
    if (!why.empty()) {
      return why;
    }
  }
  return "";
}

std::string SchemaCheck::refusalOfList(const StudyNode &node, const StudyNode &schema,
                                       const std::string &where) const {
  if (!node.isList()) {
    return "";
  }
  const auto count = static_cast<double>(node.items().size());
  if (count < limitOf(schema, "minItems", 0.0) || count > limitOf(schema, "maxItems", count)) {
    return where + ": number of items";
  }
  std::set<std::string> texts;
  const StudyNode *unique = find(schema, "uniqueItems");
  const StudyNode *items = find(schema, "items");
  for (std::size_t index = 0; index < node.items().size(); ++index) {
    const StudyNode &item = node.items()[index];
    if (unique != nullptr && !texts.insert(item.text()).second) {
      return where + ": uniqueItems";
    }
    std::string why = items == nullptr ? "" : refusal(item, *items, where + "/" + std::to_string(index));
    if (!why.empty()) {
      return why;
    }
  }
  return "";
}

std::string SchemaCheck::refusalOfScalar(const StudyNode &node, const StudyNode &schema,
                                         const std::string &where) const {
  if (!node.isScalar()) {
    return "";
  }
  if (const std::optional<double> number = numberOf(node)) {
    return *number < limitOf(schema, "minimum", *number) || *number > limitOf(schema, "maximum", *number)
               ? where + ": range"
               : "";
  }
  const auto length = static_cast<double>(node.text().size());
  if (length < limitOf(schema, "minLength", 0.0) || length > limitOf(schema, "maxLength", length)) {
    return where + ": length";
  }
  const StudyNode *pattern = find(schema, "pattern");
  return pattern != nullptr && !std::regex_search(node.text(), std::regex(pattern->text()))
             ? where + ": pattern"
             : "";
}

} // namespace Workbench
