#pragma once

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"
#include "tests/contract/HostUnderTest.h"

#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HostContract {

using Texts = std::vector<std::string>;

/// A new host, installed and opened, with the parts "A" and "B" in the root's list; closed at the end. Everything
/// goes through the static facades, so that a wrapper can stand in front of the host. What is asked for and is not
/// there is a std::logic_error, which fails the case.
class Scene {
public:
  explicit Scene(const HostKind &kind);
  Scene(const Scene &) = delete;
  Scene &operator=(const Scene &) = delete;
  ~Scene();

  bool has(Capability capability) const { return m_kind.capabilities.count(capability) != 0; }
  const HostKind &kind() const { return m_kind; }
  HostUnderTest &subject() { return *m_subject; }
  EntityModel::ChangeManager &tree() const;
  EntityModel::Entity *root() const;
  EntityModel::Entity *partA() const { return m_partA; }
  EntityModel::Entity *partB() const { return m_partB; }
  /// The first version.
  EntityModel::ModelVersion *base() const;
  EntityModel::ModelVersion *current() const;
  /// An empty folder, which is removed at the end.
  std::string folder();

  /// \name The model in the current version
  /// @{
  EntityModel::Attribute *find(EntityModel::Entity *entity, const std::string &path) const;
  EntityModel::Attribute &attribute(EntityModel::Entity *entity, const std::string &path) const;
  EntityModel::ListAttribute &list(EntityModel::Entity *owner, const std::string &path) const;
  std::string text(EntityModel::Entity *entity, const std::string &path) const;
  double number(EntityModel::Entity *entity, const std::string &path) const;
  /// Through the editor, as the library writes; false is an error.
  void set(EntityModel::Entity *entity, const std::string &path, const std::string &text) const;
  EntityModel::Entity *create(const std::string &type, EntityModel::Entity *owner, const std::string &path,
                              const std::string &name, int position = -1) const;
  /// Links without owning.
  bool link(EntityModel::Entity *owner, const std::string &path, EntityModel::Entity *entity) const;
  /// The names of the elements of a list; "(none)" for a null element.
  Texts names(EntityModel::Entity *owner, const std::string &path) const;
  /// @}

  /// \name Versions; none of these changes which one is current, except show()
  /// @{
  EntityModel::ModelVersion *follow(EntityModel::ModelVersion *origin, const std::string &label) const;
  EntityModel::ModelVersion *alternate(EntityModel::ModelVersion *origin, const std::string &label,
                                       std::size_t position = SIZE_MAX) const;
  EntityModel::ModelVersion *find(const std::string &label) const {
    return tree().findVersion(label, nullptr);
  }
  /// As the library switches.
  void show(EntityModel::ModelVersion *version) const;
  /// As a user switches, which the observers are told of over every host.
  void showAsUser(EntityModel::ModelVersion *version);
  bool destroy(std::vector<EntityModel::ModelVersion *> versions) const;
  /// Without the version itself, which a host may or may not list.
  Texts alternates(EntityModel::ModelVersion *version) const;
  static Texts followers(const EntityModel::ModelVersion *version);
  /// What the delta of a version holds: "(none)", "<kind>: <text>", "<kind>: (no value)", "<kind>: (no attribute)".
  static std::string recorded(const EntityModel::ModelVersion *version, EntityModel::Entity *entity,
                              const std::string &path);
  /// @}

  /// \name Installation
  /// @{
  void install();
  void uninstall();
  /// Closes, which a case may do itself when it looks at what comes after.
  void close();
  /// Closes, frees and opens again what was saved. Entities and versions have to be looked up anew.
  void reopen();
  void saveAndReopen();
  /// @}

private:
  void findParts();

  HostKind m_kind;
  std::unique_ptr<HostUnderTest> m_subject;
  std::optional<HostModel::HostInstallation> m_installation;
  bool m_isOpen = false;
  EntityModel::Entity *m_partA = nullptr;
  EntityModel::Entity *m_partB = nullptr;
  std::unique_ptr<QTemporaryDir> m_folder;
};

} // namespace HostContract
