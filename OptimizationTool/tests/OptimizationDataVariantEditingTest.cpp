#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <typeinfo>

namespace OptimizationTool {
namespace {

using HostTesting::FaultKind;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

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

class OptimizationDataVariantEditingTest : public ::testing::Test {
protected:
  void beginWithRows() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  RecordedStudy study;
};

using RemoveVariantTest = OptimizationDataVariantEditingTest;

TEST_F(RemoveVariantTest, RemoveVariant_IndexOutOfRange_ThrowsAndChangesNothing) {
  beginWithRows();

  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().removeVariant(3, true); }),
            "OptimizationData::removeVariant: Variant index out of range");
  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().removeVariant(5, false); }),
            "OptimizationData::removeVariant: Variant index out of range");

  EXPECT_EQ(study.host().texts(), Texts());
  EXPECT_EQ(study.data().getNumVariants(), 3U);
}

TEST_F(RemoveVariantTest, RemoveVariant_Baseline_ThrowsAndChangesNothing) {
  study.begin();

  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().removeVariant(0, true); }),
            "OptimizationData::removeVariant: removeVariant called on baseline");
  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().removeVariant(0, false); }),
            "OptimizationData::removeVariant: removeVariant called on baseline");

  EXPECT_EQ(study.host().texts(), Texts());
  EXPECT_EQ(study.data().getNumVariants(), 1U);
}

TEST_F(RemoveVariantTest, RemoveVariant_IndexZeroWithoutRows_IsOutOfRange) {
  study.makeEntity();

  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().removeVariant(0, true); }),
            "OptimizationData::removeVariant: Variant index out of range");
}

TEST_F(RemoveVariantTest, RemoveVariant_WithDestruction_CallsInOrder) {
  beginWithRows();

  study.data().removeVariant(1, true);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(-- ChangeManager::findVersion("A", entity=null))",
          R"(-- ChangeManager::destroyVersion("A", changes))",
          R"(-- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
          R"(-- EntityManager::setNeedsSave(true))",
      }));
  EXPECT_EQ(study.data().getNumVariants(), 2U);
  EXPECT_EQ(study.data().getVariantName(1), "B");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "B"}));
}

TEST_F(RemoveVariantTest, RemoveVariant_WithDestruction_NamesTheCurrentVersionOfTheHost) {
  beginWithRows();
  study.addVersion("Other", "Base");
  study.show("Other");
  study.host().clear();

  study.data().removeVariant(2, true);

  EXPECT_EQ(
      study.host().texts().at(2),
      R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))");
}

TEST_F(RemoveVariantTest, RemoveVariant_WithDestruction_HandsOnWhatTheHostRecordedAsChanged) {
  beginWithRows();
  study.show("A");

  study.data().removeVariant(1, true);

  EXPECT_EQ(
      study.host().texts().at(2),
      R"(ObserverManager::broadcastChangedVersion(changes[Fan.Speed, Fan.Angle, Pump.Speed], Root, "Base", reload=false, toSender=true))");
}

TEST_F(RemoveVariantTest, RemoveVariant_NoObserverManager_TellsNobody) {
  study.begin();
  study.addRow("A", "11", "21");
  study.faults().fail("EntityManager::getObserverManager", FaultKind::Null);
  study.reopen();
  study.data().initializeVariants(nullptr);
  study.host().clear();

  study.data().removeVariant(1, true);

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("A", entity=null))",
                                      R"(ChangeManager::destroyVersion("A", changes))",
                                      R"(EntityManager::setNeedsSave(true))",
                                  }));
}

TEST_F(RemoveVariantTest, RemoveVariant_WithoutDestruction_ReleasesTheVersion) {
  beginWithRows();

  study.data().removeVariant(1, false);

  EXPECT_EQ(study.host().textsWithState(), (Texts{
                                               R"(-- ChangeManager::findVersion("A", entity=null))",
                                               R"(-- ModelVersion::removeFromStudy("A"))",
                                               R"(-- ModelVersion::setReadOnlyVersion("A", "false"))",
                                               R"(-- EntityManager::setNeedsSave(true))",
                                           }));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "A", "B"}));
  EXPECT_FALSE(EmbeddedHost::Project::isReadOnly(*study.host().original(study.version("A"))));
  EXPECT_EQ(study.data().getNumVariants(), 2U);
  EXPECT_FALSE(study.data().containsVariant("A"));
}

