#include "tests/study-fault/Judge.h"

#include <algorithm>
#include <set>

namespace StudyFaults {

using HostTesting::FaultKind;
using HostTesting::OperationEffect;
using Findings = std::vector<std::string>;

namespace {

constexpr const char *kInjected = "injected fault";

bool isQuery(const std::string &operation) {
  const HostTesting::HostOperation *found = HostTesting::findHostOperation(operation);
  return found != nullptr && found->effect != OperationEffect::Change;
}

bool isOneOf(const std::string &text, const std::set<std::string> &texts) {
  return texts.count(text) != 0;
}

bool isWithoutCosts(const Snapshot &seen) {
  return std::none_of(seen.rows.begin(), seen.rows.end(),
                      [](const SeenRow &row) { return row.cost.has_value(); });
}

// What the trial values of a repair are made with; a text that they refuse counts as no value.
bool isOfTrialValues(const std::string &operation) {
  return isOneOf(operation, {"Attribute::clone", "Attribute::setOptionalMinimum",
                             "Attribute::setOptionalMaximum", "Attribute::setValueFromString"});
}

// Whatever the host throws comes out, but for two places: the build of the calculator, after which no row has a cost,
// and the trial values of a repair.
void judgeThrow(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  if (seen.thrown == kInjected) {
    return;
  }
  if (!seen.thrown.empty()) {
    findings.push_back("another exception comes out: " + seen.thrown);
    return;
  }
  const bool isSwallowedByBuild = flow.rules.builds && isQuery(fault.operation) && isWithoutCosts(seen.after);
  const bool isSwallowedByRepair = flow.rules.loads && isOfTrialValues(fault.operation);
  if (!isSwallowedByBuild && !isSwallowedByRepair) {
    findings.emplace_back("the exception is swallowed");
  }
}

// What finds nothing is no error. An index beyond what is found, a macro that the calculator does not know, and a
// number of values that is not that of the groups are, with these texts.
void judgeRefusal(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  if (seen.thrown.empty()) {
    return;
  }
  if (isQuery(fault.operation)) {
    if (flow.rules.prices && seen.thrown == "Variable does not exist") {
      return;
    }
    if (flow.rules.removesCells && seen.thrown == "OptimizationData::removeGroup: Group index out of range") {
      return;
    }
    if (flow.name == "setGroupName" &&
        seen.thrown == "OptimizationData::setGroupName: Group index out of range") {
      return;
    }
    if (flow.name == "setVariantValues" &&
        seen.thrown == "Incorrect number of values provided to setVariantValues") {
      return;
    }
  }
  // A path that is read as empty stands for the entity itself, whose value the host lets no attribute take.
  // A text is read as empty, too, when the attribute that holds it is not found.
  const bool mayEmptyAPath =
      isOneOf(fault.operation, {"Attribute::getValueAsString", "CompositeAttribute::findAttribute"});
  if (mayEmptyAPath && flow.rules.prices &&
      seen.thrown.find("the value of an attribute of another kind cannot be assigned") != std::string::npos) {
    return;
  }
  findings.push_back("an exception comes out: " + seen.thrown);
}

// The switch to the baseline at the end of a load restores the flag on the way out that succeeds only.
bool leavesFlagSet(const Flow &flow, const Fault &fault, const Aftermath &seen) {
  return flow.rules.appendsRows && seen.thrown == kInjected &&
         isOneOf(fault.operation,
                 {"ChangeManager::setCurrentVersion", "ObserverManager::broadcastChangedVersion"});
}

void judgeFlags(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  const bool mustBeSet = leavesFlagSet(flow, fault, seen);
  if (seen.after.isEditing && !mustBeSet) {
    findings.emplace_back("the editing flag is left set");
  }
  if (!seen.after.isEditing && mustBeSet) {
    findings.emplace_back("the editing flag is restored by an exception");
  }
  if (seen.after.isSolving) {
    findings.emplace_back("the study is left solving");
  }
}

bool isTarget(const std::string &call, const std::string &label) {
  return call.find("(\"" + label + "\"") != std::string::npos;
}

// Nothing is switched back by an exception. Otherwise the flow ends where it began, unless the host refuses the way
// back, or does not tell where it began.
void judgeCurrent(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  const std::string &current = seen.after.current;
  const std::string &end = flow.rules.ends.empty() ? seen.before.current : flow.rules.ends;
  if (!flow.rules.switches) {
    if (current != seen.before.current) {
      findings.push_back("another version is current: " + current);
    }
    return;
  }
  if (seen.thrown == kInjected) {
    if (current != seen.last.current) {
      findings.push_back("an exception has switched to " + current);
    }
    return;
  }
  if (!seen.thrown.empty() || current == end) {
    return;
  }
  const bool isWayBackRefused = fault.operation == "ChangeManager::setCurrentVersion" &&
                                isTarget(seen.last.call, end) && current == seen.last.current;
  const bool isBeginningUntold =
      isOneOf(fault.operation, {"ChangeManager::getCurrentVersion", "ChangeManager::findVersion",
                                "EntityManager::getChangeManager", "Host::getEntityManager"});
  const bool isBaselineNameUntold =
      flow.rules.appendsRows && isQuery(fault.operation) && current == seen.before.current;
  if (isWayBackRefused || isBeginningUntold || isBaselineNameUntold) {
    return;
  }
  findings.push_back("another version is current: " + current);
}

const SeenRow *findRow(const Snapshot &seen, const std::string &name) {
  for (const SeenRow &row : seen.rows) {
    if (row.name == name) {
      return &row;
    }
  }
  return nullptr;
}

// Rows that had one cell for each group still have, except that a removal takes the cells whatever the host answers.
void judgeCells(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  const int spare = flow.rules.removesCells && fault.kind != FaultKind::Throws ? 1 : 0;
  const auto isLost = [spare](int cells, int groups) {
    return cells > groups || cells < groups - spare;
  };
  for (const SeenRow &row : seen.after.rows) {
    const SeenRow *former = findRow(seen.before, row.name);
    if (former == nullptr || !seen.isSameStudy || flow.rules.appendsRows) {
      // Read from its version; a group that found nothing there gives no cell.
      if (row.inputs > seen.after.inputs || row.outputs > seen.after.outputs) {
        findings.push_back("a new row has more cells than there are groups: " + row.name);
      }
      continue;
    }
    if (isLost(row.inputs, seen.after.inputs) || isLost(row.outputs, seen.after.outputs)) {
      findings.push_back("a row has not one cell for each group: " + row.name);
    }
    if (row.inputs != seen.after.rows.front().inputs || row.outputs != seen.after.rows.front().outputs) {
      findings.push_back("a row has other cells than the baseline: " + row.name);
    }
  }
}

void judgeRows(const Flow &flow, const Aftermath &seen, Findings &findings) {
  if (seen.isSameStudy) {
    for (const SeenRow &row : seen.before.rows) {
      if (findRow(seen.after, row.name) == nullptr && !isOneOf(row.name, flow.rules.mayGo)) {
        findings.push_back("a row is lost: " + row.name);
      }
    }
  }
  if (seen.answer == "0" && seen.after.rows.size() != seen.before.rows.size()) {
    findings.emplace_back("a row was added though the answer says that there is none");
  }
  for (const std::string &version : seen.before.versions) {
    if (!hasVersion(seen.after, version) && !isOneOf(version, flow.rules.mayGo)) {
      findings.push_back("a version is lost: " + version);
    }
  }
}

// What is written into a row's version must not end in the baseline, unless the host refuses to switch.
void judgeBaseline(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  if (seen.after.baseline == seen.before.baseline || flow.name == "an edit of the baseline") {
    return;
  }
  if (flow.rules.switches && fault.kind != FaultKind::Throws &&
      isOneOf(fault.operation, {"ChangeManager::setCurrentVersion", "Attribute::getValueAsString"})) {
    return;
  }
  findings.emplace_back("the baseline has other values");
}

// The study data are gone or not whole, though nothing that is stored is lost: they were being loaded, or a look-up
// that found nothing made an observer let go of them, or gave a row no name.
bool mayHaveToLoad(const Flow &flow, const Fault &fault, const Aftermath &seen) {
  return flow.rules.loads || flow.rules.appendsRows || flow.rules.beginsOrEnds ||
         (fault.kind != FaultKind::Throws && isQuery(fault.operation) &&
          (!seen.isSameStudy || findRow(seen.after, "") != nullptr));
}

// What an engineer has to do is what the fault took away, and nothing else.
void judgeRecovery(const Flow &flow, const Fault &fault, const Aftermath &seen, Findings &findings) {
  if (!seen.recovery.problem.empty()) {
    findings.push_back("the study is not usable: " + seen.recovery.problem);
  }
  for (const std::string &step : seen.recovery.steps) {
    const bool isExpected =
        (step == "switch back" && seen.after.current != "Base") ||
        (step == "load again" && mayHaveToLoad(flow, fault, seen)) ||
        (step == "new copy" && (flow.rules.makesCopy || isOneOf(Stage::kCopy, flow.rules.mayGo))) ||
        (step == "recreate versions" && (flow.rules.makesCopy || !flow.rules.mayGo.empty())) ||
        (step == "remove group" && (flow.rules.addsGroup || flow.rules.removesCells)) ||
        (step == "remove variable" && flow.rules.addsGroup) ||
        ((step == "begin again" || step == "end and begin again") && flow.rules.beginsOrEnds);
    if (!isExpected) {
      findings.push_back("the study needs: " + step);
    }
  }
}

std::string join(const std::vector<std::string> &texts, const std::string &separator) {
  std::string result;
  for (const std::string &text : texts) {
    result += result.empty() ? "" : separator;
    result += text;
  }
  return result;
}

} // namespace

std::vector<std::string> judge(const Flow &flow, const Fault &fault, const Aftermath &seen) {
  Findings findings;
  if (fault.operation.empty()) {
    if (!seen.thrown.empty()) {
      findings.push_back("without a fault an exception comes out: " + seen.thrown);
    }
  } else if (seen.last.count == 0) {
    findings.emplace_back("the fault never struck");
  } else if (fault.kind == FaultKind::Throws) {
    judgeThrow(flow, fault, seen, findings);
  } else {
    judgeRefusal(flow, fault, seen, findings);
  }
  judgeFlags(flow, fault, seen, findings);
  judgeCurrent(flow, fault, seen, findings);
  judgeCells(flow, fault, seen, findings);
  judgeRows(flow, seen, findings);
  judgeBaseline(flow, fault, seen, findings);
  judgeRecovery(flow, fault, seen, findings);
  return findings;
}

std::vector<std::string> describe(const Aftermath &seen) {
  std::string outcome = "returns";
  if (!seen.thrown.empty()) {
    outcome = "throws " + seen.thrown;
  } else if (!seen.answer.empty()) {
    outcome += " " + seen.answer;
  }
  const Snapshot &after = seen.after;
  std::string matrix = "no study";
  if (after.held != nullptr) {
    std::set<std::string> shapes;
    for (const SeenRow &row : after.rows) {
      shapes.insert(std::to_string(row.inputs) + "+" + std::to_string(row.outputs));
    }
    matrix = std::to_string(after.inputs) + "+" + std::to_string(after.outputs) + " groups, " +
             std::to_string(after.rows.size()) + " rows of " +
             join(std::vector<std::string>(shapes.begin(), shapes.end()), " and ") + " cells";
  }
  const auto priced = std::count_if(after.rows.begin(), after.rows.end(),
                                    [](const SeenRow &row) { return row.cost.has_value(); });
  std::string flags = after.isEditing ? "editing" : "-";
  flags += after.isSolving ? " solving" : "";
  std::string usable = seen.recovery.steps.empty() ? "at once" : "after: " + join(seen.recovery.steps, ", ");
  if (!seen.recovery.problem.empty()) {
    usable = "no: " + seen.recovery.problem;
  }
  return {
      outcome, flags, after.current, matrix, std::to_string(priced), std::to_string(after.versions.size()),
      usable};
}

} // namespace StudyFaults
