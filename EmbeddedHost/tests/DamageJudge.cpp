#include "EmbeddedHost/tests/DamageJudge.h"

#include "EmbeddedHost/tests/ModelFixture.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace fs = std::filesystem;

namespace {

// At once, because it is read for each opening twice.
std::string bytesOfFile(const fs::path &path) {
  std::string bytes(fs::file_size(path), '\0');
  std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

// The content of every file in a folder; of anything else, what it is.
std::map<std::string, std::string> listing(const std::string &folder) {
  std::map<std::string, std::string> entries;
  for (const fs::directory_entry &entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    entries[name] = entry.is_regular_file() && !entry.is_symlink() ? bytesOfFile(entry.path()) : "no file";
  }
  return entries;
}

// The address sanitizer needs more room for itself than any limit.
void limitMemory() {
#if !defined(OPTSTUDY_ADDRESS_SANITIZER) && !defined(__SANITIZE_THREAD__)
  constexpr rlim_t kBytes = rlim_t{1} << 30U;
  const rlimit limit = {kBytes, kBytes};
  setrlimit(RLIMIT_AS, &limit);
#endif
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
}

constexpr int kThrown = 100;

int carryOut(const Opener &opener, const std::string &file, OpenMode mode) {
  try {
    return static_cast<int>(opener(file, mode));
  } catch (const std::exception &) {
    return kThrown;
  }
}

std::string failure(int status) {
  if (WIFSIGNALED(status)) {
    return WTERMSIG(status) == SIGALRM ? "it hung"
                                       : "it was ended by signal " + std::to_string(WTERMSIG(status));
  }
  switch (WEXITSTATUS(status)) {
  case static_cast<int>(Opening::Opened):
  case static_cast<int>(Opening::Refused):
    return {};
  case static_cast<int>(Opening::RefusedWithoutName):
    return "the refusal does not name the file";
  case static_cast<int>(Opening::Contradicted):
    return "what was opened contradicts itself";
  case kThrown:
    return "an exception came out";
  default:
    return "it ended with " + std::to_string(WEXITSTATUS(status));
  }
}

} // namespace

DamageJudge::DamageJudge(std::string folder, Opener opener, unsigned seconds)
    : m_folder(std::move(folder)), m_file(m_folder + "/fan.optstudy"), m_opener(std::move(opener)),
      m_seconds(seconds) {}

void DamageJudge::place(const ProjectBytes &bytes) const {
  writeFile(m_file, bytes.file);
  if (!bytes.journal.empty()) {
    writeFile(m_file + "-journal", bytes.journal);
  }
  if (!bytes.writeAheadLog.empty()) {
    writeFile(m_file + "-wal", bytes.writeAheadLog);
  }
}

// Only what an opening may have left, by name.
void DamageJudge::clear() const {
  for (const char *ending : {"", "-journal", "-wal", "-shm", ".lock", ".left"}) {
    unlink((m_file + ending).c_str());
  }
}

DamageJudge::Verdict DamageJudge::tryOut(const ProjectBytes &bytes, OpenMode mode) const {
  clear();
  place(bytes);
  const auto before = listing(m_folder);
  const pid_t child = fork();
  if (child == 0) {
    limitMemory();
    alarm(m_seconds);
    _exit(carryOut(m_opener, m_file, mode));
  }
  int status = 0;
  waitpid(child, &status, 0);
  Verdict verdict;
  verdict.violation = failure(status);
  verdict.isOpened = WIFEXITED(status) && WEXITSTATUS(status) == static_cast<int>(Opening::Opened);
  // Whoever opens a project after a crash undoes the change that was half done; else nobody writes.
  const bool mayRecover = verdict.isOpened && !bytes.journal.empty();
  const auto after = listing(m_folder);
  const bool isRecovered = mayRecover && after.size() == 1;
  if (verdict.violation.empty() && !isRecovered && after != before) {
    verdict.violation = "it wrote";
  }
  clear();
  return verdict;
}

} // namespace EmbeddedHost
