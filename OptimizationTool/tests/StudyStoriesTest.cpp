// A study as an engineer works on it: through the manager, the study that it holds and the commands of the host,
// with a solver that is a formula.

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/Attribute.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "OptimizationTool/tests/ManagedStudy.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using EmbeddedHost::CommandResult;
using EmbeddedHost::Commands;
using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::Project;
using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;
using Texts = std::vector<std::string>;
using Costs = std::vector<std::optional<double>>;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

MemberType member(const std::string &label, MemberKind kind, const std::string &defaultText) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.defaultText = defaultText;
  return type;
}

// A fan has a speed and a number of blades; the solver finds its power and its noise.
EmbeddedHost::ModelSchema fanSchema() {
  MemberType speed = member("Speed", MemberKind::Real, "10");
  speed.standardUnit = "m/s";
  MemberType power = member("Power", MemberKind::Real, "");
  power.standardUnit = "W";
  power.isResult = true;
  MemberType noise = member("Noise", MemberKind::Real, "");
  noise.isResult = true;
  MemberType fans = member("Fans", MemberKind::EntityList, "");
  fans.targetType = "Fan";
  EmbeddedHost::ModelSchema schema;
  EXPECT_EQ(schema.declareType("Fan", {speed, member("Blades", MemberKind::Integer, "5"), power, noise}), "");
  EXPECT_EQ(schema.declareRootMembers({fans}), "");
  return schema;
}

class StudyStoriesTest : public ::testing::Test {
protected:
  StudyStoriesTest() {
    project = Project::create(fanSchema());
    project->createEntity("Fan", project->rootEntity(), "Fans", "Fan");
    show();
  }
  ~StudyStoriesTest() override {
    if (project != nullptr) {
      close();
    }
  }

  // The project window opens and closes.
  void show() {
    installation = std::make_unique<HostModel::HostInstallation>(*project);
    if (managerAtWork == nullptr) {
      managerAtWork = std::make_unique<StudyTesting::ManagerAtWork>();
    }
    commands = std::make_unique<Commands>(*project);
    commands->announceOpened();
  }
  void close() {
    EXPECT_EQ(commands->close().problem, "");
    EXPECT_EQ(manager().getData(), nullptr);
    commands.reset();
    installation.reset();
    project.reset();
  }
  void saveAs(const char *name) {
    EXPECT_EQ(commands->saveAs(QDir(folder.path()).filePath(QString::fromLatin1(name)).toStdString()).problem,
              "");
  }
  void save() { EXPECT_EQ(commands->save().problem, ""); }
  void open(const char *name) {
    std::string problem;
    project = Project::open(QDir(folder.path()).filePath(QString::fromLatin1(name)).toStdString(),
                            EmbeddedHost::OpenMode::ReadWrite, problem);
    ASSERT_NE(project, nullptr) << problem;
    show();
  }

  static OptimizationManager &manager() { return OptimizationManager::instance(); }
  static OptimizationData &data() { return *manager().getData(); }
  Entity *fan() const {
    return EntityModel::getLinkedEntities(project->rootEntity(), AttributePath("Fans")).at(0);
  }
  Attribute *value(const char *path) const { return project->attribute(fan(), path); }

