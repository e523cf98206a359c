#include "HostModel/Attribute.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationDataSolvingGuard.h"
#include "tests/study-fault/Flow.h"
#include "tests/study-fault/Snapshot.h"

#include <cstdlib>
#include <exception>
#include <limits>
#include <stdexcept>
#include <utility>

namespace StudyFaults {

using OptimizationTool::OptimizationDataSolvingGuard;

namespace {

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

void begin(Stage &stage) {
  stage.beginStudy();
  stage.addGroups();
  stage.addRows();
}

void addRow(Stage & /*stage*/) {
  Stage::data().addVariant({"13 m/s", "23"}, "C", kAtEnd);
}

// Adds a row; what is broken happens when an exception comes out.
Control brokenByException(const std::string &name, std::function<void(Stage &)> defect, std::string finding) {
  Flow flow;
  flow.name = name;
  flow.prepare = begin;
  flow.run = [defect = std::move(defect)](Stage &stage) {
    try {
      addRow(stage);
    } catch (...) {
      defect(stage);
      throw;
    }
    return std::string("3");
  };
  flow.rules.switches = true;
  return {std::move(flow), std::move(finding)};
}

// The one way there is to a flag that stays: a load that cannot come back to the baseline.
void leaveFlagSet(Stage &stage) {
  const std::string current = stage.currentLabel();
  stage.show("A");
  stage.faults().fail("ChangeManager::setCurrentVersion", HostTesting::FaultKind::Throws, 1);
  try {
    Stage::data().initializeVariants(nullptr);
  } catch (const std::exception &) {
    stage.show(current);
  }
}

Control swallowing() {
  Control control = brokenByException(
      "swallows what is thrown", [](Stage &) {}, "the exception is swallowed");
  control.flow.run = [](Stage &stage) {
    try {
      addRow(stage);
    } catch (const std::exception &) {
      return std::string();
    }
    return std::string();
  };
  return control;
}

} // namespace

const std::vector<Control> &controls() {
  static const std::vector<Control> all = {
      swallowing(),
      brokenByException("leaves the editing flag set", leaveFlagSet, "the editing flag is left set"),
      brokenByException(
          "leaves the study solving",
          [](Stage &) { static const OptimizationDataSolvingGuard guard(Stage::data()); },
          "the study is left solving"),
      brokenByException(
          "ends in another version", [](Stage &stage) { stage.show("B"); }, "an exception has switched to B"),
      brokenByException(
          "loses a cell", [](Stage &) { matrixOf(Stage::data()).get(1)->removeInput(0); },
          "a row has not one cell for each group: A"),
      brokenByException(
          "loses a row", [](Stage &) { matrixOf(Stage::data()).erase(1); }, "a row is lost: A"),
      brokenByException(
          "loses a version", [](Stage &stage) { stage.destroy("A"); }, "a version is lost: A"),
      brokenByException(
          "writes into the baseline",
          [](Stage &stage) {
            const std::string current = stage.currentLabel();
            stage.show("Base");
            stage.project().setValue(stage.faults().original(stage.part("Fan")), "Angle", "99");
            stage.show(current);
          },
          "the baseline has other values"),
      brokenByException(
          "cannot be used again", [](Stage &stage) { stage.destroy(Stage::kCopy); },
          "the study needs: new copy"),
      brokenByException(
          "dies", [](Stage &) { std::abort(); }, "the process dies of signal 6"),
      brokenByException(
          "throws something else", [](Stage &) { throw std::logic_error("something else"); },
          "another exception comes out: something else"),
  };
  return all;
}

} // namespace StudyFaults
