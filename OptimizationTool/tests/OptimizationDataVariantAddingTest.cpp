#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <stdexcept>
#include <typeinfo>

namespace OptimizationTool {
namespace {

using EmbeddedHost::HostBehaviour;
using HostTesting::FaultKind;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

// What the call throws, as its text; "" when it throws nothing, "another type" for any other exception.
template <class Exception, class Call> std::string thrownBy(Call call) {
  try {
    call();
  } catch (const Exception &error) {
    return typeid(error) == typeid(Exception) ? error.what() : "another type";
  } catch (...) {
    return "another type";
  }
  return "";
}

class AddVariantTest : public ::testing::Test {
protected:
  void beginWithRows() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  RecordedStudy study;
};

TEST_F(AddVariantTest, AddVariant_HostKeepsTheCurrentVersion_CallsInOrder) {
  study.begin();

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "", 7), 1U);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::getUniqueName("Steady Alternate 1 of Base", {}))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- ChangeManager::startNewAlternate("Steady Copy of Base", changes, copyContent=true, position=7))",
          R"text(E- ModelVersion::setLabel("Steady Copy of Base (2)", "Steady Alternate 1 of Base"))text",
          R"(E- ModelVersion::clearStudy("Steady Alternate 1 of Base"))",
          R"(E- ModelVersion::setReadOnlyVersion("Steady Alternate 1 of Base", "true"))",
          R"(E- ChangeManager::setCurrentVersion("Steady Alternate 1 of Base", changes, force=false, progress=null, load=true))",
          R"(E- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
          R"(E- ChangeManager::editedVersion("Steady Alternate 1 of Base", changes, notify=true))",
          R"(E- ChangeManager::getVersionFolder("Steady Copy of Base", create=false))",
          R"(E- ChangeManager::getVersionFolder("Steady Alternate 1 of Base", create=false))",
          R"(E- ProjectStore::remove(("study.opt", "folders/Steady Alternate 1 of Base")))",
          R"(E- ProjectStore::copyResults(from=("study.opt", "folders/Steady Copy of Base"), to=("study.opt", "folders/Steady Alternate 1 of Base"), move=false, progress=null, overwrite=true))",
          R"(E- EntityManager::checkSelectionsAreValid())",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- EntityManager::setValue(Fan.Speed, "11", notify=true))",
          R"(E- EntityManager::setValue(Pump.Speed, "11", notify=true))",
          R"(E- EntityManager::setValue(Fan.Angle, "21", notify=true))",
          R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
          R"(E- ObserverManager::broadcastChangedVersion(changes[Fan.Speed, Fan.Angle, Pump.Speed], Root, "Base", reload=false, toSender=true))",
      }));
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(AddVariantTest, AddVariant_HostMakesTheNewVersionCurrent_DoesNotSwitchToItAgain) {
  for (const bool notifies : {true, false}) {
    SCOPED_TRACE(notifies);
    HostBehaviour behaviour;
    behaviour.switchesNotify = notifies;
    behaviour.newVersionsBecomeCurrent = true;
    RecordedStudy other(behaviour);
    other.begin();

    EXPECT_EQ(other.data().addVariant({"11", "21"}, "A", 7), 1U);

    EXPECT_EQ(
        other.host().textsWithState(),
        (Texts{
            R"(E- ChangeManager::getUniqueName("A", {}))",
            R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
            R"(E- ChangeManager::startNewAlternate("Steady Copy of Base", changes, copyContent=true, position=7))",
            R"text(E- ModelVersion::setLabel("Steady Copy of Base (2)", "A"))text",
            R"(E- ModelVersion::clearStudy("A"))",
            R"(E- ModelVersion::setReadOnlyVersion("A", "true"))",
            R"(E- ChangeManager::editedVersion("A", changes, notify=true))",
            R"(E- ChangeManager::getVersionFolder("Steady Copy of Base", create=false))",
            R"(E- ChangeManager::getVersionFolder("A", create=false))",
            R"(E- ProjectStore::remove(("study.opt", "folders/A")))",
            R"(E- ProjectStore::copyResults(from=("study.opt", "folders/Steady Copy of Base"), to=("study.opt", "folders/A"), move=false, progress=null, overwrite=true))",
            R"(E- EntityManager::checkSelectionsAreValid())",
            R"(E- EntityManager::setNeedsSave(true))",
            R"(E- EntityManager::setValue(Fan.Speed, "11", notify=true))",
            R"(E- EntityManager::setValue(Pump.Speed, "11", notify=true))",
            R"(E- EntityManager::setValue(Fan.Angle, "21", notify=true))",
            R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
            R"(E- ObserverManager::broadcastChangedVersion(changes[Fan.Speed, Fan.Angle, Pump.Speed], Root, "Base", reload=false, toSender=true))",
        }));
    EXPECT_EQ(other.currentLabel(), "Base");
  }
}

