// A rule that no host can break proves nothing: hosts with one defect each have to fail.

#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/hosts/BrokenHost.h"
#include "tests/contract/hosts/Hosts.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace HostContract {

namespace {

using HostTesting::FaultKind;
using Defect = std::function<void(BrokenHost &)>;

struct Control {
  std::string rule;
  std::string name;
  Defect defect;
};

// The operation has no effect and answers false, null, "" or nothing.
Defect refuse(const char *operation) {
  return [operation](BrokenHost &host) {
    const std::vector<FaultKind> kinds = BrokenHost::kinds(operation);
    const bool isRefusable = std::count(kinds.begin(), kinds.end(), FaultKind::Refused) != 0;
    host.fail(operation, isRefusable ? FaultKind::Refused : FaultKind::Null);
  };
}

Defect alsoDo(const char *operation, const std::function<void()> &action) {
  return [operation, action](BrokenHost &host) {
    host.onCall(operation, action);
  };
}

void tellOfAVersion() {
  EntityModel::ChangeSet changes;
  EntityGUI::ObserverManager::process().broadcastChangedVersion(changes, nullptr, "V", false, true);
}

const Rule &ruleNamed(const std::string &name) {
  const std::vector<Rule> &rules = contractRules();
  const auto found =
      std::find_if(rules.begin(), rules.end(), [&name](const Rule &rule) { return rule.name == name; });
  if (found == rules.end()) {
    throw std::logic_error("There is no rule " + name);
  }
  return *found;
}

struct Outcome {
  int failures = 0;
  int defectsShown = 0;
};

/// Runs the rule over a wrapped host, which gets the defect once it is set up.
Outcome outcomeOf(const Rule &rule, const HostKind &sound, const Defect &defect) {
  HostKind breakable = sound;
  BreakableHostUnderTest *made = nullptr;
  breakable.make = [&sound, &made] {
    auto host = std::make_unique<BreakableHostUnderTest>(sound.make());
    made = made == nullptr ? host.get() : made;
    return host;
  };
  Outcome outcome;
  testing::TestPartResultArray failures;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    runRule(
        rule, breakable, [&] { defect(made->wrapper()); },
        [&] { outcome.defectsShown = made->wrapper().defectsShown(); });
  }
  outcome.failures = failures.size();
  return outcome;
}

std::vector<Control> controls() {
  return {
      {"Tree_Followers_StandInOrderOfCreation", "NoFollowers", refuse("ModelVersion::beginNext")},
      {"Tree_Alternates_StandInOrderOfTheirPositions", "NoAlternates",
       refuse("ChangeManager::getAlternates")},
      {"Tree_NewAlternate_FollowsWhatItsOriginFollows", "NoPrevious", refuse("ModelVersion::getPrevious")},
      {"Marks_CopyCleared_TheAlternatesAreOrdinaryAgain", "NothingCleared",
       refuse("ModelVersion::clearStudy")},
      {"Marks_RemoveFromStudy_EndsTheCaseButNotTheVersion", "NotRemoved",
       refuse("ModelVersion::removeFromStudy")},
      {"Switch_MakesTheVersionCurrent", "NoSwitch", refuse("ChangeManager::setCurrentVersion")},
      {"Switch_TellsObserversOnceOfTheRootAndTheNewLabel", "SaysNothing",
       refuse("ObserverManager::broadcastChangedVersion")},
      {"Switch_TellsObserversOnceOfTheRootAndTheNewLabel", "SaysItTwice",
       alsoDo("ChangeManager::setCurrentVersion", tellOfAVersion)},
      {"Create_NewVersions_AreNeitherCurrentNorAnnounced", "Announced",
       alsoDo("ChangeManager::startNewVersion", tellOfAVersion)},
      {"Label_Find_ComparesBytes", "NothingFound", refuse("ChangeManager::findVersion")},
      {"Label_NewLabel_IsFoundAndTheOldOneIsNot", "OldLabelKept", refuse("ModelVersion::setLabel")},
      {"Destroy_ManyAtOnce", "NothingDestroyed", refuse("ChangeManager::destroyVersions")},
      {"ReadOnly_Version_CountsOnlyWhenItIsAskedFor", "NeverReadOnly",
       refuse("ModelVersion::setReadOnlyVersion")},
      {"Delta_HoldsTheLastValueSet", "NoOperations", refuse("ModelDelta::findEditOperation")},
      {"Delta_ReadingByRule_GivesWhatASwitchShows", "NoDelta", refuse("ModelVersion::getDelta")},
      {"Pointer_DeletedEntity_AnswersNothing", "NotDeleted", refuse("EntityEditor::deleteEntity")},
      {"Editor_SetValue_SetsAndAnswersTrue", "NothingSet", refuse("EntityEditor::setValue")},
      {"Editor_MoveEntity_ToTheEndOfAList", "NotMoved", refuse("EntityEditor::moveEntity")},
      {"Editor_TellsNobody", "Tells", alsoDo("EntityEditor::setValue", tellOfAVersion)},
      {"Manager_SetValue_TellsOfTheOneAttribute", "SaysNothing",
       refuse("ObserverManager::broadcastChangedEntities")},
      {"Attribute_MoveInAList_CountsPositionsBeforeTheMove", "NotMoved", refuse("ListAttribute::moveEntity")},
      {"Copy_AssignValue_TakesValueAndAbsence", "NotAssigned", refuse("Attribute::assignValue")},
      {"Story_Rows_AreAlternatesWithInputsOfTheirOwn", "NoAlternates",
       refuse("ChangeManager::startNewAlternate")},
      {"Story_RowReleased_ItsVersionIsKeptAndItsRowDoesNotComeBack", "NotReleased",
       refuse("ModelVersion::removeFromStudy")},
  };
}

class ControlCase : public testing::Test {
public:
  explicit ControlCase(Control control) : m_control(std::move(control)) {}

  void TestBody() override {
    const HostKind host = embeddedHosts().front();
    const Rule &rule = ruleNamed(m_control.rule);
    const Outcome broken = outcomeOf(rule, host, m_control.defect);
    EXPECT_GT(broken.defectsShown, 0);
    EXPECT_GT(broken.failures, 0);
    EXPECT_EQ(outcomeOf(rule, host, [](BrokenHost & /*sound*/) {}).failures, 0);
  }

private:
  Control m_control;
};

bool registerControls() {
  for (const Control &control : controls()) {
    testing::RegisterTest("ContractControlTest", (control.rule + "_FailsIf_" + control.name).c_str(), nullptr,
                          nullptr, __FILE__, __LINE__,
                          [control]() -> testing::Test * { return new ControlCase(control); });
  }
  return true;
}

[[maybe_unused]] const bool kAreRegistered = registerControls();

} // namespace

} // namespace HostContract
