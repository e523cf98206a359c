#pragma once

#include "Workbench/StudyFile.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace EmbeddedHost {
class Project;
}
namespace EntityModel {
class Attribute;
class Entity;
} // namespace EntityModel

namespace Workbench {

/// An attribute of a project's model: how it is declared, and where it is.
struct ModelAttribute {
  std::string entity;
  std::string name;
  AttributeKind kind = AttributeKind::Real;
  bool isResult = false;
  std::string unit; ///< the declared unit, in which it is kept, priced and shown
  std::optional<double> minimum;
  std::optional<double> maximum;
  std::vector<std::string> options;        ///< of a choice
  EntityModel::Entity *owner = nullptr;    ///< lives as long as the project
  EntityModel::Attribute *value = nullptr; ///< the value in the current version; lives as long as the project

  std::string fullName() const { return entity + "." + name; }
};

/// The model of a project that was made from a study file, as the project itself knows it. Valid as long as the project
/// and while its entities are the same.
class ProjectModel {
public:
  explicit ProjectModel(EmbeddedHost::Project &project);

  /// In the order of their declaration, entity by entity.
  const std::vector<ModelAttribute> &attributes() const { return m_attributes; }
  /// By its full name; null when the model does not have it.
  const ModelAttribute *find(const std::string &fullName) const;
  /// By the place of its value; null when it is none of the model's.
  const ModelAttribute *find(const EntityModel::Attribute *value) const;
  EntityModel::Entity *findEntity(const std::string &name) const;
  std::vector<std::string> names() const;

  /// The list of the root entity that holds the entities.
  static constexpr const char *kEntityList = "Entities";
  /// The text of the root entity that holds the study's rule on inputs. Older projects lack it.
  static constexpr const char *kRule = "Rule";

private:
  void add(EmbeddedHost::Project &project, EntityModel::Entity *entity);

  std::vector<ModelAttribute> m_attributes;
  std::unordered_map<std::string, std::size_t> m_byName;
  std::unordered_map<const EntityModel::Attribute *, std::size_t> m_byValue;
  std::unordered_map<std::string, EntityModel::Entity *> m_entities;
};

/// A value as people and files see it, without its unit: a number in the declared unit in the shortest form that reads
/// back exactly, "true" or "false", the word of a choice, or the text. "" without a value.
/// \param value  of the attribute that is declared so, in any version
std::string shownText(const ModelAttribute &declared, const EntityModel::Attribute *value);

/// Turns what a person typed into the form that the model reads, with units converted to the declared one.
/// \param problem  receives one sentence when that is no value of the attribute, or outside its limits
std::optional<std::string> modelText(const ModelAttribute &declared, const std::string &typed,
                                     std::string &problem);

/// The same for a step, which is a difference of two values: 5 degC is 5 K.
std::optional<std::string> stepText(const ModelAttribute &declared, const std::string &typed,
                                    std::string &problem);

} // namespace Workbench