TEST_F(AddVariantTest, AddVariant_EveryNotificationOfTheHostComesWithTheEditingFlagSet) {
  for (const bool becomesCurrent : {false, true}) {
    SCOPED_TRACE(becomesCurrent);
    HostBehaviour behaviour;
    behaviour.newVersionsBecomeCurrent = becomesCurrent;
    RecordedStudy other(behaviour);
    other.begin();

    other.data().addVariant({"11", "21"}, "A", kAtEnd);

    int notifications = 0;
    for (const HostTesting::RecordedCall &call : other.host().calls()) {
      if (call.isByHost && call.operation == "ObserverManager::broadcastChangedVersion") {
        ++notifications;
        EXPECT_TRUE(call.state.isEditing) << call.text;
      }
    }
    EXPECT_EQ(notifications, 2);
  }
}

TEST_F(AddVariantTest, AddVariant_AnotherVersionWasCurrent_ComesBackToItAndNamesIt) {
  study.begin();
  study.addVersion("Other", "Base");
  study.show("Other");
  study.host().clear();

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", kAtEnd), 1U);

  EXPECT_EQ(study.currentLabel(), "Other");
  Texts notifications;
  for (const std::string &text : study.host().texts()) {
    if (text.rfind("ObserverManager", 0) == 0) {
      notifications.push_back(text);
    }
  }
  EXPECT_EQ(
      notifications,
      (Texts{
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))",
          R"(ObserverManager::broadcastChangedVersion(changes[Fan.Speed, Fan.Angle, Pump.Speed], Root, "Other", reload=false, toSender=true))",
      }));
}

TEST_F(AddVariantTest, AddVariant_WayBack_NamesTheChangesOfTheWayBackOnly) {
  study.begin();
  study.addVersion("Other", "Base");
  study.setValueIn("Other", study.fan(), "Angle", "21");
  study.show("Other");
  study.host().clear();

  study.data().addVariant({"10", "21"}, "A", kAtEnd);

  Texts notifications;
  for (const std::string &text : study.host().texts()) {
    if (text.rfind("ObserverManager", 0) == 0) {
      notifications.push_back(text);
    }
  }
  // There the angle changes from 21 to 20; back again nothing does, since the row has an angle of 21 by then.
  EXPECT_EQ(
      notifications,
      (Texts{
          R"(ObserverManager::broadcastChangedVersion(changes[Fan.Angle], Root, "Other", reload=false, toSender=true))",
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))",
      }));
}

TEST_F(AddVariantTest, AddVariant_WrongNumberOfValues_IsZeroAndChangesNothing) {
  study.begin();
  const std::vector<std::string> none;
  const std::vector<std::string> one = {"11"};
  const std::vector<std::string> three = {"11", "21", "31"};

  EXPECT_EQ(study.data().addVariant(none, "A", kAtEnd), 0U);
  EXPECT_EQ(study.data().addVariant(one, "A", kAtEnd), 0U);
  EXPECT_EQ(study.data().addVariant(three, "A", kAtEnd), 0U);

  EXPECT_EQ(study.host().texts(), Texts());
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
  EXPECT_EQ(study.data().getNumVariants(), 1U);
}

