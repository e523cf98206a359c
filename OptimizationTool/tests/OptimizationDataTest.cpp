#include "OptimizationTool/OptimizationData.h"

#include "EmbeddedHost/Commands.h"
#include "HostModel/Lookup.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <QMetaObject>

#include <type_traits>

namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersionStudyType;
using HostTesting::FaultKind;
using HostTesting::FaultyHost;
using HostTesting::RecordingHost;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroupVariable;
using StudyTesting::thrownBy;
using Strings = std::vector<std::string>;

static_assert(!std::is_copy_constructible_v<OptimizationData>);
static_assert(!std::is_copy_assignable_v<OptimizationData>);
static_assert(std::has_virtual_destructor_v<OptimizationData>);
static_assert(std::is_base_of_v<QObject, OptimizationData>);

// A host that offers nothing.
class BareHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

class VersionNames final : public EntityGUI::Observer {
public:
  VersionNames() : Observer(false, true) { EntityGUI::ObserverManager::process().addObserver(this); }
  VersionNames(const VersionNames &) = delete;
  VersionNames &operator=(const VersionNames &) = delete;
  ~VersionNames() override { EntityGUI::ObserverManager::process().removeObserver(this); }

  void changedVersion(EntityModel::ChangeSet & /*changes*/, Entity * /*entity*/,
                      const std::string &versionName, bool /*reload*/) override {
    names.push_back(versionName);
  }

  Strings names;
};

class OptimizationDataTest : public StudyTesting::StudyDataFixture {
protected:
  Entity *configuration() {
    return EntityModel::getLinkedEntity(studyEntity(),
                                        AttributePath(EntityModel::OptimalityConfigurationLink_t));
  }
  void mark(ModelVersionStudyType type) { changeManager().getCurrentVersion()->setStudyType(type); }
  /// Gives the variable an upper bound below its lower one, which is to be repaired.
  static void spoil(OptimizationGroupVariable variable) {
    variable.setLowBoundValue("30");
    variable.setHighBoundValue("20");
  }
};

TEST_F(OptimizationDataTest, Construction_BindsTheStudyEntity) {
  Entity *entity = createStudyEntity();
  const OptimizationData study(entity, nullptr);
  EXPECT_EQ(study.get(), entity);
}

TEST_F(OptimizationDataTest, Construction_TakesTheParent) {
  QObject parent;
  const OptimizationData study(createStudyEntity(), &parent);
  EXPECT_EQ(study.parent(), &parent);
}

TEST_F(OptimizationDataTest, Construction_NeitherEditsNorSolves) {
  const OptimizationData study(createStudyEntity(), nullptr);
  EXPECT_FALSE(study.isEditingVersions());
  EXPECT_FALSE(study.isEditingOperationRunning());
  EXPECT_FALSE(study.isSolvingVersions());
}

TEST_F(OptimizationDataTest, Construction_LeavesTheMatrixEmptyUntilItIsLoaded) {
  beginWithRows();
  EXPECT_EQ(reconstruct().getNumVariants(), 0U);
  data().initializeVariants(nullptr);
  EXPECT_EQ(data().getNumVariants(), 3U);
}

TEST_F(OptimizationDataTest, Construction_DoesNotBuildTheCostFunction) {
  beginWithRows();
  data().setCostFunction("1 +");
  reconstruct();
  EXPECT_EQ(data().getLastCostFunctionError(), "");
}

TEST_F(OptimizationDataTest, NullStudyEntity_GivesZeroCountsAndEmptyNames) {
  const OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(study.get(), nullptr);
  EXPECT_EQ(study.getNumInputs(), 0);
  EXPECT_EQ(study.getNumOutputs(), 0);
  EXPECT_EQ(study.getNumInputAttributes(), 0);
  EXPECT_EQ(study.getNumOutputAttributes(), 0);
  EXPECT_EQ(study.getNumVariants(), 0U);
  EXPECT_EQ(study.getBaseVersionName(), "");
  EXPECT_EQ(study.getCopyVersionName(), "");
  EXPECT_EQ(study.getCostFunction(), "");
  EXPECT_FALSE(study.getGroups(true));
  EXPECT_FALSE(study.getGroups(false));
}

TEST_F(OptimizationDataTest, NullStudyEntity_SettersDoNothing) {
  OptimizationData study(nullptr, nullptr);
  study.setBaseVersionName("Base");
  study.setCopyVersionName("Copy");
  EXPECT_EQ(study.getBaseVersionName(), "");
  EXPECT_EQ(study.getCopyVersionName(), "");
}