  void beginStudy() {
    manager().beginStudy(ModelVersionStudyType::Parametric);
    manager().addInputAttribute(value("Speed"));
    manager().addInputAttribute(value("Blades"));
    manager().addOutputAttribute(value("Power"));
    manager().addOutputAttribute(value("Noise"));
    OptimizationGroupVariable speed = data().getVariable(true, 0);
    speed.setMinimumValue("5 m/s");
    speed.setMaximumValue("20 m/s");
    speed.setStepValue("1 m/s");
    data().setGroupName(true, 0, "Wind");
    data().setCostFunction("%Fan.Power% + %Fan.Noise%");
    data().setOptimisationTarget(OptimisationStrategy::Minimise);
  }
  void beginStudyWithRows() {
    beginStudy();
    data().addVariant({"12 m/s", "4"}, "A", kAtEnd);
    data().addVariant({"8 m/s", "6"}, "B", kAtEnd);
  }
  // Solves every row: power is speed^2 * blades, noise is speed + 10 * blades.
  void solve() {
    const OptimizationData *before = manager().getData();
    {
      const Commands::SolverRun run(*commands);
      const OptimizationDataSolvingGuard guard(data());
      for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
        switchTo(data().getVariantName(row));
        const double speed = value("Speed")->getStandardValue();
        const double blades = value("Blades")->getStandardValue();
        project->setValue(fan(), "Power", std::to_string(static_cast<int>(speed * speed * blades)));
        project->setValue(fan(), "Noise", std::to_string(static_cast<int>(speed + 10 * blades)));
      }
      switchTo(data().getBaseVersionName());
      EXPECT_EQ(manager().getData(), before);
    }
    data().updateAlternates(OptimizationData::ReadFromModel, nullptr);
  }
  void switchTo(const std::string &label) { EXPECT_EQ(commands->switchVersion(label).problem, ""); }
  CommandResult edit(const char *path, const char *text) {
    return commands->edit(fan(), AttributePath(path), text);
  }
  Texts versions() const {
    Texts labels;
    for (const ModelVersion *version : project->versions()) {
      labels.push_back(version->getLabel());
    }
    return labels;
  }
  // Every row: its name, then its inputs and outputs.
  static std::vector<Texts> matrix() {
    std::vector<Texts> rows;
    for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
      rows.push_back({data().getVariantName(row)});
      for (const bool isInput : {true, false}) {
        for (std::size_t group = 0; group < 2; ++group) {
          const Attribute *cell = data().getVariantGroup(isInput, row, group);
          rows.back().push_back(cell == nullptr ? "(none)" : cell->getValueAsString());
        }
      }
    }
    return rows;
  }
  static Costs costs() {
    Costs all;
    for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
      all.push_back(data().getVariantCost(row));
    }
    return all;
  }

  std::unique_ptr<StudyTesting::ManagerAtWork> managerAtWork;
  QTemporaryDir folder;
  std::unique_ptr<Project> project;
  std::unique_ptr<HostModel::HostInstallation> installation;
  std::unique_ptr<Commands> commands;
};

TEST_F(StudyStoriesTest, SetUp_RowsHaveTheirInputsAndNoResults) {
  beginStudyWithRows();

  EXPECT_EQ(matrix(),
            (std::vector<Texts>{
                {"Base", "10 m/s", "5", "", ""}, {"A", "12 m/s", "4", "", ""}, {"B", "8 m/s", "6", "", ""}}));
  EXPECT_EQ(project->currentVersion()->getLabel(), "Base");
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "A", "B"}));
}

TEST_F(StudyStoriesTest, Solve_FillsAndPricesEveryRow) {
  beginStudyWithRows();

  solve();

  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "500 W", "60"},
                                          {"A", "12 m/s", "4", "576 W", "52"},
                                          {"B", "8 m/s", "6", "384 W", "68"}}));
  EXPECT_EQ(costs(), (Costs{560.0, 628.0, 452.0}));
  EXPECT_EQ(project->currentVersion()->getLabel(), "Base");
}

TEST_F(StudyStoriesTest, Solve_AgainAfterAnEditOfTheMatrix_FollowsTheEdit) {
  beginStudyWithRows();
  solve();

  data().setVariantValue(1, 0, "20");
  EXPECT_EQ(matrix().at(1), (Texts{"A", "20 m/s", "4", "576 W", "52"}));
  solve();

  EXPECT_EQ(matrix().at(1), (Texts{"A", "20 m/s", "4", "1600 W", "60"}));
  EXPECT_EQ(costs(), (Costs{560.0, 1660.0, 452.0}));
}

