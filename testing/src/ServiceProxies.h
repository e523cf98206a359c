#pragma once

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/StudyTypeName.h"
#include "testing/src/ProxyContext.h"

#include <string>
#include <vector>

namespace HostTesting {

/// Forwards one service, to whichever object the wrapped host gives at the time.
template <class Base> class ServiceProxy : public Base {
public:
  explicit ServiceProxy(ProxyContext &context) : m_context(context) {}

  /// This object, forwarding to \p original; null for null.
  Base *forwardingTo(Base *original) {
    m_original = original;
    return original == nullptr ? nullptr : this;
  }

protected:
  template <class Body, class... Arguments>
  auto call(const char *operation, const Body &body, const Arguments &...arguments) const {
    return m_context.perform(
        operation, false, [&] { return m_context.render(arguments...); }, body);
  }

  ProxyContext &m_context;
  Base *m_original = nullptr;
};

class EntityEditorProxy final : public ServiceProxy<EntityModel::EntityEditorService> {
public:
  using ServiceProxy::ServiceProxy;

  EntityModel::Entity *getRootEntity() override;
  EntityModel::ChangeManager *getChangeManager() override;
  EntityModel::Entity *createEntity(const EntityModel::TypeRef &type, EntityModel::Entity *owner,
                                    const EntityModel::AttributePath &listPath,
                                    EntityModel::LibraryInterface *library, bool setDefaults, bool notify,
                                    bool select, const std::string &name, int position) override;
  bool addEntity(EntityModel::Entity *owner, const EntityModel::AttributePath &listPath,
                 EntityModel::Entity *entity, bool takeOwnership, bool checkType, bool notify,
                 bool markEdited, bool select, int position) override;
  bool moveEntity(EntityModel::Entity *entity, EntityModel::Entity *newOwner, EntityModel::EntityLink *link,
                  bool notify, int position) override;
  bool deleteEntity(EntityModel::Entity *entity, bool force, bool notify) override;
  bool deleteEntities(std::vector<EntityModel::Entity *> &entities, bool force, bool notify) override;
  bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path, const std::string &text,
                bool force, std::vector<EntityModel::Entity *> *affected, bool notify,
                bool markEdited) override;
  bool setValueNoThrow(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                       const std::string &text, bool force, std::vector<EntityModel::Entity *> *affected,
                       bool notify) override;
  bool setValueNoThrow(EntityModel::Entity *entity, const EntityModel::AttributePath &path, bool value,
                       bool notify) override;
};

/// Registers observers with the observer manager of the process and tells them of proxies.
class ObserverManagerProxy final : public EntityGUI::AbstractObserverManager {
public:
  explicit ObserverManagerProxy(ProxyContext &context);
  ~ObserverManagerProxy() override;

  void addObserver(EntityGUI::Observer *observer) override;
  void removeObserver(EntityGUI::Observer *observer) override;
  void broadcastChangedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                               const std::string &versionName, bool reload, bool toSender) override;
  void broadcastChangedEntities(EntityModel::ChangeSet &changes) override;
  void broadcastUndoneOrRedone(EntityModel::ChangeSet &changes) override;
  void broadcastSetCurrentEntity(EntityModel::Entity *entity, bool scrollTo) override;
  void broadcastSelectEntities(const std::vector<EntityModel::Entity *> &entities) override;

private:
  ProxyContext &m_context;
};

class EntityManagerProxy final : public ServiceProxy<EntityGUI::EntityManagerService> {
public:
  explicit EntityManagerProxy(ProxyContext &context) : ServiceProxy(context), m_observerManager(context) {}

  EntityModel::ChangeManager *getChangeManager() override;
  EntityGUI::AbstractObserverManager *getObserverManager() override;
  void setNeedsSave(bool needsSave) override;
  bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path, const std::string &text,
                bool notify) override;
  void checkSelectionsAreValid() override;
  EntityGUI::AbstractModelChecker *getModelChecker() override;

private:
  ObserverManagerProxy m_observerManager;
};

class ModelCheckerProxy final : public EntityGUI::AbstractModelChecker {
public:
  ModelCheckerProxy(ProxyContext &context, EntityGUI::AbstractModelChecker &original);
  ~ModelCheckerProxy() override;

  void check(EntityModel::ChangeSet &changes) override;

private:
  ProxyContext &m_context;
  EntityGUI::AbstractModelChecker &m_original;
};

class StudyTypeNameProxy final : public ServiceProxy<EntityModel::StudyTypeNameService> {
public:
  using ServiceProxy::ServiceProxy;

  QString getStudyTypeName(EntityModel::ModelVersionStudyType type) override;
};

class ModellingImpactProxy final : public ServiceProxy<EntityModel::ModellingImpactService> {
public:
  using ServiceProxy::ServiceProxy;

  bool hasModellingImpact(const EntityModel::Attribute *attribute, const std::string &kind,
                          bool includeOwners) override;
};

class ProjectStoreProxy final : public ServiceProxy<ProjectData::ProjectStoreService> {
public:
  using ServiceProxy::ServiceProxy;

  std::string getStoreDirectoryName(const ProjectData::StoreLocation &store) override;
  bool remove(const ProjectData::StoreLocation &store) override;
  bool copyResults(const ProjectData::StoreLocation &source, const ProjectData::StoreLocation &target,
                   bool move, Tools::ToolProgress *progress, bool overwrite) override;
};

class DirectoryProxy final : public ServiceProxy<FileSystem::DirectoryService> {
public:
  using ServiceProxy::ServiceProxy;

  bool rename(const std::string &from, const std::string &to) override;
};

/// The services of one wrapper.
struct ServiceProxies {
  explicit ServiceProxies(ProxyContext &context)
      : entityEditor(context), entityManager(context), studyTypeNames(context), modellingImpact(context),
        projectStore(context), directories(context) {}

  EntityEditorProxy entityEditor;
  EntityManagerProxy entityManager;
  StudyTypeNameProxy studyTypeNames;
  ModellingImpactProxy modellingImpact;
  ProjectStoreProxy projectStore;
  DirectoryProxy directories;
};

} // namespace HostTesting