TEST_F(OptimizationDataTest, NullStudyEntityOfAnOptimalityStudy_CreatesNothing) {
  mark(ModelVersionStudyType::Optimality);
  RecordingHost &recording = record();
  const OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(recording.texts(), Strings());
}

TEST(OptimizationDataWithoutHostTest, EverythingIsNeutral) {
  OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(study.getStudyType(), ModelVersionStudyType::None);
  EXPECT_EQ(study.getNumInputs(), 0);
  EXPECT_EQ(study.getBaseVersionName(), "");
  EXPECT_TRUE(study.allVersionsExist());
  study.initializeVariants(nullptr);
  EXPECT_EQ(study.getNumVariants(), 0U);
  EXPECT_EQ(study.addVariant(std::vector<std::string>(), "", 0), 0U);
  study.createCopyVersion(true);
  study.createMissingVersions();
  EXPECT_EQ(study.getCopyVersionName(), "");
}

TEST_F(OptimizationDataTest, GetGroups_AnswersTheSideAskedFor) {
  begin();
  addInput("FanA.Speed");
  addInput("FanA.Ratio");
  addOutput("FanA.Power");
  EXPECT_TRUE(data().getGroups(true).isInput());
  EXPECT_EQ(data().getGroups(true).size(), 2);
  EXPECT_FALSE(data().getGroups(false).isInput());
  EXPECT_EQ(data().getGroups(false).size(), 1);
}

TEST_F(OptimizationDataTest, GetNumInputs_CountsGroupsNotVariables) {
  begin();
  addInput("FanA.Speed");
  addVariable(true, 0, "FanB.Speed");
  addVariable(true, 0, "FanA.Ratio");
  EXPECT_EQ(data().getNumInputs(), 1);
  EXPECT_EQ(data().getNumOutputs(), 0);
}

TEST_F(OptimizationDataTest, GetNumOutputs_CountsGroupsNotVariables) {
  begin();
  addOutput("FanA.Power");
  addOutput("FanA.Noise");
  addVariable(false, 0, "FanB.Power");
  EXPECT_EQ(data().getNumOutputs(), 2);
  EXPECT_EQ(data().getNumInputs(), 0);
}

TEST_F(OptimizationDataTest, GetNumInputs_ReadsTheModelEachTime) {
  begin();
  addInput("FanA.Speed");
  EntityModel::EntityEditor::deleteEntity(data().getGroup(true, 0).get(), false, true);
  EXPECT_EQ(data().getNumInputs(), 0);
}

TEST_F(OptimizationDataTest, EntityWithoutLists_HasNoGroups) {
  const OptimizationData study(fan("FanA"), nullptr);
  EXPECT_EQ(study.getNumInputs(), 0);
  EXPECT_EQ(study.getNumOutputs(), 0);
}

TEST_F(OptimizationDataTest, EntityWhoseListsAreNoLists_HasNoGroups) {
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::OptimizationInputs_t),
             std::make_unique<StudyTesting::ScriptedAttribute>("two groups"));
  entity.add(AttributePath(EntityModel::OptimizationOutputs_t),
             std::make_unique<StudyTesting::ScriptedAttribute>("one group"));
  const OptimizationData study(&entity, nullptr);
  EXPECT_EQ(study.getNumInputs(), 0);
  EXPECT_EQ(study.getNumOutputs(), 0);
}

TEST_F(OptimizationDataTest, GetNumVariants_CountsRows) {
  beginWithRows();
  EXPECT_EQ(data().getNumVariants(), 3U);
}

TEST_F(OptimizationDataTest, GetStudyType_IsThatOfTheCurrentVersion) {
  beginWithRows();
  EXPECT_EQ(data().getStudyType(), ModelVersionStudyType::Parametric);
  switchTo("Row 1");
  EXPECT_EQ(data().getStudyType(), ModelVersionStudyType::None);
}

TEST_F(OptimizationDataTest, GetStudyType_PassesAnyOtherValueThrough) {
  begin(static_cast<ModelVersionStudyType>(7));
  EXPECT_EQ(data().getStudyType(), static_cast<ModelVersionStudyType>(7));
}

TEST_F(OptimizationDataTest, GetStudyType_WithoutCurrentVersionIsNone) {
  begin();
  FaultyHost &faulty = injectFaults();
  faulty.fail("ChangeManager::getCurrentVersion", FaultKind::Null);
  EXPECT_EQ(data().getStudyType(), ModelVersionStudyType::None);
}

TEST_F(OptimizationDataTest, StudyTypeName_IsThatOfTheCurrentVersion) {
  begin(ModelVersionStudyType::Calibration);
  EXPECT_EQ(data().getDefaultAlternateVersionName(1), "Calibration Alternate 1 of Base");
}

