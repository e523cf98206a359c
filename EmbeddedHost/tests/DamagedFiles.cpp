#include "EmbeddedHost/tests/DamagedFiles.h"

#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityEditor.h"

#include <algorithm>
#include <signal.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;

constexpr std::size_t kPage = 4096;
constexpr int kVersions = 12;

void require(bool isDone, const std::string &problem) {
  if (!isDone) {
    throw std::runtime_error("no project to damage: " + problem);
  }
}

// Every kind of value, entities in entities, alternates, marks, runs, and texts that fill pages.
void fillVersion(Project &project, ModelVersion *version, int number, std::string &problem) {
  require(project.changeManager().setCurrentVersion(version, nullptr, false, nullptr, true), "no switch");
  EntityModel::Entity *root = project.rootEntity();
  const std::string text = std::to_string(number);
  EntityModel::Entity *part = project.createEntity("Part", root, "Parts", "Part " + text);
  EntityModel::Entity *inner = project.createEntity("Part", part, "Parts", "Inner " + text);
  project.createEntity("Part", inner, "Core", "Core " + text);
  project.createEntity("Mark", root, "Marks", "Mark " + text);
  const char *const values[][2] = {{"Width", "12 mm"},   {"Ratio", "0.1"},   {"Count", "4"},
                                   {"Open", "0"},        {"Material", "3"},  {"Law", "Cubic"},
                                   {"Size.Height", "7"}, {"Mass", "0.5 kg"}, {"Cycles", "8"}};
  for (const auto &[path, value] : values) {
    project.setValue(part, path, value);
    project.setValue(inner, path, value);
  }
  const std::size_t length = 50000 + static_cast<std::size_t>(number % 5) * 15000;
  project.setValue(part, "Note", std::string(length, static_cast<char>('a' + number)));
  project.setValue(inner, "Note", std::string(500, 'n') + text);
  project.setValue(inner, "Next", project.attribute(part, "Next")->getValueAsString());
  EntityModel::EntityEditor::addEntity(inner, AttributePath("Next"), part, false, true, false, false, false,
                                       -1);
  require(project.file().empty() || project.save(problem), problem);
}

RunRecord runOf(int number) {
  RunRecord run;
  run.status = number % 4 == 0 ? RunStatus::Failed : RunStatus::Ok;
  run.reason = number % 4 == 0 ? "did not converge" : "";
  run.keys = {"solver 1", "input " + std::to_string(number)};
  run.startedAt = 1700000000 + number;
  run.durationSeconds = 0.1 * number;
  run.command = {"solve", "--row", std::to_string(number)};
  run.exitCode = number % 4 == 0 ? 1 : 0;
  run.solverVersion = "2.0";
  run.logTail = std::string(6000, 'l');
  return run;
}

void saveSoundProject(const std::string &file) {
  const auto project = Project::create(testSchema());
  const HostModel::HostInstallation installation(*project);
  std::string problem;
  require(project->saveAs(file, problem), problem);
  EntityModel::ChangeManager &tree = project->changeManager();
  ModelVersion *copy =
      tree.startNewVersion("Copy", "why", "who", "what", nullptr, project->rootVersion(), true);
  copy->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  for (int number = 0; number < kVersions; ++number) {
    ModelVersion *version =
        number % 3 == 0 ? tree.startNewVersion("Row", "", "", "", nullptr, copy, false)
                        : tree.startNewAlternate(copy, nullptr, true, static_cast<std::size_t>(number % 2));
    require(version != nullptr, "no version");
    fillVersion(*project, version, number, problem);
    EntityModel::Entity *part = project->attribute(project->rootEntity(), "Parts")->asList()->getEntity(0);
    require(project->recordRun(*version, runOf(number), {{part, AttributePath("Field"), 0.25}}, problem),
            problem);
  }
}

void interruptAChange(const std::string &file) {
  const pid_t child = fork();
  if (child == 0) {
    Database database(file, Database::Access::ReadWrite);
    database.execute("PRAGMA cache_size = 1");
    database.execute("BEGIN IMMEDIATE");
    database.execute("UPDATE value SET value = 'half done' WHERE version % 2 = 0");
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  require(WIFSIGNALED(status), "no interrupted change");
}

std::size_t below(std::mt19937 &random, std::size_t count) {
  return count == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
}

// Half of the places are where structure is likely: the header of the file, of its pages, and the first page.
std::size_t anyPlace(const std::string &bytes, std::mt19937 &random) {
  const std::size_t page = below(random, bytes.size() / kPage) * kPage;
  switch (below(random, 6)) {
  case 0:
    return below(random, std::min<std::size_t>(bytes.size(), 108));
  case 1:
    return below(random, std::min(bytes.size(), kPage));
  case 2:
    return std::min(page + below(random, 64), bytes.size() - 1);
  default:
    return below(random, bytes.size());
  }
}

void flip(std::string &bytes, int count, std::mt19937 &random) {
  for (int each = 0; each < count && !bytes.empty(); ++each) {
    char &byte = bytes[anyPlace(bytes, random)];
    byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << below(random, 8)));
  }
}

