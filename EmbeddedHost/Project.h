#pragma once

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/RunRecord.h"
#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace EmbeddedHost {

/// How a project behaves where hosts may differ; the defaults are what the shipped programs use.
struct HostBehaviour {
  /// setCurrentVersion() itself tells the observers of the switch.
  bool switchesNotify = true;
  /// startNewVersion() and startNewAlternate() make the new version current, and say so.
  bool newVersionsBecomeCurrent = false;
};

/// Whether a project is opened to be changed or only to be looked at.
enum class OpenMode { ReadWrite, ReadOnly };

/// Changes the types of a project while it is opened; it is given those that were saved. Types that entities have must
/// stay, and so must members that have values, of the same kind, with units that the saved values convert to and with
/// the options that they choose. \return "" or why they cannot be changed, in one sentence
using SchemaChange = std::function<std::string(ModelSchema &schema)>;

/// One open project: a model of entities with typed values, its tree of versions, and the file and the
/// results folders that keep them. It is a host: install it with HostModel::HostInstallation, or install a
/// wrapper around it.
///
/// The model always has a root entity and, from the start, a root version labelled "Base". Values are shown
/// as the current version has them. A version shows its previous version's present content with its own edits
/// on top. All use is on one thread.
class Project final : public HostModel::Host {
public:
  /// A new project that has no file yet.
  static std::unique_ptr<Project> create(const ModelSchema &schema, const HostBehaviour &behaviour = {});
  /// Opens a project file. Nothing is announced and nothing of the process is changed; see Commands. A file of an older
  /// format is brought to the present one, the file as it was stays beside it as "<file>.format-<number>"; when it is
  /// opened for reading only it is not touched.
  /// \return null with one sentence in \p problem when the file is missing, foreign, damaged, made by a newer
  ///         program, or held by another process that writes it; it is then exactly as it was
  static std::unique_ptr<Project> open(const std::string &file, OpenMode mode, std::string &problem,
                                       const HostBehaviour &behaviour = {});
  /// Opens a project file to be changed, with other types than it was saved with. Members that are new have their
  /// default in every version; values are converted into the units that are declared now. Nothing is written before
  /// save(), and no run can be recorded before it.
  /// \return as above; null with the reason of \p change also when that answers one, or when a saved value does not fit
  static std::unique_ptr<Project> open(const std::string &file, const SchemaChange &change,
                                       std::string &problem, const HostBehaviour &behaviour = {});
  ~Project() override;
  /// Whether another program may have the file open for writing: false when none has, or when the one that had it has
  /// ended without closing it.
  static bool isHeld(const std::string &file);

  /// \name The host
  /// @{
  EntityModel::EntityEditorService *getEntityEditor() override;
  EntityGUI::EntityManagerService *getEntityManager() override;
  EntityModel::StudyTypeNameService *getStudyTypeNames() override;
  EntityModel::ModellingImpactService *getModellingImpact() override;
  ProjectData::ProjectStoreService *getProjectStore() override;
  FileSystem::DirectoryService *getDirectories() override;
  /// @}

  /// \name The model
  /// @{
  const ModelSchema &schema() const;
  EntityModel::Entity *rootEntity() const;
  EntityModel::ChangeManager &changeManager() const;
  EntityModel::ModelVersion *rootVersion() const;
  EntityModel::ModelVersion *currentVersion() const;
  /// Every version in order of creation.
  std::vector<EntityModel::ModelVersion *> versions() const;
  /// Creates an entity at the end of a list, or in a link, of \p owner in the current version.
  /// \param list  label or "."-separated path of the list or link
  /// \return null for an unknown type or list, a full link, or a type that the list does not take
  EntityModel::Entity *createEntity(const std::string &type, EntityModel::Entity *owner,
                                    const std::string &list, const std::string &name);
  /// Renames an entity, in every version.
  bool renameEntity(EntityModel::Entity *entity, const std::string &name);
  /// The attribute at a "."-separated path, or null.
  EntityModel::Attribute *attribute(EntityModel::Entity *entity, const std::string &path) const;
  /// Sets a value in the current version from text, whatever its nature; "" unsets a number. Tells no
  /// observer.
  /// \return false for a null entity or a missing path
  /// \throws std::invalid_argument  the text is no value of the attribute; nothing has changed
  bool setValue(EntityModel::Entity *entity, const std::string &path, const std::string &text);
  /// The number of an entity, which is part of the text of links to it; stable over sessions.
  static std::int64_t entityNumber(const EntityModel::Entity &entity);
  /// Whether the version is read-only for users.
  static bool isReadOnly(const EntityModel::ModelVersion &version);
  /// Called by the library whenever values were pushed into the current version; may be null. Not owned.
  void setModelChecker(EntityGUI::AbstractModelChecker *checker);
  /// @}