TEST_F(OptimizationDataTest, StudyTypeName_WithoutCurrentVersionIsThatOfNone) {
  begin(ModelVersionStudyType::Calibration);
  FaultyHost &faulty = injectFaults();
  faulty.fail("ChangeManager::getCurrentVersion", FaultKind::Null);
  EXPECT_EQ(data().getDefaultAlternateVersionName(1), "Ordinary Alternate 1 of Base");
}

TEST_F(OptimizationDataTest, VersionNames_AreEmptyUntilTheyAreStored) {
  Entity *entity = EntityModel::EntityEditor::createEntity(EntityModel::OptimizationData_t, root(),
                                                           AttributePath(EntityModel::OptimizationDataList_t),
                                                           nullptr, true, true, false, "", -1);
  const OptimizationData study(entity, nullptr);
  EXPECT_EQ(study.getBaseVersionName(), "");
  EXPECT_EQ(study.getCopyVersionName(), "");
}

TEST_F(OptimizationDataTest, VersionNames_AreStoredInTheStudyEntity) {
  OptimizationData study(createStudyEntity(), nullptr);
  study.setBaseVersionName("First");
  study.setCopyVersionName("Second");
  EXPECT_EQ(study.getBaseVersionName(), "First");
  EXPECT_EQ(study.getCopyVersionName(), "Second");
  EXPECT_EQ(project().attribute(study.get(), "BaseVersionName")->getValueAsString(), "First");
  EXPECT_EQ(project().attribute(study.get(), "CopyVersionName")->getValueAsString(), "Second");
}

TEST_F(OptimizationDataTest, SetBaseVersionName_SetsTheMemberOfTheEntity) {
  begin();
  RecordingHost &recording = record();
  recording.setAlias(studyEntity(), "Study");
  data().setBaseVersionName("Other");
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::setValue(Study.BaseVersionName, \"Other\", force=false, affected=null, "
                     "notify=true, edited=true)"}));
}

TEST_F(OptimizationDataTest, SetCopyVersionName_SetsTheMemberOfTheEntity) {
  begin();
  RecordingHost &recording = record();
  recording.setAlias(studyEntity(), "Study");
  data().setCopyVersionName("Other");
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::setValue(Study.CopyVersionName, \"Other\", force=false, affected=null, "
                     "notify=true, edited=true)"}));
}

TEST_F(OptimizationDataTest, SetVersionNames_PassTheExceptionOfTheHostOn) {
  begin();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::setValue", FaultKind::Throws);
  EXPECT_EQ(thrownBy([this] { data().setBaseVersionName("X"); }), "std::runtime_error: injected fault");
  EXPECT_EQ(thrownBy([this] { data().setCopyVersionName("X"); }), "std::runtime_error: injected fault");
  EXPECT_EQ(data().getBaseVersionName(), "Base");
}

TEST_F(OptimizationDataTest, OptimalityStudy_GetsExactlyOneConfiguration) {
  mark(ModelVersionStudyType::Optimality);
  RecordingHost &recording = record();
  Entity *entity = createStudyEntity();
  recording.setAlias(entity, "Study");
  recording.clear();
  const OptimizationData study(entity, nullptr);
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::createEntity(OptimalityConfiguration, Study.OptimalityConfigurationLink, "
                     "library=null, setDefaults=true, notify=true, select=false, \"\", position=-1)"}));
  ASSERT_NE(configuration(), nullptr);
  EXPECT_TRUE(configuration()->getType() == EntityModel::OptimalityConfiguration_t);
}

TEST_F(OptimizationDataTest, OptimalityStudyConstructedAgain_KeepsItsConfiguration) {
  begin(ModelVersionStudyType::Optimality);
  const RecordingHost &recording = record();
  const Entity *first = configuration();
  ASSERT_NE(first, nullptr);
  reconstruct();
  EXPECT_EQ(configuration(), first);
  EXPECT_EQ(recording.texts(), Strings());
}

TEST_F(OptimizationDataTest, StudiesOfOtherTypes_GetNoConfiguration) {
  for (const int type : {0, 1, 2, 4, 5}) {
    mark(static_cast<ModelVersionStudyType>(type));
    const OptimizationData study(createStudyEntity(), nullptr);
    EXPECT_EQ(
        EntityModel::getLinkedEntity(study.get(), AttributePath(EntityModel::OptimalityConfigurationLink_t)),
        nullptr)
        << type;
  }
}

