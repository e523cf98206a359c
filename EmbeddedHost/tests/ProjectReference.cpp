#include "EmbeddedHost/tests/ProjectReference.h"

#include <algorithm>

namespace EmbeddedHost {

std::optional<std::string> ProjectReference::value(int version, int entity, const std::string &path) const {
  for (int each = version; each != kNone; each = versions.at(each).previous) {
    const auto &values = versions.at(each).values;
    if (const auto found = values.find({entity, path}); found != values.end()) {
      return found->second;
    }
  }
  return std::nullopt;
}

std::vector<ProjectReference::Element> ProjectReference::list(int version, int owner) const {
  for (int each = version; each != kNone; each = versions.at(each).previous) {
    const auto &lists = versions.at(each).lists;
    if (const auto found = lists.find(owner); found != lists.end()) {
      return found->second;
    }
  }
  return {};
}

int ProjectReference::owner(int version, int entity) const {
  std::vector<int> decided;
  for (int each = version; each != kNone; each = versions.at(each).previous) {
    for (const auto &[owner, elements] : versions.at(each).lists) {
      const bool isHere =
          std::any_of(elements.begin(), elements.end(), [entity = entity](const Element &element) {
            return element.isOwned && element.entity == entity;
          });
      if (isHere && std::find(decided.begin(), decided.end(), owner) == decided.end()) {
        return owner;
      }
    }
    for (const auto &[owner, elements] : versions.at(each).lists) {
      decided.push_back(owner);
    }
  }
  return kNone;
}

bool ProjectReference::isInside(int version, int entity, int other) const {
  for (std::size_t steps = 0; steps <= entities.size() && entity != kNone; ++steps) {
    if (entity == other) {
      return true;
    }
    entity = owner(version, entity);
  }
  return false;
}

bool ProjectReference::isCaseThroughAlternate(int version) const {
  const Version &own = versions.at(version);
  if (own.marks.isRemoved || own.marks.isCase || own.family == kNone) {
    return !own.marks.isRemoved && own.marks.isCase;
  }
  const int origin = families.at(own.family).origin;
  return origin != kNone && origin != version && versions.at(origin).marks.isCase;
}

std::vector<int> ProjectReference::alternates(int version) const {
  const int family = versions.at(version).family;
  std::vector<int> others = family == kNone ? std::vector<int>() : families.at(family).members;
  others.erase(std::remove(others.begin(), others.end(), version), others.end());
  return others;
}

void ProjectReference::setValue(int version, int entity, const std::string &path, const std::string &text) {
  versions.at(version).values[{entity, path}] = text;
  if (mistake != Mistake::SiblingsSeeEdits) {
    return;
  }
  for (auto &[number, other] : versions) {
    if (other.previous == versions.at(version).previous) {
      other.values[{entity, path}] = text;
    }
  }
}

// The current version's own list; what is owned elsewhere is only linked in it from now on.
std::vector<ProjectReference::Element> &ProjectReference::ownList(int owner) {
  Version &own = versions.at(current);
  if (own.lists.count(owner) == 0) {
    std::vector<Element> elements = list(current, owner);
    for (Element &element : elements) {
      element.isOwned = element.isOwned && this->owner(current, element.entity) == owner;
    }
    own.lists[owner] = elements;
  }
  return own.lists[owner];
}

void ProjectReference::insert(int owner, int entity, std::size_t position) {
  std::vector<Element> &elements = ownList(owner);
  const auto place = elements.begin() + static_cast<std::ptrdiff_t>(std::min(position, elements.size()));
  elements.insert(place, {entity, true});
}

void ProjectReference::takeOut(int entity) {
  for (int from = owner(current, entity); from != kNone; from = owner(current, entity)) {
    std::vector<Element> &elements = ownList(from);
    elements.erase(std::remove_if(elements.begin(), elements.end(),
                                  [entity](const Element &element) {
                                    return element.isOwned && element.entity == entity;
                                  }),
                   elements.end());
  }
}

int ProjectReference::addFollower(int previous, const std::string &label) {
  Version &version = versions[nextVersion];
  version.previous = previous;
  version.marks.label = label;
  return nextVersion++;
}

int ProjectReference::addAlternate(int origin, const std::string &label, std::size_t position) {
  const int number = addFollower(versions.at(origin).previous, label);
  versions[number].values = versions.at(origin).values;
  versions[number].lists = versions.at(origin).lists;
  int &family = versions.at(origin).family;
  if (family == kNone) {
    family = origin;
    families[family].origin = origin;
  }
  versions[number].family = family;
  // The position counts the alternates of the origin, of which it is none itself.
  std::vector<int> &members = families[family].members;
  std::size_t place = position >= alternates(origin).size() ? members.size() : 0;
  for (std::size_t others = 0; place < members.size() && others < position; ++place) {
    others += members[place] == origin ? 0 : 1;
  }
  members.insert(members.begin() + static_cast<std::ptrdiff_t>(place), number);
  return number;
}

bool ProjectReference::follows(int version, int other) const {
  while (version != kNone && version != other) {
    version = versions.at(version).previous;
  }
  return version == other;
}

void ProjectReference::destroy(int version) {
  std::vector<int> gone;
  for (const auto &[number, each] : versions) {
    if (mistake == Mistake::FollowersSurvive ? number == version : follows(number, version)) {
      gone.push_back(number);
    }
  }
  const auto isGone = [&gone](int number) {
    return std::find(gone.begin(), gone.end(), number) != gone.end();
  };
  while (isGone(current)) {
    current = versions.at(current).previous;
  }
  for (auto &[number, family] : families) {
    family.origin = isGone(family.origin) ? kNone : family.origin;
    family.members.erase(std::remove_if(family.members.begin(), family.members.end(), isGone),
                         family.members.end());
  }
  for (auto &[number, each] : versions) {
    if (each.previous == version && !isGone(number)) {
      each.previous = versions.at(version).previous;
    }
  }
  for (const int number : gone) {
    versions.erase(number);
  }
}

} // namespace EmbeddedHost
