#include "testing/WrappedHost.h"

#include "testing/src/ProxyContext.h"
#include "testing/src/ServiceProxies.h"

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::Entity;
using EntityModel::ModelVersion;

WrappedHost::WrappedHost(HostModel::Host &host) : m_host(host) {
  const auto *inner = dynamic_cast<WrappedHost *>(&host);
  m_context = std::make_shared<ProxyContext>([this](const HostCall &call) { return intercept(call); },
                                             inner == nullptr ? nullptr : inner->m_context);
  m_services = std::make_unique<ServiceProxies>(*m_context);
}

WrappedHost::~WrappedHost() {
  m_context->detach();
}

EntityModel::EntityEditorService *WrappedHost::getEntityEditor() {
  return m_context->perform(
      "Host::getEntityEditor", false, [] { return std::string(); },
      [&] { return m_services->entityEditor.forwardingTo(m_host.getEntityEditor()); });
}

EntityGUI::EntityManagerService *WrappedHost::getEntityManager() {
  return m_context->perform(
      "Host::getEntityManager", false, [] { return std::string(); },
      [&] { return m_services->entityManager.forwardingTo(m_host.getEntityManager()); });
}

EntityModel::StudyTypeNameService *WrappedHost::getStudyTypeNames() {
  return m_context->perform(
      "Host::getStudyTypeNames", false, [] { return std::string(); },
      [&] { return m_services->studyTypeNames.forwardingTo(m_host.getStudyTypeNames()); });
}

EntityModel::ModellingImpactService *WrappedHost::getModellingImpact() {
  return m_context->perform(
      "Host::getModellingImpact", false, [] { return std::string(); },
      [&] { return m_services->modellingImpact.forwardingTo(m_host.getModellingImpact()); });
}

ProjectData::ProjectStoreService *WrappedHost::getProjectStore() {
  return m_context->perform(
      "Host::getProjectStore", false, [] { return std::string(); },
      [&] { return m_services->projectStore.forwardingTo(m_host.getProjectStore()); });
}

FileSystem::DirectoryService *WrappedHost::getDirectories() {
  return m_context->perform(
      "Host::getDirectories", false, [] { return std::string(); },
      [&] { return m_services->directories.forwardingTo(m_host.getDirectories()); });
}

Attribute *WrappedHost::original(Attribute *attribute) const {
  return const_cast<Attribute *>(m_context->innermost(attribute));
}
Entity *WrappedHost::original(Entity *entity) const {
  return static_cast<Entity *>(original(static_cast<Attribute *>(entity)));
}
ModelVersion *WrappedHost::original(ModelVersion *version) const {
  return m_context->innermost(version);
}

Attribute *WrappedHost::proxy(Attribute *attribute) {
  return m_context->wrap(attribute);
}
Entity *WrappedHost::proxy(Entity *entity) {
  return m_context->wrap(entity);
}
ModelVersion *WrappedHost::proxy(ModelVersion *version) {
  return m_context->wrap(version);
}

void WrappedHost::setAlias(const Entity *entity, const std::string &alias) {
  m_context->setAlias(entity, alias);
}

void WrappedHost::muteHostBroadcasts(bool mute) {
  m_context->muteHostBroadcasts(mute);
}

Verdict WrappedHost::intercept(const HostCall & /*call*/) {
  return Verdict::Proceed;
}

} // namespace HostTesting
