#include "benchmarks/pricing/PricedStudy.h"

#include "EmbeddedHost/Commands.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/TypeConstants.h"

#include <limits>
#include <stdexcept>

namespace PricingBenchmark {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using OptimizationTool::OptimizationData;

namespace {

void expectNoProblem(const std::string &problem) {
  if (!problem.empty()) {
    throw std::runtime_error(problem);
  }
}

std::string label(bool isInput, std::size_t number) {
  return (isInput ? "x" : "y") + std::to_string(number);
}

std::unique_ptr<Project> makeProject(std::size_t inputs, std::size_t outputs, ValueKind kind) {
  std::vector<MemberType> members;
  for (std::size_t number = 0; number < inputs + outputs; ++number) {
    MemberType member;
    member.label = number < inputs ? label(true, number) : label(false, number - inputs);
    member.defaultText = std::to_string(number % 19 + 1) + ".25";
    if (kind != ValueKind::Number) {
      member.standardUnit = "m";
      member.displayUnit = "mm";
    }
    members.push_back(member);
  }
  MemberType parts;
  parts.label = "Parts";
  parts.kind = MemberKind::EntityList;
  parts.targetType = "Part";
  ModelSchema schema;
  expectNoProblem(schema.declareType("Part", members));
  expectNoProblem(schema.declareRootMembers({parts}));
  return Project::create(schema);
}

} // namespace

PricedStudy::PricedStudy(std::size_t inputs, std::size_t outputs, std::size_t rows, ValueKind kind)
    : m_numInputs(inputs), m_numOutputs(outputs), m_project(makeProject(inputs, outputs, kind)),
      m_installed(*m_project),
      m_part(m_project->createEntity("Part", m_project->rootEntity(), "Parts", "Part")) {
  EmbeddedHost::Commands(*m_project).announceOpened();
  EntityModel::ModelVersion *base = EntityGUI::EntityManager::getChangeManager()->getCurrentVersion();
  base->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  EntityModel::Entity *study = EntityEditor::createEntity(
      EntityModel::OptimizationData_t, EntityEditor::getRootEntity(),
      AttributePath(EntityModel::OptimizationDataList_t), nullptr, true, true, false, "", -1);
  EntityEditor::setValue(study, AttributePath(EntityModel::BaseVersionName_t), base->getLabel(), false,
                         nullptr, true, true);
  m_data = std::make_unique<OptimizationData>(study, nullptr);
  m_data->initializeVariants(true, nullptr);
  addGroups(true, inputs);
  addGroups(false, outputs);
  addRows(rows, kind);
  if (m_data->getNumVariants() != rows) {
    throw std::runtime_error("The study has not the rows that it should have");
  }
}

PricedStudy::~PricedStudy() {
  m_data.reset();
  EntityGUI::EntityManager::s_CurrentEntity = nullptr;
  EntityGUI::EntityManager::s_CurrentFilename.clear();
}

void PricedStudy::addGroups(bool isInput, std::size_t count) {
  for (std::size_t number = 0; number < count; ++number) {
    if (m_data->addGroup(isInput, m_part, AttributePath(label(isInput, number))) < 0) {
      throw std::runtime_error("A group cannot be added");
    }
  }
}

// The baseline is the first row.
void PricedStudy::addRows(std::size_t count, ValueKind kind) {
  std::vector<std::string> values(m_numInputs);
  for (std::size_t row = 1; row < count; ++row) {
    for (std::size_t input = 0; input < m_numInputs; ++input) {
      values[input] = std::to_string((row * 7 + input * 3) % 19 + 1) + "." + std::to_string(row % 1000);
      if (kind == ValueKind::OtherQuantities) {
        values[input] += " cm";
      }
    }
    m_data->addVariant(values, "Row " + std::to_string(row), std::numeric_limits<std::uint64_t>::max());
  }
}

std::vector<EntityModel::Attribute *> PricedStudy::cells() const {
  std::vector<EntityModel::Attribute *> cells;
  for (std::size_t row = 0; row < m_data->getNumVariants(); ++row) {
    for (const bool isInput : {true, false}) {
      const std::size_t count = isInput ? m_numInputs : m_numOutputs;
      for (std::size_t group = 0; group < count; ++group) {
        cells.push_back(m_data->getVariantGroup(isInput, row, group));
      }
    }
  }
  return cells;
}

} // namespace PricingBenchmark
