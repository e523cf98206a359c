#include "HostModel/EntityManager.h"

#include "HostModel/ChangeManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"

namespace EntityGUI {

AbstractModelChecker::~AbstractModelChecker() = default;
EntityManagerService::~EntityManagerService() = default;

EntityModel::Entity *EntityManager::s_CurrentEntity = nullptr;
std::string EntityManager::s_CurrentFilename;

namespace {

EntityManagerService *service() {
  HostModel::Host *host = HostModel::installedHost();
  return host == nullptr ? nullptr : host->getEntityManager();
}

} // namespace

EntityModel::ChangeManager *EntityManager::getChangeManager() {
  EntityManagerService *manager = service();
  return manager == nullptr ? nullptr : manager->getChangeManager();
}

AbstractObserverManager *EntityManager::getObserverManager() {
  EntityManagerService *manager = service();
  return manager == nullptr ? nullptr : manager->getObserverManager();
}

EntityModel::Entity *EntityManager::getCurrentEntity() {
  return s_CurrentEntity;
}

std::string EntityManager::getCurrentVersion() {
  EntityModel::ChangeManager *changeManager = getChangeManager();
  EntityModel::ModelVersion *version =
      changeManager == nullptr ? nullptr : changeManager->getCurrentVersion();
  return version == nullptr ? std::string() : version->getLabel();
}

void EntityManager::setNeedsSave(bool needsSave) {
  if (EntityManagerService *manager = service()) {
    manager->setNeedsSave(needsSave);
  }
}

bool EntityManager::setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                             const std::string &text, bool notify) {
  EntityManagerService *manager = service();
  return manager != nullptr && manager->setValue(entity, path, text, notify);
}

void EntityManager::checkSelectionsAreValid() {
  if (EntityManagerService *manager = service()) {
    manager->checkSelectionsAreValid();
  }
}

AbstractModelChecker *EntityManager::getModelChecker() {
  EntityManagerService *manager = service();
  return manager == nullptr ? nullptr : manager->getModelChecker();
}

} // namespace EntityGUI
