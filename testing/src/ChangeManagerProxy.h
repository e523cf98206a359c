#pragma once

#include "testing/src/ProxyContext.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace HostTesting {

/// Forwards the operations of a change manager.
class ChangeManagerProxy final : public EntityModel::ChangeManager {
public:
  ChangeManagerProxy(ProxyContext &context, EntityModel::ChangeManager &original);
  ~ChangeManagerProxy() override;

  EntityModel::ModelVersion *getCurrentVersion() const override;
  EntityModel::ModelVersion *getRootVersion(bool create) override;
  EntityModel::ModelVersion *findVersion(const std::string &label,
                                         EntityModel::Entity *entity) const override;
  void getAlternates(EntityModel::ModelVersion *version,
                     std::vector<EntityModel::ModelVersion *> &alternates) const override;
  bool setCurrentVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool force,
                         Tools::ToolProgress *progress, bool loadData) override;
  EntityModel::ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                             const std::string &author, const std::string &comment,
                                             EntityModel::ChangeSet *changes,
                                             EntityModel::ModelVersion *origin, bool makeReadOnly) override;
  EntityModel::ModelVersion *startNewAlternate(EntityModel::ModelVersion *version,
                                               EntityModel::ChangeSet *changes, bool copyContent,
                                               std::size_t position) override;
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, EntityModel::ModelVersion *> &others) const override;
  void editedVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool &edited,
                     bool notify) override;
  void destroyVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes,
                      bool &destroyed) override;
  void destroyVersions(std::vector<EntityModel::ModelVersion *> &versions, EntityModel::ChangeSet *changes,
                       bool &destroyed) override;
  std::string getVersionFolder(EntityModel::ModelVersion *version, bool create) override;
  bool canBeginPACStudy(EntityModel::ModelVersion *version) const override;

private:
  template <class Body, class... Arguments>
  auto call(const char *operation, const Body &body, const Arguments &...arguments) const;

  ProxyContext &m_context;
  EntityModel::ChangeManager &m_original;
};

} // namespace HostTesting