TEST_F(StudyStoriesTest, EditOfTheModel_ChangesTheBaselineRowAndNoOther) {
  beginStudyWithRows();
  solve();

  ASSERT_EQ(edit("Speed", "11").problem, "");
  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "11 m/s", "5", "500 W", "60"},
                                          {"A", "12 m/s", "4", "576 W", "52"},
                                          {"B", "8 m/s", "6", "384 W", "68"}}));
  solve();

  EXPECT_EQ(costs(), (Costs{666.0, 628.0, 452.0}));
}

TEST_F(StudyStoriesTest, SwitchBackAndForth_TheStudyGoesAndComesBack) {
  beginStudyWithRows();
  solve();
  const std::vector<Texts> before = matrix();

  for (const char *label : {"A", "B", "Parametric Copy of Base", "A"}) {
    SCOPED_TRACE(label);
    switchTo(label);
    EXPECT_EQ(manager().getData(), nullptr);
    EXPECT_EQ(project->currentVersion()->getLabel(), label);
    switchTo("Base");
    ASSERT_NE(manager().getData(), nullptr);
    EXPECT_EQ(matrix(), before);
    EXPECT_EQ(costs(), (Costs{560.0, 628.0, 452.0}));
  }

  switchTo("A");
  switchTo("B");
  EXPECT_EQ(value("Speed")->getValueAsString(), "8 m/s");
  EXPECT_EQ(value("Power")->getValueAsString(), "384 W");
  EXPECT_EQ(manager().getData(), nullptr);
}

TEST_F(StudyStoriesTest, RenameRow_ItsVersionIsFoundUnderTheNewName) {
  beginStudyWithRows();
  solve();

  data().setVariantName(1, "Fast");
  switchTo("Fast");
  switchTo("Base");

  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "500 W", "60"},
                                          {"Fast", "12 m/s", "4", "576 W", "52"},
                                          {"B", "8 m/s", "6", "384 W", "68"}}));
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Fast", "B"}));
}

TEST_F(StudyStoriesTest, RemoveRow_WithItsVersion_BothAreGone) {
  beginStudyWithRows();

  data().removeVariant(1, true);
  switchTo("B");
  switchTo("Base");

  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "", ""}, {"B", "8 m/s", "6", "", ""}}));
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "B"}));
}

TEST_F(StudyStoriesTest, RemoveRow_KeepingItsVersion_TheVersionIsTheEngineersOwn) {
  beginStudyWithRows();

  data().removeVariant(1, false);
  switchTo("A");
  EXPECT_EQ(edit("Speed", "13").problem, "");
  switchTo("Base");

  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "", ""}, {"B", "8 m/s", "6", "", ""}}));
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "A", "B"}));
}

TEST_F(StudyStoriesTest, WhileTheStudyRuns_ItsVersionsAreProtected) {
  beginStudyWithRows();
  ModelVersion *base = project->rootVersion();
  ModelVersion *row = project->versions().at(2);

  EXPECT_FALSE(commands->renameVersion(base, "Start"));
  EXPECT_FALSE(commands->renameVersion(row, "Other"));
  EXPECT_FALSE(commands->deleteVersion(row));
  EXPECT_FALSE(edit("Speed", ""));
  EXPECT_TRUE(edit("Speed", "11"));
  EXPECT_FALSE(manager().canBeginStudy(row));
  EXPECT_TRUE(manager().canBeginStudy(base));
  switchTo("A");
  EXPECT_FALSE(edit("Speed", "11"));
}

TEST_F(StudyStoriesTest, WhileASolverRuns_TheProjectStaysOpenAndTheStudyInPlace) {
  beginStudyWithRows();
  OptimizationData *before = manager().getData();
  {
    const Commands::SolverRun run(*commands);
    const OptimizationDataSolvingGuard guard(data());

    EXPECT_FALSE(commands->close());
    switchTo("B");
    EXPECT_TRUE(edit("Speed", "1").problem == "The version \"B\" is read-only.");
    switchTo("Base");
    EXPECT_TRUE(edit("Speed", "14"));

    EXPECT_EQ(manager().getData(), before);
    EXPECT_EQ(matrix().at(0), (Texts{"Base", "10 m/s", "5", "", ""}));
  }
  // What was edited meanwhile is taken over with the next edit or load.
  manager().initializeVersion();
  EXPECT_EQ(matrix().at(0), (Texts{"Base", "14 m/s", "5", "", ""}));
}

