#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ToolProgress.h"
#include "OptimizationTool/OptimizationData.h"

namespace OptimizationTool {

using EntityGUI::EntityManager;
using EntityModel::Attribute;
using EntityModel::ModelVersion;

void OptimizationData::updateAlternates(UpdateTypes types, Tools::ToolProgress *progress) {
  std::vector<OptimizationVariant *> rows;
  rows.reserve(m_variants.size());
  for (const auto &variant : m_variants) {
    rows.push_back(variant.get());
  }
  do_updateAlternates(types, rows, progress);
}

void OptimizationData::updateAlternates(UpdateTypes types, const std::vector<std::string> &names,
                                        Tools::ToolProgress *progress) {
  std::vector<OptimizationVariant *> rows;
  for (const std::string &name : names) {
    if (OptimizationVariant *variant = getVariant(name)) {
      rows.push_back(variant);
    }
  }
  do_updateAlternates(types, rows, progress);
}

void OptimizationData::updateAlternates(UpdateTypes types, std::initializer_list<std::string> names,
                                        Tools::ToolProgress *progress) {
  updateAlternates(types, std::vector<std::string>(names), progress);
}

void OptimizationData::updateAlternates(UpdateTypes types, const std::vector<std::size_t> &variants,
                                        Tools::ToolProgress *progress) {
  std::vector<OptimizationVariant *> rows;
  for (const std::size_t index : variants) {
    if (OptimizationVariant *variant = getVariant(index)) {
      rows.push_back(variant);
    }
  }
  do_updateAlternates(types, rows, progress);
}

void OptimizationData::updateAlternate(UpdateTypes types, const std::string &name) {
  updateAlternates(types, std::vector<std::string>{name}, nullptr);
}

void OptimizationData::updateAlternate(UpdateTypes types, std::size_t variant) {
  updateAlternates(types, std::vector<std::size_t>{variant}, nullptr);
}

void OptimizationData::do_updateAlternates(UpdateTypes types,
                                           const std::vector<OptimizationVariant *> &variants,
                                           Tools::ToolProgress *progress) {
  const Tools::ProgressScope scope(progress);
  if (variants.empty()) {
    return;
  }
  const QPointer<OptimizationData> self(this);
  const RowsInUseScope rowsInUse(*this);
  ModelVersion *remembered = currentVersion();
  const std::string rememberedLabel = remembered == nullptr ? std::string() : remembered->getLabel();
  if (progress != nullptr) {
    progress->reset();
    progress->setText(tr("Updating Alternates from Matrix").toStdString());
    progress->setNumberOfSteps(static_cast<int>(variants.size()));
    progress->setPosition(0);
    if (!self) {
      return;
    }
  }
  for (std::size_t position = 0; position < variants.size(); ++position) {
    OptimizationVariant *variant = variants[position];
    if (variant != nullptr && !isTaken(variant)) {
      if (progress != nullptr) {
        progress->setText(tr("Updating Alternates from Matrix <%1>")
                              .arg(QString::fromStdString(variant->getName()))
                              .toStdString());
        if (!self) {
          return;
        }
      }
      do_updateAlternate(types, variant);
      if (!self) {
        return;
      }
    }
    if (progress != nullptr) {
      progress->setPosition(static_cast<int>(position));
      if (!self) {
        return;
      }
    }
  }
  // The version may have gone along with a row.
  if (!m_takenRows.empty() && findVersion(rememberedLabel) != remembered) {
    return;
  }
  // The passes of one row tell the observers nothing, so neither does the way back.
  if (remembered != nullptr && currentVersion() != remembered) {
    const EditingVersionsScope editing(*this);
    m_changeManager->setCurrentVersion(remembered, nullptr, false, nullptr, true);
  }
}

void OptimizationData::do_updateAlternate(UpdateTypes types, OptimizationVariant *variant) {
  if (variant == nullptr || isTaken(variant)) {
    return;
  }
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  // The row may go while the host is at work, and with it its version, or the whole study.
  const auto isGone = [&self, variant] {
    return !self || self->isTaken(variant);
  };
  // The host gets a copy.
  const std::string name = variant->getName();
  ModelVersion *version = findVersion(name);
  if (version == nullptr) {
    EntityManager::setNeedsSave(true);
    return;
  }
  if (m_changeManager->getCurrentVersion() != version) {
    m_changeManager->setCurrentVersion(version, nullptr, false, nullptr, true);
    if (isGone()) {
      return;
    }
  }
  version->setLabel(name);
  if (isGone()) {
    return;
  }
  if (types.testFlag(WriteToModel)) {
    const bool inputsWritten = writeRow(*variant, true);
    if (isGone()) {
      return;
    }
    const bool outputsWritten = writeRow(*variant, false);
    if (isGone()) {
      return;
    }
    EntityGUI::AbstractModelChecker *checker = EntityManager::getModelChecker();
    if ((inputsWritten || outputsWritten) && checker != nullptr) {
      EntityModel::ChangeSet changes;
      m_inputGroups.addToChangeSet(changes);
      m_outputGroups.addToChangeSet(changes);
      checker->check(changes);
      if (isGone()) {
        return;
      }
    }
  }
  if (types.testFlag(ReadFromModel)) {
    readOutputs(*variant);
    do_recalculateCost(variant);
  }
  EntityManager::setNeedsSave(true);
}

// Writes the cells of one side into every variable of their groups, in the version that is current.
bool OptimizationData::writeRow(const OptimizationVariant &variant, bool isInput) {
  const QPointer<OptimizationData> self(this);
  bool isWritten = false;
  const int numGroups = isInput ? getNumInputs() : getNumOutputs();
  for (int index = 0; index < numGroups; ++index) {
    const Attribute *cell = variant.getAttribute(isInput, static_cast<std::size_t>(index));
    if (cell == nullptr) {
      continue;
    }
    const std::string text = cell->getValueAsString();
    const OptimizationGroup group = getGroup(isInput, index);
    for (int position = 0; position < group.size(); ++position) {
      if (Attribute *attribute = group.getAttribute(position)) {
        EntityModel::EntityEditor::setValue(attribute->getOwnerEntity(), attribute->getAttributePath(), text,
                                            false, nullptr, true, true);
        isWritten = true;
        if (!self || isTaken(&variant)) {
          return isWritten;
        }
      }
    }
  }
  return isWritten;
}

// Copies the outputs of the version that is current into the row's cells.
void OptimizationData::readOutputs(OptimizationVariant &variant) {
  for (int index = 0; index < getNumOutputs(); ++index) {
    Attribute *cell = variant.getOutput(static_cast<std::size_t>(index));
    const Attribute *value = getGroup(false, index).getAttribute(0);
    if (cell != nullptr && value != nullptr) {
      cell->assignValue(*value);
    }
  }
}

} // namespace OptimizationTool
