#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>

namespace Workbench {

namespace {

const std::vector<std::string> kKinds{"real", "integer", "boolean", "choice", "text"};

} // namespace

void StudyFileReader::readModel(const StudyNode &node, StudyFile &file) {
  const std::vector<NodeReader::Entry> entities = m_nodes.entries(node, "the model");
  for (const NodeReader::Entry &entity : entities) {
    checkName(entity, "an entity's name", "%");
    for (const NodeReader::Entry &attribute :
         m_nodes.entries(entity.value, "the entity \"" + entity.key + "\"")) {
      readAttribute(attribute, entity.key, file);
    }
  }
  if (node.isMap() && entities.empty()) {
    m_nodes.report(node, "the model has no entity");
  }
}

// Names become variables of the cost, "%Entity.Attribute%", and placeholders, "{{Entity.Attribute in unit}}".
void StudyFileReader::checkName(const NodeReader::Entry &entry, const std::string &what,
                                const std::string &forbidden) {
  const std::string &name = entry.key;
  const auto isControl = [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == '\x7f';
  };
  if (name.empty()) {
    m_nodes.report(entry.keyNode, what + " must not be empty");
  } else if (name.front() == ' ' || name.back() == ' ') {
    m_nodes.report(entry.keyNode,
                   what + " must not begin or end with a blank: costs and placeholders would not find it");
  } else if (std::any_of(name.begin(), name.end(), isControl)) {
    m_nodes.report(entry.keyNode, what + " must not hold control characters");
  }
  for (const char character : forbidden) {
    if (name.find(character) != std::string::npos) {
      m_nodes.report(entry.keyNode, what + " must not hold \"" + std::string(1, character) +
                                        "\", which ends a name in costs and placeholders");
    }
  }
  for (const char *mark : {" in ", " as ", "{{", "}}"}) {
    if (name.find(mark) != std::string::npos) {
      m_nodes.report(entry.keyNode, what + " must not hold \"" + mark +
                                        "\", which has a meaning of its own in placeholders");
    }
  }
}

void StudyFileReader::checkUnit(const StudyNode &node, const std::string &unit) {
  const std::string problem = m_units.problemOf(unit);
  if (!problem.empty()) {
    m_nodes.report(node, problem);
  }
}

void StudyFileReader::readAttribute(const NodeReader::Entry &entry, const std::string &entity,
                                    StudyFile &file) {
  checkName(entry, "an attribute's name", "%.");
  StudyAttribute attribute;
  attribute.entity = entity;
  attribute.name = entry.key;
  attribute.place = entry.keyNode.place();
  readDeclaration(entry.value, attribute);
  file.attributes.push_back(std::move(attribute));
}

void StudyFileReader::readDeclaration(const StudyNode &node, StudyAttribute &attribute) {
  if (node.isScalar()) {
    // The short form: a real by its value alone.
    readUnit(NodeReader::Map(), &node, attribute);
    attribute.value = readValue(node, attribute).value_or(StudyValue());
    return;
  }
  const std::string what = "the attribute \"" + attribute.fullName() + "\"";
  const auto map = m_nodes.map(
      node, what, {"kind", "value", "unit", "minimum", "maximum", "options", "result", "description"});
  if (!map) {
    return;
  }
  if (const StudyNode *description = map->find("description")) {
    attribute.description = m_nodes.text(*description, "description").value_or("");
  }
  if (const StudyNode *result = map->find("result")) {
    attribute.isResult = m_nodes.truth(*result, "result").value_or(false);
  }
  readKind(*map, attribute);
  const StudyNode *value = map->find("value");
  readUnit(*map, value, attribute);
  // Without a number there is no unit that limits could be in.
  if (value == nullptr || attribute.kind != AttributeKind::Real ||
      (value->isScalar() && readQuantity(value->text()))) {
    readLimits(*map, attribute);
  }
  if (attribute.isResult) {
    if (value != nullptr) {
      m_nodes.report(*value, "a result has no value before it was computed");
    }
  } else if (value == nullptr) {
    m_nodes.report(node, what + " needs a value");
  } else {
    attribute.value = readValue(*value, attribute).value_or(StudyValue());
  }
}

void StudyFileReader::readKind(const NodeReader::Map &map, StudyAttribute &attribute) {
  if (const StudyNode *kind = map.find("kind")) {
    attribute.kind = static_cast<AttributeKind>(m_nodes.choice(*kind, "kind", kKinds).value_or(0));
    if (attribute.isResult && attribute.kind != AttributeKind::Real &&
        attribute.kind != AttributeKind::Integer) {
      m_nodes.report(*kind, "a result is a real or an integer");
    }
  }
  const StudyNode *options = map.find("options");
  if (attribute.kind != AttributeKind::Choice) {
    if (options != nullptr) {
      m_nodes.report(*options, "only a choice has options");
    }
    return;
  }
  if (options == nullptr) {
    m_nodes.report(map.node(), "a choice needs options");
    return;
  }
  for (const StudyNode &node : m_nodes.sequence(*options, "options")) {
    const std::optional<std::string> option = m_nodes.word(node, "an option");
    if (!option) {
      continue;
    }
    if (std::find(attribute.options.begin(), attribute.options.end(), *option) != attribute.options.end()) {
      m_nodes.report(node, "the option \"" + *option + "\" is already in the list");
    }
    attribute.options.push_back(*option);
  }
}

void StudyFileReader::readUnit(const NodeReader::Map &map, const StudyNode *value,
                               StudyAttribute &attribute) {
  const StudyNode *unit = map.find("unit");
  if (attribute.kind != AttributeKind::Real) {
    if (unit != nullptr) {
      m_nodes.report(*unit, "only a real has a unit");
    }
    return;
  }
  if (unit != nullptr) {
    attribute.unit = m_nodes.text(*unit, "unit").value_or("");
    checkUnit(*unit, attribute.unit);
  } else if (value != nullptr && value->isScalar()) {
    attribute.unit = readQuantity(value->text()).value_or(WrittenQuantity()).unit;
  }
}

void StudyFileReader::readLimits(const NodeReader::Map &map, StudyAttribute &attribute) {
  const bool isNumber = attribute.kind == AttributeKind::Real || attribute.kind == AttributeKind::Integer;
  for (const char *key : {"minimum", "maximum"}) {
    const StudyNode *limit = map.find(key);
    if (limit == nullptr) {
      continue;
    }
    if (!isNumber) {
      m_nodes.report(*limit, std::string("only a real or an integer has a ") + key);
      continue;
    }
    const std::optional<double> number =
        attribute.kind == AttributeKind::Real ? readReal(*limit, attribute, false) : std::nullopt;
    const std::optional<long long> whole =
        attribute.kind == AttributeKind::Integer ? m_nodes.whole(*limit, key) : std::nullopt;
    (std::string(key) == "minimum" ? attribute.minimum : attribute.maximum) =
        whole ? std::optional<double>(static_cast<double>(*whole)) : number;
  }
  if (attribute.minimum && attribute.maximum && *attribute.minimum > *attribute.maximum) {
    m_nodes.report(*map.find("maximum"), "the maximum is below the minimum");
  }
}

} // namespace Workbench
