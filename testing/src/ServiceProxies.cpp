#include "testing/src/ServiceProxies.h"

#include "HostModel/Observer.h"

#include <QString>

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::EntityLink;
using EntityModel::LibraryInterface;
using EntityModel::ModelVersionStudyType;
using EntityModel::TypeRef;
using ProjectData::StoreLocation;

namespace {

// Calls body with the originals of a list that may be missing, and translates back what it left.
template <class Body>
bool withAffected(ProxyContext &context, std::vector<Entity *> *affected, const Body &body) {
  if (affected == nullptr) {
    return body(nullptr);
  }
  std::vector<Entity *> originals = context.unwrapAll(*affected);
  const bool result = body(&originals);
  *affected = context.wrapAll(originals);
  return result;
}

} // namespace

Entity *EntityEditorProxy::getRootEntity() {
  return call("EntityEditor::getRootEntity", [&] { return m_context.wrap(m_original->getRootEntity()); });
}

ChangeManager *EntityEditorProxy::getChangeManager() {
  return call("EntityEditor::getChangeManager",
              [&] { return m_context.wrap(m_original->getChangeManager()); });
}

Entity *EntityEditorProxy::createEntity(const TypeRef &type, Entity *owner, const AttributePath &listPath,
                                        LibraryInterface *library, bool setDefaults, bool notify, bool select,
                                        const std::string &name, int position) {
  return call(
      "EntityEditor::createEntity",
      [&] {
        return m_context.wrap(m_original->createEntity(type, m_context.unwrap(owner), listPath, library,
                                                       setDefaults, notify, select, name, position));
      },
      type, Member{owner, listPath}, named("library", library), named("setDefaults", setDefaults),
      named("notify", notify), named("select", select), name, named("position", position));
}

bool EntityEditorProxy::addEntity(Entity *owner, const AttributePath &listPath, Entity *entity,
                                  bool takeOwnership, bool checkType, bool notify, bool markEdited,
                                  bool select, int position) {
  return call(
      "EntityEditor::addEntity",
      [&] {
        return m_original->addEntity(m_context.unwrap(owner), listPath, m_context.unwrap(entity),
                                     takeOwnership, checkType, notify, markEdited, select, position);
      },
      Member{owner, listPath}, entity, named("takeOwnership", takeOwnership), named("checkType", checkType),
      named("notify", notify), named("edited", markEdited), named("select", select),
      named("position", position));
}

bool EntityEditorProxy::moveEntity(Entity *entity, Entity *newOwner, EntityLink *link, bool notify,
                                   int position) {
  return call(
      "EntityEditor::moveEntity",
      [&] {
        return m_original->moveEntity(m_context.unwrap(entity), m_context.unwrap(newOwner),
                                      m_context.unwrap(link), notify, position);
      },
      entity, newOwner, named("link", link), named("notify", notify), named("position", position));
}

bool EntityEditorProxy::deleteEntity(Entity *entity, bool force, bool notify) {
  return call(
      "EntityEditor::deleteEntity",
      [&] { return m_original->deleteEntity(m_context.unwrap(entity), force, notify); }, entity,
      named("force", force), named("notify", notify));
}

bool EntityEditorProxy::deleteEntities(std::vector<Entity *> &entities, bool force, bool notify) {
  return call(
      "EntityEditor::deleteEntities",
      [&] {
        return withAffected(m_context, &entities, [&](std::vector<Entity *> *originals) {
          return m_original->deleteEntities(*originals, force, notify);
        });
      },
      entities, named("force", force), named("notify", notify));
}

bool EntityEditorProxy::setValue(Entity *entity, const AttributePath &path, const std::string &text,
                                 bool force, std::vector<Entity *> *affected, bool notify, bool markEdited) {
  return call(
      "EntityEditor::setValue",
      [&] {
        return withAffected(m_context, affected, [&](std::vector<Entity *> *originals) {
          return m_original->setValue(m_context.unwrap(entity), path, text, force, originals, notify,
                                      markEdited);
        });
      },
      Member{entity, path}, text, named("force", force),
      named("affected", Presence{"list", affected != nullptr}), named("notify", notify),
      named("edited", markEdited));
}

