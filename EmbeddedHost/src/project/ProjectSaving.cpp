#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/src/project/ProjectReader.h"
#include "EmbeddedHost/src/project/ProjectWriter.h"
#include "EmbeddedHost/src/project/UnitChange.h"

#include <filesystem>
#include <utility>

namespace EmbeddedHost {

namespace fs = std::filesystem;

void Project::Parts::attach(std::unique_ptr<ProjectFile> opened) {
  file = std::move(opened);
  filePath = file->path();
  model.tree().folderOf = [this](const Version &version, bool create) {
    return versionFolderPath(filePath, version.folder(), create && !isReadOnly);
  };
}

void Project::Parts::removeDestroyedFolders() {
  for (const DestroyedVersion &destroyed : model.tree().destroyed()) {
    std::string ignored; // what stays is noted in the file and removed when the project is opened next
    removeVersionFolder(filePath, destroyed.folder, ignored);
  }
}

namespace {

std::vector<std::string> removedFolders(Database &database) {
  std::vector<std::string> folders;
  Statement rows = database.prepare("SELECT folder FROM removed_folder");
  while (rows.step()) {
    folders.emplace_back(rows.text(0));
  }
  return folders;
}

// Forgets the folders that are gone. The others are tried again at the next opening.
void forgetRemovedFolders(Database &database, const std::string &projectFile) {
  Statement row = database.prepare("DELETE FROM removed_folder WHERE folder = ?");
  for (const std::string &folder : removedFolders(database)) {
    std::error_code error;
    const std::string path = versionFolderPath(projectFile, folder, false);
    if (path.empty() || fs::symlink_status(path, error).type() == fs::file_type::not_found) {
      row.bindText(1, folder).run();
    }
  }
}

// Folders of versions whose removal was saved, but which an interrupted program did not get to.
void removeLeftFolders(ProjectFile &file) {
  const std::vector<std::string> folders = removedFolders(file.database());
  if (folders.empty()) {
    return;
  }
  for (const std::string &folder : folders) {
    std::string ignored; // what stays is tried again at the next opening
    removeVersionFolder(file.path(), folder, ignored);
  }
  std::string problem;
  // What cannot be noted as removed now is removed again the next time.
  file.change(
      [&file](Database &database, TextTable & /*texts*/) { forgetRemovedFolders(database, file.path()); },
      problem);
}

// Whether there is something to be saved. When that cannot be found out, saving says why.
bool hasChanges(ProjectFile &file, const Model &model) {
  try {
    return ProjectWriter(file.database(), file.texts()).hasChanges(model);
  } catch (const DatabaseError &) {
    return true;
  }
}

} // namespace

std::unique_ptr<Project> Project::open(const std::string &file, OpenMode mode, std::string &problem,
                                       const HostBehaviour &behaviour) {
  return openWith(file, mode, {}, problem, behaviour);
}

std::unique_ptr<Project> Project::open(const std::string &file, const SchemaChange &change,
                                       std::string &problem, const HostBehaviour &behaviour) {
  return openWith(file, OpenMode::ReadWrite, change, problem, behaviour);
}

std::unique_ptr<Project> Project::openWith(const std::string &file, OpenMode mode, const SchemaChange &change,
                                           std::string &problem, const HostBehaviour &behaviour) {
  problem.clear();
  std::unique_ptr<ProjectFile> opened = ProjectFile::open(file, mode, problem);
  if (opened == nullptr) {
    return nullptr;
  }
  try {
    const ModelSchema saved = readSchema(opened->database());
    ModelSchema schema = saved;
    problem = change ? change(schema) : "";
    if (!problem.empty()) {
      return nullptr;
    }
    auto parts = std::make_unique<Parts>(schema, behaviour);
    readModel(opened->database(), parts->model);
    parts->isReadOnly = mode == OpenMode::ReadOnly;
    if (parts->isReadOnly) {
      parts->runs = parts->readRuns(opened->database());
    }
    opened->endReading();
    if (!parts->isReadOnly) {
      removeLeftFolders(*opened);
      std::string ignored; // what stays is tried again at the next opening
      removeUnfinishedCopies(opened->path(), ignored);
    }
    parts->attach(std::move(opened));
    if (change) {
      convertChangedUnits(saved, parts->model);
      parts->isSchemaUnsaved = true;
      parts->model.needsSave = true;
    }
    return std::unique_ptr<Project>(new Project(std::move(parts)));
  } catch (const DamagedProject &damage) {
    problem = "The project " + file +
              (change ? " does not fit the changed types: it holds " : " is damaged: it holds ") +
              damage.what() + ".";
  } catch (const DatabaseError &error) {
    problem = "The project " + file + " cannot be read: " + error.what() + ".";
  }
  return nullptr;
}

Project::~Project() {
  // Whoever did not close the project leaves a selection behind.
  for (const std::unique_ptr<ModelEntity> &entity : m_parts->model.entities()) {
    if (EntityGUI::EntityManager::s_CurrentEntity == entity.get()) {
      EntityGUI::EntityManager::s_CurrentEntity = nullptr;
    }
  }
  if (m_parts->file == nullptr || m_parts->isReadOnly) {
    return;
  }
  // Nobody will know the folders of versions that were never saved, nor be there to be told that one stays.
  std::string ignored;
  for (const Version *version : m_parts->model.tree().unsaved()) {
    if (!version->isInFile) {
      removeVersionFolder(m_parts->filePath, version->folder(), ignored);
    }
  }
  for (const DestroyedVersion &destroyed : m_parts->model.tree().destroyed()) {
    if (!destroyed.isInFile) {
      removeVersionFolder(m_parts->filePath, destroyed.folder, ignored);
    }
  }
}

bool Project::save(std::string &problem) {
  problem.clear();
  Parts &own = *m_parts;
  if (own.file == nullptr) {
    problem = "The project has no file yet; it has to be saved under a name.";
    return false;
  }
  if (own.isReadOnly) {
    problem = "The project " + own.filePath + " was opened for reading only.";
    return false;
  }
  if (!own.stores.syncCopies(problem)) {
    return false;
  }
  const bool isChanged = own.isSchemaUnsaved || hasChanges(*own.file, own.model);
  const bool isSaved = !isChanged || own.file->change(
                                         [&own](Database &database, TextTable &texts) {
                                           forgetRemovedFolders(database, own.filePath);
                                           ProjectWriter writer(database, texts);
                                           if (own.isSchemaUnsaved) {
                                             writer.replaceSchema(own.model.schema());
                                           }
                                           writer.writeChanges(own.model);
                                         },
                                         problem);
  if (isSaved) {
    own.isSchemaUnsaved = false;
    own.removeDestroyedFolders();
    own.model.forgetUnsaved();
  }
  return isSaved;
}

std::string Project::versionFolder(EntityModel::ModelVersion &version, bool create) {
  return m_parts->model.tree().getVersionFolder(&version, create);
}

} // namespace EmbeddedHost