std::string randomBytes(std::size_t count, std::mt19937 &random) {
  std::string bytes(count, '\0');
  std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random() & 0xFFU); });
  return bytes;
}

// Puts one page in the place of another, or exchanges the two.
void movePage(std::string &bytes, bool exchanges, std::mt19937 &random) {
  const std::size_t from = below(random, bytes.size() / kPage) * kPage;
  const std::size_t to = below(random, bytes.size() / kPage) * kPage;
  const std::string moved = bytes.substr(from, kPage);
  if (exchanges) {
    bytes.replace(from, kPage, bytes.substr(to, kPage));
  }
  bytes.replace(to, kPage, moved);
}

void damageFile(std::string &file, int kind, std::mt19937 &random) {
  switch (kind) {
  case 0:
    return flip(file, 1, random);
  case 1:
    return flip(file, 8, random);
  case 2:
    return flip(file, 64, random);
  case 3:
    return file.resize(below(random, file.size()));
  case 4:
    return file.resize(below(random, file.size() / kPage) * kPage);
  case 5:
    file.replace(below(random, file.size() / kPage) * kPage, kPage, kPage, '\0');
    return;
  case 6:
    return movePage(file, true, random);
  case 7:
    return movePage(file, false, random);
  default:
    file.insert(below(random, file.size() / kPage) * kPage, file, below(random, file.size() / kPage) * kPage,
                kPage);
  }
}

constexpr int kJournalKind = 9;
constexpr int kLogKind = 12;

void damageJournal(ProjectBytes &bytes, int kind, std::mt19937 &random) {
  switch (kind) {
  case kJournalKind:
    return flip(bytes.journal, 1 + static_cast<int>(below(random, 64)), random);
  case kJournalKind + 1:
    return bytes.journal.resize(below(random, bytes.journal.size()));
  default:
    return damageFile(bytes.file, static_cast<int>(below(random, kJournalKind)), random);
  }
}

} // namespace

SoundProject makeSoundProject(const std::string &folder) {
  const std::string file = folder + "/sound.optstudy";
  saveSoundProject(file);
  SoundProject sound;
  sound.saved = contentOf(file);
  interruptAChange(file);
  sound.interrupted = {contentOf(file), contentOf(file + "-journal"), ""};
  require(!sound.interrupted.journal.empty(), "no journal");
  unlink((file + "-journal").c_str());
  writeFile(file, sound.saved);
  {
    Database database(file, Database::Access::ReadWrite);
    database.execute("PRAGMA journal_mode = WAL");
    database.execute("UPDATE version SET label = 'foreign'");
    sound.foreignLog = contentOf(file + "-wal");
  }
  require(!sound.foreignLog.empty(), "no log");
  for (const char *ending : {"", "-wal", "-shm", "-journal", ".lock"}) {
    unlink((file + ending).c_str());
  }
  return sound;
}

ProjectBytes damaged(const SoundProject &sound, int kind, std::mt19937 &random) {
  if (kind >= kLogKind) {
    return {sound.saved, "",
            kind == kLogKind ? sound.foreignLog : randomBytes(1 + below(random, 3 * kPage), random)};
  }
  ProjectBytes bytes = {sound.saved, "", ""};
  if (kind >= kJournalKind) {
    bytes = sound.interrupted;
    damageJournal(bytes, kind, random);
  } else {
    damageFile(bytes.file, kind, random);
  }
  return bytes;
}

const char *damageName(int kind) {
  constexpr const char *kNames[kDamageKinds] = {
      "1 bit changed",     "8 bits changed",        "64 bits changed",     "cut anywhere",
      "cut between pages", "a page of zeros",       "two pages exchanged", "a page in two places",
      "a page inserted",   "a damaged journal",     "a cut journal",       "a journal beside a damaged file",
      "a foreign log",     "a log of random bytes",
  };
  return kNames[kind];
}

} // namespace EmbeddedHost
