#pragma once

#include "testing/FaultyHost.h"
#include "tests/study-fault/Flow.h"
#include "tests/study-fault/Recovery.h"
#include "tests/study-fault/Snapshot.h"

#include <map>
#include <memory>
#include <string>

namespace StudyFaults {

/// One operation that fails in one way at one of its calls; no operation stands for a host that does all it is asked.
struct Fault {
  std::string operation;
  HostTesting::FaultKind kind = HostTesting::FaultKind::Refused;
  /// FaultyHost::kAlways, or the number of the call.
  int occurrence = 0;
  /// "first", "middle", "last" or "every".
  std::string where;
};

/// What the study was doing when the last fault struck.
struct Strike {
  int count = 0;
  /// The call with its arguments.
  std::string call;
  std::string current;
  bool isEditing = false;
  bool isSolving = false;
};

/// What a fault left behind.
struct Aftermath {
  Snapshot before;
  Snapshot after;
  /// The study data that were held before are held still.
  bool isSameStudy = false;
  Strike last;
  /// What the flow answered.
  std::string answer;
  /// The text of the exception that it ended with; "" for none.
  std::string thrown;
  Recovery recovery;
};

/// Runs the flow on a stage that was prepared for it, then goes on as an engineer does.
Aftermath carryOut(Stage &stage, const Flow &flow, const Fault &fault);

/// How often each operation is called in a flow without fault.
std::map<std::string, int> countCalls(Stage &stage, const Flow &flow);

} // namespace StudyFaults
