#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectSession.h"

#include <array>

// What has to be equal after every step.

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;

namespace {

constexpr std::array<const char *, 5> kPaths = {"Ratio", "Count", "Note", "Size.Depth", "Field"};

std::string defaultOf(const std::string &path) {
  return path == "Ratio" ? "0.5" : path == "Count" ? "3" : path == "Size.Depth" ? "2" : "";
}

std::string shown(bool value) {
  return value ? "true" : "false";
}
std::string shown(int value) {
  return std::to_string(value);
}
std::string shown(std::size_t value) {
  return std::to_string(value);
}
std::string shown(const std::string &value) {
  return "\"" + value + "\"";
}

} // namespace

void ProjectSession::fail(const std::string &what) {
  if (problem.empty()) {
    problem = what;
  }
}

template <class Value>
void ProjectSession::expect(const std::string &what, const Value &actual, const Value &expected) {
  if (actual != expected) {
    fail(what + " is " + shown(actual) + ", expected " + shown(expected));
  }
}

template void ProjectSession::expect(const std::string &, const bool &, const bool &);
template void ProjectSession::expect(const std::string &, const std::size_t &, const std::size_t &);

void ProjectSession::compare(bool switches) {
  compareVersions();
  if (!problem.empty()) {
    return;
  }
  for (const auto &[number, version] : reference.versions) {
    compareMarks(number);
    compareEdits(number);
  }
  compareShown(reference.current);
  if (!switches || !problem.empty()) {
    return;
  }
  EntityModel::ChangeManager &tree = project->changeManager();
  ModelVersion *current = tree.getCurrentVersion();
  for (const auto &[number, version] : reference.versions) {
    expect("switched", tree.setCurrentVersion(own(number), nullptr, false, nullptr, true), true);
    compareShown(number);
  }
  tree.setCurrentVersion(current, nullptr, false, nullptr, true);
  compareShown(reference.current);
}

// Which there are, in order, and which is current: what everything else is found by.
void ProjectSession::compareVersions() {
  const std::vector<ModelVersion *> versions = project->versions();
  expect("the number of versions", versions.size(), reference.versions.size());
  if (!problem.empty()) {
    return;
  }
  expect("whether the current version is the expected one",
         project->currentVersion() == own(reference.current), true);
  for (const auto &[number, version] : reference.versions) {
    expect("label of " + std::to_string(number), own(number)->getLabel(), version.marks.label);
    ModelVersion *previous = version.previous == ProjectReference::kNone ? nullptr : own(version.previous);
    expect("whether the previous one of " + std::to_string(number) + " is right",
           own(number)->getPrevious() == previous, true);
  }
}

void ProjectSession::compareMarks(int version) {
  const std::string of = " of version " + std::to_string(version);
  const ProjectReference::Marks &marks = reference.versions.at(version).marks;
  ModelVersion *known = own(version);
  const VersionMarks &actual = project->parts().model.tree().own(known)->marks();
  expect("study type" + of, static_cast<int>(known->getStudyType()), marks.studyType);
  expect("being a case" + of, known->isStudyCase(false, false), marks.isCase && !marks.isRemoved);
  expect("being a case's alternate" + of, known->isStudyCase(true, false),
         reference.isCaseThroughAlternate(version));
  expect("being removed" + of, actual.isRemovedFromStudy, marks.isRemoved);
  expect("being read-only" + of, Project::isReadOnly(*known), marks.isReadOnly);
  expect("being edited" + of, actual.isEdited, marks.isEdited);
  expect("description" + of, actual.description, marks.description);
  expect("run" + of, project->runRecord(*known).reason, marks.run);
  std::vector<ModelVersion *> alternates;
  project->changeManager().getAlternates(known, alternates);
  std::vector<ModelVersion *> expected;
  for (const int each : reference.alternates(version)) {
    expected.push_back(own(each));
  }
  expect("whether the alternates" + of + " are right", alternates == expected, true);
}

// The values of a version as its edits and those before it give them, without a switch.
void ProjectSession::compareEdits(int version) {
  for (const auto &[number, name] : reference.entities) {
    EntityModel::Entity *entity = own(std::optional(number));
    const std::string of = " of entity " + std::to_string(number) + " in version " + std::to_string(version);
    if (entity == nullptr) {
      return fail("there is no entity " + std::to_string(number));
    }
    ModelVersion *found = project->changeManager().findVersion(own(version)->getLabel(), entity);
    if (found == own(version) || found == nullptr) {
      expect("existence" + of, found != nullptr, reference.exists(version, number));
    }
    for (const char *path : kPaths) {
      const EntityModel::EditOperation *edit = nullptr;
      for (ModelVersion *each = own(version); each != nullptr && edit == nullptr;
           each = each->getPrevious()) {
        edit = each->getDelta(true)->findEditOperation(entity, AttributePath(path));
      }
      const std::optional<std::string> expected = reference.value(version, number, path);
      const std::string actual = edit == nullptr ? "(default)" : edit->getValue()->getValueAsString();
      expect("edited " + (path + of), actual, expected.value_or("(default)"));
    }
  }
}

// Entities, owners, lists and values, while the version is the current one.
void ProjectSession::compareShown(int version) {
  for (const auto &[number, name] : reference.entities) {
    if (problem.empty()) {
      compareEntity(version, number);
    }
  }
}

void ProjectSession::compareEntity(int version, int number) {
  EntityModel::Entity *entity = own(std::optional(number));
  const std::string of =
      " of entity " + std::to_string(number) + " shown in version " + std::to_string(version);
  const bool exists = reference.exists(version, number);
  expect("name" + of, entity->getName(true), exists ? reference.entities.at(number) : std::string());
  if (!exists || !problem.empty()) {
    return;
  }
  const EntityModel::Entity *owner = entity->getOwnerEntity();
  expect("owner" + of,
         owner == nullptr ? ProjectReference::kNone : static_cast<int>(Project::entityNumber(*owner)),
         reference.owner(version, number));
  EntityModel::ListAttribute *list = entity->findAttribute(AttributePath("Parts"))->asList();
  std::string actual;
  for (int index = 0; index < list->getCount(); ++index) {
    const EntityModel::Entity *part = list->getEntity(index);
    actual += (part == nullptr ? "-" : std::to_string(Project::entityNumber(*part))) + " ";
  }
  std::string expected;
  for (const ProjectReference::Element &element : reference.list(version, number)) {
    expected += (reference.exists(version, element.entity) ? std::to_string(element.entity) : "-") + " ";
  }
  expect("list" + of, actual, expected);
  for (const char *path : kPaths) {
    if (number != ProjectReference::kRoot) {
      expect(path + of, project->attribute(entity, path)->getValueAsString(),
             reference.value(version, number, path).value_or(defaultOf(path)));
    }
  }
}

} // namespace EmbeddedHost