bool EntityEditorProxy::setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text,
                                        bool force, std::vector<Entity *> *affected, bool notify) {
  return call(
      "EntityEditor::setValueNoThrow",
      [&] {
        return withAffected(m_context, affected, [&](std::vector<Entity *> *originals) {
          return m_original->setValueNoThrow(m_context.unwrap(entity), path, text, force, originals, notify);
        });
      },
      Member{entity, path}, text, named("force", force),
      named("affected", Presence{"list", affected != nullptr}), named("notify", notify));
}

bool EntityEditorProxy::setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool notify) {
  return call(
      "EntityEditor::setValueNoThrow(bool)",
      [&] { return m_original->setValueNoThrow(m_context.unwrap(entity), path, value, notify); },
      Member{entity, path}, value, named("notify", notify));
}

ChangeManager *EntityManagerProxy::getChangeManager() {
  return call("EntityManager::getChangeManager",
              [&] { return m_context.wrap(m_original->getChangeManager()); });
}

EntityGUI::AbstractObserverManager *EntityManagerProxy::getObserverManager() {
  return call("EntityManager::getObserverManager", [&]() -> EntityGUI::AbstractObserverManager * {
    return m_original->getObserverManager() == nullptr ? nullptr : &m_observerManager;
  });
}

void EntityManagerProxy::setNeedsSave(bool needsSave) {
  call(
      "EntityManager::setNeedsSave", [&] { m_original->setNeedsSave(needsSave); }, needsSave);
}

bool EntityManagerProxy::setValue(Entity *entity, const AttributePath &path, const std::string &text,
                                  bool notify) {
  return call(
      "EntityManager::setValue",
      [&] { return m_original->setValue(m_context.unwrap(entity), path, text, notify); },
      Member{entity, path}, text, named("notify", notify));
}

void EntityManagerProxy::checkSelectionsAreValid() {
  call("EntityManager::checkSelectionsAreValid", [&] {
    // The host knows its own entities only, whoever set the current one.
    Entity *selected = EntityGUI::EntityManager::s_CurrentEntity;
    Entity *original = m_context.unwrap(selected);
    EntityGUI::EntityManager::s_CurrentEntity = original;
    m_original->checkSelectionsAreValid();
    if (EntityGUI::EntityManager::s_CurrentEntity == original) {
      EntityGUI::EntityManager::s_CurrentEntity = selected;
    }
  });
}

EntityGUI::AbstractModelChecker *EntityManagerProxy::getModelChecker() {
  return call("EntityManager::getModelChecker",
              [&] { return m_context.wrap(m_original->getModelChecker()); });
}

ObserverManagerProxy::ObserverManagerProxy(ProxyContext &context) : m_context(context) {}

ObserverManagerProxy::~ObserverManagerProxy() = default;

void ObserverManagerProxy::addObserver(EntityGUI::Observer *observer) {
  m_context.perform(
      "ObserverManager::addObserver", false,
      [&] {
        return m_context.render(Presence{"observer", observer != nullptr});
      },
      [&] { EntityGUI::ObserverManager::process().addObserver(observer); });
}

void ObserverManagerProxy::removeObserver(EntityGUI::Observer *observer) {
  m_context.perform(
      "ObserverManager::removeObserver", false,
      [&] {
        return m_context.render(Presence{"observer", observer != nullptr});
      },
      [&] { EntityGUI::ObserverManager::process().removeObserver(observer); });
}

void ObserverManagerProxy::broadcastChangedVersion(ChangeSet &changes, Entity *entity,
                                                   const std::string &versionName, bool reload,
                                                   bool toSender) {
  m_context.broadcast(
      "ObserverManager::broadcastChangedVersion",
      [&] {
        return m_context.render(&changes, entity, versionName, named("reload", reload),
                                named("toSender", toSender));
      },
      [&] {
        ChangeSet translated = m_context.wrap(changes);
        EntityGUI::ObserverManager::process().broadcastChangedVersion(translated, m_context.wrap(entity),
                                                                      versionName, reload, toSender);
      });
}

