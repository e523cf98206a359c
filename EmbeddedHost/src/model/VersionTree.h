#pragma once

#include "EmbeddedHost/src/model/Version.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/FreedLabels.h"

#include <functional>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace EmbeddedHost {

class Model;

/// A version that was destroyed since the last save.
struct DestroyedVersion {
  std::int64_t number = 0;
  std::string folder;
  bool isInFile = false; ///< the project's file has a row of it
};

/// The ends of the chain of versions with one label, in order of creation.
struct SameLabel {
  Version *first = nullptr;
  Version *last = nullptr;
  /// Somebody who asked for the label was told that it is taken.
  mutable bool wasAskedFor = false;
};

/// The versions of a project. Which of them the model shows is a matter of the edits on the way from the root
/// version to the shown one: leaving a version puts the values back that its edits had replaced, entering one
/// applies its edits. A switch thus takes as long as the deltas between the two versions are large.
class VersionTree final : public EntityModel::ChangeManager, public EntityModel::FreedLabels {
public:
  explicit VersionTree(Model &model);
  ~VersionTree() override;

  /// Behaviour; see HostBehaviour.
  bool switchesNotify = true;
  bool newVersionsBecomeCurrent = false;
  /// Answers the folder of a version, which it makes if asked to; unset while the project has no file.
  std::function<std::string(const Version &, bool create)> folderOf;

  Version *current() const { return m_current; }
  /// The version that the model shows; stays when no version is current any more.
  Version *shown() const { return m_shown; }
  Version *root() const { return m_root; }
  Model &model() const { return m_model; }
  /// In order of creation.
  const std::map<std::int64_t, std::unique_ptr<Version>> &versions() const { return m_versions; }
  /// The version as one of this project; null when it is not.
  Version *own(EntityModel::ModelVersion *version) const;
  const Version *own(const EntityModel::ModelVersion *version) const;

  /// The edit of a slot in a version, or null.
  const EntityModel::EditOperation *showEdit(const Version &version, const EntityModel::Entity *entity,
                                             const EntityModel::AttributePath &path) const;

  /// The slot of which the latest version up to the shown one has an edit; the first when none has.
  Slot *latestOf(const std::vector<Slot *> &slots) const;

  /// Records a value in the current version and shows it. False when no version is current.
  bool record(Slot &slot, Value value);
  /// Records a value in any version; what the model shows follows.
  void recordIn(Version &version, Slot &slot, Value value);

  /// Puts a version into the tree as it was saved. The previous version comes first.
  Version &restore(std::int64_t number, const std::string &folder, Version *previous, VersionMarks marks);
  /// Joins restored versions into a family.
  static void restoreFamily(std::int64_t number, Version *origin, const std::vector<Version *> &members);
  /// The next version gets at least this number.
  void reserveNumbers(std::int64_t next);
  std::int64_t nextNumber() const { return m_nextNumber; }
  /// Shows a version and makes it current without telling anybody; null leaves none current.
  void makeCurrent(Version *version);
  /// Shows a version without making it current: to be read only, until makeCurrent().
  void look(Version &version) { show(version, nullptr); }

  /// \name What is not saved yet
  /// @{
  const std::unordered_set<Version *> &unsaved() const { return m_unsaved; }
  void markUnsaved(Version &version);
  void markEditUnsaved(Version &version, const Slot &slot);
  /// The present value of the slot in the version is in the file.
  void markEditSaved(Version &version, const Slot &slot);
  const std::vector<DestroyedVersion> &destroyed() const { return m_destroyed; }
  void forgetUnsaved();
  /// @}

  EntityModel::ModelVersion *getCurrentVersion() const override;
  EntityModel::ModelVersion *getRootVersion(bool create) override;
  EntityModel::ModelVersion *findVersion(const std::string &label,
                                         EntityModel::Entity *entity) const override;
  void getAlternates(EntityModel::ModelVersion *version,
                     std::vector<EntityModel::ModelVersion *> &alternates) const override;
  bool setCurrentVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool force,
                         Tools::ToolProgress *progress, bool loadData) override;
  EntityModel::ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                             const std::string &author, const std::string &comment,
                                             EntityModel::ChangeSet *changes,
                                             EntityModel::ModelVersion *origin, bool makeReadOnly) override;
  EntityModel::ModelVersion *startNewAlternate(EntityModel::ModelVersion *version,
                                               EntityModel::ChangeSet *changes, bool copyContent,
                                               std::size_t position) override;
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, EntityModel::ModelVersion *> &others) const override;
  void editedVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool &edited,
                     bool notify) override;
  void destroyVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes,
                      bool &destroyed) override;
  void destroyVersions(std::vector<EntityModel::ModelVersion *> &versions, EntityModel::ChangeSet *changes,
                       bool &destroyed) override;
  std::string getVersionFolder(EntityModel::ModelVersion *version, bool create) override;
  bool canBeginPACStudy(EntityModel::ModelVersion *version) const override;
  std::uint64_t countFreedLabels() const override { return m_freedLabels; }

private:
  friend class Version;

  Version &add(Version *previous, const std::string &label);
  Version &insert(std::unique_ptr<Version> version);
  void enter(Version &version);
  void leave(Version &version);
  void show(Version &version, EntityModel::ChangeSet *changes);
  void notify(EntityModel::ChangeSet *changes);
  void becomeCurrentIfSo(Version &version, EntityModel::ChangeSet *changes);
  void enterLabel(Version &version);
  void removeLabel(Version &version);
  void noteFreeLabel(const std::string &label);
  void relabel(Version &version, const std::string &label);
  void destroyAll(const std::vector<Version *> &versions, EntityModel::ChangeSet *changes, bool &destroyed);
  void rank(std::vector<Version *> &members, std::size_t place);
  void removeFromFamilies(const std::unordered_set<Version *> &doomed);

  Model &m_model;
  std::map<std::int64_t, std::unique_ptr<Version>> m_versions;
  std::unordered_map<const EntityModel::ModelVersion *, Version *> m_own;
  /// Keeps the labels close together, which look-ups in random order are faster for.
  std::pmr::unsynchronized_pool_resource m_labelMemory;
  std::pmr::unordered_map<std::string, SameLabel> m_labels{&m_labelMemory};
  /// For labels of which variations were asked for: all variations with a lower number are taken.
  mutable std::unordered_map<std::string, std::uint64_t> m_lowestFree;
  /// Of the labels that were asked for.
  std::uint64_t m_freedLabels = 0;
  Version *m_root = nullptr;
  Version *m_current = nullptr;
  Version *m_shown = nullptr;
  std::int64_t m_nextNumber = 1;
  std::unordered_set<Version *> m_unsaved;
  std::vector<DestroyedVersion> m_destroyed;
  mutable ShownEdit m_shownEdit;
};

} // namespace EmbeddedHost
