#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/FreedLabels.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ProjectStore.h"
#include "OptimizationTool/OptimizationData.h"

#include <algorithm>
#include <limits>
#include <map>
#include <stdexcept>

namespace OptimizationTool {

using EntityGUI::EntityManager;
using EntityModel::Attribute;
using EntityModel::ChangeSet;
using EntityModel::EditOperation;
using EntityModel::ModelDelta;
using EntityModel::ModelVersion;

namespace {

// Edits kept outside a version's own delta come first: they are the later ones.
std::vector<const ModelDelta *> deltasOf(const ModelVersion &version) {
  std::vector<const ModelDelta *> deltas;
  if (const EntityModel::ModelVersionExternalData *external = version.getExternalData()) {
    for (const ModelDelta *delta : *external) {
      if (delta != nullptr) {
        deltas.push_back(delta);
      }
    }
  }
  if (const ModelDelta *own = version.getDelta(true)) {
    deltas.push_back(own);
  }
  return deltas;
}

// The value of an attribute in a version with these deltas, while the version's previous one is current.
const Attribute *valueIn(const std::vector<const ModelDelta *> &deltas, EntityModel::Entity *entity,
                         const EntityModel::AttributePath &path) {
  for (const ModelDelta *delta : deltas) {
    const EditOperation *operation = delta->findEditOperation(entity, path);
    if (operation != nullptr && operation->getKind() == EditOperation::kValueSet) {
      return operation->getValue();
    }
  }
  return EntityModel::findAttribute(entity, path);
}

} // namespace

OptimizationVariant *OptimizationData::getVariant(std::size_t index) {
  return m_variants.get(index);
}

OptimizationVariant *OptimizationData::getVariant(const std::string &name) {
  return m_variants.get(name);
}

void OptimizationData::takeRow(const OptimizationVariant *row) {
  const auto found = std::find_if(m_variants.begin(), m_variants.end(),
                                  [row](const auto &variant) { return variant.get() == row; });
  if (found == m_variants.end()) {
    return;
  }
  if (m_rowsInUse > 0) {
    m_takenRows.push_back(std::move(*found));
  }
  m_variants.erase(found);
}

bool OptimizationData::isTaken(const OptimizationVariant *row) const {
  return std::any_of(m_takenRows.begin(), m_takenRows.end(),
                     [row](const auto &taken) { return taken.get() == row; });
}

bool OptimizationData::containsVariant(const std::string &name) {
  return getVariant(name) != nullptr;
}

std::string OptimizationData::getVariantName(std::size_t index) {
  const OptimizationVariant *variant = getVariant(index);
  return variant == nullptr ? std::string() : variant->getName();
}

std::optional<std::size_t> OptimizationData::getVariantIndex(const std::string &name) const {
  return m_variants.getIndex(name);
}

std::optional<double> OptimizationData::getVariantCost(std::size_t index) {
  OptimizationVariant *variant = getVariant(index);
  return variant == nullptr ? std::nullopt : variant->getCost();
}

OptimizationVariantValues<double> OptimizationData::variantStandardVal(bool isInput, std::size_t group) {
  return m_variants.standardVal(isInput, group);
}

std::vector<OptimizationData::ColumnSource> OptimizationData::getColumnSources(bool isInput) const {
  std::vector<ColumnSource> sources;
  const OptimizationGroups &groups = getGroups(isInput);
  const int count = groups.size();
  sources.reserve(static_cast<std::size_t>(count));
  for (int index = 0; index < count; ++index) {
    const OptimizationGroupVariable variable = groups.getGroup(index).getFrontVariable();
    if (EntityModel::Entity *entity = variable.getOwnerEntity()) {
      sources.push_back({entity, variable.getAttributePath()});
    }
  }
  return sources;
}

OptimizationData::RowSource OptimizationData::getRowSource() const {
  return {getColumnSources(true), getColumnSources(false)};
}

std::size_t OptimizationData::addVariant(ModelVersion *version) {
  const EditingVersionsScope editing(*this);
  return addVariant(version, getRowSource());
}

std::size_t OptimizationData::addVariant(ModelVersion *version, const RowSource &source) {
  const EditingVersionsScope editing(*this);
  const std::vector<const ModelDelta *> deltas = deltasOf(*version);
  auto variant = std::make_unique<OptimizationVariant>(version->getLabel());
  variant->reserveCells(source.inputs.size(), source.outputs.size());
  // A group without a value gets no cell, so the cells of the groups after it move up.
  for (const ColumnSource &column : source.inputs) {
    if (const Attribute *value = valueIn(deltas, column.entity, column.path)) {
      variant->addInput(value);
    }
  }
  for (const ColumnSource &column : source.outputs) {
    if (const Attribute *value = valueIn(deltas, column.entity, column.path)) {
      variant->addOutput(value);
    }
  }
  return m_variants.append(std::move(variant));
}

std::string OptimizationData::chooseVariantName(const std::string &name) {
  const std::map<std::string, ModelVersion *> noFurtherNames;
  if (!name.empty()) {
    return m_changeManager->getUniqueName(name, noFurtherNames);
  }
  const auto *labels = dynamic_cast<const EntityModel::FreedLabels *>(m_changeManager);
  TriedNames tried{tr("%1 Alternate %2 of %3"), getStudyTypeName(), getBaseVersionName(),
                   labels == nullptr ? 0 : labels->countFreedLabels(), 1};
  if (labels != nullptr && tried.pattern == m_triedNames.pattern && tried.type == m_triedNames.type &&
      tried.base == m_triedNames.base && tried.freedLabels == m_triedNames.freedLabels) {
    tried.number = m_triedNames.number;
  }
  for (; tried.number < std::numeric_limits<int>::max(); ++tried.number) {
    const std::string candidate = getDefaultAlternateVersionName(tried.number);
    std::string unique = m_changeManager->getUniqueName(candidate, noFurtherNames);
    // A host that gives no name at all refuses; asking on would never end.
    if (unique == candidate || unique.empty()) {
      m_triedNames = std::move(tried);
      return unique;
    }
  }
  return {};
}

std::size_t OptimizationData::addVariant(const std::vector<std::string> &values, const std::string &name,
                                         std::uint64_t alternateArgument) {
  if (values.size() != static_cast<std::size_t>(getNumInputs()) || m_changeManager == nullptr) {
    return 0;
  }
  // Set over the whole operation: a host may make the new version current, and say so, while it creates it.
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  const std::string variantName = chooseVariantName(name);
  ModelVersion *previous = m_changeManager->getCurrentVersion();
  ModelVersion *copy = findVersion(getCopyVersionName());
  if (copy == nullptr || variantName.empty()) {
    return 0;
  }
  ChangeSet changes;
  ModelVersion *version = m_changeManager->startNewAlternate(copy, &changes, true, alternateArgument);
  if (version == nullptr || !self) {
    return 0;
  }
  version->setLabel(variantName);
  version->clearStudy();
  version->setReadOnlyVersion("true");
  if (!self) {
    return 0;
  }
  if (m_changeManager->getCurrentVersion() != version) {
    const ModelVersion *before = m_changeManager->getCurrentVersion();
    const std::string labelBefore = before == nullptr ? std::string() : before->getLabel();
    m_changeManager->setCurrentVersion(version, &changes, false, nullptr, true);
    if (!self) {
      return 0;
    }
    notifyVersionChange(changes, labelBefore);
    if (!self) {
      return 0;
    }
  }
  processNewVersion(version, copy, changes);
  if (!self) {
    return 0;
  }
  writeInputValues(values);
  if (!self) {
    return 0;
  }
  const std::size_t index = addVariant(version);
  if (previous != nullptr && m_changeManager->getCurrentVersion() != previous) {
    changes.clear();
    const std::string previousLabel = previous->getLabel();
    m_changeManager->setCurrentVersion(previous, &changes, false, nullptr, true);
    if (self) {
      notifyVersionChange(changes, previousLabel);
    }
  }
  return index;
}

std::size_t OptimizationData::addVariant(std::initializer_list<std::string> values, const std::string &name,
                                         std::uint64_t alternateArgument) {
  return addVariant(std::vector<std::string>(values), name, alternateArgument);
}

std::size_t OptimizationData::addVariant(std::size_t variant, const std::string &name,
                                         std::uint64_t alternateArgument) {
  if (variant >= m_variants.size()) {
    throw std::out_of_range("OptimizationData::addVariant: Variant index out of range");
  }
  std::vector<std::string> values;
  if (const OptimizationVariant *source = getVariant(variant)) {
    for (int group = 0; group < getNumInputs(); ++group) {
      if (const Attribute *cell = source->getInput(static_cast<std::size_t>(group))) {
        values.push_back(cell->getValueAsString());
      }
    }
  }
  return addVariant(values, name, alternateArgument);
}

// Writes one text into every variable of each input group, in the version that is current.
void OptimizationData::writeInputValues(const std::vector<std::string> &values) {
  const QPointer<OptimizationData> self(this);
  for (std::size_t index = 0; index < values.size() && index < static_cast<std::size_t>(getNumInputs());
       ++index) {
    const OptimizationGroup group = getGroup(true, static_cast<int>(index));
    for (int variable = 0; variable < group.size(); ++variable) {
      if (Attribute *attribute = group.getAttribute(variable)) {
        EntityManager::setValue(attribute->getOwnerEntity(), attribute->getAttributePath(), values[index],
                                true);
        if (!self) {
          return;
        }
      }
    }
  }
}

void OptimizationData::removeVariant(std::size_t variant, bool destroyVersion) {
  if (variant >= m_variants.size()) {
    throw std::out_of_range("OptimizationData::removeVariant: Variant index out of range");
  }
  if (variant == 0) {
    throw std::out_of_range("OptimizationData::removeVariant: removeVariant called on baseline");
  }
  const QPointer<OptimizationData> self(this);
  // By then the row may have another index: whoever is told of the destruction may remove rows too.
  const RowsInUseScope rowsInUse(*this);
  const OptimizationVariant *row = getVariant(variant);
  ModelVersion *version = findVersion(getVariantName(variant));
  if (version != nullptr && destroyVersion) {
    ChangeSet changes;
    bool isDestroyed = false;
    m_changeManager->destroyVersion(version, &changes, isDestroyed);
    if (!self) {
      return;
    }
    notifyVersionChange(changes, EntityManager::getCurrentVersion());
    if (!self) {
      return;
    }
  } else if (version != nullptr) {
    version->removeFromStudy();
    version->setReadOnlyVersion("false");
    if (!self) {
      return;
    }
  }
  takeRow(row);
  EntityManager::setNeedsSave(true);
}

void OptimizationData::setVariantName(std::size_t variant, const std::string &name) {
  if (variant >= m_variants.size()) {
    throw std::out_of_range("OptimizationData::setVariantName: Variant index out of range");
  }
  if (variant == 0) {
    throw std::logic_error("OptimizationData::setVariantName: setVariantName called on baseline");
  }
  OptimizationVariant *row = getVariant(variant);
  if (row == nullptr) {
    return;
  }
  const QPointer<OptimizationData> self(this);
  const std::string oldName = row->getName();
  row->setName(name);
  ModelVersion *version = findVersion(oldName);
  if (version == nullptr) {
    return;
  }
  version->setLabel(name);
  if (!self) {
    return;
  }
  // Both answers come after the relabelling: only a host whose folders change with time has anything to
  // rename.
  const std::string firstFolder = m_changeManager->getVersionFolder(version, false);
  const std::string secondFolder = m_changeManager->getVersionFolder(version, false);
  if (firstFolder != secondFolder) {
    const ProjectData::ProjectStore from(EntityManager::s_CurrentFilename, firstFolder);
    const ProjectData::ProjectStore to(EntityManager::s_CurrentFilename,
                                       m_changeManager->getVersionFolder(version, false));
    const std::string fromDirectory = from.getStoreDirectoryName();
    const std::string toDirectory = to.getStoreDirectoryName();
    FileSystem::Directory::rename(fromDirectory, toDirectory);
    if (!self) {
      return;
    }
  }
  EntityManager::setNeedsSave(true);
}

void OptimizationData::setVariantValues(const std::string &name, const std::vector<std::string> &values) {
  if (values.size() != static_cast<std::size_t>(getNumInputs())) {
    throw std::logic_error("Incorrect number of values provided to setVariantValues");
  }
  OptimizationVariant *variant = getVariant(name);
  if (variant == nullptr) {
    throw std::logic_error("Invalid variant name provided to setVariantValues");
  }
  for (std::size_t group = 0; group < values.size(); ++group) {
    if (Attribute *cell = variant->getInput(group)) {
      cell->setValueFromString(values[group]);
    }
  }
  do_updateAlternates(UpdateTypes(WriteToModel) | ReadFromModel, {variant}, nullptr);
}

void OptimizationData::setVariantValue(std::size_t variant, std::size_t group, const std::string &value) {
  OptimizationVariant *row = getVariant(variant);
  if (row == nullptr) {
    return;
  }
  if (Attribute *cell = row->getInput(group)) {
    cell->setValueFromString(value);
  }
  do_updateAlternates(UpdateTypes(WriteToModel) | ReadFromModel, {row}, nullptr);
}

} // namespace OptimizationTool