void ObserverManagerProxy::broadcastChangedEntities(ChangeSet &changes) {
  m_context.broadcast(
      "ObserverManager::broadcastChangedEntities", [&] { return m_context.render(&changes); },
      [&] {
        ChangeSet translated = m_context.wrap(changes);
        EntityGUI::ObserverManager::process().broadcastChangedEntities(translated);
      });
}

void ObserverManagerProxy::broadcastUndoneOrRedone(ChangeSet &changes) {
  m_context.broadcast(
      "ObserverManager::broadcastUndoneOrRedone", [&] { return m_context.render(&changes); },
      [&] {
        ChangeSet translated = m_context.wrap(changes);
        EntityGUI::ObserverManager::process().broadcastUndoneOrRedone(translated);
      });
}

void ObserverManagerProxy::broadcastSetCurrentEntity(Entity *entity, bool scrollTo) {
  m_context.broadcast(
      "ObserverManager::broadcastSetCurrentEntity",
      [&] { return m_context.render(entity, named("scrollTo", scrollTo)); },
      [&] {
        EntityGUI::ObserverManager::process().broadcastSetCurrentEntity(m_context.wrap(entity), scrollTo);
      });
}

void ObserverManagerProxy::broadcastSelectEntities(const std::vector<Entity *> &entities) {
  m_context.broadcast(
      "ObserverManager::broadcastSelectEntities", [&] { return m_context.render(entities); },
      [&] { EntityGUI::ObserverManager::process().broadcastSelectEntities(m_context.wrapAll(entities)); });
}

ModelCheckerProxy::ModelCheckerProxy(ProxyContext &context, EntityGUI::AbstractModelChecker &original)
    : m_context(context), m_original(original) {}

ModelCheckerProxy::~ModelCheckerProxy() = default;

void ModelCheckerProxy::check(ChangeSet &changes) {
  m_context.perform(
      "ModelChecker::check", false, [&] { return m_context.render(&changes); },
      [&] { m_context.withChanges(&changes, [&](ChangeSet *originals) { m_original.check(*originals); }); });
}

QString StudyTypeNameProxy::getStudyTypeName(ModelVersionStudyType type) {
  return call(
      "StudyTypeName::getStudyTypeName", [&] { return m_original->getStudyTypeName(type); },
      static_cast<int>(type));
}

bool ModellingImpactProxy::hasModellingImpact(const Attribute *attribute, const std::string &kind,
                                              bool includeOwners) {
  return call(
      "ModellingImpact::hasModellingImpact",
      [&] { return m_original->hasModellingImpact(m_context.unwrap(attribute), kind, includeOwners); },
      attribute, kind, named("includeOwners", includeOwners));
}

std::string ProjectStoreProxy::getStoreDirectoryName(const StoreLocation &store) {
  return call(
      "ProjectStore::getStoreDirectoryName", [&] { return m_original->getStoreDirectoryName(store); }, store);
}

bool ProjectStoreProxy::remove(const StoreLocation &store) {
  return call(
      "ProjectStore::remove", [&] { return m_original->remove(store); }, store);
}

bool ProjectStoreProxy::copyResults(const StoreLocation &source, const StoreLocation &target, bool move,
                                    Tools::ToolProgress *progress, bool overwrite) {
  return call(
      "ProjectStore::copyResults",
      [&] { return m_original->copyResults(source, target, move, progress, overwrite); },
      named("from", source), named("to", target), named("move", move), named("progress", progress),
      named("overwrite", overwrite));
}

bool DirectoryProxy::rename(const std::string &from, const std::string &to) {
  return call(
      "Directory::rename", [&] { return m_original->rename(from, to); }, from, to);
}

} // namespace HostTesting
