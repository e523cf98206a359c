#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/VersionTree.h"

// Labels of versions: the versions with one label form a chain in order of creation.

namespace EmbeddedHost {

using EntityModel::ModelVersion;

void VersionTree::enterLabel(Version &version) {
  Version *&first = m_labels[version.m_marks.label];
  if (first == nullptr || version.m_number < first->m_number) {
    version.m_sameLabelNext = first;
    first = &version;
    return;
  }
  Version *before = first;
  while (before->m_sameLabelNext != nullptr && before->m_sameLabelNext->m_number < version.m_number) {
    before = before->m_sameLabelNext;
  }
  version.m_sameLabelNext = before->m_sameLabelNext;
  before->m_sameLabelNext = &version;
}

void VersionTree::removeLabel(Version &version) {
  const auto entry = m_labels.find(version.m_marks.label);
  if (entry->second == &version) {
    entry->second = version.m_sameLabelNext;
    if (entry->second == nullptr) {
      m_labels.erase(entry);
    }
  } else {
    Version *before = entry->second;
    while (before->m_sameLabelNext != &version) {
      before = before->m_sameLabelNext;
    }
    before->m_sameLabelNext = version.m_sameLabelNext;
  }
  version.m_sameLabelNext = nullptr;
}

void VersionTree::relabel(Version &version, const std::string &label) {
  removeLabel(version);
  version.m_marks.label = label;
  enterLabel(version);
  markUnsaved(version);
}

namespace {

bool ownsEntity(const Value &value, const ModelEntity &entity) {
  if (const auto *link = std::get_if<LinkValue>(&value)) {
    return link->isOwned && link->entity == &entity;
  }
  for (const LinkValue &element : elementsOf(value)) {
    if (element.isOwned && element.entity == &entity) {
      return true;
    }
  }
  return false;
}

// Whether a version that need not be the shown one has the entity: some list or link that the version has owns it.
bool hasEntity(const Version &version, const ModelEntity &entity) {
  if (&entity == &entity.model().root() || entity.isProjectLevel()) {
    return entity.exists();
  }
  std::unordered_set<const Slot *> decided;
  for (const Version *each = &version; each != nullptr; each = each->previous()) {
    for (const Edit &edit : each->edits.edits()) {
      if (decided.insert(edit.slot).second && ownsEntity(edit.value, entity)) {
        return hasEntity(version, *edit.slot->owner);
      }
    }
  }
  return false;
}

} // namespace

ModelVersion *VersionTree::findVersion(const std::string &label, EntityModel::Entity *entity) const {
  const auto entry = m_labels.find(label);
  Version *version = entry == m_labels.end() ? nullptr : entry->second;
  if (entity == nullptr) {
    return version;
  }
  const ModelEntity *known = ModelEntity::from(entity, m_model);
  while (version != nullptr && (known == nullptr || !hasEntity(*version, *known))) {
    version = version->m_sameLabelNext;
  }
  return version;
}

std::string VersionTree::getUniqueName(const std::string &label,
                                       const std::map<std::string, ModelVersion *> &others) const {
  const auto isFree = [&](const std::string &candidate) {
    return m_labels.find(candidate) == m_labels.end() && others.find(candidate) == others.end();
  };
  std::string candidate = label;
  for (std::uint64_t number = 2; !isFree(candidate); ++number) {
    candidate = label + " (" + std::to_string(number) + ")";
  }
  return candidate;
}

} // namespace EmbeddedHost
