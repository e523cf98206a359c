#pragma once

#include "HostModel/Export.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Tools {
class ToolProgress;
}

namespace EntityModel {

class ChangeSet;
class Entity;
class ModelVersion;

/// Owner of all versions of a project.
class HOSTMODEL_EXPORT ChangeManager {
public:
  ChangeManager() = default;
  ChangeManager(const ChangeManager &) = delete;
  ChangeManager &operator=(const ChangeManager &) = delete;
  virtual ~ChangeManager();

  virtual ModelVersion *getCurrentVersion() const = 0;
  /// The first version of the project.
  /// \param create  make one where there is none
  virtual ModelVersion *getRootVersion(bool create) = 0;
  /// The first version in order of creation with exactly this label, or null.
  /// \param entity  only versions that have this entity; null for any
  virtual ModelVersion *findVersion(const std::string &label, Entity *entity) const = 0;
  /// Fills in the alternates made from \p version and from each other, in their order; not the version
  /// itself. Null leaves the list empty.
  virtual void getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const = 0;
  /// Makes the version current and, after the switch and before returning, tells the observers of it.
  /// \param changes   receives the attributes whose values differ; null records nothing; never kept
  /// \param force     switch even when the version is current
  /// \param progress  null reports nothing
  /// \param loadData  load the version's data too
  /// \return whether the version is current now
  virtual bool setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force,
                                 Tools::ToolProgress *progress, bool loadData) = 0;
  /// Makes a version that follows \p origin, with its content, no study marks and an empty delta.
  /// \return null when the host refuses
  virtual ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                        const std::string &author, const std::string &comment,
                                        ChangeSet *changes, ModelVersion *origin, bool makeReadOnly) = 0;
  /// Makes another version at the place of \p version: its content, its previous version, no study marks.
  /// \param copyContent  start from the content of \p version
  /// \param position     among the alternates of \p version; anything past the end appends
  /// \return null when the host refuses, always for a null version
  virtual ModelVersion *startNewAlternate(ModelVersion *version, ChangeSet *changes, bool copyContent,
                                          std::size_t position) = 0;
  /// The label unchanged when no version and no entry of \p others has it, else a free variation of it.
  virtual std::string getUniqueName(const std::string &label,
                                    const std::map<std::string, ModelVersion *> &others) const = 0;
  /// Marks the version as edited since the last save, a read-only one too.
  virtual void editedVersion(ModelVersion *version, ChangeSet *changes, bool &edited, bool notify) = 0;
  /// Removes the version and what follows it from the project; never the root version; null and unknown
  /// versions are ignored. When the current version goes, its nearest surviving previous version becomes
  /// current without notification.
  /// \param destroyed  receives whether anything was removed
  virtual void destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) = 0;
  virtual void destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes,
                               bool &destroyed) = 0;
  /// The folder of the version's data, which never depends on its label; "" for null.
  /// \param create  make the folder where it does not exist
  virtual std::string getVersionFolder(ModelVersion *version, bool create) = 0;
  /// Whether the host lets a study begin on the version; false for null.
  virtual bool canBeginPACStudy(ModelVersion *version) const = 0;
};

} // namespace EntityModel
