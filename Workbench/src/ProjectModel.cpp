#include "Workbench/ProjectModel.h"

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"

#include <algorithm>

namespace Workbench {

namespace {

std::optional<AttributeKind> kindOf(EmbeddedHost::MemberKind kind) {
  switch (kind) {
  case EmbeddedHost::MemberKind::Real:
    return AttributeKind::Real;
  case EmbeddedHost::MemberKind::Integer:
    return AttributeKind::Integer;
  case EmbeddedHost::MemberKind::Boolean:
    return AttributeKind::Boolean;
  case EmbeddedHost::MemberKind::Choice:
    return AttributeKind::Choice;
  case EmbeddedHost::MemberKind::Text:
    return AttributeKind::Text;
  default:
    return std::nullopt;
  }
}

} // namespace

ProjectModel::ProjectModel(EmbeddedHost::Project &project) {
  for (EntityModel::Entity *entity :
       EntityModel::getLinkedEntities(project.rootEntity(), EntityModel::AttributePath(kEntityList))) {
    m_entities.emplace(entity->getName(true), entity);
    add(project, entity);
  }
}

void ProjectModel::add(EmbeddedHost::Project &project, EntityModel::Entity *entity) {
  const EntityModel::TypeRef type =
      entity->getType().getReference(); // a copy: the type itself is a temporary
  for (const EmbeddedHost::MemberType &member : project.schema().declaration(type.getLabel())) {
    const std::optional<AttributeKind> kind = kindOf(member.kind);
    if (!kind) {
      continue;
    }
    ModelAttribute attribute;
    attribute.entity = entity->getName(true);
    attribute.name = member.label;
    attribute.kind = *kind;
    attribute.isResult = member.isResult;
    attribute.unit = member.displayUnit.empty() ? member.standardUnit : member.displayUnit;
    attribute.minimum = member.minimum;
    attribute.maximum = member.maximum;
    attribute.options = member.options;
    attribute.owner = entity;
    attribute.value = project.attribute(entity, member.label);
    m_byName.emplace(attribute.fullName(), m_attributes.size());
    m_byValue.emplace(attribute.value, m_attributes.size());
    m_attributes.push_back(std::move(attribute));
  }
}

const ModelAttribute *ProjectModel::find(const std::string &fullName) const {
  const auto found = m_byName.find(fullName);
  return found == m_byName.end() ? nullptr : &m_attributes[found->second];
}

const ModelAttribute *ProjectModel::find(const EntityModel::Attribute *value) const {
  const auto found = m_byValue.find(value);
  return found == m_byValue.end() ? nullptr : &m_attributes[found->second];
}

EntityModel::Entity *ProjectModel::findEntity(const std::string &name) const {
  const auto found = m_entities.find(name);
  return found == m_entities.end() ? nullptr : found->second;
}

std::vector<std::string> ProjectModel::names() const {
  std::vector<std::string> names;
  names.reserve(m_attributes.size());
  for (const ModelAttribute &attribute : m_attributes) {
    names.push_back(attribute.fullName());
  }
  return names;
}

std::string shownText(const ModelAttribute &declared, const EntityModel::Attribute *value) {
  if (value == nullptr || !value->hasValue()) {
    return "";
  }
  switch (declared.kind) {
  case AttributeKind::Text:
    return value->getValueAsString();
  case AttributeKind::Boolean:
    return value->getStandardValue() == 0.0 ? "false" : "true";
  case AttributeKind::Choice: {
    const auto ordinal = static_cast<std::size_t>(std::max(1.0, value->getStandardValue()));
    return declared.options[std::min(ordinal, declared.options.size()) - 1];
  }
  default:
    return EmbeddedHost::writeSolverNumber(value->getStandardValue());
  }
}

} // namespace Workbench
