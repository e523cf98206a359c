#include "tests/fault/judge/Bench.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <random>
#include <stdlib.h>
#include <thread>

namespace FaultTests {

namespace fs = std::filesystem;

namespace {

std::size_t linesIn(const std::string &file) {
  return linesOf(readFile(file)).size();
}

} // namespace

Bench::Bench(const SuiteOptions &options) {
  installProgram(options);
  runUndisturbed();
}

// In a folder of its own, with the libraries that it needs beside it.
void Bench::installProgram(const SuiteOptions &options) {
  const std::string folder = m_work.makeFolder("program");
  m_program = folder + "/" + fs::path(options.program).filename().string();
  fs::copy_file(options.program, m_program);
  for (const std::string &file : options.files) {
    const std::string copy = folder + "/" + fs::path(file).filename().string();
    fs::copy_file(file, copy);
    m_oldProject = fs::path(file).extension() == ".sql" ? copy : m_oldProject;
  }
  ::setenv("LD_LIBRARY_PATH", folder.c_str(), 1);
  // A process that is traced cannot look for leaks.
  ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
}

std::vector<std::string> Bench::sessionCommand(const std::string &what, const std::string &folder) const {
  return {m_program, what, folder};
}

std::string Bench::makeSessionFolder(const std::string &name) const {
  std::string folder = m_work.makeFolder(name);
  const std::string start = m_work.path() + "/start";
  std::error_code error;
  fs::copy(start, folder, fs::copy_options::recursive, error);
  writeFile(folder + ".acks", "");
  return folder;
}

void Bench::runUndisturbed() {
  const std::string &root = m_work.path();
  const std::string start = m_work.makeFolder("start");
  const std::string states = m_work.makeFolder("states");
  const std::string folder = root + "/undisturbed";
  std::vector<std::string> preparing = sessionCommand("prepare", start);
  preparing.push_back(m_oldProject);
  if (runCommand(preparing, root + "/out", root + "/err").exitCode != 0) {
    m_problem = "the session cannot be prepared: " + readFile(root + "/err");
    return;
  }
  makeSessionFolder("undisturbed");
  runCommand(sessionCommand("dump", folder), states + "/0", root + "/err");
  std::vector<std::string> command = sessionCommand("run", folder);
  command.insert(command.end(), {folder + ".acks", "none", states});
  if (runCommand(command, root + "/out", root + "/err").exitCode != 0) {
    m_problem = "the session fails undisturbed: " + readFile(root + "/err");
    return;
  }
  m_states = States::read(states, linesIn(folder + ".acks"));
  const Trial traced = run("traced", writeClassCalls(), "", "none");
  m_points = pointsOf(readFile(root + "/traced.log"));
  if (traced.ending.exitCode != 0 || traced.state != m_states.after.back() || !traced.litter.empty()) {
    m_problem = "two undisturbed sessions differ: " + traced.message + traced.problemAfterwards +
                m_states.difference(traced.state, steps());
  }
}

Trial Bench::run(const std::string &name, const std::string &call, const std::string &inject,
                 const std::string &flaw) const {
  Trial trial;
  trial.folder = makeSessionFolder(name);
  const std::string log = inject.empty() ? trial.folder + ".log" : "/dev/null";
  std::vector<std::string> command{"strace", "-qq", "-s", "0", "-o", log, "-e", "trace=" + call};
  if (!inject.empty()) {
    command.insert(command.end(), {"-e", "inject=" + inject});
  }
  for (const std::string &word : sessionCommand("run", trial.folder)) {
    command.push_back(word);
  }
  command.insert(command.end(), {trial.folder + ".acks", flaw});
  trial.ending = runCommand(command, trial.folder + ".out", trial.folder + ".err");
  trial.message = readFile(trial.folder + ".err");
  trial.acknowledged = linesIn(trial.folder + ".acks");
  judge(trial, trial.folder);
  return trial;
}

void Bench::judge(Trial &trial, const std::string &name) const {
  const Ending opening = runCommand(sessionCommand("dump", trial.folder), name + ".state", name + ".problem");
  trial.isOpened = opening.exitCode == 0;
  trial.state = readFile(name + (trial.isOpened ? ".state" : ".problem"));
  if (opening.signal != 0) {
    trial.state += "it crashed: signal " + std::to_string(opening.signal);
  }
  const Ending again = runCommand(sessionCommand("again", trial.folder), name + ".litter", name + ".problem");
  trial.litter = linesOf(readFile(name + ".litter"));
  if (again.exitCode != 0) {
    trial.problemAfterwards = "work cannot go on: " + readFile(name + ".problem");
  }
}

void Bench::clear(const Trial &trial) const {
  m_work.removeFolder(trial.folder);
  for (const char *ending : {".acks", ".log", ".out", ".err", ".state", ".problem", ".litter"}) {
    std::error_code error;
    fs::remove(trial.folder + ending, error);
  }
}

void inPairs(std::size_t count, const std::function<void(std::size_t)> &work) {
  std::atomic<std::size_t> next{0};
  const auto takeTurns = [&] {
    for (std::size_t number = next++; number < count; number = next++) {
      work(number);
    }
  };
  std::thread other(takeTurns);
  takeTurns();
  other.join();
}

std::vector<std::size_t> choose(std::size_t count, std::size_t sample, unsigned long long seed) {
  std::vector<std::size_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  if (sample != 0 && sample < count) {
    std::mt19937_64 random(seed);
    std::shuffle(numbers.begin(), numbers.end(), random);
    numbers.resize(sample);
    std::sort(numbers.begin(), numbers.end());
  }
  return numbers;
}

} // namespace FaultTests
