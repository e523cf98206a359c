#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/model/VersionTree.h"

#include <algorithm>
#include <string_view>

// Labels of versions: the versions with one label form a chain in order of creation.

namespace EmbeddedHost {

using EntityModel::ModelVersion;

namespace {

constexpr std::uint64_t kLowestNumber = 2;

std::string variation(const std::string &label, std::uint64_t number) {
  return label + " (" + std::to_string(number) + ")";
}

} // namespace

void VersionTree::enterLabel(Version &version) {
  SameLabel &chain = m_labels[version.m_marks.label];
  if (chain.first == nullptr || version.m_number < chain.first->m_number) {
    version.m_sameLabelNext = chain.first;
    chain.first = &version;
    chain.last = chain.last == nullptr ? &version : chain.last;
    return;
  }
  Version *before = version.m_number > chain.last->m_number ? chain.last : chain.first;
  while (before->m_sameLabelNext != nullptr && before->m_sameLabelNext->m_number < version.m_number) {
    before = before->m_sameLabelNext;
  }
  version.m_sameLabelNext = before->m_sameLabelNext;
  before->m_sameLabelNext = &version;
  chain.last = version.m_sameLabelNext == nullptr ? &version : chain.last;
}

void VersionTree::removeLabel(Version &version) {
  const auto entry = m_labels.find(version.m_marks.label);
  SameLabel &chain = entry->second;
  if (chain.first == &version) {
    chain.first = version.m_sameLabelNext;
    if (chain.first == nullptr) {
      m_freedLabels += chain.wasAskedFor ? 1 : 0;
      m_labels.erase(entry);
      noteFreeLabel(version.m_marks.label);
    }
  } else {
    Version *before = chain.first;
    while (before->m_sameLabelNext != &version) {
      before = before->m_sameLabelNext;
    }
    before->m_sameLabelNext = version.m_sameLabelNext;
    chain.last = chain.last == &version ? before : chain.last;
  }
  version.m_sameLabelNext = nullptr;
}

void VersionTree::noteFreeLabel(const std::string &label) {
  const std::size_t bracket = label.rfind(" (");
  const auto known =
      bracket == std::string::npos ? m_lowestFree.end() : m_lowestFree.find(label.substr(0, bracket));
  if (known == m_lowestFree.end()) {
    return;
  }
  // A number that is too low only means that more variations are tried than need be.
  const std::string_view behind = std::string_view(label).substr(bracket + 2);
  const std::int64_t number = readInteger(behind.substr(0, behind.find(')'))).value_or(0);
  if (number > 0 && static_cast<std::uint64_t>(number) < known->second) {
    known->second = std::max(static_cast<std::uint64_t>(number), kLowestNumber);
  }
}

void VersionTree::relabel(Version &version, const std::string &label) {
  removeLabel(version);
  version.m_marks.label = label;
  enterLabel(version);
  markUnsaved(version);
}

namespace {

// Who owns which entity in a version that need not be the shown one.
std::unordered_map<const ModelEntity *, const ModelEntity *> ownersIn(const Version &version) {
  std::unordered_map<const ModelEntity *, const ModelEntity *> owners;
  std::unordered_set<const Slot *> decided;
  for (const Version *each = &version; each != nullptr; each = each->previous()) {
    for (const Edit &edit : each->edits.edits()) {
      if (!decided.insert(edit.slot).second) {
        continue;
      }
      if (const auto *link = std::get_if<LinkValue>(&edit.value); link != nullptr && link->isOwned) {
        owners.emplace(link->entity, edit.slot->owner);
      }
      for (const LinkValue &element : elementsOf(edit.value)) {
        if (element.isOwned) {
          owners.emplace(element.entity, edit.slot->owner);
        }
      }
    }
  }
  return owners;
}

// Whether the version has the entity: over any number of owners it is the root's.
bool hasEntity(const Version &version, const ModelEntity &entity) {
  const ModelEntity *root = &entity.model().root();
  if (&entity == root || entity.isProjectLevel() || &version == entity.model().tree().shown()) {
    return entity.exists();
  }
  const auto owners = ownersIn(version);
  const ModelEntity *each = &entity;
  // Each entity at most once, because entities may own each other in a circle.
  for (std::size_t steps = owners.size(); each != root && steps > 0; --steps) {
    const auto owner = owners.find(each);
    if (owner == owners.end()) {
      return false;
    }
    each = owner->second;
  }
  return each == root;
}

} // namespace

ModelVersion *VersionTree::findVersion(const std::string &label, EntityModel::Entity *entity) const {
  const auto entry = m_labels.find(label);
  Version *version = entry == m_labels.end() ? nullptr : entry->second.first;
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
  if (isFree(label)) {
    return label;
  }
  if (const auto taken = m_labels.find(label); taken != m_labels.end()) {
    taken->second.wasAskedFor = true;
  }
  const auto known = m_lowestFree.find(label);
  std::uint64_t number = known == m_lowestFree.end() ? kLowestNumber : known->second;
  while (m_labels.find(variation(label, number)) != m_labels.end()) {
    ++number;
  }
  if (number > kLowestNumber) {
    m_lowestFree[label] = number;
  }
  while (!isFree(variation(label, number))) {
    ++number;
  }
  return variation(label, number);
}

} // namespace EmbeddedHost