TEST_F(AddVariantTest, AddVariant_TwoValuesForThreeGroupsAndNoName_IsZeroAndCreatesNoVersion) {
  study.begin();
  study.data().addGroup(true, study.attribute(study.pump(), "Angle"));

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "", kAtEnd), 0U);

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
}

TEST_F(AddVariantTest, AddVariant_BracesWithoutValues_AreNoValuesAndNotRowZero) {
  study.begin();

  EXPECT_EQ(study.data().addVariant({}, "A", kAtEnd), 0U);

  EXPECT_EQ(study.data().getNumVariants(), 1U);
}

TEST_F(AddVariantTest, AddVariant_WithoutName_TakesTheFirstDefaultNameThatIsFree) {
  study.begin();
  study.addVersion("Steady Alternate 1 of Base", "Base");
  study.addVersion("Steady Alternate 2 of Base", "Base");
  study.addVersion("Steady Alternate 4 of Base", "Base");

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "", kAtEnd), 1U);
  EXPECT_EQ(study.data().addVariant({"12", "22"}, "", kAtEnd), 2U);

  EXPECT_EQ(study.data().getVariantName(1), "Steady Alternate 3 of Base");
  EXPECT_EQ(study.data().getVariantName(2), "Steady Alternate 5 of Base");
}

TEST_F(AddVariantTest, AddVariant_NameIsTaken_TakesTheFormThatTheHostGives) {
  beginWithRows();
  study.adjusted().uniqueNames["A"] = "A, once more";

  EXPECT_EQ(study.data().addVariant({"13", "23"}, "A", kAtEnd), 3U);

  EXPECT_EQ(study.data().getVariantName(3), "A, once more");
  EXPECT_NE(study.version("A, once more"), nullptr);
}

TEST_F(AddVariantTest, AddVariant_HostGivesNoName_IsZeroAndEnds) {
  study.begin();
  study.adjusted().givesNoUniqueNames = true;

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "", kAtEnd), 0U);
  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", kAtEnd), 0U);

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
}

TEST_F(AddVariantTest, AddVariant_NoCopyVersion_IsZeroAndCreatesNoVersion) {
  study.begin();
  study.destroy("Steady Copy of Base");
  study.host().clear();

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", kAtEnd), 0U);

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::getUniqueName("A", {}))",
                                      R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))",
                                  }));
  EXPECT_EQ(study.data().getNumVariants(), 1U);
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(AddVariantTest, AddVariant_HostRefusesTheAlternate_IsZero) {
  study.begin();
  study.faults().fail("ChangeManager::startNewAlternate", FaultKind::Null);

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", 3), 0U);

  EXPECT_EQ(
      study.host().texts(),
      (Texts{
          R"(ChangeManager::getUniqueName("A", {}))",
          R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(ChangeManager::startNewAlternate("Steady Copy of Base", changes, copyContent=true, position=3))",
      }));
  EXPECT_EQ(study.data().getNumVariants(), 1U);
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(AddVariantTest, AddVariant_AlternateIsAReadOnlyStudyCaseAtTheGivenPlace) {
  beginWithRows();

  study.data().addVariant({"13", "23"}, "C", 1);

  std::vector<EntityModel::ModelVersion *> alternates;
  EntityModel::ChangeManager &manager = study.project().changeManager();
  manager.getAlternates(manager.findVersion("Steady Copy of Base", nullptr), alternates);
  ASSERT_EQ(alternates.size(), 3U);
  EXPECT_EQ(alternates[0]->getLabel(), "A");
  EXPECT_EQ(alternates[1]->getLabel(), "C");
  EXPECT_EQ(alternates[2]->getLabel(), "B");
  EXPECT_TRUE(EmbeddedHost::Project::isReadOnly(*alternates[1]));
  EXPECT_TRUE(alternates[1]->isStudyCase(true, false));
  // The new row stands last all the same.
  EXPECT_EQ(study.data().getVariantName(3), "C");
}

TEST_F(AddVariantTest, AddVariant_EveryVariableOfAGroupGetsItsValue) {
  study.begin();

  study.data().addVariant({"11", "21"}, "A", kAtEnd);

  EXPECT_EQ(study.valueIn("A", study.fan(), "Speed"), "11");
  EXPECT_EQ(study.valueIn("A", study.pump(), "Speed"), "11");
  EXPECT_EQ(study.valueIn("A", study.fan(), "Angle"), "21");
  EXPECT_EQ(study.valueIn("A", study.pump(), "Angle"), "20");
  EXPECT_EQ(study.valueIn("Base", study.fan(), "Speed"), "10");
}

TEST_F(AddVariantTest, AddVariant_RowHasTheValuesOfTheNewVersionAndNoCost) {
  study.begin();
  study.data().setCostFunction("%Fan.Speed%");

  study.data().addVariant({"11.50", "21"}, "A", kAtEnd);

  EXPECT_EQ(study.cells(1), (Texts{"11.5", "21", "100", "50"}));
  EXPECT_EQ(study.data().getVariantCost(1), std::nullopt);
}

TEST_F(AddVariantTest, AddVariant_VariableThatTheVersionDoesNotHave_IsSkipped) {
  study.begin();
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(study.pump(), false, true));

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", kAtEnd), 1U);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
}

