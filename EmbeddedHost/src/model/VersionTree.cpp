#include "EmbeddedHost/src/model/VersionTree.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"

#include <algorithm>
#include <utility>

namespace EmbeddedHost {

using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

VersionTree::VersionTree(Model &model) : m_model(model) {}
VersionTree::~VersionTree() = default;

Version *VersionTree::own(ModelVersion *version) const {
  const auto found = m_own.find(version);
  return found == m_own.end() ? nullptr : found->second;
}

const Version *VersionTree::own(const ModelVersion *version) const {
  const auto found = m_own.find(version);
  return found == m_own.end() ? nullptr : found->second;
}

Version &VersionTree::insert(std::unique_ptr<Version> version) {
  Version &inserted = *version;
  m_own.emplace(&inserted, &inserted);
  m_nextNumber = std::max(m_nextNumber, inserted.number() + 1);
  m_versions.emplace(inserted.number(), std::move(version));
  if (inserted.previous() == nullptr) {
    m_root = &inserted;
  } else {
    inserted.previous()->m_next.push_back(&inserted);
  }
  enterLabel(inserted);
  return inserted;
}

Version &VersionTree::add(Version *previous, const std::string &label) {
  auto version = std::make_unique<Version>(*this, m_nextNumber, newFolderName(), previous);
  version->m_marks.label = label;
  Version &added = insert(std::move(version));
  markUnsaved(added);
  return added;
}

Version &VersionTree::restore(std::int64_t number, const std::string &folder, Version *previous,
                              VersionMarks marks) {
  auto version = std::make_unique<Version>(*this, number, folder, previous);
  version->m_marks = std::move(marks);
  version->isUnsaved = false;
  version->isInFile = true;
  return insert(std::move(version));
}

void VersionTree::restoreFamily(std::int64_t number, Version *origin, const std::vector<Version *> &members) {
  auto family = std::make_shared<AlternateFamily>(AlternateFamily{number, origin, members});
  for (Version *member : members) {
    member->m_family = family;
  }
  if (origin != nullptr) {
    origin->m_family = family;
  }
}

void VersionTree::reserveNumbers(std::int64_t next) {
  m_nextNumber = std::max(m_nextNumber, next);
}

void VersionTree::enter(Version &version) {
  version.shadows.reserve(version.edits.size());
  for (const Edit &edit : version.edits.edits()) {
    version.shadows.push_back(edit.slot->value);
    Model::show(*edit.slot, edit.value);
  }
  version.isActive = true;
}

void VersionTree::leave(Version &version) {
  for (std::size_t position = version.edits.size(); position-- > 0;) {
    Model::show(*version.edits.at(position).slot, std::move(version.shadows[position]));
  }
  std::vector<Value>().swap(version.shadows);
  version.isActive = false;
}

namespace {

// Adds what the slots that the versions edit hold now. A slot that several edit comes more than once, with the same
// value each time.
void remember(const std::vector<Version *> &versions, std::vector<Edit> &values) {
  for (const Version *version : versions) {
    for (const Edit &edit : version->edits.edits()) {
      values.push_back({edit.slot, deepCopy(edit.slot->value)});
    }
  }
}

} // namespace

void VersionTree::show(Version &version, ChangeSet *changes) {
  std::vector<Version *> leaving;
  std::vector<Version *> entering;
  Version *from = m_shown;
  Version *to = &version;
  while (from != to) {
    if (from == nullptr || (to != nullptr && to->depth() >= from->depth())) {
      entering.push_back(to);
      to = to->previous();
    } else {
      leaving.push_back(from);
      from = from->previous();
    }
  }

  std::vector<Edit> before;
  if (changes != nullptr) {
    remember(leaving, before);
    remember(entering, before);
  }

  for (Version *each : leaving) {
    leave(*each);
  }
  for (auto each = entering.rbegin(); each != entering.rend(); ++each) {
    enter(**each);
  }
  m_shown = &version;
  if (changes == nullptr) {
    return;
  }
  for (const auto &[slot, value] : before) {
    if (!isSameValue(value, slot->value) && slot->owner->exists()) {
      changes->addModifiedAttribute(slot->owner, &ModelEntity::attributeOf(*slot));
    }
  }
}

void VersionTree::makeCurrent(Version *version) {
  if (version != nullptr) {
    show(*version, nullptr);
  }
  m_current = version;
}

// Through the facade, so that a host that wraps this one sees the notification too.
void VersionTree::notify(ChangeSet *changes) {
  EntityGUI::AbstractObserverManager *observers = EntityGUI::EntityManager::getObserverManager();
  if (observers != nullptr) {
    ChangeSet none;
    observers->broadcastChangedVersion(changes == nullptr ? none : *changes, &m_model.root(),
                                       m_current == nullptr ? std::string() : m_current->getLabel(), false,
                                       true);
  }
}

bool VersionTree::setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force,
                                    Tools::ToolProgress * /*progress*/, bool /*loadData*/) {
  Version *target = own(version);
  if (version != nullptr && target == nullptr) {
    return false;
  }
  if (target == m_current && !force) {
    return true;
  }
  if (target != nullptr) {
    show(*target, changes);
  }
  m_current = target;
  if (switchesNotify) {
    notify(changes);
  }
  // An observer may have switched again.
  return m_current == version;
}

