#pragma once

#include "EmbeddedHost/TemplateFile.h"
#include "Workbench/StudyFile.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace EmbeddedHost {
class ModelSchema;
class Project;
} // namespace EmbeddedHost
namespace EntityModel {
class Attribute;
class Entity;
} // namespace EntityModel

namespace Workbench {

/// The types of a study's model: one type an entity, each attribute in its declared unit.
/// \return "" when all could be declared, else one sentence saying what is wrong
std::string declareModel(const StudyFile &study, EmbeddedHost::ModelSchema &schema);

/// Creates the entities of a study's model, with the values of the study file, in a project of that schema.
/// \return "" when all could be created, else one sentence
std::string createEntities(const StudyFile &study, EmbeddedHost::Project &project);

/// Whether the model of an existing project is the one that the study file declares; its values may differ.
/// \return "" when it is, else one sentence saying what differs
std::string compareModel(const StudyFile &study, const EmbeddedHost::Project &project);

/// The attributes of a study's model in a project, found by their full names. Valid as long as the project.
class ModelAttributes {
public:
  ModelAttributes(const StudyFile &study, EmbeddedHost::Project &project);

  /// Null when the model does not have it.
  EntityModel::Attribute *find(const std::string &fullName) const;
  EntityModel::Entity *findEntity(const std::string &name) const;

private:
  std::unordered_map<std::string, EntityModel::Attribute *> m_attributes;
  std::unordered_map<std::string, EntityModel::Entity *> m_entities;
};

/// Fills templates with the values of the current version.
class ModelValues final : public EmbeddedHost::TemplateValueSource {
public:
  /// Both are kept by reference.
  ModelValues(const StudyFile &study, const ModelAttributes &attributes);

  EmbeddedHost::TemplateValue value(const EmbeddedHost::TemplatePlaceholder &placeholder) const override;

private:
  const StudyFile &m_study;
  const ModelAttributes &m_attributes;
};

} // namespace Workbench
