#include "testing/src/ChangeManagerProxy.h"

namespace HostTesting {

using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersion;

ChangeManagerProxy::ChangeManagerProxy(ProxyContext &context, ChangeManager &original)
    : m_context(context), m_original(original) {}

ChangeManagerProxy::~ChangeManagerProxy() = default;

template <class Body, class... Arguments>
auto ChangeManagerProxy::call(const char *operation, const Body &body, const Arguments &...arguments) const {
  return m_context.perform(
      operation, false, [&] { return m_context.render(arguments...); }, body);
}

ModelVersion *ChangeManagerProxy::getCurrentVersion() const {
  return call("ChangeManager::getCurrentVersion",
              [&] { return m_context.wrap(m_original.getCurrentVersion()); });
}

ModelVersion *ChangeManagerProxy::getRootVersion(bool create) {
  return call(
      "ChangeManager::getRootVersion", [&] { return m_context.wrap(m_original.getRootVersion(create)); },
      named("create", create));
}

ModelVersion *ChangeManagerProxy::findVersion(const std::string &label, Entity *entity) const {
  return call(
      "ChangeManager::findVersion",
      [&] { return m_context.wrap(m_original.findVersion(label, m_context.unwrap(entity))); }, label,
      named("entity", entity));
}

void ChangeManagerProxy::getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const {
  call(
      "ChangeManager::getAlternates",
      [&] {
        std::vector<ModelVersion *> originals = m_context.unwrapAll(alternates);
        m_original.getAlternates(m_context.unwrap(version), originals);
        alternates = m_context.wrapAll(originals);
      },
      version);
}

bool ChangeManagerProxy::setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force,
                                           Tools::ToolProgress *progress, bool loadData) {
  return call(
      "ChangeManager::setCurrentVersion",
      [&] {
        return m_context.withChanges(changes, [&](ChangeSet *originals) {
          return m_original.setCurrentVersion(m_context.unwrap(version), originals, force, progress,
                                              loadData);
        });
      },
      version, changes, named("force", force), named("progress", progress), named("load", loadData));
}

ModelVersion *ChangeManagerProxy::startNewVersion(const std::string &label, const std::string &description,
                                                  const std::string &author, const std::string &comment,
                                                  ChangeSet *changes, ModelVersion *origin,
                                                  bool makeReadOnly) {
  return call(
      "ChangeManager::startNewVersion",
      [&] {
        return m_context.withChanges(changes, [&](ChangeSet *originals) {
          return m_context.wrap(m_original.startNewVersion(label, description, author, comment, originals,
                                                           m_context.unwrap(origin), makeReadOnly));
        });
      },
      label, description, author, comment, changes, named("origin", origin),
      named("makeReadOnly", makeReadOnly));
}

ModelVersion *ChangeManagerProxy::startNewAlternate(ModelVersion *version, ChangeSet *changes,
                                                    bool copyContent, std::size_t position) {
  return call(
      "ChangeManager::startNewAlternate",
      [&] {
        return m_context.withChanges(changes, [&](ChangeSet *originals) {
          return m_context.wrap(
              m_original.startNewAlternate(m_context.unwrap(version), originals, copyContent, position));
        });
      },
      version, changes, named("copyContent", copyContent), named("position", position));
}

std::string ChangeManagerProxy::getUniqueName(const std::string &label,
                                              const std::map<std::string, ModelVersion *> &others) const {
  return call(
      "ChangeManager::getUniqueName",
      [&] {
        std::map<std::string, ModelVersion *> originals;
        for (const auto &[otherLabel, version] : others) {
          originals.emplace(otherLabel, m_context.unwrap(version));
        }
        return m_original.getUniqueName(label, originals);
      },
      label, others);
}

void ChangeManagerProxy::editedVersion(ModelVersion *version, ChangeSet *changes, bool &edited, bool notify) {
  call(
      "ChangeManager::editedVersion",
      [&] {
        m_context.withChanges(changes, [&](ChangeSet *originals) {
          m_original.editedVersion(m_context.unwrap(version), originals, edited, notify);
        });
      },
      version, changes, named("notify", notify));
}

void ChangeManagerProxy::destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) {
  call(
      "ChangeManager::destroyVersion",
      [&] {
        m_context.withChanges(changes, [&](ChangeSet *originals) {
          m_original.destroyVersion(m_context.unwrap(version), originals, destroyed);
        });
      },
      version, changes);
}

void ChangeManagerProxy::destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes,
                                         bool &destroyed) {
  call(
      "ChangeManager::destroyVersions",
      [&] {
        m_context.withChanges(changes, [&](ChangeSet *originals) {
          std::vector<ModelVersion *> originalVersions = m_context.unwrapAll(versions);
          m_original.destroyVersions(originalVersions, originals, destroyed);
          versions = m_context.wrapAll(originalVersions);
        });
      },
      versions, changes);
}

std::string ChangeManagerProxy::getVersionFolder(ModelVersion *version, bool create) {
  return call(
      "ChangeManager::getVersionFolder",
      [&] { return m_original.getVersionFolder(m_context.unwrap(version), create); }, version,
      named("create", create));
}

bool ChangeManagerProxy::canBeginPACStudy(ModelVersion *version) const {
  return call(
      "ChangeManager::canBeginPACStudy",
      [&] { return m_original.canBeginPACStudy(m_context.unwrap(version)); }, version);
}

} // namespace HostTesting
