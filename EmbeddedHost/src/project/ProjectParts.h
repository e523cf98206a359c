#pragma once

#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/Services.h"
#include "EmbeddedHost/src/project/ProjectFile.h"
#include "EmbeddedHost/src/project/VersionStores.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace EmbeddedHost {

struct Project::Parts {
  Parts(const ModelSchema &schema, const HostBehaviour &behaviour);

  /// Lives in a file from now on.
  void attach(std::unique_ptr<ProjectFile> opened);
  /// Removes the folders of versions that were destroyed, after that was saved.
  void removeDestroyedFolders();
  /// Whether `runs` says what is known of runs, and not the file.
  bool keepsRuns() const { return file == nullptr || isReadOnly; }
  /// The runs that are in the file now. One that cannot be read is as good as none.
  std::unordered_map<std::int64_t, RunRecord> readRuns(Database &database) const;

  Model model;
  EditorService editor;
  ManagerService manager;
  StudyTypeNames studyTypeNames;
  DeclaredImpact impact;
  VersionStores stores;
  std::unique_ptr<ProjectFile> file; ///< null until the project is saved
  std::string filePath;              ///< "" until then
  bool isReadOnly = false;
  /// The types differ from those in the file.
  bool isSchemaUnsaved = false;
  /// Runs by the number of the version, of a project without file or of one that is only read: as they were when its
  /// values were read, because a run that another program records later would be one of other values.
  std::unordered_map<std::int64_t, RunRecord> runs;
  /// Versions whose runs were begun or recorded here, and not by a program that has ended since.
  std::unordered_set<std::int64_t> begunRuns;
};

} // namespace EmbeddedHost
