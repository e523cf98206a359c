#include "Versions.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ObserverManager.h"

#include <algorithm>
#include <utility>

namespace MinimalHost {

using EntityModel::ModelVersionStudyType;

ModelVersion::VersionType Version::getVersionType() const {
  return isStudyBaseline()           ? VersionType::StudyBaseline
         : isStudyCase(false, false) ? VersionType::Copy
         : isStudyCase(true, false)  ? VersionType::Alternate
                                     : VersionType::Ordinary;
}

ModelVersion *Version::getStudyBaseline() const {
  if (isStudyBaseline()) {
    return const_cast<Version *>(this);
  }
  return isStudyCase(true, false) && previous != nullptr && previous->isStudyBaseline() ? previous : nullptr;
}

void Version::clearStudy() {
  studyType = ModelVersionStudyType::None;
  m_caseFlags.clear();
  m_isRemoved = false;
}

void Version::removeFromStudy() {
  clearStudy();
  m_isRemoved = true;
}

// An alternate has no flag of its own, so that it stops being a case when its copy does.
bool Version::isStudyCase(bool throughAlternate, bool /*anyRelation*/) const {
  const Version *origin = *family;
  return !m_isRemoved &&
         (!m_caseFlags.empty() || (throughAlternate && origin != nullptr && !origin->m_caseFlags.empty()));
}

void Version::setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) {
  if (set) {
    m_caseFlags.insert(flag);
  } else {
    m_caseFlags.erase(flag);
  }
}

EntityModel::ModelDelta *Version::getDelta(bool /*includeUnsaved*/) const {
  return const_cast<Version *>(this);
}

const EntityModel::EditOperation *Version::findEditOperation(const Entity *entity,
                                                             const AttributePath &path) const {
  const auto *slot = dynamic_cast<const Slot *>(EntityModel::findAttribute(entity, path));
  const auto edit = edits.find(slot);
  if (edit == edits.end()) {
    return nullptr;
  }
  m_shown.value = slot->isLink() ? nullptr : copyOf(*slot, edit->second.text);
  return &m_shown;
}

Versions::Versions(Model &model) : m_model(model) {
  m_model.current = &add("Base", nullptr);
}

Version *Versions::own(const ModelVersion *version) const {
  const auto found = std::find_if(m_versions.begin(), m_versions.end(),
                                  [version](const auto &each) { return each.get() == version; });
  return found == m_versions.end() ? nullptr : found->get();
}

Version &Versions::add(const std::string &label, Version *previous) {
  m_versions.push_back(std::make_unique<Version>(label, previous));
  if (previous != nullptr) {
    previous->next.push_back(m_versions.back().get());
  }
  return *m_versions.back();
}

void Versions::show(Version *version, ChangeSet *changes) {
  std::vector<std::pair<Attribute *, Value>> before;
  for (const auto &entity : m_model.entities) {
    for (std::size_t index = 0; changes != nullptr && index < entity->members.size(); ++index) {
      Attribute *attribute = entity->members[index].get();
      before.emplace_back(attribute, dynamic_cast<Slot &>(*attribute).value());
    }
  }
  m_model.current = version;
  for (const auto &[attribute, value] : before) {
    Entity *owner = attribute->getOwnerEntity();
    if (existing(owner) != nullptr && !(dynamic_cast<Slot &>(*attribute).value() == value)) {
      changes->addModifiedAttribute(owner, attribute);
    }
  }
}

ModelVersion *Versions::findVersion(const std::string &label, Entity *entity) const {
  for (const auto &version : m_versions) {
    Version *shown = std::exchange(m_model.current, version.get());
    const bool isThere = entity == nullptr || existing(entity) != nullptr;
    m_model.current = shown;
    if (isThere && version->label == label) {
      return version.get();
    }
  }
  return nullptr;
}

void Versions::getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const {
  alternates.clear();
  const Version *known = own(version);
  for (Version *each : m_alternates) {
    if (known != nullptr && each != known && each->family == known->family) {
      alternates.push_back(each);
    }
  }
}

bool Versions::setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force,
                                 Tools::ToolProgress * /*progress*/, bool /*loadData*/) {
  Version *known = own(version);
  if (known != version) {
    return false;
  }
  if (known == m_model.current && !force) {
    return true;
  }
  show(known, changes);
  if (auto *observers = EntityGUI::EntityManager::getObserverManager()) {
    ChangeSet none;
    observers->broadcastChangedVersion(changes == nullptr ? none : *changes, m_model.entities.front().get(),
                                       EntityGUI::EntityManager::getCurrentVersion(), false, true);
  }
  return m_model.current == version; // an observer may have switched again
}

ModelVersion *Versions::startNewVersion(const std::string &label, const std::string & /*description*/,
                                        const std::string & /*author*/, const std::string & /*comment*/,
                                        ChangeSet * /*changes*/, ModelVersion *origin, bool makeReadOnly) {
  Version *previous = own(origin);
  if (previous == nullptr) {
    return nullptr;
  }
  Version &version = add(label, previous);
  version.isReadOnly = makeReadOnly;
  return &version;
}

ModelVersion *Versions::startNewAlternate(ModelVersion *version, ChangeSet * /*changes*/, bool copyContent,
                                          std::size_t position) {
  const Version *origin = own(version);
  if (origin == nullptr || origin->previous == nullptr) {
    return nullptr;
  }
  Version &alternate = add(getUniqueName(origin->label, {}), origin->previous);
  if (copyContent) {
    alternate.edits = origin->edits;
  }
  alternate.family = origin->family;
  std::vector<ModelVersion *> others;
  getAlternates(version, others);
  ModelVersion *after = position < others.size() ? others[position] : nullptr;
  m_alternates.insert(std::find(m_alternates.begin(), m_alternates.end(), after), &alternate);
  return &alternate;
}

std::string Versions::getUniqueName(const std::string &label,
                                    const std::map<std::string, ModelVersion *> &others) const {
  std::string name = label;
  for (int number = 2; findVersion(name, nullptr) != nullptr || others.count(name) != 0; ++number) {
    name = label + " (" + std::to_string(number) + ")";
  }
  return name;
}

void Versions::editedVersion(ModelVersion *version, ChangeSet * /*changes*/, bool &edited, bool /*notify*/) {
  edited = own(version) != nullptr;
}

void Versions::destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) {
  std::vector<ModelVersion *> versions = {version};
  destroyVersions(versions, changes, destroyed);
}

void Versions::destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes, bool &destroyed) {
  std::set<const ModelVersion *> doomed;
  for (const auto &version : m_versions) {
    const bool isNamed = std::find(versions.begin(), versions.end(), version.get()) != versions.end();
    if (version->previous != nullptr && (isNamed || doomed.count(version->previous) != 0)) {
      doomed.insert(version.get());
    }
  }
  destroyed = !doomed.empty();
  Version *surviving = m_model.current;
  while (doomed.count(surviving) != 0) {
    surviving = surviving->previous;
  }
  show(surviving, changes);
  const auto isDoomed = [&doomed](const auto &version) {
    return doomed.count(&*version) != 0;
  };
  const auto forget = [&isDoomed](auto &list) {
    list.erase(std::remove_if(list.begin(), list.end(), isDoomed), list.end());
  };
  for (const auto &version : m_versions) {
    forget(version->next);
    if (isDoomed(version) && *version->family == version.get()) {
      *version->family = nullptr;
    }
  }
  forget(m_alternates);
  forget(m_versions);
}

bool Versions::canBeginPACStudy(ModelVersion *version) const {
  const Version *known = own(version);
  return known != nullptr && !known->isStudyCase(true, false);
}

} // namespace MinimalHost
