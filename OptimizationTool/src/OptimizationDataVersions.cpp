#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"

#include <limits>
#include <map>

namespace OptimizationTool {

using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

std::string OptimizationData::getDefaultCopyVersionName(int n) const {
  const QString type = getStudyTypeName();
  const QString base = QString::fromStdString(getBaseVersionName());
  if (n == 0) {
    return tr("%1 Copy of %2").arg(type).arg(base).toStdString();
  }
  return tr("%1 Copy of %2 - %3").arg(type).arg(base).arg(n).toStdString();
}

std::string OptimizationData::getDefaultAlternateVersionName(int n) const {
  // The number stands before the base name, unlike in the names of copies.
  return tr("%1 Alternate %2 of %3")
      .arg(getStudyTypeName())
      .arg(n)
      .arg(QString::fromStdString(getBaseVersionName()))
      .toStdString();
}

std::string OptimizationData::storeNewCopyVersionName() {
  int number = 0;
  while (findVersion(getDefaultCopyVersionName(number)) != nullptr) {
    ++number;
  }
  const std::map<std::string, ModelVersion *> noFurtherNames;
  const std::string name = m_changeManager->getUniqueName(getDefaultCopyVersionName(number), noFurtherNames);
  const QPointer<OptimizationData> self(this);
  setCopyVersionName(name);
  return self ? getCopyVersionName() : std::string();
}

void OptimizationData::createCopyVersion(bool forceNew) {
  if (m_changeManager == nullptr) {
    return;
  }
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  ModelVersion *remembered = m_changeManager->getCurrentVersion();
  ChangeSet changes;
  const std::string defaultName = getDefaultCopyVersionName(0);
  const ModelVersion *existing = findVersion(defaultName);
  if (!forceNew && existing != nullptr) {
    const ModelVersion *previous = existing->getPrevious();
    if (previous != nullptr && previous->getLabel() == getBaseVersionName() &&
        existing->isStudyCase(true, false)) {
      setCopyVersionName(defaultName);
      if (!self) {
        return;
      }
    }
  }
  if (forceNew || getCopyVersionName().empty()) {
    const std::string name = storeNewCopyVersionName();
    if (!self) {
      return;
    }
    ModelVersion *version = m_changeManager->startNewVersion(name, "", "", "", nullptr, remembered, false);
    if (!self) {
      return;
    }
    if (version != nullptr) {
      version->setLabel(name);
      version->clearStudy();
      version->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
      version->setReadOnlyVersion("true");
      if (!self) {
        return;
      }
      processNewVersion(version, remembered, changes);
      if (!self) {
        return;
      }
    }
  }
  switchBack(remembered, changes);
}

void OptimizationData::createMissingVersions() {
  if (m_changeManager == nullptr) {
    return;
  }
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  ModelVersion *remembered = m_changeManager->getCurrentVersion();
  ChangeSet changes;
  if (getCopyVersionName().empty()) {
    createCopyVersion(false);
    if (!self) {
      return;
    }
  }
  ModelVersion *base = findVersion(getBaseVersionName());
  ModelVersion *copy = findVersion(getCopyVersionName());
  for (std::size_t index = 0; index < m_variants.size(); ++index) {
    const OptimizationVariant *variant = m_variants.get(index);
    if (variant == nullptr || findVersion(variant->getName()) != nullptr) {
      continue;
    }
    const std::string name = variant->getName();
    ModelVersion *version =
        m_changeManager->startNewAlternate(copy, &changes, true, std::numeric_limits<std::uint64_t>::max());
    if (!self) {
      return;
    }
    if (version == nullptr) {
      continue;
    }
    version->setLabel(name);
    version->clearStudy();
    version->setReadOnlyVersion("true");
    if (!self) {
      return;
    }
    // The base version is the origin here, though the alternate is one of the copy: the row's results are
    // gone with its version, and those of the baseline are the ones that are known.
    processNewVersion(version, base, changes);
    if (!self) {
      return;
    }
  }
  switchBack(remembered, changes);
}

bool OptimizationData::allVersionsExist() const {
  for (const auto &variant : m_variants) {
    if (variant != nullptr && findVersion(variant->getName()) == nullptr) {
      return false;
    }
  }
  return true;
}

// Makes the remembered version current again where it is not, and tells the observers.
void OptimizationData::switchBack(ModelVersion *version, ChangeSet &changes) {
  if (version == nullptr || m_changeManager->getCurrentVersion() == version) {
    return;
  }
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  m_changeManager->setCurrentVersion(version, &changes, false, nullptr, true);
  if (self) {
    notifyVersionChange(changes, EntityGUI::EntityManager::getCurrentVersion());
  }
}

} // namespace OptimizationTool
