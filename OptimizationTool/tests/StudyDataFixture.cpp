#include "OptimizationTool/tests/StudyDataFixture.h"

#include "EmbeddedHost/Commands.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"

#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace StudyTesting {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationData;

namespace {

MemberType member(const std::string &label, MemberKind kind, const std::string &defaultText) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.defaultText = defaultText;
  return type;
}

void mustBeEmpty(const std::string &problem) {
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
}

EmbeddedHost::ModelSchema fanSchema() {
  MemberType speed = member("Speed", MemberKind::Real, "10");
  speed.standardUnit = "m/s";
  MemberType mode = member("Mode", MemberKind::Choice, "1");
  mode.options = {"Low", "Middle", "High"};
  MemberType power = member("Power", MemberKind::Real, "");
  power.standardUnit = "W";
  power.isResult = true;
  MemberType noise = member("Noise", MemberKind::Real, "");
  noise.isResult = true;
  MemberType fans = member("Fans", MemberKind::EntityList, "");
  fans.targetType = "Fan";

  EmbeddedHost::ModelSchema schema;
  mustBeEmpty(schema.declareType("Fan", {speed, member("Ratio", MemberKind::Real, "1"),
                                         member("Blades", MemberKind::Integer, "5"),
                                         member("Enabled", MemberKind::Boolean, "1"), mode,
                                         member("Note", MemberKind::Text, ""), power, noise}));
  mustBeEmpty(schema.declareRootMembers({fans, member("Load", MemberKind::Real, "2")}));
  return schema;
}

// "FanA.Speed" as ("FanA", "Speed"); "FanA" as ("FanA", ""); "Load" as ("", "Load").
std::pair<std::string, std::string> splitName(const std::string &name) {
  const std::size_t dot = name.find('.');
  if (dot != std::string::npos) {
    return {name.substr(0, dot), name.substr(dot + 1)};
  }
  return name.rfind("Fan", 0) == 0 ? std::make_pair(name, std::string())
                                   : std::make_pair(std::string(), name);
}

std::string cellText(const Attribute *cell) {
  return cell == nullptr ? kNoCell : cell->getValueAsString();
}

} // namespace

std::string thrownBy(const std::function<void()> &call) {
  try {
    call();
  } catch (const std::exception &exception) {
    const std::type_info &type = typeid(exception);
    std::string name = type == typeid(std::out_of_range)       ? "std::out_of_range"
                       : type == typeid(std::logic_error)      ? "std::logic_error"
                       : type == typeid(std::runtime_error)    ? "std::runtime_error"
                       : type == typeid(std::invalid_argument) ? "std::invalid_argument"
                                                               : type.name();
    return name + ": " + exception.what();
  }
  return "nothing";
}

StudyDataFixture::StudyDataFixture(const EmbeddedHost::HostBehaviour &behaviour)
    : m_project(EmbeddedHost::Project::create(fanSchema(), behaviour)),
      m_installation(std::make_unique<HostModel::HostInstallation>(*m_project)) {
  m_project->createEntity("Fan", m_project->rootEntity(), "Fans", "FanA");
  m_project->createEntity("Fan", m_project->rootEntity(), "Fans", "FanB");
  EmbeddedHost::Commands(*m_project).announceOpened();
}

StudyDataFixture::~StudyDataFixture() {
  m_data.reset();
  while (!m_wrapperInstallations.empty()) {
    m_wrapperInstallations.pop_back();
  }
  while (!m_wrappers.empty()) {
    m_wrappers.pop_back();
  }
  EntityGUI::EntityManager::s_CurrentEntity = nullptr;
  EntityGUI::EntityManager::s_CurrentFilename.clear();
}

EntityModel::ChangeManager &StudyDataFixture::changeManager() {
  return *EntityGUI::EntityManager::getChangeManager();
}

ModelVersion *StudyDataFixture::version(const std::string &label) {
  return changeManager().findVersion(label, nullptr);
}

