// What the fault suites run, kill and let fail; see the README.

#include "tests/fault/session/Acknowledgements.h"
#include "tests/fault/session/Aftermath.h"
#include "tests/fault/session/BoxStudyText.h"
#include "tests/fault/session/PowerWriter.h"
#include "tests/fault/session/Projects.h"
#include "tests/fault/session/ScriptedSession.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using FaultTests::Flaw;
using Arguments = std::vector<std::string>;

constexpr int kDone = 0;
constexpr int kUsage = 2;
constexpr int kStepFailed = 3;
constexpr unsigned kLongest = 120; // seconds; whoever hangs is ended

int usage() {
  FaultTests::writeUntouched(STDERR_FILENO,
                             "usage: FaultSession prepare FOLDER [STATEMENTS OF AN OLD PROJECT]\n"
                             "       FaultSession dump|again FOLDER\n"
                             "       FaultSession run FOLDER ACKNOWLEDGEMENTS [none|early|deaf [STATES]]\n"
                             "       FaultSession power FOLDER ACKNOWLEDGEMENTS [off]\n"
                             "       FaultSession lost FOLDER ACKNOWLEDGEMENTS\n");
  return kUsage;
}

Flaw flawOf(const Arguments &arguments) {
  const std::string name = arguments.size() > 3 ? arguments[3] : "none";
  return name == "early" ? Flaw::Early : name == "deaf" ? Flaw::Deaf : Flaw::None;
}

// Writes the project's state after so many acknowledgements. In a process of its own, as another program would look at
// it, and only for reading.
void keepState(const std::string &program, const std::string &folder, const std::string &target) {
  const std::string command = "'" + program + "' dump '" + folder + "' read-only > '" + target + "'";
  if (std::system(command.c_str()) != 0) {
    FaultTests::writeUntouched(STDERR_FILENO, "no state for " + target + "\n");
    std::exit(kUsage);
  }
}

void keepStateWhileSolving(const std::string &program, const std::string &folder,
                           const Arguments &arguments) {
  std::ofstream(folder + "/hook.sh") << "'" << program << "' dump '" << folder << "' read-only > '"
                                     << arguments[4] << "'/running-$(wc -l < '" << arguments[2] << "')\n";
}

int runSession(const std::string &program, const Arguments &arguments) {
  FaultTests::Acknowledgements acknowledgements(arguments[2]);
  if (!acknowledgements.isOpen()) {
    return usage();
  }
  const std::string &folder = arguments[1];
  const bool keepsStates = arguments.size() > 4;
  if (keepsStates) {
    keepStateWhileSolving(program, folder, arguments);
  }
  FaultTests::ScriptedSession session(folder, acknowledgements, flawOf(arguments), [&](int count) {
    if (keepsStates) {
      keepState(program, folder, arguments[4] + "/" + std::to_string(count));
    }
  });
  session.run();
  return kDone;
}

int carryOut(const std::string &program, const Arguments &arguments) {
  const std::string &what = arguments[0];
  if (what == "prepare") {
    FaultTests::expectDone(FaultTests::writeBoxFiles(arguments[1]));
    if (arguments.size() > 2) {
      FaultTests::buildProject(FaultTests::oldProject(arguments[1]), arguments[2]);
    }
    return kDone;
  }
  if (what == "dump") {
    const bool isReadOnly = arguments.size() > 2;
    FaultTests::printStates(arguments[1], isReadOnly ? EmbeddedHost::OpenMode::ReadOnly
                                                     : EmbeddedHost::OpenMode::ReadWrite);
    return kDone;
  }
  if (what == "again") {
    FaultTests::goOnAfterwards(arguments[1]);
    return kDone;
  }
  if (what == "run" && arguments.size() > 2) {
    return runSession(program, arguments);
  }
  if (what == "lost" && arguments.size() > 2) {
    std::printf("%d\n", FaultTests::countLostRows(arguments[1], arguments[2]));
    return kDone;
  }
  if (what == "power" && arguments.size() > 2) {
    FaultTests::writeUntilThePowerFails(arguments[1], arguments[2], arguments.size() > 3);
    return kDone;
  }
  return usage();
}

} // namespace

int main(int argc, char **argv) {
  ::alarm(kLongest);
  const Arguments arguments(argv + 1, argv + argc);
  if (arguments.size() < 2) {
    return usage();
  }
  try {
    return carryOut(argv[0], arguments);
  } catch (const FaultTests::StepFailed &failure) {
    FaultTests::writeUntouched(STDERR_FILENO, std::string(failure.what()) + "\n");
    return kStepFailed;
  }
}
