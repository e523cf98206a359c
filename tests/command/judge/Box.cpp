#include "tests/command/judge/Box.h"

#include "tests/command/judge/Processes.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>
#include <utility>

namespace CommandTests {

namespace fs = std::filesystem;
using FaultTests::linesOf;
using FaultTests::readFile;
using FaultTests::writeFile;
using std::chrono::milliseconds;

std::size_t SuiteOptions::trials(std::size_t all, std::size_t fewest) const {
  return sample == 0 ? all : std::min(all, std::max(fewest, sample));
}

// A copy, because the user without rights may not reach the place where it was built.
Product::Product(const FaultTests::WorkFolder &work, const SuiteOptions &options, Starter startProgram)
    : m_work(work), m_folder(work.makeFolder("program")), m_starter(startProgram) {
  for (const std::string &original : options.files) {
    fs::copy_file(original, file(fs::path(original).filename().string()));
  }
  ::setenv("LD_LIBRARY_PATH", m_folder.c_str(), 1);
}

std::string Call::unless(int exitCode) const {
  if (!isInTime) {
    return "it does not end";
  }
  if (ending.exitCode == exitCode) {
    return "";
  }
  return "exit code " + std::to_string(ending.exitCode) + ", signal " + std::to_string(ending.signal) +
         " instead of exit code " + std::to_string(exitCode) + ": " + messages;
}

Box::Box(const Product &product, std::string folder)
    : m_product(product), m_folder(std::move(folder)), m_beside(m_folder + "."),
      m_mark(fs::path(product.work().path()).filename().string() + "/" +
             fs::path(m_folder).filename().string()) {}

Box Box::make(const Product &product, const std::string &name) {
  Box box(product, product.work().makeFolder(name));
  box.script("");
  writeFile(box.beside("log"), "");
  return box;
}

void Box::writeStudy(int rows, const std::string &timeLimit) const {
  std::ostringstream text;
  text << R"(version: 1
title: Box
model:
  Box:
    x: 0
    sum: {result: true}
    product: {result: true}
solver:
  templates: [{from: in.txt.template, to: in.txt}]
  command: [scripted_solver, "{{Box.x}}"]
  timeout: )"
       << timeLimit << R"(
  results:
    Box.sum: {file: result.txt, pattern: '^sum = (.*)$'}
    Box.product: {pattern: '^product = (.*)$'}
study:
  target: maximise
  stop-after: 0
  cost: "%Box.sum% + %Box.product%"
  inputs: [Box.x]
  outputs: [Box.sum, Box.product]
  variants: {grid: {Box.x: {minimum: 0, maximum: )"
       << rows - 1 << R"(, step: 1}}}
)";
  writeFile(path("box.study.yaml"), text.str());
  writeFile(path("in.txt.template"), "x = {{Box.x}}\n");
}

void Box::script(const std::string &lines) const {
  // In one step, because solvers may be reading it.
  writeFile(beside("script.new"), lines);
  fs::rename(beside("script.new"), beside("script"));
}

std::vector<std::string> Box::environment(const Variables &variables) const {
  const char *const path = std::getenv("PATH");
  std::vector<std::string> words{"env",
                                 "-C",
                                 m_folder,
                                 "BOX_LOG=" + beside("log"),
                                 "BOX_SCRIPT=" + beside("script"),
                                 kMarkVariable + std::string("=") + m_mark,
                                 "PATH=" + m_product.folder() + ":" + (path == nullptr ? "" : path)};
  for (const auto &[name, value] : variables) {
    words.push_back(std::string(name).append("=").append(value));
  }
  return words;
}

int Box::startOther(const std::vector<std::string> &words, const std::string &name,
                    const Variables &variables) const {
  std::vector<std::string> all = environment(variables);
  all.insert(all.end(), words.begin(), words.end());
  return m_product.starter()(all, beside(name + ".out"), beside(name + ".err"));
}

int Box::start(const std::vector<std::string> &arguments, const std::string &name,
               const Variables &variables) const {
  std::vector<std::string> words{m_product.file("optstudy")};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return startOther(words, name, variables);
}

Call Box::finish(int process, const std::string &name) const {
  Call call;
  call.isInTime = waitAtMostAMinute(process, call.ending);
  call.output = readFile(beside(name + ".out"));
  call.messages = readFile(beside(name + ".err"));
  return call;
}

Call Box::call(const std::vector<std::string> &arguments, const Variables &variables) const {
  return finish(start(arguments, "call", variables), "call");
}

std::map<std::string, int> Box::begun() const {
  std::map<std::string, int> counts;
  for (const std::string &line : linesOf(readFile(beside("log")))) {
    if (line.rfind("begin ", 0) == 0) {
      ++counts[line.substr(6)];
    }
  }
  return counts;
}

int Box::beginnings() const {
  int count = 0;
  for (const auto &[x, times] : begun()) {
    count += times;
  }
  return count;
}

bool Box::waitForBeginnings(int count) const {
  return waitUntil([&] { return beginnings() >= count; });
}

std::string Box::survivors() const {
  return survivorsOf(m_mark);
}

void Box::killSurvivors() const {
  killMarked(m_mark);
}

Table Table::of(const std::string &text) {
  Table table;
  table.text = text;
  const std::vector<std::string> lines = linesOf(text);
  for (std::size_t number = 2; number < lines.size(); ++number) {
    std::vector<std::string> cells; // row, name, status, reason, x
    std::istringstream line(lines[number]);
    for (std::string cell; std::getline(line, cell, ',');) {
      cells.push_back(cell);
    }
    if (cells.size() < 5) {
      table.others["line " + std::to_string(number)] = lines[number];
    } else if (cells[2] == "ok") {
      table.ok[cells[4]] = lines[number];
    } else {
      table.others[cells[4]] = cells[2] + ": " + cells[3];
    }
  }
  return table;
}

std::string difference(const std::string &expected, const std::string &found) {
  if (expected == found) {
    return "";
  }
  const std::vector<std::string> before = linesOf(expected);
  const std::vector<std::string> after = linesOf(found);
  for (std::size_t number = 0; number < std::max(before.size(), after.size()); ++number) {
    const std::string one = number < before.size() ? before[number] : "<no line>";
    const std::string other = number < after.size() ? after[number] : "<no line>";
    if (one != other) {
      return std::string("line ")
          .append(std::to_string(number + 1))
          .append(": \"")
          .append(other)
          .append("\" instead of \"")
          .append(one)
          .append("\"");
    }
  }
  return "line ends differ";
}

} // namespace CommandTests