TEST_F(RemoveVariantTest, RemoveVariant_RowWithoutVersion_GoesAllTheSame) {
  for (const bool destroys : {true, false}) {
    SCOPED_TRACE(destroys);
    RecordedStudy other;
    other.begin();
    other.addRow("A", "11", "21");
    other.destroy("A");
    other.host().clear();

    other.data().removeVariant(1, destroys);

    EXPECT_EQ(other.host().texts(), (Texts{
                                        R"(ChangeManager::findVersion("A", entity=null))",
                                        R"(EntityManager::setNeedsSave(true))",
                                    }));
    EXPECT_EQ(other.data().getNumVariants(), 1U);
  }
}

using SetVariantNameTest = OptimizationDataVariantEditingTest;

TEST_F(SetVariantNameTest, SetVariantName_IndexOutOfRange_ThrowsAndChangesNothing) {
  beginWithRows();

  EXPECT_EQ(thrownBy<std::out_of_range>([&] { study.data().setVariantName(3, "x"); }),
            "OptimizationData::setVariantName: Variant index out of range");

  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(SetVariantNameTest, SetVariantName_Baseline_ThrowsAnotherTypeThanRemoveVariant) {
  beginWithRows();

  EXPECT_EQ(thrownBy<std::logic_error>([&] { study.data().setVariantName(0, "x"); }),
            "OptimizationData::setVariantName: setVariantName called on baseline");

  EXPECT_EQ(study.data().getVariantName(0), "Base");
  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(SetVariantNameTest, SetVariantName_FolderStays_RelabelsTheVersionAndRenamesNothing) {
  beginWithRows();

  study.data().setVariantName(1, "C");

  EXPECT_EQ(study.host().textsWithState(), (Texts{
                                               R"(-- ChangeManager::findVersion("A", entity=null))",
                                               R"(-- ModelVersion::setLabel("A", "C"))",
                                               R"(-- ChangeManager::getVersionFolder("C", create=false))",
                                               R"(-- ChangeManager::getVersionFolder("C", create=false))",
                                               R"(-- EntityManager::setNeedsSave(true))",
                                           }));
  EXPECT_EQ(study.data().getVariantName(1), "C");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "C", "B"}));
}

TEST_F(SetVariantNameTest, SetVariantName_FolderChanges_RenamesTheStoreOfTheFirstAnswerToThatOfTheThird) {
  beginWithRows();
  study.adjusted().folderAnswers = {"first", "second", "third"};

  study.data().setVariantName(1, "C");

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("A", entity=null))",
                                      R"(ModelVersion::setLabel("A", "C"))",
                                      R"(ChangeManager::getVersionFolder("C", create=false))",
                                      R"(ChangeManager::getVersionFolder("C", create=false))",
                                      R"(ChangeManager::getVersionFolder("C", create=false))",
                                      R"(ProjectStore::getStoreDirectoryName(("study.opt", "first")))",
                                      R"(ProjectStore::getStoreDirectoryName(("study.opt", "third")))",
                                      R"(Directory::rename("first/store", "third/store"))",
                                      R"(EntityManager::setNeedsSave(true))",
                                  }));
}

TEST_F(SetVariantNameTest, SetVariantName_RowWithoutVersion_ChangesTheRowOnly) {
  beginWithRows();
  study.destroy("A");
  study.host().clear();

  study.data().setVariantName(1, "C");

  EXPECT_EQ(study.data().getVariantName(1), "C");
  EXPECT_EQ(study.host().texts(), (Texts{R"(ChangeManager::findVersion("A", entity=null))"}));
}

TEST_F(SetVariantNameTest, SetVariantName_NameIsTaken_IsNotChecked) {
  beginWithRows();

  study.data().setVariantName(2, "A");

  EXPECT_EQ(study.data().getVariantName(2), "A");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "A", "A"}));
}

using SetVariantValuesTest = OptimizationDataVariantEditingTest;

