#include "EmbeddedHost/tests/ModelFixture.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/ObserverManager.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>

namespace EmbeddedHost {

namespace {

MemberType member(const std::string &label, MemberKind kind) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  return type;
}

MemberType withDefault(MemberType type, const std::string &text) {
  type.defaultText = text;
  return type;
}

MemberType holder(const std::string &label, MemberKind kind, const std::string &target) {
  MemberType type = member(label, kind);
  type.targetType = target;
  return type;
}

MemberType options(MemberType type, const std::vector<std::string> &texts) {
  type.options = texts;
  return type;
}

MemberType result(MemberType type) {
  type.isResult = true;
  return type;
}

MemberType width() {
  MemberType type = withDefault(member("Width", MemberKind::Real), "100");
  type.standardUnit = "m";
  type.displayUnit = "mm";
  type.minimum = 0.0;
  type.maximum = 2.0;
  return type;
}

MemberType count() {
  MemberType type = withDefault(member("Count", MemberKind::Integer), "3");
  type.minimum = -5.0;
  type.maximum = 100.0;
  return type;
}

MemberType size() {
  MemberType type = member("Size", MemberKind::Composite);
  type.members = {withDefault(member("Height", MemberKind::Real), "1"),
                  withDefault(member("Depth", MemberKind::Real), "2")};
  return type;
}

MemberType mass() {
  MemberType type = result(member("Mass", MemberKind::Real));
  type.standardUnit = "kg";
  return type;
}

MemberType field() {
  MemberType type = result(member("Field", MemberKind::Real));
  type.isMonitor = true;
  return type;
}

MemberType note() {
  MemberType type = member("Note", MemberKind::Text);
  type.hasNoSimulationEffect = true;
  return type;
}

} // namespace

ModelSchema testSchema() {
  ModelSchema schema;
  const std::string part = schema.declareType(
      "Part",
      {width(), withDefault(member("Ratio", MemberKind::Real), "0.5"), count(),
       withDefault(member("Open", MemberKind::Boolean), "1"),
       withDefault(options(member("Material", MemberKind::Choice), {"Steel", "Copper", "Air"}), "2"), note(),
       options(member("Law", MemberKind::TypeReference), {"Linear", "Cubic"}),
       holder("Next", MemberKind::EntityLink, "Part"), member("Driver", MemberKind::AttributeReference),
       holder("Parts", MemberKind::EntityList, "Part"), holder("Core", MemberKind::EntityLink, "Part"),
       size(), mass(), result(member("Cycles", MemberKind::Integer)),
       result(member("Remark", MemberKind::Text)), field()});
  const std::string marks = schema.declareType("Mark", {member("Colour", MemberKind::Text)});
  MemberType markList = holder("Marks", MemberKind::EntityList, "Mark");
  markList.hasNoSimulationEffect = true;
  const std::string rootMembers = schema.declareRootMembers(
      {holder("Parts", MemberKind::EntityList, "Part"), markList, member("Title", MemberKind::Text)});
  if (!part.empty() || !marks.empty() || !rootMembers.empty()) {
    throw std::logic_error(part + marks + rootMembers);
  }
  return schema;
}

ModelTest::ModelTest(const HostBehaviour &behaviour)
    : project(Project::create(testSchema(), behaviour)), installation(*project),
      tree(project->changeManager()), root(project->rootEntity()),
      partA(project->createEntity("Part", root, "Parts", "A")),
      partB(project->createEntity("Part", root, "Parts", "B")) {}

ModelTest::~ModelTest() = default;

EntityModel::Attribute &ModelTest::attribute(EntityModel::Entity *entity, const std::string &path) {
  EntityModel::Attribute *found = project->attribute(entity, path);
  if (found == nullptr) {
    throw std::logic_error("no attribute " + path);
  }
  return *found;
}

std::string ModelTest::text(EntityModel::Entity *entity, const std::string &path) {
  return attribute(entity, path).getValueAsString();
}

void ModelTest::set(EntityModel::Entity *entity, const std::string &path, const std::string &value) {
  if (!project->setValue(entity, path, value)) {
    throw std::logic_error("not set: " + path);
  }
}

EntityModel::ModelVersion *ModelTest::follow(EntityModel::ModelVersion *origin, const std::string &label) {
  return tree.startNewVersion(label, "", "", "", nullptr, origin, false);
}

EntityModel::ModelVersion *ModelTest::alternate(EntityModel::ModelVersion *origin, const std::string &label,
                                                std::size_t position) {
  EntityModel::ModelVersion *made = tree.startNewAlternate(origin, nullptr, true, position);
  made->setLabel(label);
  return made;
}

void ModelTest::show(EntityModel::ModelVersion *version) {
  if (!tree.setCurrentVersion(version, nullptr, false, nullptr, true)) {
    throw std::logic_error("not switched");
  }
}

std::vector<std::string> ModelTest::labels(const std::vector<EntityModel::ModelVersion *> &versions) {
  std::vector<std::string> texts;
  texts.reserve(versions.size());
  for (const EntityModel::ModelVersion *version : versions) {
    texts.push_back(version->getLabel());
  }
  return texts;
}

EntityModel::ListAttribute &ModelTest::list(EntityModel::Entity *owner, const std::string &path) {
  return *attribute(owner, path).asList();
}

std::vector<std::string> ModelTest::names(EntityModel::Entity *owner, const std::string &path) {
  std::vector<std::string> texts;
  EntityModel::ListAttribute &elements = list(owner, path);
  for (int index = 0; index < elements.getCount(); ++index) {
    const EntityModel::Entity *element = elements.getEntity(index);
    texts.push_back(element == nullptr ? "(none)" : element->getName(true));
  }
  return texts;
}

NotedNotifications::NotedNotifications() : Observer(false, true) {
  EntityGUI::ObserverManager::process().addObserver(this);
}

NotedNotifications::~NotedNotifications() {
  EntityGUI::ObserverManager::process().removeObserver(this);
}

namespace {

std::string describe(const EntityModel::ChangeSet &changes) {
  std::string text;
  for (const EntityModel::ChangeSet::ModifiedEntity &entry : changes.getModifiedEntities()) {
    for (const EntityModel::Attribute *attribute : entry.attributes) {
      text += " " + entry.entity->getName(true) + "." + attribute->getAttributePath().toString('.') + "=" +
              attribute->getValueAsString();
    }
  }
  return text;
}

std::string nameOf(const EntityModel::Entity *entity) {
  return entity == nullptr ? "(none)" : entity->getName(true);
}

} // namespace

void NotedNotifications::setCurrentEntity(EntityModel::Entity *entity, bool /*scrollTo*/) {
  lines.push_back("entity " + nameOf(entity));
}

void NotedNotifications::changedEntities(EntityModel::ChangeSet &changes) {
  lines.push_back("edit" + describe(changes));
}

void NotedNotifications::changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                                        const std::string &versionName, bool reload) {
  lines.push_back("version " + versionName + " of " + nameOf(entity) + (reload ? " reloaded" : "") +
                  describe(changes));
}

TestFolder::TestFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "embedded-host-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("no folder for the test");
  }
  m_path = pattern;
}

TestFolder::~TestFolder() {
  std::error_code error;
  std::filesystem::remove_all(m_path, error);
}

std::string TestFolder::path(const std::string &name) const {
  return name.empty() ? m_path : m_path + "/" + name;
}

std::string contentOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string &path, const std::string &content) {
  std::ofstream(path, std::ios::binary) << content;
}

} // namespace EmbeddedHost
