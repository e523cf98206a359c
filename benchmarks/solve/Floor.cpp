#include "benchmarks/solve/Floor.h"

#include "benchmarks/common/Measurement.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace SolveBenchmark {

namespace {

void expect(bool isFine, const char *call) {
  if (!isFine) {
    throw std::system_error(errno, std::generic_category(), call);
  }
}

std::string newDatabase(const std::string &folder) {
  std::string file = folder + "/floor.sqlite";
  std::remove(file.c_str());
  const std::ofstream empty(file);
  return file;
}

} // namespace

std::string journalModeOf(const std::string &file) {
  HostBenchmark::BareDatabase database(file, true);
  const HostBenchmark::BareStatement mode = database.prepare("PRAGMA journal_mode");
  database.step(*mode);
  return reinterpret_cast<const char *>(sqlite3_column_text(mode.get(), 0));
}

Floor::Floor(std::string folder, std::string solver, const std::string &journalMode)
    : m_folder(std::move(folder)), m_solver(std::move(solver)), m_database(newDatabase(m_folder), false) {
  m_database.execute(("PRAGMA journal_mode = " + journalMode).c_str());
  m_database.execute("PRAGMA synchronous = FULL");
  m_database.execute("CREATE TABLE run (version INTEGER PRIMARY KEY, status INTEGER, result REAL)");
  m_begin = m_database.prepare("BEGIN IMMEDIATE");
  m_put = m_database.prepare("INSERT INTO run VALUES (?1, 1, 1.0)");
  m_commit = m_database.prepare("COMMIT");
}

void Floor::runSolver() const {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = m_solver;
  std::array<char *, 2> arguments = {program.data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawn(&child, m_solver.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  errno = error;
  expect(error == 0, "posix_spawn");
  int status = 0;
  expect(waitpid(child, &status, 0) == child && status == 0, "waitpid");
}

void Floor::writeResult() const {
  constexpr std::string_view kResult = "y = 1\n";
  const std::string unfinished = m_folder + "/result.new";
  const int file = open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  expect(file >= 0, "open");
  expect(write(file, kResult.data(), kResult.size()) == static_cast<ssize_t>(kResult.size()), "write");
  expect(fsync(file) == 0 && close(file) == 0, "fsync");
  expect(std::rename(unfinished.c_str(), (m_folder + "/result").c_str()) == 0, "rename");
  const int folder = open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  expect(folder >= 0 && fsync(folder) == 0 && close(folder) == 0, "fsync");
}

void Floor::commit() {
  sqlite3_bind_int64(m_put.get(), 1, ++m_row);
  for (sqlite3_stmt *statement : {m_begin.get(), m_put.get(), m_commit.get()}) {
    m_database.step(*statement);
    sqlite3_reset(statement);
  }
}

double Floor::measure(std::size_t times) {
  const double began = Benchmarking::wallSeconds();
  for (std::size_t time = 0; time < times; ++time) {
    runSolver();
    writeResult();
    commit();
  }
  return (Benchmarking::wallSeconds() - began) / static_cast<double>(times);
}

} // namespace SolveBenchmark
