#include "Workbench/ModelDeclaration.h"

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/Project.h"
#include "Workbench/ProjectModel.h"
#include "Workbench/src/EntityDeclaration.h"

#include <algorithm>

namespace Workbench {

namespace {

EmbeddedHost::MemberKind memberKind(AttributeKind kind) {
  switch (kind) {
  case AttributeKind::Integer:
    return EmbeddedHost::MemberKind::Integer;
  case AttributeKind::Boolean:
    return EmbeddedHost::MemberKind::Boolean;
  case AttributeKind::Choice:
    return EmbeddedHost::MemberKind::Choice;
  case AttributeKind::Text:
    return EmbeddedHost::MemberKind::Text;
  case AttributeKind::Real:
    break;
  }
  return EmbeddedHost::MemberKind::Real;
}

} // namespace

std::vector<EntityDeclaration> entitiesOf(const StudyFile &study) {
  std::vector<EntityDeclaration> entities;
  for (const StudyAttribute &attribute : study.attributes) {
    if (entities.empty() || entities.back().name != attribute.entity) {
      entities.push_back({attribute.entity, {}});
    }
    entities.back().attributes.push_back(&attribute);
  }
  return entities;
}

std::string typeLabel(std::size_t index) {
  return "Entity " + std::to_string(index + 1);
}

EmbeddedHost::MemberType memberOf(const StudyAttribute &attribute) {
  EmbeddedHost::MemberType member;
  member.label = attribute.name;
  member.kind = memberKind(attribute.kind);
  member.standardUnit = attribute.unit;
  member.displayUnit = attribute.unit;
  member.minimum = attribute.minimum;
  member.maximum = attribute.maximum;
  member.options = attribute.options;
  member.isResult = attribute.isResult;
  member.defaultText = attribute.isResult ? "" : hostText(attribute, attribute.value);
  return member;
}

std::vector<EmbeddedHost::MemberType> membersOf(const EntityDeclaration &entity) {
  std::vector<EmbeddedHost::MemberType> members;
  members.reserve(entity.attributes.size());
  for (const StudyAttribute *attribute : entity.attributes) {
    members.push_back(memberOf(*attribute));
  }
  return members;
}

std::string declareModel(const StudyFile &study, EmbeddedHost::ModelSchema &schema) {
  const std::vector<EntityDeclaration> entities = entitiesOf(study);
  for (std::size_t index = 0; index < entities.size(); ++index) {
    const std::string problem = schema.declareType(typeLabel(index), membersOf(entities[index]));
    if (!problem.empty()) {
      return "the entity \"" + entities[index].name + "\": " + problem;
    }
  }
  EmbeddedHost::MemberType list;
  list.label = ProjectModel::kEntityList;
  list.kind = EmbeddedHost::MemberKind::EntityList;
  EmbeddedHost::MemberType rule;
  rule.label = ProjectModel::kRule;
  rule.kind = EmbeddedHost::MemberKind::Text;
  rule.isInternal = true;
  rule.hasNoSimulationEffect = true;
  return schema.declareRootMembers({list, rule});
}

std::string createEntities(const StudyFile &study, EmbeddedHost::Project &project) {
  if (!study.title.empty()) {
    project.renameEntity(project.rootEntity(), study.title);
  }
  const std::vector<EntityDeclaration> entities = entitiesOf(study);
  for (std::size_t index = 0; index < entities.size(); ++index) {
    if (project.createEntity(typeLabel(index), project.rootEntity(), ProjectModel::kEntityList,
                             entities[index].name) == nullptr) {
      return "the entity \"" + entities[index].name + "\" could not be created";
    }
  }
  return "";
}

ModelValues::ModelValues(const ProjectModel &model) : m_model(model) {}

EmbeddedHost::TemplateValue ModelValues::value(const EmbeddedHost::TemplatePlaceholder &placeholder) const {
  const ModelAttribute *declared = m_model.find(placeholder.name());
  if (declared == nullptr) {
    return EmbeddedHost::TemplateNoValue{"the model has no such attribute"};
  }
  const EntityModel::Attribute *attribute = declared->value;
  if (declared->kind == AttributeKind::Text) {
    return attribute->getValueAsString();
  }
  if (!attribute->hasValue()) {
    return EmbeddedHost::TemplateNoValue{"it has no value"};
  }
  switch (declared->kind) {
  case AttributeKind::Integer:
    return static_cast<long long>(attribute->getIntValue());
  case AttributeKind::Boolean:
    return attribute->getIntValue() != 0;
  case AttributeKind::Choice: {
    // A solver wants the option's own word, not its number.
    const auto ordinal = static_cast<std::size_t>(std::max(1, attribute->getIntValue()));
    return declared->options[std::min(ordinal, declared->options.size()) - 1];
  }
  default:
    return placeholder.unit.empty() ? attribute->getStandardValue()
                                    : attribute->getValueInUnits(placeholder.unit);
  }
}

} // namespace Workbench
