#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationManager.h"
#include "tests/study-property/StateLines.h"

#include <algorithm>
#include <set>

// What is seen of the project, of its studies and of the study that is held.

namespace StudyProperty {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;

namespace {

// The study's group list on one side, read from the model and not through the study data.
Texts storedGroups(const Entity *study, bool isInput) {
  Texts lines;
  const AttributePath list(isInput ? EntityModel::OptimizationInputs_t : EntityModel::OptimizationOutputs_t);
  for (Entity *entity : EntityModel::getLinkedEntities(study, list)) {
    const OptimizationTool::OptimizationGroup group(entity);
    std::string line = std::string(isInput ? "  input" : "  output") + " group \"" + group.getName() +
                       "\", " + group.getDisplayName() + ":";
    for (int place = 0; place < group.size(); ++place) {
      OptimizationTool::OptimizationGroupVariable variable = group.getVariable(place);
      line += " " + textOf(VariableTexts{variable.getAttributeMacro(), variable.getMinimumValue(),
                                         variable.getMaximumValue(), variable.getStepValue(),
                                         variable.getLowBoundValue(), variable.getHighBoundValue(),
                                         variable.isLowBoundEnabled(), variable.isHighBoundEnabled()});
    }
    lines.push_back(line);
  }
  return lines;
}

int targetOf(const Entity *study) {
  const EntityModel::TypeRef target = EntityModel::getTypeValue(
      study, AttributePath(EntityModel::OptimisationTarget_t), EntityModel::TypeRef::fromLabel("none"));
  return target == EntityModel::Minimise_t ? 1 : target == EntityModel::Maximise_t ? 2 : 0;
}

Texts inUse(const std::set<Attribute *, EntityModel::AttributeSorter> &attributes) {
  Texts names;
  for (Attribute *each : attributes) {
    names.push_back(each->getOwnerEntity()->getName(true) + "." + each->getAttributePath().toString('.'));
  }
  std::sort(names.begin(), names.end());
  return names;
}

Texts versionLines(EmbeddedHost::Project &project) {
  Texts lines;
  for (ModelVersion *version : project.versions()) {
    std::string line = "version \"" + version->getLabel() + "\"";
    line += " after " + (version->getPrevious() == nullptr ? "none" : version->getPrevious()->getLabel());
    line += EmbeddedHost::Project::isReadOnly(*version) ? " read-only" : "";
    line += " study " + std::to_string(static_cast<int>(version->getStudyType())) + " type " +
            std::to_string(static_cast<int>(version->getVersionType()));
    line += OptimizationManager::instance().canBeginStudy(version) ? " may begin" : "";
    line += version == project.currentVersion() ? " current" : "";
    line += OptimizationManager::versionHasStudy(version) ? " has a study" : "";
    std::vector<ModelVersion *> alternates;
    project.changeManager().getAlternates(version, alternates);
    for (const ModelVersion *alternate : alternates) {
      line += ", " + alternate->getLabel();
    }
    lines.push_back(line);
  }
  return lines;
}

Texts partLines(EmbeddedHost::Project &project) {
  Texts lines;
  for (Entity *part : EntityModel::getLinkedEntities(project.rootEntity(), AttributePath("Parts"))) {
    std::string line = part->getName(true) + ":";
    for (const std::string &path : paths()) {
      line += " (" + project.attribute(part, path)->getValueAsString() + ")";
    }
    lines.push_back(line);
  }
  return lines;
}

Texts studyLines(EmbeddedHost::Project &project) {
  Texts lines;
  for (const Entity *study : EntityModel::getLinkedEntities(
           project.rootEntity(), AttributePath(EntityModel::OptimizationDataList_t))) {
    const auto text = [study](const EntityModel::TypeRef &member) {
      return EntityModel::getStringValue(study, AttributePath(member), "");
    };
    const AttributePath link(EntityModel::OptimalityConfigurationLink_t);
    lines.push_back("study of \"" + text(EntityModel::BaseVersionName_t) + "\", copy \"" +
                    text(EntityModel::CopyVersionName_t) + "\", cost \"" + text(EntityModel::CostFunction_t) +
                    "\", target " + std::to_string(targetOf(study)) +
                    (EntityModel::getLinkedEntity(study, link) != nullptr ? ", configured" : ""));
    append(lines, storedGroups(study, true));
    append(lines, storedGroups(study, false));
  }
  return lines;
}

} // namespace

Texts rowLines(OptimizationData &data) {
  Texts lines;
  const auto numGroups = [&data](bool isInput) {
    return static_cast<std::size_t>(isInput ? data.getNumInputs() : data.getNumOutputs());
  };
  for (std::size_t row = 0; row < data.getNumVariants(); ++row) {
    std::string line = "row \"" + data.getVariantName(row) + "\":";
    for (const bool isInput : {true, false}) {
      for (std::size_t group = 0; group < numGroups(isInput); ++group) {
        const Attribute *cell = data.getVariantGroup(isInput, row, group);
        line += " (" + (cell == nullptr ? "no cell" : cell->getValueAsString()) + ")";
      }
      line += isInput ? " |" : "";
    }
    lines.push_back(line + " cost " + textOf(data.getVariantCost(row)));
  }
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < numGroups(isInput); ++group) {
      std::string line = "column:";
      for (const double value : data.variantStandardVal(isInput, group)) {
        line += " " + std::to_string(value);
      }
      const auto place = static_cast<int>(group);
      line += data.isGroupSameValue(isInput, 0, place) ? ", as the first" : ", not as the first";
      line += data.isVariableInCostFunction(place, isInput) ? ", priced" : ", not priced";
      lines.push_back(line);
    }
  }
  lines.push_back(
      std::string(data.getLastCostFunctionError().empty() ? "no cost error, " : "a cost error, ") +
      (data.allVersionsExist() ? "all versions" : "versions are missing"));
  return lines;
}

Texts stateLines(EmbeddedHost::Project &project) {
  Texts lines = versionLines(project);
  append(lines, partLines(project));
  append(lines, studyLines(project));
  Entity *first = EntityModel::getLinkedEntities(project.rootEntity(), AttributePath("Parts")).at(0);
  std::string valid = "valid:";
  for (const std::string &path : paths()) {
    for (const int choice : {0, 1, 2, 3}) {
      valid +=
          flag(OptimizationManager::isItemValid(project.attribute(first, path), choice % 2 == 0, false,
                                                choice < 2 ? EntityModel::ModelVersionStudyType::Parametric
                                                           : EntityModel::ModelVersionStudyType::Optimality));
    }
  }
  lines.push_back(valid);
  OptimizationManager &manager = OptimizationManager::instance();
  if (manager.getData() == nullptr) {
    lines.emplace_back("nothing is held");
    return lines;
  }
  OptimizationData &data = *manager.getData();
  lines.push_back("held: \"" + data.getBaseVersionName() + "\"" +
                  (data.isEditingVersions() ? ", editing" : "") +
                  (data.isSolvingVersions() ? ", solving" : ""));
  for (const auto &attributes : {manager.getInputAttributes(), manager.getOutputAttributes()}) {
    std::string line = "in use:";
    for (const std::string &name : inUse(attributes)) {
      line += " " + name;
    }
    lines.push_back(line);
  }
  append(lines, rowLines(data));
  return lines;
}

} // namespace StudyProperty
