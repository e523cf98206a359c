#include "tests/study-property/StoryProject.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/Lookup.h"

#include <QDir>

namespace StudyProperty {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EntityModel::AttributePath;
using OptimizationTool::OptimizationData;

namespace {

MemberType member(const std::string &label, MemberKind kind, const std::string &standardUnit,
                  const std::string &displayUnit) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.standardUnit = standardUnit;
  type.displayUnit = displayUnit;
  return type;
}

EmbeddedHost::ModelSchema schemaOfBeams() {
  MemberType length = member("Length", MemberKind::Real, "m", "mm");
  length.defaultText = "1000 mm";
  MemberType count = member("Count", MemberKind::Integer, "", "");
  count.defaultText = "4";
  MemberType mass = member("Mass", MemberKind::Real, "kg", "kg");
  mass.isResult = true;
  MemberType deflection = member("Deflection", MemberKind::Real, "m", "mm");
  deflection.isResult = true;
  MemberType beams = member("Beams", MemberKind::EntityList, "", "");
  beams.targetType = "Beam";
  EmbeddedHost::ModelSchema schema;
  EXPECT_EQ(schema.declareType("Beam", {length, count, mass, deflection}), "");
  EXPECT_EQ(schema.declareRootMembers({beams}), "");
  return schema;
}

} // namespace

ProjectStoryTest::ProjectStoryTest() {
  create();
}

ProjectStoryTest::~ProjectStoryTest() {
  if (project != nullptr) {
    close();
  }
}

void ProjectStoryTest::create() {
  project = EmbeddedHost::Project::create(schemaOfBeams());
  project->createEntity("Beam", project->rootEntity(), "Beams", "Main");
  project->createEntity("Beam", project->rootEntity(), "Beams", "Side");
  show();
}

// The manager hears of what happens from its first use on, which comes after the host is installed.
void ProjectStoryTest::show() {
  installation = std::make_unique<HostModel::HostInstallation>(*project);
  manager();
  commands = std::make_unique<EmbeddedHost::Commands>(*project);
  commands->announceOpened();
}

void ProjectStoryTest::open(const std::string &file) {
  std::string problem;
  project = EmbeddedHost::Project::open(path(file), EmbeddedHost::OpenMode::ReadWrite, problem);
  ASSERT_NE(project, nullptr) << problem;
  show();
}

void ProjectStoryTest::close() {
  EXPECT_EQ(commands->close().problem, "");
  EXPECT_EQ(manager().getData(), nullptr);
  commands.reset();
  installation.reset();
  project.reset();
}

void ProjectStoryTest::saveAs(const std::string &file) {
  EXPECT_EQ(commands->saveAs(path(file)).problem, "");
}

void ProjectStoryTest::save() {
  EXPECT_EQ(commands->save().problem, "");
  EXPECT_FALSE(project->needsSave());
}

void ProjectStoryTest::saveAndReopen(const std::string &file) {
  if (project->file() == path(file)) {
    save();
  } else {
    saveAs(file);
  }
  close();
  open(file);
}

EntityModel::Entity *ProjectStoryTest::beam(std::size_t number) const {
  return EntityModel::getLinkedEntities(project->rootEntity(), AttributePath("Beams")).at(number);
}

EntityModel::Attribute *ProjectStoryTest::value(const char *path, std::size_t number) const {
  return project->attribute(beam(number), path);
}

std::string ProjectStoryTest::shown(const char *path, std::size_t number) const {
  return value(path, number)->getValueAsString();
}

EntityModel::ModelVersion *ProjectStoryTest::version(const std::string &label) const {
  return project->changeManager().findVersion(label, nullptr);
}

void ProjectStoryTest::begin() {
  manager().beginStudy(EntityModel::ModelVersionStudyType::Parametric);
  manager().addInputAttribute(value("Length"));
  manager().addInputAttribute(value("Count"));
  manager().addOutputAttribute(value("Mass"));
  manager().addOutputAttribute(value("Deflection"));
  data().setCostFunction("%Main.Mass% + %Main.Deflection%");
}

void ProjectStoryTest::solveCurrent(std::size_t number) {
  const double metres = value("Length", number)->getStandardValue();
  const double count = value("Count", number)->getStandardValue();
  project->setValue(beam(number), "Mass", std::to_string(static_cast<int>(2 * metres * count)) + " kg");
  project->setValue(beam(number), "Deflection",
                    std::to_string(static_cast<int>(metres * 100 / count)) + " mm");
}

void ProjectStoryTest::solve() {
  {
    const EmbeddedHost::Commands::SolverRun run(*commands);
    const OptimizationTool::OptimizationDataSolvingGuard guard(data());
    for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
      switchTo(data().getVariantName(row));
      solveCurrent(0);
      solveCurrent(1);
    }
    switchTo(data().getBaseVersionName());
  }
  data().updateAlternates(OptimizationData::ReadFromModel, nullptr);
}

void ProjectStoryTest::switchTo(const std::string &label) {
  EXPECT_EQ(commands->switchVersion(label).problem, "");
}

std::string ProjectStoryTest::edit(const char *path, const std::string &text, std::size_t number) {
  return commands->edit(beam(number), AttributePath(path), text).problem;
}

ProjectStoryTest::Texts ProjectStoryTest::versions() const {
  Texts labels;
  for (const EntityModel::ModelVersion *each : project->versions()) {
    labels.push_back(each->getLabel());
  }
  return labels;
}

ProjectStoryTest::Matrix ProjectStoryTest::matrix() {
  Matrix rows;
  for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
    rows.push_back({data().getVariantName(row)});
    for (const bool isInput : {true, false}) {
      const int count = isInput ? data().getNumInputs() : data().getNumOutputs();
      for (std::size_t group = 0; group < static_cast<std::size_t>(count); ++group) {
        const EntityModel::Attribute *cell = data().getVariantGroup(isInput, row, group);
        rows.back().push_back(cell == nullptr ? "(none)" : cell->getValueAsString());
      }
    }
  }
  return rows;
}

ProjectStoryTest::Costs ProjectStoryTest::costs() {
  Costs all;
  for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
    all.push_back(data().getVariantCost(row));
  }
  return all;
}

std::string ProjectStoryTest::path(const std::string &file) const {
  return QDir(folder.path()).filePath(QString::fromStdString(file)).toStdString();
}

} // namespace StudyProperty
