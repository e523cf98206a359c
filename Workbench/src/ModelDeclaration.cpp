#include "Workbench/ModelDeclaration.h"

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/Lookup.h"
#include "Workbench/ProjectModel.h"

#include <algorithm>

namespace Workbench {

namespace {

// One entity of the study file with its attributes.
struct EntityDeclaration {
  std::string name;
  std::vector<const StudyAttribute *> attributes;
};

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

// An entity's name may hold a full stop, which a type's label may not; so types are numbered.
std::string typeLabel(std::size_t index) {
  return "Entity " + std::to_string(index + 1);
}

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

// The declared unit is the standard unit too, so that no number is ever converted on its way.
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

std::string differenceOf(const EmbeddedHost::MemberType &member, const EmbeddedHost::MemberType &declared) {
  if (member.label != declared.label) {
    return "is called \"" + member.label + "\" there";
  }
  if (member.kind != declared.kind) {
    return "is of another kind there";
  }
  if (member.standardUnit != declared.standardUnit) {
    return "is declared in \"" + member.standardUnit + "\" there";
  }
  if (member.options != declared.options) {
    return "has other options there";
  }
  if (member.minimum != declared.minimum || member.maximum != declared.maximum) {
    return "has other limits there";
  }
  return member.isResult != declared.isResult ? "is a result in one of the two only" : "";
}

} // namespace

std::string declareModel(const StudyFile &study, EmbeddedHost::ModelSchema &schema) {
  const std::vector<EntityDeclaration> entities = entitiesOf(study);
  for (std::size_t index = 0; index < entities.size(); ++index) {
    std::vector<EmbeddedHost::MemberType> members;
    for (const StudyAttribute *attribute : entities[index].attributes) {
      members.push_back(memberOf(*attribute));
    }
    const std::string problem = schema.declareType(typeLabel(index), members);
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

std::string compareModel(const StudyFile &study, const EmbeddedHost::Project &project) {
  const std::vector<EntityDeclaration> declared = entitiesOf(study);
  const std::vector<EntityModel::Entity *> entities = EntityModel::getLinkedEntities(
      project.rootEntity(), EntityModel::AttributePath(ProjectModel::kEntityList));
  if (entities.size() != declared.size()) {
    return "the project has " + std::to_string(entities.size()) + " entities, the study file " +
           std::to_string(declared.size());
  }
  for (std::size_t index = 0; index < declared.size(); ++index) {
    const EntityDeclaration &entity = declared[index];
    if (entities[index]->getName(true) != entity.name) {
      return "the entity \"" + entity.name + "\" is called \"" + entities[index]->getName(true) +
             "\" in the project";
    }
    const std::vector<EmbeddedHost::MemberType> &members = project.schema().declaration(typeLabel(index));
    if (members.size() != entity.attributes.size()) {
      return "the entity \"" + entity.name + "\" has " + std::to_string(members.size()) +
             " attributes in the project, " + std::to_string(entity.attributes.size()) + " in the study file";
    }
    for (std::size_t number = 0; number < members.size(); ++number) {
      const std::string difference = differenceOf(members[number], memberOf(*entity.attributes[number]));
      if (!difference.empty()) {
        return "the attribute \"" + entity.attributes[number]->fullName() + "\" " + difference;
      }
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