std::string StudyDataFixture::currentLabel() {
  return EntityGUI::EntityManager::getCurrentVersion();
}

void StudyDataFixture::switchTo(const std::string &label) {
  ModelVersion *found = version(label);
  if (found == nullptr) {
    throw std::logic_error("no version " + label);
  }
  changeManager().setCurrentVersion(found, nullptr, false, nullptr, true);
}

std::vector<std::string> StudyDataFixture::versionLabels(const EmbeddedHost::Project &project) {
  std::vector<std::string> labels;
  for (const ModelVersion *each : project.versions()) {
    labels.push_back(each->getLabel());
  }
  return labels;
}

Entity *StudyDataFixture::root() {
  return EntityEditor::getRootEntity();
}

Entity *StudyDataFixture::fan(const std::string &name) {
  for (Entity *entity : EntityModel::getLinkedEntities(root(), AttributePath("Fans"))) {
    if (entity->getName(true) == name) {
      return entity;
    }
  }
  return nullptr;
}

Attribute *StudyDataFixture::attribute(const std::string &name) {
  const auto [owner, path] = splitName(name);
  return EntityModel::findAttribute(owner.empty() ? root() : fan(owner), AttributePath(path));
}

void StudyDataFixture::setIn(const std::string &label, const std::string &attributeName,
                             const std::string &text) {
  const std::string before = currentLabel();
  switchTo(label);
  const auto [owner, path] = splitName(attributeName);
  EntityEditor::setValue(owner.empty() ? root() : fan(owner), AttributePath(path), text, false, nullptr, true,
                         true);
  switchTo(before);
}

std::string StudyDataFixture::valueIn(const std::string &label, const std::string &attributeName) {
  const std::string before = currentLabel();
  switchTo(label);
  std::string text = cellText(attribute(attributeName));
  switchTo(before);
  return text;
}

bool StudyDataFixture::save(const std::string &file) {
  return static_cast<bool>(EmbeddedHost::Commands(*m_project).saveAs(file));
}

HostTesting::RecordingHost &StudyDataFixture::record() {
  HostModel::Host &inner = *HostModel::installedHost();
  auto wrapper = std::make_unique<HostTesting::RecordingHost>(inner);
  HostTesting::RecordingHost &recording = *wrapper;
  recording.setStateQuery([this] {
    return m_data == nullptr
               ? HostTesting::StudyState()
               : HostTesting::StudyState{m_data->isEditingVersions(), m_data->isSolvingVersions()};
  });
  installWrapper(std::move(wrapper));
  recording.clear();
  return recording;
}

HostTesting::FaultyHost &StudyDataFixture::injectFaults() {
  HostModel::Host &inner = *HostModel::installedHost();
  auto wrapper = std::make_unique<HostTesting::FaultyHost>(inner);
  HostTesting::FaultyHost &faulty = *wrapper;
  installWrapper(std::move(wrapper));
  faulty.heal();
  return faulty;
}

void StudyDataFixture::installWrapper(std::unique_ptr<HostTesting::WrappedHost> wrapper) {
  const bool hadData = m_data != nullptr;
  m_data.reset();
  m_wrappers.push_back(std::move(wrapper));
  m_wrapperInstallations.push_back(std::make_unique<HostModel::HostInstallation>(*m_wrappers.back()));
  if (hadData) {
    reload();
  }
}

Entity *StudyDataFixture::createStudyEntity() {
  Entity *entity = EntityEditor::createEntity(EntityModel::OptimizationData_t, root(),
                                              AttributePath(EntityModel::OptimizationDataList_t), nullptr,
                                              true, true, false, "", -1);
  EntityEditor::setValue(entity, AttributePath(EntityModel::BaseVersionName_t), currentLabel(), false,
                         nullptr, true, true);
  return entity;
}

