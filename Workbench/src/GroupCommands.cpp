#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/StudyEditing.h"
#include "Workbench/src/StudyFileReader.h"

#include <array>
#include <ostream>

namespace Workbench {

namespace {

using OptimizationTool::OptimizationGroup;
using OptimizationTool::OptimizationGroupVariable;
using OptimizationTool::OptimizationManager;

OptimizationGroup groupAt(const ProjectSession &session, const GroupPlace &place) {
  return session.data().getGroup(place.isInput, static_cast<int>(place.index));
}

const char *sideWord(bool isInput) {
  return isInput ? "input" : "output";
}

// Attributes of one group take one value, as one text.
bool canShareAValue(const ModelAttribute &first, const ModelAttribute &other) {
  return first.kind == other.kind && first.unit == other.unit && first.options == other.options;
}

std::string checkAttribute(const ProjectSession &session, bool isInput, const std::string &name,
                           const ModelAttribute *first, const ModelAttribute *&found) {
  found = session.model().find(name);
  if (found == nullptr) {
    return "The model has no attribute \"" + name + "\"" + didYouMean(name, session.model().names());
  }
  if (!OptimizationManager::isItemValid(found->value, isInput, !isInput,
                                        OptimizationManager::instance().getStudyType())) {
    return "\"" + name + "\" cannot be an " + sideWord(isInput) +
           (isInput ? ": only values that somebody sets can" : ": only results can");
  }
  if (session.data().getGroupContainingAttribute(found->value)) {
    return "\"" + name + "\" is in a group already";
  }
  if (first != nullptr && !canShareAValue(*first, *found)) {
    return "\"" + name + "\" has another kind, unit or options than \"" + first->fullName() +
           "\": they cannot share one value";
  }
  if (isInput && first != nullptr && shownText(*first, first->value) != shownText(*found, found->value)) {
    return "\"" + name + "\" has another value than \"" + first->fullName() +
           "\": attributes of one input share one value, the baseline's too";
  }
  return "";
}

std::string groupNameProblem(const ProjectSession &session, const std::string &name) {
  if (name.empty()) {
    return "";
  }
  return findGroup(session, name) ? "There is a group \"" + name + "\" already" : groupTitleProblem(name);
}

std::string addGroup(ProjectSession &session, bool isInput, const std::vector<std::string> &attributes,
                     const std::string &name) {
  if (std::string problem = groupNameProblem(session, name); !problem.empty()) {
    return problem;
  }
  std::vector<const ModelAttribute *> checked;
  for (const std::string &attribute : attributes) {
    const ModelAttribute *found = nullptr;
    std::string problem =
        checkAttribute(session, isInput, attribute, checked.empty() ? nullptr : checked.front(), found);
    if (!problem.empty()) {
      return problem;
    }
    checked.push_back(found);
  }
  if (isInput) {
    OptimizationManager::instance().addInputAttribute(checked.front()->value);
  } else {
    OptimizationManager::instance().addOutputAttribute(checked.front()->value);
  }
  OptimizationGroup group = groupAt(session, {isInput, session.groupCount(isInput) - 1});
  for (std::size_t index = 1; index < checked.size(); ++index) {
    if (!group.appendVariable(checked[index]->value)) {
      return "\"" + checked[index]->fullName() + "\" could not be added to its group";
    }
  }
  group.setName(name);
  reloadStudy(session);
  return "";
}

// The places of limits in lists of them.
enum : std::size_t { kMinimum, kMaximum, kStep, kLowBound, kHighBound };

std::string setLimits(ProjectSession &session, const GroupPlace &place, const TypedLimits &limits) {
  const ModelAttribute *declared = session.groupAttribute(true, place.index);
  if (declared == nullptr ||
      (declared->kind != AttributeKind::Real && declared->kind != AttributeKind::Integer)) {
    return "Only an input that is a number has limits";
  }
  struct Limit {
    const std::optional<std::string> &typed;
    void (*set)(OptimizationGroupVariable &variable, const std::string &text);
  };
  const std::array<Limit, 5> all{{
      {limits.minimum,
       [](auto &variable, const auto &text) {
         variable.setMinimumValue(text);
       }},
      {limits.maximum,
       [](auto &variable, const auto &text) {
         variable.setMaximumValue(text);
       }},
      {limits.step,
       [](auto &variable, const auto &text) {
         variable.setStepValue(text);
       }},
      {limits.lowBound,
       [](auto &variable, const auto &text) {
         variable.setLowBound(text.empty() ? std::nullopt : std::optional<std::string>(text));
       }},
      {limits.highBound,
       [](auto &variable, const auto &text) {
         variable.setHighBound(text.empty() ? std::nullopt : std::optional<std::string>(text));
       }},
  }};
  std::array<std::string, 5> texts;
  for (std::size_t index = 0; index < all.size(); ++index) {
    if (!all[index].typed || all[index].typed->empty()) {
      continue;
    }
    std::string problem;
    const bool isStep = index == kStep;
    const std::optional<std::string> text = isStep ? stepText(*declared, *all[index].typed, problem)
                                                   : modelText(*declared, *all[index].typed, problem);
    if (!text) {
      return problem;
    }
    texts[index] = *text;
  }
  const OptimizationGroup group = groupAt(session, place);
  const OptimizationGroupVariable front = group.getFrontVariable();
  const std::array<std::string, 5> present{front.getMinimumValue(), front.getMaximumValue(),
                                           front.getStepValue(), front.getLowBound().value_or(""),
                                           front.getHighBound().value_or("")};
  const auto after = [&](std::size_t index) {
    const std::optional<WrittenQuantity> written =
        readQuantity(all.at(index).typed ? texts.at(index) : present.at(index));
    return written ? std::optional<double>(written->number) : std::nullopt;
  };
  if (after(kMinimum) && after(kMaximum) && *after(kMinimum) > *after(kMaximum)) {
    return "The maximum is below the minimum";
  }
  if (after(kLowBound) && after(kHighBound) && *after(kLowBound) > *after(kHighBound)) {
    return "The high bound is below the low bound";
  }
  for (int number = 0; number < group.size(); ++number) {
    OptimizationGroupVariable variable = group.getVariable(number);
    for (std::size_t index = 0; index < all.size(); ++index) {
      if (all[index].typed) {
        all[index].set(variable, texts[index]);
      }
    }
  }
  return "";
}

int printGroups(const ProjectSession &session, const Console &console) {
  for (const bool isInput : {true, false}) {
    console.out << (isInput ? "inputs:\n" : "outputs:\n");
    for (std::size_t index = 0; index < session.groupCount(isInput); ++index) {
      const OptimizationGroup group = groupAt(session, {isInput, index});
      console.out << "  " << groupTitle(session, {isInput, index}) << ":";
      for (int number = 0; number < group.size(); ++number) {
        console.out << " " << group.getVariable(number).getAttributeMacro();
      }
      const std::string limits = limitsOf(group.getFrontVariable());
      console.out << (limits.empty() ? "" : "  ") << limits << "\n";
    }
  }
  return ExitCode::kDone;
}

} // namespace

int addGroupCommand(const std::string &project, bool isInput, const std::vector<std::string> &attributes,
                    const std::string &name, const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) {
    std::string problem = addGroup(session, isInput, attributes, name);
    if (problem.empty()) {
      console.note(std::string("Added the ") + sideWord(isInput) + " \"" +
                   groupTitle(session, {isInput, session.groupCount(isInput) - 1}) + "\"");
    }
    return problem;
  });
}