TEST_F(StudyStoriesTest, SaveCloseReopen_EverythingIsFoundAgain) {
  beginStudyWithRows();
  solve();
  saveAs("fan.study");
  close();

  open("fan.study");

  ASSERT_NE(manager().getData(), nullptr);
  EXPECT_EQ(manager().getBaseVersionName(), "Base");
  EXPECT_EQ(manager().getStudyType(), ModelVersionStudyType::Parametric);
  EXPECT_EQ(data().getCopyVersionName(), "Parametric Copy of Base");
  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "500 W", "60"},
                                          {"A", "12 m/s", "4", "576 W", "52"},
                                          {"B", "8 m/s", "6", "384 W", "68"}}));
  EXPECT_EQ(costs(), (Costs{560.0, 628.0, 452.0}));
  EXPECT_EQ(data().getCostFunction(), "%Fan.Power% + %Fan.Noise%");
  EXPECT_EQ(data().getOptimisationTarget(), OptimisationStrategy::Minimise);
  const OptimizationGroupVariable speed = data().getVariable(true, 0);
  EXPECT_EQ(speed.getMinimumValue(), "5 m/s");
  EXPECT_EQ(speed.getMaximumValue(), "20 m/s");
  EXPECT_EQ(speed.getStepValue(), "1 m/s");
  EXPECT_EQ(data().getGroup(true, 0).getName(), "Wind");
  EXPECT_EQ(manager().getInputAttributes().size(), 2U);
  EXPECT_EQ(manager().getOutputAttributes().size(), 2U);
  EXPECT_TRUE(data().allVersionsExist());
}

TEST_F(StudyStoriesTest, SaveCloseReopen_TheWorkGoesOn) {
  beginStudyWithRows();
  solve();
  saveAs("fan.study");
  close();
  open("fan.study");

  EXPECT_EQ(data().addVariant({"9 m/s", "5"}, "C", kAtEnd), 3U);
  data().setVariantName(1, "Fast");
  data().removeVariant(2, true);
  solve();
  save();
  close();
  open("fan.study");

  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "500 W", "60"},
                                          {"Fast", "12 m/s", "4", "576 W", "52"},
                                          {"C", "9 m/s", "5", "405 W", "59"}}));
  EXPECT_EQ(costs(), (Costs{560.0, 628.0, 464.0}));
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Fast", "C"}));
}

TEST_F(StudyStoriesTest, SaveWhileARowIsShown_ReopensThereAndFindsTheStudyAtItsBaseline) {
  beginStudyWithRows();
  solve();
  switchTo("B");
  saveAs("fan.study");
  close();

  open("fan.study");

  EXPECT_EQ(project->currentVersion()->getLabel(), "B");
  EXPECT_EQ(manager().getData(), nullptr);
  switchTo("Base");
  ASSERT_NE(manager().getData(), nullptr);
  EXPECT_EQ(costs(), (Costs{560.0, 628.0, 452.0}));
}

TEST_F(StudyStoriesTest, CloseWithoutSaving_TheFileKeepsWhatWasSaved) {
  beginStudyWithRows();
  saveAs("fan.study");
  data().addVariant({"9 m/s", "5"}, "C", kAtEnd);
  manager().endStudy(true);
  close();

  open("fan.study");

  ASSERT_NE(manager().getData(), nullptr);
  EXPECT_EQ(matrix(),
            (std::vector<Texts>{
                {"Base", "10 m/s", "5", "", ""}, {"A", "12 m/s", "4", "", ""}, {"B", "8 m/s", "6", "", ""}}));
}

