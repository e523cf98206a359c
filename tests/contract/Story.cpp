#include "tests/contract/Story.h"

#include "HostModel/AttributePath.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"

#include <QString>

#include <limits>
#include <stdexcept>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationData;

Story::Story(Scene &scene, EntityModel::ModelVersionStudyType type) : m_scene(scene) {
  manager().beginStudy(type);
  manager().addInputAttribute(scene.partA(), AttributePath("Width"));
  manager().addInputAttribute(scene.partA(), AttributePath("Ratio"));
  manager().addOutputAttribute(scene.partA(), AttributePath("Mass"));
  study().setCostFunction("%A.Mass% + %A.Ratio%");
}

OptimizationData &Story::study() {
  if (!isHeld()) {
    throw std::logic_error("The manager holds no study");
  }
  return *manager().getData();
}

void Story::addRow(const std::string &name, const std::string &width, const std::string &ratio) {
  if (study().addVariant({width, ratio}, name, std::numeric_limits<std::uint64_t>::max()) == 0) {
    throw std::logic_error("The row " + name + " was not added");
  }
}

void Story::addRows() {
  addRow("One", "2", "0.1");
  addRow("Two", "3", "0.2");
}

void Story::solve() {
  {
    const OptimizationTool::OptimizationDataSolvingGuard guard(study());
    for (const std::string &row : rows()) {
      m_scene.showAsUser(version(row));
      const double mass = 10.0 * m_scene.number(m_scene.partA(), "Width");
      m_scene.set(m_scene.partA(), "Mass", QString::number(mass, 'g', 17).toStdString());
    }
    m_scene.showAsUser(version(study().getBaseVersionName()));
  }
  study().updateAlternates(OptimizationData::ReadFromModel, nullptr);
}

void Story::reload() {
  EntityGUI::EntityManager::getObserverManager()->broadcastSetCurrentEntity(m_scene.root(), false);
}

Texts Story::rows() {
  Texts names;
  for (std::size_t row = 0; row < study().getNumVariants(); ++row) {
    names.push_back(study().getVariantName(row));
  }
  return names;
}

Numbers Story::cells(std::size_t row) {
  Numbers numbers;
  for (const bool isInput : {true, false}) {
    const int groups = isInput ? study().getNumInputs() : study().getNumOutputs();
    for (int group = 0; group < groups; ++group) {
      const EntityModel::Attribute *cell =
          study().getVariantGroup(isInput, row, static_cast<std::size_t>(group));
      numbers.push_back(cell != nullptr && cell->hasValue() ? std::optional(cell->getStandardValue())
                                                            : std::nullopt);
    }
  }
  return numbers;
}

Numbers Story::costs() {
  Numbers numbers;
  for (std::size_t row = 0; row < study().getNumVariants(); ++row) {
    numbers.push_back(study().getVariantCost(row));
  }
  return numbers;
}

ModelVersion *Story::version(const std::string &label) const {
  ModelVersion *found = m_scene.find(label);
  if (found == nullptr) {
    throw std::logic_error("There is no version " + label);
  }
  return found;
}

} // namespace HostContract