  /// \name The file
  /// @{

  /// Path of the project's file; "" when it was never saved.
  const std::string &file() const;
  bool isReadOnlyProject() const;
  /// Whether there are changes that are not saved.
  bool needsSave() const;
  /// Saves what has changed since the last save, in one transaction: the file is as before or as after.
  /// \return false with one sentence in \p problem; nothing was saved then
  bool save(std::string &problem);
  /// Saves into a new file, which the project then lives in; its results folders are copied along. Refuses a
  /// file that exists.
  bool saveAs(const std::string &file, std::string &problem);
  /// Copies the project as it is saved, with its results folders, into a new file; the project stays where it is.
  /// Solvers may run, and when it is open for reading only another process may write it meanwhile: the copy is that of
  /// one moment, and holds of a run that is not finished neither results nor files. Refuses a file that exists.
  /// \return false with one sentence in \p problem; there is no copy then
  bool backup(const std::string &file, std::string &problem);
  /// @}

  /// \name Solver runs
  /// @{

  /// The record of the last run of a version; status None when it never ran. A run that an earlier program began and
  /// never recorded is Failed with the reason kLostRun. In a project that was opened for reading only it is Running,
  /// because another program may be at it, and all records are those of the moment at which it was opened, as the
  /// values are.
  RunRecord runRecord(const EntityModel::ModelVersion &version) const;
  using RunRecords = std::unordered_map<const EntityModel::ModelVersion *, RunRecord>;
  /// The records of all versions that ever ran, as runRecord() answers them, in one reading of the file: for whoever
  /// looks at many versions.
  RunRecords runRecords() const;
  /// The same, one after the other in any order, without a copy of them all: records hold what solvers printed.
  /// \param visit  must neither begin nor record a run
  void forEachRun(const std::function<void(const EntityModel::ModelVersion &version, const RunRecord &record)>
                      &visit) const;
  /// Stores, in one durable transaction of its own, that a run of a version begins: a record with the status Running,
  /// and the results without values, so that nobody takes former ones for those of this run. It holds no other unsaved
  /// edit and waits for no result file to be written to the disk. In a project without a file only the model changes.
  /// \param record   its status, reason and exit code are not looked at
  /// \param results  their values are not looked at
  /// \return false with one sentence in \p problem, as recordRun(); nothing has changed then, and nothing is to be
  ///         started
  bool beginRun(EntityModel::ModelVersion &version, const RunRecord &record,
                const std::vector<ResultValue> &results, std::string &problem);
  /// Stores a version's run record and its results in one durable transaction of their own, which holds no
  /// other unsaved edit. The results also become values of that version in the model. The files of the version are on
  /// the disk before. In a project without a file only the model changes.
  /// \return false with one sentence in \p problem, for example when the version or a result's entity was never
  ///         saved, or when another program keeps the file locked for a minute; nothing has changed then, the results
  ///         are not in the model either, and a run that was begun stays Running in the file
  bool recordRun(EntityModel::ModelVersion &version, const RunRecord &record,
                 const std::vector<ResultValue> &results, std::string &problem);
  /// The folder of a version's files beside the project's file, named by an identifier that never changes.
  /// \param create  make it when it does not exist
  /// \return "" when the project has no file, or the folder cannot be made
  std::string versionFolder(EntityModel::ModelVersion &version, bool create);
  /// @}

  /// What the parts of this room share; defined inside.
  struct Parts;
  Parts &parts() const { return *m_parts; }

private:
  explicit Project(std::unique_ptr<Parts> parts);
  static std::unique_ptr<Project> openWith(const std::string &file, OpenMode mode, const SchemaChange &change,
                                           std::string &problem, const HostBehaviour &behaviour);

  std::unique_ptr<Parts> m_parts;
};

} // namespace EmbeddedHost
