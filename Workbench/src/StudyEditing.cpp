#include "Workbench/src/StudyEditing.h"

#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/ExitCode.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/StudyFileReader.h"

namespace Workbench {

namespace {

using OptimizationTool::OptimizationGroup;
using OptimizationTool::OptimizationGroupVariable;

OptimizationGroup groupAt(const ProjectSession &session, const GroupPlace &place) {
  return session.data().getGroup(place.isInput, static_cast<int>(place.index));
}

// The number of a limit or value as the study keeps it, in the declared unit; nothing for a text.
std::optional<double> numberIn(const std::string &text) {
  const std::optional<WrittenQuantity> quantity = readQuantity(text);
  return quantity ? std::optional<double>(quantity->number) : std::nullopt;
}

std::string outside(const std::string &value, bool isBelow, const std::string &of, const std::string &limit) {
  return "\"" + value + "\" is " + (isBelow ? "below the minimum of " : "above the maximum of ") + of + ", " +
         limit;
}

// The first attribute's own limits are known to be kept; those of the group and of its other attributes are not.
std::string problemOfValue(const ProjectSession &session, std::size_t group, const std::string &text) {
  const std::optional<double> number = numberIn(text);
  const OptimizationGroup input = groupAt(session, {true, group});
  for (int index = 0; number && index < input.size(); ++index) {
    const OptimizationGroupVariable variable = input.getVariable(index);
    const std::optional<double> minimum = numberIn(variable.getMinimumValue());
    const std::optional<double> maximum = numberIn(variable.getMaximumValue());
    const std::string title = "the input \"" + groupTitle(session, {true, group}) + "\"";
    if (minimum && *number < *minimum) {
      return outside(text, true, title, variable.getMinimumValue());
    }
    if (maximum && *number > *maximum) {
      return outside(text, false, title, variable.getMaximumValue());
    }
    const ModelAttribute *declared = session.model().find(variable.getAttribute());
    if (declared != nullptr && declared->minimum && *number < *declared->minimum) {
      return outside(text, true, declared->fullName(), EmbeddedHost::writeSolverNumber(*declared->minimum));
    }
    if (declared != nullptr && declared->maximum && *number > *declared->maximum) {
      return outside(text, false, declared->fullName(), EmbeddedHost::writeSolverNumber(*declared->maximum));
    }
  }
  return "";
}

} // namespace

int editStudy(const std::string &project, const Console &console, const StudyEdit &edit) {
  return withStudy(project, EmbeddedHost::OpenMode::ReadWrite, console, [&](ProjectSession &session) {
    std::string problem = edit(session);
    if (!problem.empty()) {
      console.error(problem);
      return ExitCode::kInvalid;
    }
    problem = session.save();
    if (!problem.empty()) {
      console.error(problem);
      return ExitCode::kInternalError;
    }
    return ExitCode::kDone;
  });
}

std::string groupTitle(const ProjectSession &session, const GroupPlace &place) {
  const OptimizationGroup group = groupAt(session, place);
  return group.getName().empty() ? group.getAttributeMacro() : group.getName();
}

std::optional<GroupPlace> findGroup(const ProjectSession &session, const std::string &name) {
  for (const bool byName : {true, false}) {
    for (const bool isInput : {true, false}) {
      for (std::size_t index = 0; index < session.groupCount(isInput); ++index) {
        const OptimizationGroup group = groupAt(session, {isInput, index});
        if (!name.empty() && (byName ? group.getName() : group.getAttributeMacro()) == name) {
          return GroupPlace{isInput, index};
        }
      }
    }
  }
  return std::nullopt;
}

std::string unknownGroup(const ProjectSession &session, const std::string &name) {
  std::vector<std::string> titles;
  for (const bool isInput : {true, false}) {
    for (std::size_t index = 0; index < session.groupCount(isInput); ++index) {
      titles.push_back(groupTitle(session, {isInput, index}));
    }
  }
  return "There is no input or output \"" + name + "\"" + didYouMean(name, titles);
}

std::string rowNameProblem(const ProjectSession &session, const std::string &name) {
  if (session.project().changeManager().findVersion(name, nullptr) != nullptr) {
    return "The name \"" + name + "\" belongs to another version of the project";
  }
  if (!isUtf8Text(name)) {
    return "A row's name has to be UTF-8 text";
  }
  return name.empty() ? "A row's name must not be empty" : "";
}

std::string limitsOf(const OptimizationTool::OptimizationGroupVariable &variable, const std::string &unit) {
  std::string text;
  const auto add = [&](const char *what, const std::string &limit, bool isDifference = false) {
    if (!limit.empty()) {
      text.append(text.empty() ? "" : ", ")
          .append(what)
          .append(" ")
          .append(quantityIn(limit, unit, isDifference));
    }
  };
  add("minimum", variable.getMinimumValue());
  add("maximum", variable.getMaximumValue());
  add("step", variable.getStepValue(), true);
  add("low bound", variable.getLowBound().value_or(""));
  add("high bound", variable.getHighBound().value_or(""));
  return text;
}

void reloadStudy(ProjectSession &session) {
  session.tolerateUnpriced([] { OptimizationTool::OptimizationManager::instance().initializeVersion(); });
  session.refreshRows();
  session.assessFromRecords();
  session.clearUnreliableCosts();
}

void takeBaselineValue(ProjectSession &session, std::size_t group) {
  OptimizationTool::OptimizationData &data = session.data();
  const EntityModel::Attribute *cell = data.getVariantGroup(true, 0, group);
  const std::string text = cell == nullptr ? "" : cell->getValueAsString();
  for (std::size_t row = 1; row < session.rowCount() && !text.empty(); ++row) {
    const EntityModel::Attribute *own = data.getVariantGroup(true, row, group);
    if (own != nullptr && own->getValueAsString() != text) {
      session.tolerateUnpriced([&] { session.data().setVariantValue(row, group, text); });
    }
  }
}

std::optional<std::vector<std::string>> inputTexts(const ProjectSession &session, std::size_t row,
                                                   const TypedValues &values, std::string &problem) {
  if (!session.hasAllAttributes(true)) {
    problem = "An input has no attribute of the model any more; \"optstudy doctor\" says how to mend that";
    return std::nullopt;
  }
  std::vector<std::string> texts;
  for (std::size_t group = 0; group < session.groupCount(true); ++group) {
    const EntityModel::Attribute *cell = session.data().getVariantGroup(true, row, group);
    texts.push_back(cell == nullptr ? "" : cell->getValueAsString());
  }
  for (const auto &[name, typed] : values) {
    const std::optional<GroupPlace> place = findGroup(session, name);
    if (!place || !place->isInput) {
      problem =
          place ? "\"" + name + "\" is an output, which the solver computes" : unknownGroup(session, name);
      return std::nullopt;
    }
    const ModelAttribute *declared = session.groupAttribute(true, place->index);
    const std::optional<std::string> text =
        declared == nullptr ? typed : modelText(*declared, typed, problem);
    if (!text) {
      return std::nullopt;
    }
    problem = problemOfValue(session, place->index, *text);
    if (!problem.empty()) {
      return std::nullopt;
    }
    texts[place->index] = *text;
  }
  return texts;
}

std::string ruleProblem(const ProjectSession &session, const std::vector<std::string> &texts) {
  std::map<std::string, double> values;
  for (std::size_t group = 0; group < texts.size(); ++group) {
    const OptimizationGroup input = groupAt(session, {true, group});
    for (int index = 0; index < input.size(); ++index) {
      if (const std::optional<double> number = numberIn(texts[group])) {
        values[input.getVariable(index).getAttributeMacro()] = *number;
      }
    }
  }
  const std::string broken = session.infeasibility([&](const std::string &name) {
    const auto known = values.find(name);
    return known == values.end() ? session.currentValue(name) : std::optional<double>(known->second);
  });
  return broken.empty() ? "" : "These inputs break the study's " + broken;
}

InputIndex::InputIndex(const ProjectSession &session) {
  for (std::size_t row = 0; row < session.rowCount(); ++row) {
    std::string ignored;
    m_rows.emplace(inputTexts(session, row, {}, ignored).value_or(std::vector<std::string>()), row);
  }
}

std::optional<std::size_t> InputIndex::find(const std::vector<std::string> &texts) const {
  const auto found = m_rows.find(texts);
  return found == m_rows.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

} // namespace Workbench