TEST_F(StudyStoriesTest, EndDestroyingVersions_LeavesTheModelAsItWas) {
  beginStudyWithRows();
  solve();

  manager().endStudy(true);
  saveAs("fan.study");
  close();
  open("fan.study");

  EXPECT_EQ(manager().getData(), nullptr);
  EXPECT_EQ(versions(), Texts{"Base"});
  EXPECT_EQ(value("Speed")->getValueAsString(), "10 m/s");
  EXPECT_EQ(project->rootVersion()->getStudyType(), ModelVersionStudyType::None);
  EXPECT_TRUE(manager().canBeginStudy(nullptr));
}

TEST_F(StudyStoriesTest, EndKeepingVersions_LeavesThemToTheEngineer) {
  beginStudyWithRows();
  solve();

  manager().endStudy(false);
  saveAs("fan.study");
  close();
  open("fan.study");

  EXPECT_EQ(manager().getData(), nullptr);
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "A", "B"}));
  switchTo("A");
  EXPECT_EQ(value("Power")->getValueAsString(), "576 W");
  EXPECT_EQ(edit("Speed", "13").problem, "");
  EXPECT_EQ(commands->renameVersion(project->versions().at(2), "Mine").problem, "");
  EXPECT_EQ(commands->deleteVersion(project->versions().at(3)).problem, "");
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Mine"}));
  EXPECT_TRUE(manager().canBeginStudy(nullptr));
}

TEST_F(StudyStoriesTest, EndAndBeginAgain_TheNewStudyHasItsOwnCopy) {
  beginStudyWithRows();
  manager().endStudy(false);

  beginStudy();
  data().addVariant({"15 m/s", "3"}, "", kAtEnd);
  solve();

  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "A", "B", "Parametric Copy of Base - 1",
                               "Parametric Alternate 1 of Base"}));
  EXPECT_EQ(matrix(), (std::vector<Texts>{{"Base", "10 m/s", "5", "500 W", "60"},
                                          {"Parametric Alternate 1 of Base", "15 m/s", "3", "675 W", "45"}}));
  EXPECT_EQ(costs(), (Costs{560.0, 720.0}));
}

TEST_F(StudyStoriesTest, StudyOfARow_StandsBesideTheStudyOfTheBaseline) {
  beginStudyWithRows();
  manager().endStudy(false);
  switchTo("A");
  beginStudy();
  data().addVariant({"14 m/s", "4"}, "A1", kAtEnd);
  switchTo("Base");
  EXPECT_EQ(manager().getData(), nullptr);
  manager().beginStudy(ModelVersionStudyType::Calibration);
  saveAs("two.study");
  close();

  open("two.study");

  EXPECT_EQ(manager().getBaseVersionName(), "Base");
  EXPECT_EQ(manager().getStudyType(), ModelVersionStudyType::Calibration);
  EXPECT_EQ(data().getNumVariants(), 1U);
  switchTo("A");
  EXPECT_EQ(manager().getBaseVersionName(), "A");
  EXPECT_EQ(matrix(), (std::vector<Texts>{{"A", "12 m/s", "4", "", ""}, {"A1", "14 m/s", "4", "", ""}}));
}

TEST_F(StudyStoriesTest, Optimality_InputsAreSeededAndComeBack) {
  manager().beginStudy(ModelVersionStudyType::Optimality);
  manager().addInputAttribute(value("Speed"));
  EXPECT_FALSE(OptimizationManager::isItemValid(value("Blades"), true, false, manager().getStudyType()));
  EXPECT_TRUE(OptimizationManager::isItemValid(value("Power"), false, true, manager().getStudyType()));
  saveAs("optimality.study");
  close();

  open("optimality.study");

  EXPECT_EQ(manager().getStudyType(), ModelVersionStudyType::Optimality);
  EXPECT_EQ(data().getVariable(true, 0).getMinimumValue(), "10 m/s");
  EXPECT_EQ(data().getVariable(true, 0).getMaximumValue(), "10 m/s");
  EXPECT_EQ(data().getCopyVersionName(), "Optimality Copy of Base");
}

} // namespace
} // namespace OptimizationTool
