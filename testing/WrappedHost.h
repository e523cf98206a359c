#pragma once

#include "HostModel/Host.h"
#include "testing/HostCall.h"

#include <memory>
#include <string>

namespace EntityModel {
class Attribute;
class Entity;
class ModelVersion;
} // namespace EntityModel

namespace HostTesting {

class ProxyContext;
struct ServiceProxies;

/// A host that forwards everything to another one.
///
/// Whatever the other host owns is seen through proxies: one for each entity, attribute, version and so on,
/// with one address for as long as the wrapper lives, so that they can be compared by address as the originals
/// can. Pointers that go in are replaced by the originals, an original that goes in is accepted as well.
/// Change sets and lists are translated both ways. Copies of attributes are copies behind proxies of their own
/// and may outlive the wrapper.
///
/// Observers are registered with the observer manager of the process and are told of proxies, also when the
/// other host itself broadcasts, as long as it does so through EntityGUI::EntityManager::getObserverManager()
/// while the wrapper is installed.
///
/// Wrappers can be put around each other; the outermost is the one to install.
class WrappedHost : public HostModel::Host {
public:
  /// \param host  not owned; outlives the wrapper. A wrapper of the same class must be given as a Host &, else it
  ///              would be a copy, which there is not.
  explicit WrappedHost(HostModel::Host &host);
  ~WrappedHost() override;

  EntityModel::EntityEditorService *getEntityEditor() override;
  EntityGUI::EntityManagerService *getEntityManager() override;
  EntityModel::StudyTypeNameService *getStudyTypeNames() override;
  EntityModel::ModellingImpactService *getModellingImpact() override;
  ProjectData::ProjectStoreService *getProjectStore() override;
  FileSystem::DirectoryService *getDirectories() override;

  /// \name The innermost host's own object behind a proxy, to hand to that host directly; other pointers
  /// come back as they are
  /// @{
  EntityModel::Attribute *original(EntityModel::Attribute *attribute) const;
  EntityModel::Entity *original(EntityModel::Entity *entity) const;
  EntityModel::ModelVersion *original(EntityModel::ModelVersion *version) const;
  /// @}

  /// \name The proxy of a host's own object; a proxy comes back as it is
  /// @{
  EntityModel::Attribute *proxy(EntityModel::Attribute *attribute);
  EntityModel::Entity *proxy(EntityModel::Entity *entity);
  EntityModel::ModelVersion *proxy(EntityModel::ModelVersion *version);
  /// @}

  /// Names an entity in the texts of calls. Without an alias it has its own name, or its place when that is
  /// empty, as in "OptimizationDataList[0].OptimizationInputs[1]".
  void setAlias(const EntityModel::Entity *entity, const std::string &alias);

  /// Keeps from the observers what the host broadcasts while it works on a call; such a host switches versions
  /// silently. What anybody else broadcasts is delivered.
  void muteHostBroadcasts(bool mute);

protected:
  /// Called before every call is forwarded. May throw, which the caller sees as an exception of the host.
  virtual Verdict intercept(const HostCall &call);

private:
  HostModel::Host &m_host;
  std::shared_ptr<ProxyContext> m_context;
  std::unique_ptr<ServiceProxies> m_services;
};

} // namespace HostTesting
