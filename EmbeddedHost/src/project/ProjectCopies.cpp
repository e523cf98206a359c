#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/src/project/DatabaseCopy.h"
#include "EmbeddedHost/src/project/NewProject.h"
#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/src/project/ProjectWriter.h"

#include <map>
#include <set>
#include <utility>

namespace EmbeddedHost {

namespace {

void copyRuns(Database &from, ProjectWriter &to) {
  Statement rows =
      from.prepare("SELECT version, status, reason, keys, started_at, duration, command, exit_code, "
                   "solver_version, log_tail FROM run");
  while (rows.step()) {
    to.putRun(rows.integer(0), readRun(rows, 1));
  }
}

// Saves a model with the runs that its versions had.
void writeModel(const Project::Parts &parts, Database &database, TextTable &texts) {
  ProjectWriter writer(database, texts);
  writer.writeAll(parts.model);
  if (!parts.keepsRuns()) {
    copyRuns(parts.file->database(), writer);
  }
  for (const auto &[number, record] : parts.runs) {
    writer.putRun(number, record);
  }
  // Of versions that were destroyed in the meantime.
  database.execute("DELETE FROM run WHERE version NOT IN (SELECT number FROM version)");
}

// The results folders of the project that is open; not open itself when there are none.
Folder openResultsOf(const std::string &projectFile, std::string &problem) {
  Folder results = openResultsFolder(projectFile);
  problem = results.isOpen() || results.isAbsent() ? std::string() : results.problem();
  return results;
}

/// Copies a saved project while others may save it. Nobody is kept from that for longer than it takes to copy what has
/// changed since the copying began.
class Backup {
public:
  Backup(ProjectFile &source, NewProject &target)
      : m_file(source.path()), m_source(source.database()), m_target(target),
        m_copy(target.unfinishedPath(), Database::Access::Create) {}

  bool copy(std::string &problem);

private:
  // What is known of the run of each version, by the folder of the version.
  using Runs = std::map<std::string, std::string>;

  void copyFirst();
  bool copyRest(std::string &problem);
  Runs runs();

  std::string m_file;
  Database &m_source;
  NewProject &m_target;
  Database m_copy;
  Runs m_copied;
};

Backup::Runs Backup::runs() {
  Runs all;
  Statement rows = m_copy.prepare(
      "SELECT folder, quote(status) || quote(reason) || quote(keys) || quote(started_at) || quote(duration) "
      "FROM version LEFT JOIN run ON run.version = version.number");
  while (rows.step()) {
    all.emplace(rows.text(0), rows.text(1));
  }
  return all;
}

// What cannot be copied now, perhaps because it is being replaced, is tried again with the rest.
void Backup::copyFirst() {
  std::string ignored;
  copyDatabase(m_source, m_copy);
  const Folder results = openResultsOf(m_file, ignored);
  for (const auto &[folder, run] : runs()) {
    if (results.isAbsent() || m_target.copyResults(results, folder, ignored)) {
      m_copied.emplace(folder, run);
    }
  }
}

bool Backup::copyRest(std::string &problem) {
  copyDatabase(m_source, m_copy);
  const Folder results = openResultsOf(m_file, problem);
  if (!problem.empty()) {
    return false;
  }
  const Runs present = runs();
  for (const auto &[folder, run] : m_copied) {
    if (present.count(folder) == 0 && !m_target.dropResults(folder, problem)) {
      return false;
    }
  }
  for (const auto &[folder, run] : present) {
    const auto copied = m_copied.find(folder);
    const bool isCurrent = copied != m_copied.end() && copied->second == run;
    if (results.isOpen() && !isCurrent && !m_target.copyResults(results, folder, problem)) {
      return false;
    }
  }
  return true;
}

bool Backup::copy(std::string &problem) {
  constexpr const char *kChanges = "PRAGMA data_version";
  const std::int64_t before = m_source.number(kChanges);
  copyFirst();
  {
    const ReadTransaction unchanged(m_source);
    const bool isSame =
        m_source.number("SELECT count(*) FROM version") == static_cast<std::int64_t>(m_copied.size());
    if ((!isSame || m_source.number(kChanges) != before) && !copyRest(problem)) {
      return false;
    }
  }
  // The copy has no folders but those of its versions.
  Transaction transaction(m_copy);
  m_copy.execute("DELETE FROM removed_folder");
  transaction.commit();
  return true;
}

} // namespace

bool Project::saveAs(const std::string &file, std::string &problem) {
  Parts &own = *m_parts;
  std::unique_ptr<NewProject> made = NewProject::claim(file, problem);
  if (made == nullptr) {
    return false;
  }
  if (own.file != nullptr) {
    const Folder results = openResultsOf(own.filePath, problem);
    if (!problem.empty()) {
      return false;
    }
    for (const auto &[number, version] : own.model.tree().versions()) {
      if (results.isOpen() && !made->copyResults(results, version->folder(), problem)) {
        return false;
      }
    }
  }
  std::unique_ptr<ProjectFile> created = ProjectFile::create(
      std::move(made), [&own](Database &database, TextTable &texts) { writeModel(own, database, texts); },
      problem);
  if (created == nullptr) {
    return false;
  }
  own.attach(std::move(created));
  own.isReadOnly = false;
  own.isSchemaUnsaved = false;
  own.runs.clear();
  own.model.forgetUnsaved();
  return true;
}

bool Project::backup(const std::string &file, std::string &problem) {
  problem.clear();
  Parts &own = *m_parts;
  if (own.file == nullptr) {
    problem = "The project has no file yet; it has to be saved under a name.";
    return false;
  }
  const std::unique_ptr<NewProject> made = NewProject::claim(file, problem);
  if (made == nullptr) {
    return false;
  }
  try {
    if (!Backup(*own.file, *made).copy(problem)) {
      return false;
    }
  } catch (const DatabaseError &error) {
    problem = "The project " + own.filePath + " cannot be copied to " + file + ": " + error.what() + ".";
    return false;
  }
  if (!made->publish(problem)) {
    return false;
  }
  made->keep();
  return true;
}

} // namespace EmbeddedHost
