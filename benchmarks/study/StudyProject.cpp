#include "benchmarks/study/StudyProject.h"

#include "HostModel/TypeConstants.h"

#include <limits>
#include <stdexcept>

namespace StudyBenchmark {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using OptimizationTool::OptimizationData;

namespace {

constexpr std::size_t kMembers = 10;

std::string memberLabel(std::size_t member) {
  return "Member" + std::to_string(member);
}

void expectNoProblem(const std::string &problem) {
  if (!problem.empty()) {
    throw std::runtime_error(problem);
  }
}

// Every other member is a quantity, shown in another unit than its standard one.
ModelSchema makeSchema() {
  std::vector<MemberType> members;
  for (std::size_t number = 0; number < kMembers; ++number) {
    MemberType member;
    member.label = memberLabel(number);
    member.kind = MemberKind::Real;
    if (number % 2 == 0) {
      member.standardUnit = "m";
      member.displayUnit = "mm";
    }
    member.defaultText = "1";
    members.push_back(member);
  }
  ModelSchema schema;
  expectNoProblem(schema.declareType("Part", members));
  MemberType parts;
  parts.label = "Parts";
  parts.kind = MemberKind::EntityList;
  parts.targetType = "Part";
  expectNoProblem(schema.declareRootMembers({parts}));
  return schema;
}

std::vector<AttributeName> makeAttributes(Project &project, const std::string &part, std::size_t count) {
  std::vector<AttributeName> names;
  names.reserve(count);
  EntityModel::Entity *entity = nullptr;
  for (std::size_t number = 0; number < count; ++number) {
    if (number % kMembers == 0) {
      entity = project.createEntity("Part", project.rootEntity(), "Parts",
                                    part + std::to_string(number / kMembers));
    }
    names.push_back({entity, AttributePath(memberLabel(number % kMembers))});
  }
  return names;
}

} // namespace

std::string valueText(std::size_t row, std::size_t variable) {
  return std::to_string(row + variable) + ".25";
}

StudyProject::StudyProject(const StudySize &size)
    : m_project(Project::create(makeSchema())), m_installed(*m_project),
      m_inputs(makeAttributes(*m_project, "In", size.inputs * size.variables)),
      m_outputs(makeAttributes(*m_project, "Out", size.outputs * size.variables)) {
  m_project->rootVersion()->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  m_study = EntityEditor::createEntity(EntityModel::OptimizationData_t, m_project->rootEntity(),
                                       AttributePath(EntityModel::OptimizationDataList_t), nullptr, true,
                                       true, false, "", -1);
  reopen();
  m_data->setBaseVersionName("Base");
  m_data->initializeVariants(true, nullptr);
  m_copy = m_project->changeManager().findVersion(m_data->getCopyVersionName(), nullptr);
  addGroups(true, size.inputs, size.variables);
  addGroups(false, size.outputs, size.variables);
}

StudyProject::~StudyProject() = default;

void StudyProject::addGroups(bool isInput, std::size_t groups, std::size_t variables) {
  std::size_t next = 0;
  for (std::size_t group = 0; group < groups; ++group) {
    const AttributeName &first = names(isInput)[next++];
    m_data->addGroup(isInput, first.entity, first.path);
    for (std::size_t variable = 1; variable < variables; ++variable) {
      const AttributeName &name = names(isInput)[next++];
      m_data->getGroup(isInput, static_cast<int>(group)).appendVariable(name.entity, name.path);
    }
  }
}

void StudyProject::reopen() {
  m_data.reset();
  m_data = std::make_unique<OptimizationData>(m_study, nullptr);
}

EntityModel::Attribute *StudyProject::attribute(const AttributeName &name) const {
  return name.entity->findAttribute(name.path);
}

void StudyProject::addAlternates(std::size_t count) {
  EntityModel::ChangeManager &versions = m_project->changeManager();
  EntityModel::ModelVersion *before = versions.getCurrentVersion();
  for (std::size_t number = 0; number < count; ++number) {
    EntityModel::ModelVersion *alternate =
        versions.startNewAlternate(m_copy, nullptr, true, std::numeric_limits<std::size_t>::max());
    const std::size_t row = m_alternates.size() + 1;
    alternate->setLabel("Row " + std::to_string(row));
    versions.setCurrentVersion(alternate, nullptr, false, nullptr, true);
    std::size_t variable = 0;
    for (const bool isInput : {true, false}) {
      for (const AttributeName &name : names(isInput)) {
        EntityEditor::setValue(name.entity, name.path, valueText(row, ++variable), false, nullptr, false,
                               true);
      }
    }
    m_alternates.push_back(alternate);
  }
  versions.setCurrentVersion(before, nullptr, false, nullptr, true);
}

} // namespace StudyBenchmark
