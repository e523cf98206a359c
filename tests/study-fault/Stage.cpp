#include "tests/study-fault/Stage.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace StudyFaults {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationGroupVariable;

namespace {

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

// A host without services: nobody is told of anything while it is installed.
class SilentHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

void require(const std::string &problem) {
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
}

MemberType real(const std::string &label, const std::string &text, const std::string &unit, bool isResult) {
  MemberType member;
  member.label = label;
  member.kind = MemberKind::Real;
  member.defaultText = text;
  member.standardUnit = unit;
  member.displayUnit = unit;
  member.isResult = isResult;
  return member;
}

std::unique_ptr<Project> makeProject() {
  ModelSchema schema;
  require(schema.declareType("Part", {real("Speed", "10", "m/s", false), real("Angle", "20", "", false),
                                      real("Power", "100", "", true), real("Noise", "50", "", true)}));
  MemberType parts;
  parts.label = "Parts";
  parts.kind = MemberKind::EntityList;
  parts.targetType = "Part";
  require(schema.declareRootMembers({parts}));
  return Project::create(schema);
}

} // namespace

Stage::Stage()
    : m_project(makeProject()), m_adjusted(*m_project), m_faults(m_adjusted),
      m_installed(std::in_place, m_faults), m_commands(*m_project),
      m_fan(m_project->createEntity("Part", m_project->rootEntity(), "Parts", "Fan")),
      m_pump(m_project->createEntity("Part", m_project->rootEntity(), "Parts", "Pump")) {
  // Made while a host is installed, so that it hears of what happens.
  manager();
  m_commands.announceOpened();
}

Stage::~Stage() {
  m_faults.heal();
  // Not closed is left to whoever looks at the manager afterwards.
  static_cast<void>(m_commands.close());
}

void Stage::beginStudy() {
  manager().beginStudy(EntityModel::ModelVersionStudyType::Parametric);
  if (held() == nullptr) {
    throw std::logic_error("no study");
  }
}

void Stage::addGroups() {
  data().addGroup(true, attribute("Fan", "Speed"));
  data().getGroup(true, 0).appendVariable(attribute("Pump", "Speed"));
  data().addGroup(true, attribute("Fan", "Angle"));
  data().addGroup(false, attribute("Fan", "Power"));
  data().addGroup(false, attribute("Fan", "Noise"));
  // So that there is something to be repaired when the study is loaded.
  OptimizationGroupVariable variable = data().getVariable(true, 0);
  variable.setMinimumValue("1");
  variable.setMaximumValue("100");
  variable.setLowBound(std::string("5"));
  variable.setHighBound(std::string("50"));
}

void Stage::addRows() {
  data().setCostFunction(kCost);
  data().addVariant({"11 m/s", "21"}, "A", kAtEnd);
  data().addVariant({"12 m/s", "22"}, "B", kAtEnd);
  data().recalculateCosts();
}

EntityModel::Entity *Stage::part(const std::string &name) {
  return m_faults.proxy(name == "Fan" ? m_fan : m_pump);
}

EntityModel::Attribute *Stage::attribute(const std::string &partName, const std::string &path) {
  return EntityModel::findAttribute(part(partName), EntityModel::AttributePath(path));
}

std::string Stage::valueIn(const std::string &version, const std::string &partName, const std::string &path) {
  const std::string before = currentLabel();
  show(version);
  const EntityModel::Attribute *found = m_project->attribute(partName == "Fan" ? m_fan : m_pump, path);
  std::string text = found == nullptr ? "-" : found->getValueAsString();
  show(before);
  return text;
}

std::string Stage::currentLabel() const {
  const ModelVersion *version = m_project->currentVersion();
  return version == nullptr ? std::string() : version->getLabel();
}

void Stage::show(const std::string &label) {
  EntityModel::ChangeManager &versions = m_project->changeManager();
  SilentHost silent;
  const HostModel::HostInstallation installed(silent);
  versions.setCurrentVersion(versions.findVersion(label, nullptr), nullptr, false, nullptr, true);
}

void Stage::destroy(const std::string &label) {
  EntityModel::ChangeManager &versions = m_project->changeManager();
  bool isDestroyed = false;
  versions.destroyVersion(versions.findVersion(label, nullptr), nullptr, isDestroyed);
}

} // namespace StudyFaults