bool VersionTree::record(Slot &slot, Value value) {
  if (m_current == nullptr) {
    return false;
  }
  recordIn(*m_current, slot, std::move(value));
  return true;
}

void VersionTree::recordIn(Version &version, Slot &slot, Value value) {
  const std::size_t position = version.edits.find(&slot);
  const bool isNew = position == EditTable::kNone;
  if (isNew) {
    version.edits.append(&slot, value);
  } else {
    version.edits.at(position).value = value;
  }
  markEditUnsaved(version, slot);
  if (!version.isActive) {
    return;
  }
  // The next version on the way to the shown one that edits the slot too has this value in its shadow.
  Version *hiding = nullptr;
  std::size_t hidingPosition = 0;
  for (Version *later = m_shown; later != &version; later = later->previous()) {
    const std::size_t found = later->edits.find(&slot);
    if (found != EditTable::kNone) {
      hiding = later;
      hidingPosition = found;
    }
  }
  if (isNew) {
    version.shadows.push_back(hiding == nullptr ? slot.value : hiding->shadows[hidingPosition]);
  }
  if (hiding == nullptr) {
    Model::show(slot, std::move(value));
  } else {
    hiding->shadows[hidingPosition] = std::move(value);
  }
}

const EntityModel::EditOperation *VersionTree::showEdit(const Version &version,
                                                        const EntityModel::Entity *entity,
                                                        const EntityModel::AttributePath &path) const {
  const ModelEntity *known = ModelEntity::from(entity, m_model);
  const Slot *slot = known == nullptr ? nullptr : known->findSlot(path);
  const std::size_t position = slot == nullptr ? EditTable::kNone : version.edits.find(slot);
  if (position == EditTable::kNone) {
    return nullptr;
  }
  m_shownEdit.show(version.edits.at(position));
  return &m_shownEdit;
}

Slot *VersionTree::latestOf(const std::vector<Slot *> &slots) const {
  for (const Version *each = m_shown; each != nullptr; each = each->previous()) {
    std::size_t first = EditTable::kNone;
    for (const Slot *slot : slots) {
      first = std::min(first, each->edits.find(slot));
    }
    if (first != EditTable::kNone) {
      return each->edits.at(first).slot;
    }
  }
  return slots.front();
}

ModelVersion *VersionTree::getCurrentVersion() const {
  return m_current;
}

ModelVersion *VersionTree::getRootVersion(bool create) {
  if (m_root == nullptr && create) {
    makeCurrent(&add(nullptr, "Base"));
  }
  return m_root;
}

void VersionTree::markUnsaved(Version &version) {
  version.isUnsaved = true;
  m_unsaved.insert(&version);
  m_model.needsSave = true;
}

void VersionTree::markEditUnsaved(Version &version, const Slot &slot) {
  if (version.unsavedEdits == nullptr) {
    version.unsavedEdits = std::make_unique<std::unordered_set<const Slot *>>();
  }
  version.unsavedEdits->insert(&slot);
  m_unsaved.insert(&version);
  m_model.needsSave = true;
}

void VersionTree::markEditSaved(Version &version, const Slot &slot) {
  if (version.unsavedEdits != nullptr) {
    version.unsavedEdits->erase(&slot);
    if (version.unsavedEdits->empty()) {
      version.unsavedEdits.reset();
    }
  }
  if (version.unsavedEdits == nullptr && !version.isUnsaved) {
    m_unsaved.erase(&version);
  }
}

void VersionTree::forgetUnsaved() {
  for (Version *version : m_unsaved) {
    version->isUnsaved = false;
    version->isInFile = true;
    version->unsavedEdits.reset();
  }
  m_unsaved.clear();
  m_destroyed.clear();
}

std::string VersionTree::getVersionFolder(ModelVersion *version, bool create) {
  const Version *known = own(version);
  return known == nullptr || folderOf == nullptr ? std::string() : folderOf(*known, create);
}

bool VersionTree::canBeginPACStudy(ModelVersion *version) const {
  const Version *known = own(version);
  return known != nullptr && !known->isStudyCase(true, false);
}

void VersionTree::editedVersion(ModelVersion *version, ChangeSet * /*changes*/, bool &edited,
                                bool /*notify*/) {
  Version *known = own(version);
  edited = known != nullptr;
  if (edited) {
    known->m_marks.isEdited = true;
    markUnsaved(*known);
  }
}

} // namespace EmbeddedHost
