#pragma once

#include "tests/study-fault/Stage.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace StudyFaults {

/// What may become of a study in a flow, as the flow's description has it, whatever fails.
struct FlowRules {
  /// Other versions become current on its way.
  bool switches = false;
  /// Rows are priced, which throws when a group has another macro than when the calculator was built.
  bool prices = false;
  /// The calculator is built. What is thrown there ends in rows without cost.
  bool builds = false;
  /// Study data are made and loaded, which repairs stored variables; what their texts throw is swallowed.
  bool loads = false;
  /// Rows are read from versions and appended to a matrix that has rows.
  bool appendsRows = false;
  /// A group or a variable is added, which stays where it cannot be told what it stands for.
  bool addsGroup = false;
  /// A removal. The cells go whatever the host answered; a group whose variables are gone may stay.
  bool removesCells = false;
  /// A copy version may be made, whose name is stored before it.
  bool makesCopy = false;
  /// The study may have ended, or not begun, afterwards.
  bool beginsOrEnds = false;
  /// Rows and versions that may be gone afterwards.
  std::set<std::string> mayGo;
  /// The version that is current after a way without fault; "" for the one that was before.
  std::string ends;
};

/// One operation of a study, from what is there before it to what it answers.
struct Flow {
  std::string name;
  std::function<void(Stage &)> prepare;
  /// \return what it answered, "" for nothing
  std::function<std::string(Stage &)> run;
  FlowRules rules;
};

/// Every flow that a study goes through.
const std::vector<Flow> &flows();

/// Flows with a defect each, which must be found.
struct Control {
  Flow flow;
  /// What the finding must say.
  std::string finding;
};
const std::vector<Control> &controls();

} // namespace StudyFaults
