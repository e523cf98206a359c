#include "OptimizationTool/tests/StudyFixture.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/TypeConstants.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace StudyTesting {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::TypeRef;
using OptimizationTool::OptimizationGroup;
using OptimizationTool::OptimizationGroupVariable;

namespace {

MemberType member(const std::string &label, MemberKind kind, const std::string &defaultText = {}) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.defaultText = defaultText;
  return type;
}

MemberType length(const std::string &label, const std::string &defaultText, const std::string &displayUnit) {
  MemberType type = member(label, MemberKind::Real, defaultText);
  type.standardUnit = "m";
  type.displayUnit = displayUnit;
  return type;
}

MemberType limited(const std::string &label, MemberKind kind, const std::string &defaultText,
                   double maximum) {
  MemberType type = member(label, kind, defaultText);
  type.minimum = 0.0;
  type.maximum = maximum;
  return type;
}

MemberType withOptions(const std::string &label, MemberKind kind, const std::string &defaultText,
                       std::vector<std::string> options) {
  MemberType type = member(label, kind, defaultText);
  type.options = std::move(options);
  return type;
}

MemberType partList(const std::string &label) {
  MemberType type = member(label, MemberKind::EntityList);
  type.targetType = "Part";
  return type;
}

std::vector<MemberType> partMembers() {
  MemberType shape = member("Shape", MemberKind::Composite);
  shape.members = {length("Height", "10", "mm"), length("Radius", "1", "mm")};
  MemberType power = member("Power", MemberKind::Real);
  power.standardUnit = "W";
  power.isResult = true;
  MemberType field = member("Field", MemberKind::Real);
  field.isResult = true;
  field.isMonitor = true;
  return {
      length("Length", "100", "mm"),
      length("Width", "20", "mm"),
      member("Ratio", MemberKind::Real, "0.5"),
      member("Count", MemberKind::Integer, "3"),
      limited("Level", MemberKind::Integer, "5", 10.0),
      limited("Angle", MemberKind::Real, "30", 90.0),
      member("Active", MemberKind::Boolean, "1"),
      withOptions("Material", MemberKind::Choice, "1", {"Steel", "Copper", "Glass"}),
      withOptions("Finish", MemberKind::Choice, "1", {"Raw", "Painted"}),
      member("Note", MemberKind::Text),
      withOptions("Mode", MemberKind::TypeReference, "Fast", {"Fast", "Slow"}),
      withOptions("OtherMode", MemberKind::TypeReference, "Fast", {"Fast", "Slow"}),
      withOptions("Law", MemberKind::TypeReference, "Linear", {"Linear", "Square"}),
      member("Neighbour", MemberKind::EntityLink),
      member("Source", MemberKind::AttributeReference),
      member("Target", MemberKind::AttributeReference),
      partList("Children"),
      shape,
      power,
      field,
  };
}

void require(const std::string &problem) {
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
}

EmbeddedHost::ModelSchema makeSchema() {
  EmbeddedHost::ModelSchema schema;
  require(schema.declareType("Part", partMembers()));
  require(schema.declareRootMembers({partList("Parts"), length("Depth", "2", "m")}));
  return schema;
}

} // namespace

StudyFixture::StudyFixture(const EmbeddedHost::HostBehaviour &behaviour)
    : m_project(EmbeddedHost::Project::create(makeSchema(), behaviour)),
      m_faults(std::make_unique<HostTesting::FaultyHost>(*m_project)),
      m_recording(std::make_unique<HostTesting::RecordingHost>(*m_faults)),
      m_installation(std::make_unique<HostModel::HostInstallation>(*m_recording)) {}

StudyFixture::~StudyFixture() = default;

std::vector<std::string> StudyFixture::takeCalls() {
  std::vector<std::string> calls = m_recording->texts();
  m_recording->clear();
  return calls;
}

Entity *StudyFixture::root() const {
  return EntityEditor::getRootEntity();
}

Entity *StudyFixture::addPart(const std::string &name) {
  return addEntity("Part", root(), "Parts", name);
}

Entity *StudyFixture::addEntity(const std::string &type, Entity *owner, const std::string &list,
                                const std::string &name) {
  Entity *entity = EntityEditor::createEntity(TypeRef::fromLabel(type), owner, AttributePath(list), nullptr,
                                              true, false, false, name, -1);
  EXPECT_NE(entity, nullptr) << "no " << type << " in " << list;
  m_recording->clear();
  return entity;
}

Entity *StudyFixture::addStudy() {
  Entity *study = addEntity("OptimizationData", root(), "OptimizationDataList", "");
  m_recording->setAlias(study, "Study");
  return study;
}

OptimizationGroup StudyFixture::addGroup(Entity *study, bool isInput, const std::string &name) {
  Entity *group =
      addEntity("OptimizationGroup", study, isInput ? "OptimizationInputs" : "OptimizationOutputs", "");
  set(group, "Group_Name", name);
  m_recording->setAlias(group, name);
  m_recording->clear();
  return OptimizationGroup(group);
}

OptimizationGroupVariable StudyFixture::addVariable(const OptimizationGroup &group, Entity *owner,
                                                    const std::string &path) {
  Entity *variable = addEntity("OptimizationAttribute", group.get(), "OptimizationAttributes", "");
  if (owner != nullptr) {
    EXPECT_TRUE(EntityEditor::addEntity(variable, AttributePath("ParentEntity"), owner, false, true, false,
                                        true, false, -1));
  }
  set(variable, "Path", path);
  m_recording->clear();
  return OptimizationGroupVariable(variable);
}

void StudyFixture::name(const OptimizationGroupVariable &variable, const std::string &alias) {
  m_recording->setAlias(variable.get(), alias);
}

EntityModel::Attribute *StudyFixture::attribute(Entity *entity, const std::string &path) {
  return entity->findAttribute(AttributePath(path));
}

void StudyFixture::set(Entity *entity, const std::string &path, const std::string &text) {
  EXPECT_TRUE(EntityEditor::setValueNoThrow(entity, AttributePath(path), text, false, nullptr, false))
      << path << " = " << text;
}

std::string StudyFixture::get(Entity *entity, const std::string &path) {
  const EntityModel::Attribute *found = attribute(entity, path);
  return found == nullptr ? "(none)" : found->getValueAsString();
}

void StudyFixture::refer(Entity *entity, const std::string &path, Entity *target,
                         const std::string &targetPath) {
  const std::int64_t number = EmbeddedHost::Project::entityNumber(*m_recording->original(target));
  set(entity, path, target->getName(true) + " #" + std::to_string(number) + ":" + targetPath);
}

void StudyFixture::remove(Entity *entity) {
  EXPECT_TRUE(EntityEditor::deleteEntity(entity, false, false));
}

} // namespace StudyTesting