TEST_F(OptimizationDataTest, OptimalityStudyWithoutCurrentVersion_GetsNoConfiguration) {
  mark(ModelVersionStudyType::Optimality);
  createStudyEntity();
  FaultyHost &faulty = injectFaults();
  faulty.fail("ChangeManager::getCurrentVersion", FaultKind::Null);
  reconstruct();
  EXPECT_EQ(configuration(), nullptr);
}

TEST_F(OptimizationDataTest, Construction_PassesTheExceptionOfTheHostOn) {
  mark(ModelVersionStudyType::Optimality);
  createStudyEntity();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::createEntity", FaultKind::Throws);
  EXPECT_EQ(thrownBy([this] { reconstruct(); }), "std::runtime_error: injected fault");
}

TEST_F(OptimizationDataTest, Construction_RepairsVariablesOfBothSides) {
  begin();
  addInput("FanA.Ratio");
  addOutput("FanA.Noise");
  spoil(data().getVariable(true, 0));
  spoil(data().getVariable(false, 0));
  reconstruct();
  EXPECT_EQ(data().getVariable(true, 0).getHighBoundValue(), "30");
  EXPECT_EQ(data().getVariable(false, 0).getHighBoundValue(), "30");
}

TEST_F(OptimizationDataTest, Construction_CreatesTheConfigurationAndThenRepairsInputsBeforeOutputs) {
  begin();
  addInput("FanA.Ratio");
  addOutput("FanA.Noise");
  spoil(data().getVariable(true, 0));
  spoil(data().getVariable(false, 0));
  mark(ModelVersionStudyType::Optimality);
  drop();
  RecordingHost &recording = record();
  recording.setAlias(studyEntity(), "Study");
  recording.clear();
  reconstruct();
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::createEntity(OptimalityConfiguration, Study.OptimalityConfigurationLink, "
                     "library=null, setDefaults=true, notify=true, select=false, \"\", position=-1)",
                     "EntityEditor::setValueNoThrow(Study.OptimizationInputs[0].OptimizationAttributes[0]."
                     "HighBoundValue, \"30\", force=false, affected=null, notify=true)",
                     "EntityEditor::setValueNoThrow(Study.OptimizationOutputs[0].OptimizationAttributes[0]."
                     "HighBoundValue, \"30\", force=false, affected=null, notify=true)"}));
}

TEST_F(OptimizationDataTest, Destruction_LeavesTheStudyInTheModel) {
  beginWithRows();
  Entity *entity = data().get();
  drop();
  EXPECT_EQ(studyEntity(), entity);
  EXPECT_EQ(reload().getNumInputs(), 3);
  EXPECT_EQ(rowNames(), Strings({"Base", "Row 1", "Row 2"}));
}

TEST_F(OptimizationDataTest, ChangeManager_IsTheOneOfConstruction) {
  beginWithRows();
  BareHost bare;
  const HostModel::HostInstallation installed(bare);
  EXPECT_EQ(data().getStudyType(), ModelVersionStudyType::Parametric);
  EXPECT_TRUE(data().allVersionsExist());
}

TEST_F(OptimizationDataTest, ObserverManager_IsTheOneOfConstruction) {
  beginWithRows();
  const VersionNames observer;
  BareHost bare;
  const HostModel::HostInstallation installed(bare);
  data().removeVariant(1, true);
  // The name is asked of the host that is installed now, and that one has none.
  EXPECT_EQ(observer.names, Strings({""}));
}

TEST_F(OptimizationDataTest, FlagLeftSetByAnException_CountsAsNoRunningOperation) {
  beginWithRows();
  FaultyHost &faulty = injectFaults();
  reconstruct();
  switchTo("Row 1");
  faulty.fail("ChangeManager::setCurrentVersion", FaultKind::Throws);
  EXPECT_EQ(thrownBy([this] { data().initializeVariants(nullptr); }), "std::runtime_error: injected fault");
  EXPECT_TRUE(data().isEditingVersions());
  EXPECT_FALSE(data().isEditingOperationRunning());
}

TEST_F(OptimizationDataTest, OperationThatEdits_CountsAsRunning) {
  beginWithRows();
  class Listener final : public EntityGUI::Observer {
  public:
    explicit Listener(const OptimizationData &data) : Observer(false, true), m_data(data) {
      EntityGUI::ObserverManager::process().addObserver(this);
    }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener() override { EntityGUI::ObserverManager::process().removeObserver(this); }
    void changedVersion(EntityModel::ChangeSet & /*changes*/, Entity * /*entity*/,
                        const std::string & /*name*/, bool /*reload*/) override {
      ++calls;
      wasRunning = wasRunning && m_data.isEditingOperationRunning() && m_data.isEditingVersions();
    }
    int calls = 0;
    bool wasRunning = true;

  private:
    const OptimizationData &m_data;
  };
  const Listener listener(data());
  data().setVariantValue(1, 0, "21");
  EXPECT_EQ(listener.calls, 2);
  EXPECT_TRUE(listener.wasRunning);
  EXPECT_FALSE(data().isEditingOperationRunning());
  EXPECT_FALSE(data().isEditingVersions());
}

