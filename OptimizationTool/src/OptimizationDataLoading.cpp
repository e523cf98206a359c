#include "HostModel/ChangeManager.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/NullProgress.h"
#include "HostModel/ToolProgress.h"
#include "OptimizationTool/OptimizationData.h"

#include <optional>

namespace OptimizationTool {

using EntityModel::ModelVersion;

namespace {

bool follows(const ModelVersion *version, const std::string &label) {
  const ModelVersion *previous = version == nullptr ? nullptr : version->getPrevious();
  return previous != nullptr && previous->getLabel() == label;
}

void setText(Tools::ToolProgress &progress, const QString &text) {
  progress.setText(text.toStdString());
}

} // namespace

void OptimizationData::initializeVariants(Tools::ToolProgress *progress) {
  initializeVariants(false, progress);
}

void OptimizationData::initializeVariants(bool newStudy, Tools::ToolProgress *progress) {
  const RunningOperationScope running(*this);
  const QPointer<OptimizationData> self(this);
  const QLatin1Char blank(' ');
  const auto showVersion = [&](const ModelVersion &version) {
    if (progress == nullptr) {
      return;
    }
    setText(*progress, tr("Initializing %1 Study : %2")
                           .arg(getStudyTypeName(), 0, blank)
                           .arg(QString::fromStdString(version.getLabel()), 0, blank));
  };

  if (progress != nullptr) {
    progress->start();
    progress->start(0);
    if (!self) {
      return;
    }
    setText(*progress, tr("Initializing %1 Study").arg(getStudyTypeName(), 0, blank));
    Tools::setInnermostStepCount(*progress, 0);
    if (!self) {
      return;
    }
  }

  const std::string baseName = getBaseVersionName();
  if (!baseName.empty()) {
    if (ModelVersion *base = findVersion(baseName)) {
      showVersion(*base);
      if (!self) {
        return;
      }
      addVariant(base);
    }
  }

  // A study that was saved without the name of its copy finds the copy again by the default name.
  if (!newStudy && getCopyVersionName().empty()) {
    const std::string defaultName = getDefaultCopyVersionName(0);
    if (follows(findVersion(defaultName), baseName)) {
      setCopyVersionName(defaultName);
      if (!self) {
        return;
      }
    }
  }

  const std::string copyName = getCopyVersionName();
  std::vector<ModelVersion *> alternates;
  ModelVersion *copy = findVersion(copyName);
  if (follows(copy, baseName)) {
    m_changeManager->getAlternates(copy, alternates);
  }
  if (progress != nullptr) {
    Tools::setInnermostStepCount(*progress, static_cast<std::uint32_t>(alternates.size()));
    if (!self) {
      return;
    }
  }
  // What the groups refer to is the same for all rows, unless somebody who is told of the progress edits them.
  std::optional<RowSource> source;
  for (ModelVersion *version : alternates) {
    // Before the version is looked at, so that skipped versions count too.
    if (progress != nullptr) {
      progress->advance(1, Tools::Progress::AdditionalProgressNone::shared());
      if (!self) {
        return;
      }
    }
    if (version == nullptr || version->getLabel() == copyName) {
      continue;
    }
    if (version->isStudyCase(true, false)) {
      showVersion(*version);
      if (!self) {
        return;
      }
      if (progress != nullptr || !source) {
        source = getRowSource();
      }
      addVariant(version, *source);
    }
  }

  ModelVersion *base = findVersion(baseName);
  if (base != nullptr && m_changeManager->getCurrentVersion() != base) {
    // Restored by hand on the way out that succeeds: when the switch throws, the flag goes on keeping changes
    // of the half-switched model out of the rows until the study is loaded again.
    const bool previous = m_isEditingVersions;
    m_isEditingVersions = true;
    m_changeManager->setCurrentVersion(base, nullptr, false, nullptr, true);
    if (!self) {
      return;
    }
    m_isEditingVersions = previous;
  }

  updateCostCalculator();

  if (newStudy) {
    if (const ModelVersion *current = currentVersion()) {
      setBaseVersionName(current->getLabel());
      if (self) {
        createCopyVersion(true);
      }
    }
  }
}

} // namespace OptimizationTool