TEST_F(AddVariantTest, AddVariant_ValueIsRefused_ThrowsAndRollsNothingBack) {
  study.begin();

  EXPECT_THROW(study.data().addVariant({"11", "fast"}, "A", kAtEnd), std::exception);

  EXPECT_EQ(study.currentLabel(), "A");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "A"}));
  EXPECT_EQ(study.data().getNumVariants(), 1U);
  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_FALSE(study.data().isEditingOperationRunning());
}

TEST_F(AddVariantTest, AddVariant_NoObserverManager_TellsNobody) {
  study.faults().fail("EntityManager::getObserverManager", FaultKind::Null);
  study.begin();

  EXPECT_EQ(study.data().addVariant({"11", "21"}, "A", kAtEnd), 1U);

  for (const std::string &text : study.host().texts()) {
    EXPECT_EQ(text.find("broadcast"), std::string::npos) << text;
  }
}

TEST_F(AddVariantTest, AddVariantFromRow_IndexEqualToCount_Throws) {
  beginWithRows();

  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().addVariant(3, "C", kAtEnd); }),
            "OptimizationData::addVariant: Variant index out of range");

  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(AddVariantTest, AddVariantFromRow_TakesTheInputValuesOfTheRow) {
  beginWithRows();

  EXPECT_EQ(study.data().addVariant(2, "C", kAtEnd), 3U);

  EXPECT_EQ(study.cells(3), (Texts{"12", "22", "100", "50"}));
  EXPECT_EQ(study.valueIn("C", study.pump(), "Speed"), "12");
}

TEST_F(AddVariantTest, AddVariantFromRow_LiteralZero_IsTheBaseline) {
  beginWithRows();

  EXPECT_EQ(study.data().addVariant(0, "C", kAtEnd), 3U);

  EXPECT_EQ(study.cells(3), (Texts{"10", "20", "100", "50"}));
}

TEST_F(AddVariantTest, AddVariantFromRow_HandsNameAndPlaceOn) {
  beginWithRows();

  study.data().addVariant(1, "C", 5);

  EXPECT_EQ(study.host().texts().at(0), R"(ChangeManager::getUniqueName("C", {}))");
  EXPECT_EQ(
      study.host().texts().at(2),
      R"(ChangeManager::startNewAlternate("Steady Copy of Base", changes, copyContent=true, position=5))");
}

TEST_F(AddVariantTest, AddVariantFromRow_RowLacksAnInputCell_IsZero) {
  beginWithRows();
  study.data().getGroups(true).appendGroup();
  study.host().clear();

  EXPECT_EQ(study.data().addVariant(1, "C", kAtEnd), 0U);

  EXPECT_EQ(study.host().texts(), Texts());
  EXPECT_EQ(study.data().getNumVariants(), 3U);
}

} // namespace
} // namespace OptimizationTool
