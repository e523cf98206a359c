#include "tests/study-fault/ExitScene.h"

#include "HostModel/ChangeManager.h"
#include "tests/study-fault/Stage.h"

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

namespace StudyFaults {

namespace {

// What outlives main. Made before the manager it is destroyed after it, and the other way round.
std::unique_ptr<Stage> &lasting() {
  static std::unique_ptr<Stage> stage;
  return stage;
}

void saySize(const char *when) {
  const OptimizationTool::OptimizationData *data = Stage::held();
  if (data == nullptr) {
    std::printf("%s: no study;", when);
  } else {
    std::printf("%s: %d inputs, %d rows;", when, data->getNumInputs(),
                static_cast<int>(data->getNumVariants()));
  }
  std::fflush(stdout);
}

void holdStudy() {
  lasting() = std::make_unique<Stage>();
  lasting()->beginStudy();
  lasting()->addGroups();
  lasting()->addRows();
  saySize("held");
}

int endWithHost() {
  lasting();
  holdStudy();
  return 0;
}

int endByExit() {
  lasting();
  holdStudy();
  std::exit(0);
}

int endWithoutHost() {
  lasting();
  holdStudy();
  lasting()->uninstall();
  return 0;
}

// The host goes while the manager, made before it, still lives.
int endHostFirst() {
  Stage::manager();
  lasting();
  holdStudy();
  Stage::manager().initializeVersion();
  saySize("loaded");
  return 0;
}

int endWithoutProject() {
  lasting();
  holdStudy();
  lasting()->uninstall();
  lasting().reset();
  return 0;
}

int endClosed() {
  lasting();
  holdStudy();
  lasting().reset();
  saySize("closed");
  return 0;
}

int endAfterStudy() {
  lasting();
  holdStudy();
  Stage::manager().endStudy(true);
  saySize("ended");
  return 0;
}

// What a throw has left set is nothing that an end waits for.
int endEditing() {
  lasting();
  holdStudy();
  lasting()->show("A");
  lasting()->faults().fail("ChangeManager::setCurrentVersion", HostTesting::FaultKind::Throws, 1);
  try {
    Stage::data().initializeVariants(nullptr);
  } catch (const std::exception &) {
    std::printf("editing %d;", static_cast<int>(Stage::data().isEditingVersions()));
  }
  std::fflush(stdout);
  return 0;
}

// The second project's baseline has the label of the first one's, and nothing of its study.
int twoProjects() {
  lasting();
  holdStudy();
  lasting().reset();
  saySize("closed");
  lasting() = std::make_unique<Stage>();
  saySize("second");
  lasting()->beginStudy();
  Stage::data().addGroup(true, lasting()->attribute("Pump", "Angle"));
  Stage::data().addVariant({"7"}, "Other", std::numeric_limits<std::uint64_t>::max());
  saySize("begun");
  std::printf("%d %d;", static_cast<int>(Stage::data().containsVariant("A")),
              static_cast<int>(Stage::data().containsVariant("Other")));
  std::fflush(stdout);
  return 0;
}

// The first project is open while the second one is shown over it and goes again.
int twoProjectsAtOnce() {
  lasting();
  holdStudy();
  {
    Stage second;
    saySize("second");
    second.beginStudy();
    saySize("begun");
  }
  saySize("second gone");
  lasting()->commands().announceOpened();
  saySize("first again");
  return 0;
}

} // namespace

const std::vector<ExitScene> &exitScenes() {
  static const std::vector<ExitScene> all = {
      {"the host is installed to the end", endWithHost, "held: 2 inputs, 3 rows;"},
      {"the end comes by exit", endByExit, "held: 2 inputs, 3 rows;"},
      {"the host was uninstalled before", endWithoutHost, "held: 2 inputs, 3 rows;"},
      {"the host goes before the manager", endHostFirst, "held: 2 inputs, 3 rows;loaded: 2 inputs, 3 rows;"},
      {"the project is gone", endWithoutProject, "held: 2 inputs, 3 rows;"},
      {"the project was closed", endClosed, "held: 2 inputs, 3 rows;closed: no study;"},
      {"the study was ended", endAfterStudy, "held: 2 inputs, 3 rows;ended: no study;"},
      {"the editing flag was left set", endEditing, "held: 2 inputs, 3 rows;editing 1;"},
      {"two projects, one after the other", twoProjects,
       "held: 2 inputs, 3 rows;closed: no study;second: no study;begun: 1 inputs, 2 rows;0 1;"},
      {"two projects, one over the other", twoProjectsAtOnce,
       "held: 2 inputs, 3 rows;second: no study;begun: 0 inputs, 1 rows;second gone: no study;"
       "first again: 2 inputs, 3 rows;"},
  };
  return all;
}

const std::vector<ExitScene> &exitControls() {
  static const std::vector<ExitScene> all = {
      {"ends with another code",
       [] {
         lasting();
         holdStudy();
         return 3;
       },
       "held: 2 inputs, 3 rows;"},
      {"complains",
       [] {
         std::fputs("something is wrong\n", stderr);
         return 0;
       },
       ""},
      {"dies at the end",
       [] {
         std::atexit([] { std::abort(); });
         return 0;
       },
       ""},
      {"holds no study", [] { return 0; }, "held: 2 inputs, 3 rows;"},
  };
  return all;
}

} // namespace StudyFaults
