#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/VersionTree.h"

#include <algorithm>

// How versions come and go.

namespace EmbeddedHost {

using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

void VersionTree::becomeCurrentIfSo(Version &version, ChangeSet *changes) {
  if (newVersionsBecomeCurrent) {
    setCurrentVersion(&version, changes, false, nullptr, true);
  }
}

ModelVersion *VersionTree::startNewVersion(const std::string &label, const std::string &description,
                                           const std::string &author, const std::string &comment,
                                           ChangeSet *changes, ModelVersion *origin, bool makeReadOnly) {
  Version *previous = own(origin);
  if (previous == nullptr) {
    return nullptr;
  }
  Version &version = add(previous, label);
  version.m_marks.description = description;
  version.m_marks.author = author;
  version.m_marks.comment = comment;
  version.m_marks.isReadOnly = makeReadOnly;
  becomeCurrentIfSo(version, changes);
  return &version;
}

// Gives the member at a place a rank between its neighbours, so that the others need not be saved again.
void VersionTree::rank(std::vector<Version *> &members, std::size_t place) {
  const bool isLast = place + 1 == members.size();
  const double before = place == 0 ? (isLast ? 0.0 : members[1]->rank - 2.0) : members[place - 1]->rank;
  const double after = isLast ? before + 2.0 : members[place + 1]->rank;
  const double middle = before + (after - before) / 2.0;
  members[place]->rank = middle;
  if (middle > before && middle < after) {
    return;
  }
  // No number is left between the two.
  for (std::size_t each = 0; each < members.size(); ++each) {
    members[each]->rank = static_cast<double>(each);
    markUnsaved(*members[each]);
  }
}

ModelVersion *VersionTree::startNewAlternate(ModelVersion *version, ChangeSet *changes, bool copyContent,
                                             std::size_t position) {
  Version *origin = own(version);
  // Beside the root version there is no place.
  if (origin == nullptr || origin->previous() == nullptr) {
    return nullptr;
  }
  Version &alternate = add(origin->previous(), getUniqueName(origin->getLabel(), {}));
  if (copyContent) {
    alternate.edits.reserve(origin->edits.size());
    for (const Edit &edit : origin->edits.edits()) {
      alternate.edits.append(edit.slot, deepCopy(edit.value));
      markEditUnsaved(alternate, *edit.slot);
    }
  }
  if (origin->m_family == nullptr) {
    origin->m_family = std::make_shared<AlternateFamily>();
    origin->m_family->origin = origin;
    origin->m_family->number = origin->m_number;
    markUnsaved(*origin);
  }
  std::vector<Version *> &members = origin->m_family->members;
  // The position counts the alternates of the origin, which is not one of its own. Past the last of them is the end
  // of the family, also when the origin itself stands last. What a family was made from is no member of it and need
  // not be searched among its thousands.
  const bool isMember = origin->m_family->origin != origin;
  const auto ownPlace = isMember ? std::find(members.begin(), members.end(), origin) : members.end();
  const std::size_t others = members.size() - (ownPlace == members.end() ? 0 : 1);
  std::size_t place = position;
  if (position >= others) {
    place = members.size();
  } else if (place > static_cast<std::size_t>(ownPlace - members.begin())) {
    ++place;
  }
  members.insert(members.begin() + static_cast<std::ptrdiff_t>(place), &alternate);
  rank(members, place);
  alternate.m_family = origin->m_family;
  becomeCurrentIfSo(alternate, changes);
  return &alternate;
}

void VersionTree::getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const {
  alternates.clear();
  const Version *known = own(version);
  if (known == nullptr || known->m_family == nullptr) {
    return;
  }
  for (Version *member : known->m_family->members) {
    if (member != known) {
      alternates.push_back(member);
    }
  }
}

void VersionTree::removeFromFamilies(const std::unordered_set<Version *> &doomed) {
  std::unordered_set<AlternateFamily *> families;
  for (const Version *version : doomed) {
    if (version->m_family != nullptr) {
      families.insert(version->m_family.get());
    }
  }
  for (AlternateFamily *family : families) {
    if (doomed.count(family->origin) != 0) {
      family->origin = nullptr;
      for (Version *member : family->members) {
        markUnsaved(*member);
      }
    }
    std::vector<Version *> &members = family->members;
    members.erase(std::remove_if(members.begin(), members.end(),
                                 [&doomed](Version *member) { return doomed.count(member) != 0; }),
                  members.end());
  }
}

void VersionTree::destroyAll(const std::vector<Version *> &versions, ChangeSet *changes, bool &destroyed) {
  std::unordered_set<Version *> doomed;
  std::vector<Version *> order;
  for (Version *version : versions) {
    if (version != nullptr && version != m_root && doomed.insert(version).second) {
      order.push_back(version);
    }
  }
  // Whatever follows a version that goes would be left without its content.
  for (std::size_t position = 0; position < order.size(); ++position) {
    for (ModelVersion *follower : order[position]->m_next) {
      Version *next = own(follower);
      if (doomed.insert(next).second) {
        order.push_back(next);
      }
    }
  }
  destroyed = !order.empty();
  if (order.empty()) {
    return;
  }

  Version *surviving = m_shown;
  while (doomed.count(surviving) != 0) {
    surviving = surviving->previous();
  }
  if (surviving != m_shown) {
    const bool wasCurrent = m_current != nullptr;
    show(*surviving, changes);
    m_current = wasCurrent ? surviving : nullptr;
  }

  removeFromFamilies(doomed);
  std::unordered_set<Version *> parents;
  for (Version *version : order) {
    if (doomed.count(version->m_previous) == 0) {
      parents.insert(version->m_previous);
    }
  }
  for (Version *parent : parents) {
    std::vector<ModelVersion *> &next = parent->m_next;
    next.erase(std::remove_if(next.begin(), next.end(),
                              [&](ModelVersion *follower) { return doomed.count(own(follower)) != 0; }),
               next.end());
  }
  for (Version *version : order) {
    m_destroyed.push_back({version->m_number, version->m_folder, version->isInFile});
    removeLabel(*version);
    m_unsaved.erase(version);
    m_own.erase(version);
    m_versions.erase(version->m_number);
  }
  m_model.needsSave = true;
}

void VersionTree::destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) {
  destroyAll({own(version)}, changes, destroyed);
}

void VersionTree::destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes,
                                  bool &destroyed) {
  std::vector<Version *> known;
  known.reserve(versions.size());
  for (ModelVersion *version : versions) {
    known.push_back(own(version));
  }
  destroyAll(known, changes, destroyed);
}

} // namespace EmbeddedHost
