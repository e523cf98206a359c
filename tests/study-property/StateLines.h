#pragma once

#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"
#include "tests/study-property/ReferenceStudy.h"

#include <optional>
#include <string>

namespace StudyProperty {

// What can be seen of a project and of its studies, as lines of text: of the reference, and of the library.

/// Everything.
Texts stateLines(const ReferenceStudy &reference);
Texts stateLines(EmbeddedHost::Project &project);
/// The rows of the held study.
Texts rowLines(const ReferenceStudy &reference);
Texts rowLines(OptimizationTool::OptimizationData &data);
/// What the project's file keeps, without what is current.
Texts storedLines(const ReferenceStudy &reference);

struct VariableTexts {
  std::string macro, minimum, maximum, step, low, high;
  bool isLowOn, isHighOn;
};

std::string textOf(const VariableTexts &variable);
std::string textOf(const std::optional<double> &cost);
inline const char *flag(bool value) {
  return value ? "1" : "0";
}
inline void append(Texts &lines, const Texts &more) {
  lines.insert(lines.end(), more.begin(), more.end());
}

} // namespace StudyProperty
