#pragma once

#include "EmbeddedHost/TemplateFile.h"
#include "Workbench/StudyFile.h"

#include <string>

namespace EmbeddedHost {
class ModelSchema;
class Project;
} // namespace EmbeddedHost

namespace Workbench {

class ProjectModel;

/// The types of a study's model: one type an entity, each attribute in its declared unit.
/// \return "" when all could be declared, else one sentence saying what is wrong
std::string declareModel(const StudyFile &study, EmbeddedHost::ModelSchema &schema);

/// Creates the entities of a study's model, with the values of the study file, in a project of that schema.
/// \return "" when all could be created, else one sentence
std::string createEntities(const StudyFile &study, EmbeddedHost::Project &project);

/// Whether the model of an existing project is the one that the study file declares; its values may differ.
/// \return "" when it is, else what differs and what to do
std::string compareModel(const StudyFile &study, const EmbeddedHost::Project &project);

/// Fills templates with the values of the current version.
class ModelValues final : public EmbeddedHost::TemplateValueSource {
public:
  /// Kept by reference.
  explicit ModelValues(const ProjectModel &model);

  EmbeddedHost::TemplateValue value(const EmbeddedHost::TemplatePlaceholder &placeholder) const override;

private:
  const ProjectModel &m_model;
};

} // namespace Workbench
