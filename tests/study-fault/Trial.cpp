#include "tests/study-fault/Trial.h"

#include <QPointer>

#include <stdexcept>

namespace StudyFaults {

Aftermath carryOut(Stage &stage, const Flow &flow, const Fault &fault) {
  Aftermath result;
  result.before = look(stage);
  // By address it could be another one in the same place.
  const QPointer<OptimizationTool::OptimizationData> held(Stage::held());
  HostTesting::FaultyHost &faults = stage.faults();
  faults.heal();
  faults.setStrikeAction([&](const HostTesting::HostCall &call) {
    ++result.last.count;
    result.last.call = std::string(call.operation.name) + "(" + call.arguments() + ")";
    result.last.current = stage.currentLabel();
    result.last.isEditing = Stage::manager().isEditingVersions();
    result.last.isSolving = Stage::manager().isSolvingVersions();
  });
  if (!fault.operation.empty()) {
    faults.fail(fault.operation, fault.kind, fault.occurrence);
  }
  try {
    result.answer = flow.run(stage);
  } catch (const std::exception &error) {
    result.thrown = error.what();
  }
  faults.heal();
  faults.setStrikeAction(nullptr);
  result.after = look(stage);
  result.isSameStudy = !held.isNull() && held.data() == Stage::held();
  result.recovery = goOn(stage);
  return result;
}

std::map<std::string, int> countCalls(Stage &stage, const Flow &flow) {
  HostTesting::FaultyHost &faults = stage.faults();
  faults.heal();
  flow.run(stage);
  std::map<std::string, int> counts;
  for (const std::string &operation : HostTesting::FaultyHost::operations()) {
    const int count = faults.occurrences(operation);
    if (count > 0) {
      counts[operation] = count;
    }
  }
  return counts;
}

} // namespace StudyFaults