TEST_F(SetVariantValuesTest, SetVariantValues_WrongNumberOfValues_ThrowsBeforeTheNameIsLookedUp) {
  beginWithRows();
  const std::string expected = "Incorrect number of values provided to setVariantValues";

  EXPECT_EQ(thrownBy<std::logic_error>([&] { study.data().setVariantValues("A", {"12"}); }), expected);
  EXPECT_EQ(thrownBy<std::logic_error>([&] {
              study.data().setVariantValues("A", {"12", "22", "32"});
            }),
            expected);
  EXPECT_EQ(thrownBy<std::logic_error>([&] { study.data().setVariantValues("C", {}); }), expected);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(SetVariantValuesTest, SetVariantValues_NoSuchRow_Throws) {
  beginWithRows();

  EXPECT_EQ(thrownBy<std::logic_error>([&] {
              study.data().setVariantValues("C", {"12", "22"});
            }),
            "Invalid variant name provided to setVariantValues");

  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(SetVariantValuesTest, SetVariantValues_SetsTheCellsAndPushesTheRow) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% + %Fan.Angle%");
  study.host().clear();

  study.data().setVariantValues("A", {"13", "23"});

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("A", entity=null))",
          R"(E- ChangeManager::setCurrentVersion("A", null, force=false, progress=null, load=true))",
          R"(E- ModelVersion::setLabel("A", "A"))",
          R"(E- EntityEditor::setValue(Fan.Speed, "13", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Pump.Speed, "13", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Angle, "23", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Power, "100", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Noise, "50", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
      }));
  EXPECT_EQ(study.cells(1), (Texts{"13", "23", "100", "50"}));
  EXPECT_EQ(study.data().getVariantCost(1), std::optional<double>(36.0));
  EXPECT_EQ(study.data().getVariantCost(2), std::optional<double>(34.0));
  EXPECT_EQ(study.valueIn("A", study.pump(), "Speed"), "13");
}

TEST_F(SetVariantValuesTest, SetVariantValues_RowLacksACell_SetsTheOthers) {
  beginWithRows();
  study.data().getGroups(true).appendGroup();

  study.data().setVariantValues("A", {"13", "23", "33"});

  EXPECT_EQ(study.cells(1), (Texts{"13", "23", "-", "100", "50"}));
}

TEST_F(SetVariantValuesTest, SetVariantValues_EmptyText_ThrowsBeforeAnythingIsPushed) {
  beginWithRows();

  EXPECT_THROW(study.data().setVariantValues("A", {"13", ""}), std::exception);

  EXPECT_EQ(study.cells(1), (Texts{"13", "21", "100", "50"}));
  EXPECT_EQ(study.host().texts(), Texts());
}

using SetVariantValueTest = OptimizationDataVariantEditingTest;

TEST_F(SetVariantValueTest, SetVariantValue_RowOutOfRange_DoesNothing) {
  beginWithRows();

  study.data().setVariantValue(3, 0, "13");

  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(SetVariantValueTest, SetVariantValue_SetsTheCellAndPushesTheRow) {
  beginWithRows();

  study.data().setVariantValue(2, 1, "23");

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("B", entity=null))",
          R"(E- ChangeManager::setCurrentVersion("B", null, force=false, progress=null, load=true))",
          R"(E- ModelVersion::setLabel("B", "B"))",
          R"(E- EntityEditor::setValue(Fan.Speed, "12", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Pump.Speed, "12", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Angle, "23", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Power, "100", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Noise, "50", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
      }));
  EXPECT_EQ(study.cells(2), (Texts{"12", "23", "100", "50"}));
  EXPECT_EQ(study.valueIn("B", study.fan(), "Angle"), "23");
}

TEST_F(SetVariantValueTest, SetVariantValue_BaselineRow_WritesTheBaselineWithoutASwitch) {
  beginWithRows();

  study.data().setVariantValue(0, 0, "13");

  EXPECT_EQ(study.host().texts().at(1), R"(ModelVersion::setLabel("Base", "Base"))");
  EXPECT_EQ(study.host().texts().back(), R"(EntityManager::setNeedsSave(true))");
  EXPECT_EQ(study.valueIn("Base", study.pump(), "Speed"), "13");
}

TEST_F(SetVariantValueTest, SetVariantValue_ReadsTheOutputsBackAndPricesTheRow) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% + %Fan.Power%");

  study.data().setVariantValue(1, 0, "13");

  EXPECT_EQ(study.data().getVariantCost(1), std::optional<double>(113.0));
}

TEST_F(SetVariantValueTest, SetVariantValue_NoSuchCell_PushesTheRowAllTheSame) {
  beginWithRows();
  study.setValueIn("A", study.fan(), "Speed", "99");
  study.host().clear();

  study.data().setVariantValue(1, 5, "13");

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
  EXPECT_EQ(study.valueIn("A", study.fan(), "Speed"), "11");
}

TEST_F(SetVariantValueTest, SetVariantValue_EmptyText_ThrowsAndChangesNothing) {
  beginWithRows();

  EXPECT_THROW(study.data().setVariantValue(1, 0, ""), std::exception);
  EXPECT_THROW(study.data().setVariantValue(1, 0, "fast"), std::exception);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
  EXPECT_EQ(study.host().texts(), Texts());
}

} // namespace
} // namespace OptimizationTool