Entity *StudyDataFixture::studyEntity() {
  const std::vector<Entity *> studies =
      EntityModel::getLinkedEntities(root(), AttributePath(EntityModel::OptimizationDataList_t));
  return studies.empty() ? nullptr : studies.front();
}

OptimizationData &StudyDataFixture::begin(EntityModel::ModelVersionStudyType type) {
  changeManager().getCurrentVersion()->setStudyType(type);
  m_data = std::make_unique<OptimizationData>(createStudyEntity(), nullptr);
  m_data->initializeVariants(true, nullptr);
  return *m_data;
}

OptimizationData &StudyDataFixture::beginWithRows() {
  begin();
  addInput("FanA.Speed");
  addInput("FanA.Blades");
  addInput("FanB.Ratio");
  addOutput("FanA.Power");
  addOutput("FanA.Noise");
  m_data->addVariant({"20", "6", "2"}, "Row 1", 100);
  m_data->addVariant({"30", "7", "3"}, "Row 2", 100);
  return *m_data;
}

OptimizationData &StudyDataFixture::reconstruct() {
  m_data.reset();
  m_data = std::make_unique<OptimizationData>(studyEntity(), nullptr);
  return *m_data;
}

OptimizationData &StudyDataFixture::reload() {
  reconstruct().initializeVariants(nullptr);
  return *m_data;
}

int StudyDataFixture::addInput(const std::string &attributeName) {
  return m_data->addGroup(true, attribute(attributeName));
}

int StudyDataFixture::addOutput(const std::string &attributeName) {
  return m_data->addGroup(false, attribute(attributeName));
}

void StudyDataFixture::addVariable(bool isInput, int group, const std::string &attributeName) {
  OptimizationTool::OptimizationGroup target = m_data->getGroup(isInput, group);
  if (!target.appendVariable(attribute(attributeName))) {
    throw std::logic_error("no variable " + attributeName);
  }
}

std::vector<std::vector<std::string>> StudyDataFixture::groups(bool isInput) const {
  std::vector<std::vector<std::string>> names;
  const int numGroups = isInput ? m_data->getNumInputs() : m_data->getNumOutputs();
  for (int index = 0; index < numGroups; ++index) {
    const OptimizationTool::OptimizationGroup group = m_data->getGroup(isInput, index);
    std::vector<std::string> variables;
    variables.reserve(static_cast<std::size_t>(group.size()));
    for (int variable = 0; variable < group.size(); ++variable) {
      variables.push_back(group.getAttributeDisplayName(variable));
    }
    names.push_back(variables);
  }
  return names;
}

std::vector<std::string> StudyDataFixture::row(bool isInput, std::size_t index) const {
  std::vector<std::string> texts;
  const int numGroups = isInput ? m_data->getNumInputs() : m_data->getNumOutputs();
  texts.reserve(static_cast<std::size_t>(numGroups));
  for (int group = 0; group < numGroups; ++group) {
    texts.push_back(cellText(m_data->getVariantGroup(isInput, index, static_cast<std::size_t>(group))));
  }
  return texts;
}

std::vector<std::string> StudyDataFixture::column(bool isInput, std::size_t group) const {
  std::vector<std::string> texts;
  for (std::size_t index = 0; index < m_data->getNumVariants(); ++index) {
    texts.push_back(cellText(m_data->getVariantGroup(isInput, index, group)));
  }
  return texts;
}

std::vector<std::string> StudyDataFixture::rowNames() {
  std::vector<std::string> names;
  for (std::size_t index = 0; index < m_data->getNumVariants(); ++index) {
    names.push_back(m_data->getVariantName(index));
  }
  return names;
}

std::vector<std::optional<double>> StudyDataFixture::costs() {
  std::vector<std::optional<double>> costs;
  for (std::size_t index = 0; index < m_data->getNumVariants(); ++index) {
    costs.push_back(m_data->getVariantCost(index));
  }
  return costs;
}

} // namespace StudyTesting
