#pragma once

namespace EntityModel {
class ModelVersion;
}

namespace EmbeddedHost {

class Project;

/// Shows the values of one version after the other, to be read and not changed, for as long as it lives; afterwards
/// those that were shown before are shown again. The current version stays what it is and no observer is told, so
/// nothing but reading values may happen meanwhile. For whoever reads many versions: no list of changes is made.
class VersionLook {
public:
  explicit VersionLook(const Project &project);
  VersionLook(const VersionLook &) = delete;
  VersionLook &operator=(const VersionLook &) = delete;
  ~VersionLook();

  /// Shows the values of \p version. \return false when it is none of the project's; nothing has changed then
  bool at(EntityModel::ModelVersion &version);

private:
  const Project &m_project;
  EntityModel::ModelVersion *m_before;
};

} // namespace EmbeddedHost