int removeGroupCommand(const std::string &project, bool isInput, const std::string &group,
                       const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<GroupPlace> place = findGroup(session, group);
    if (!place) {
      return unknownGroup(session, group);
    }
    if (place->isInput != isInput) {
      return "\"" + group + "\" is an " + sideWord(place->isInput);
    }
    if (isInput) {
      takeBaselineValue(session, place->index);
    }
    const std::string macro = groupAt(session, *place).getAttributeMacro();
    session.data().removeGroup(isInput, static_cast<int>(place->index));
    reloadStudy(session);
    console.note(std::string("Removed the ") + sideWord(isInput) + " \"" + group + "\"");
    if (session.data().getCostFunction().find("%" + macro + "%") != std::string::npos) {
      console.note("warning: the cost names %" + macro +
                   "%: no row has a cost until \"optstudy cost\" sets another one");
    }
    return "";
  });
}

int renameGroupCommand(const std::string &project, const std::string &group, const std::string &name,
                       const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<GroupPlace> place = findGroup(session, group);
    if (!place) {
      return unknownGroup(session, group);
    }
    if (std::string problem = groupNameProblem(session, name); !problem.empty()) {
      return problem;
    }
    session.data().setGroupName(place->isInput, static_cast<int>(place->index), name);
    reloadStudy(session); // which groups a cost mentions is decided by their names
    return "";
  });
}

int moveGroupCommand(const std::string &project, const std::string &group, std::size_t place,
                     const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<GroupPlace> found = findGroup(session, group);
    if (!found) {
      return unknownGroup(session, group);
    }
    const std::size_t count = session.groupCount(found->isInput);
    if (place >= count) {
      return "The places of " + std::string(sideWord(found->isInput)) + "s are 0 to " +
             std::to_string(count - 1);
    }
    // What is moved goes before the group that is at the place now, so that further on it is the next place.
    const std::size_t before = place > found->index ? place + 1 : place;
    session.data().moveGroup(found->isInput, static_cast<int>(found->index), static_cast<int>(before));
    reloadStudy(session);
    return "";
  });
}

int limitGroupCommand(const std::string &project, const std::string &group, const TypedLimits &limits,
                      const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<GroupPlace> place = findGroup(session, group);
    if (!place || !place->isInput) {
      return place ? "\"" + group + "\" is an output, which has no limits" : unknownGroup(session, group);
    }
    return setLimits(session, *place, limits);
  });
}

int groupsCommand(const std::string &project, const Console &console) {
  return withStudy(project, EmbeddedHost::OpenMode::ReadOnly, console,
                   [&](ProjectSession &session) { return printGroups(session, console); });
}

} // namespace Workbench