TEST_F(OptimizationDataTest, MetaObject_HasTheNameAndTheOneSignal) {
  const QMetaObject &meta = OptimizationData::staticMetaObject;
  EXPECT_STREQ(meta.className(), "OptimizationTool::OptimizationData");
  EXPECT_EQ(meta.methodCount() - meta.methodOffset(), 1);
  const int index = meta.indexOfSignal("costFunctionChanged()");
  EXPECT_EQ(index, meta.methodOffset());
}

TEST_F(OptimizationDataTest, Tr_WithoutTranslationGivesTheText) {
  EXPECT_EQ(OptimizationData::tr("%1 Copy of %2").toStdString(), "%1 Copy of %2");
}

// Ordinary calls of hosts with literals, which must not be taken for null pointers or empty lists.
TEST_F(OptimizationDataTest, AddVariant_LiteralZeroIsTheBaseline) {
  beginWithRows();
  EXPECT_EQ(data().addVariant(0, "Third", 0), 3U);
  EXPECT_EQ(row(true, 3), Strings({"10 m/s", "5", "1"}));
}

TEST_F(OptimizationDataTest, AddVariant_EmptyBracesAreAnEmptyListOfValues) {
  beginWithRows();
  EXPECT_EQ(data().addVariant({}, "Third", 0), 0U);
  EXPECT_EQ(data().getNumVariants(), 3U);
}

TEST_F(OptimizationDataTest, AddVariant_BracesAreAListOfValues) {
  beginWithRows();
  EXPECT_EQ(data().addVariant({"40", "8", "4"}, "Third", 0), 3U);
  EXPECT_EQ(row(true, 3), Strings({"40 m/s", "8", "4"}));
}

TEST_F(OptimizationDataTest, AddVariant_TwoTextsInBracesAreTwoValues) {
  begin();
  addInput("FanA.Speed");
  addInput("FanA.Blades");
  EXPECT_EQ(data().addVariant({"40", "8"}, "First", 0), 1U);
  EXPECT_EQ(row(true, 1), Strings({"40 m/s", "8"}));
}

TEST_F(OptimizationDataTest, UpdateAlternate_LiteralZeroIsTheBaseline) {
  beginWithRows();
  setIn("Base", "FanA.Noise", "11");
  setIn("Row 1", "FanA.Noise", "12");
  data().updateAlternate(OptimizationData::ReadFromModel, 0);
  EXPECT_EQ(column(false, 1), Strings({"11", "", ""}));
}

TEST_F(OptimizationDataTest, UpdateAlternate_LiteralTextIsAName) {
  beginWithRows();
  setIn("Base", "FanA.Noise", "11");
  setIn("Row 1", "FanA.Noise", "12");
  data().updateAlternate(OptimizationData::ReadFromModel, "Row 1");
  EXPECT_EQ(column(false, 1), Strings({"", "12", ""}));
}

TEST_F(OptimizationDataTest, UpdateAlternates_NumbersInBracesAreRows) {
  beginWithRows();
  setIn("Base", "FanA.Noise", "11");
  setIn("Row 1", "FanA.Noise", "12");
  setIn("Row 2", "FanA.Noise", "13");
  data().updateAlternates(OptimizationData::ReadFromModel, {0, 2}, nullptr);
  EXPECT_EQ(column(false, 1), Strings({"11", "", "13"}));
}

TEST_F(OptimizationDataTest, UpdateAlternates_LiteralZeroInBracesIsTheBaseline) {
  beginWithRows();
  setIn("Base", "FanA.Noise", "11");
  data().updateAlternates(OptimizationData::ReadFromModel, {0}, nullptr);
  EXPECT_EQ(column(false, 1), Strings({"11", "", ""}));
}

TEST_F(OptimizationDataTest, UpdateAlternates_TwoTextsInBracesAreTwoNames) {
  beginWithRows();
  setIn("Row 1", "FanA.Noise", "12");
  setIn("Row 2", "FanA.Noise", "13");
  data().updateAlternates(OptimizationData::ReadFromModel, {"Row 1", "Row 2"}, nullptr);
  EXPECT_EQ(column(false, 1), Strings({"", "12", "13"}));
}

} // namespace
