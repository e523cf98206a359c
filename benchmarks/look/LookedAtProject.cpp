#include "benchmarks/look/LookedAtProject.h"

#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/host/ScratchFolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace LookBenchmark {

using Benchmarking::outputOf;

namespace {

constexpr std::size_t kInputs = 20;
constexpr std::size_t kOutputs = 10;

std::string listOf(const std::string &name, std::size_t count) {
  std::string list;
  for (std::size_t index = 0; index < count; ++index) {
    list.append(index == 0 ? "" : ", ").append(name).append(std::to_string(index));
  }
  return list;
}

void writeStudy(const std::string &file) {
  std::ofstream out(file);
  out << "version: 1\nmodel:\n  M:\n";
  for (std::size_t index = 0; index < kInputs; ++index) {
    out << "    x" << index << ": " << index + 1 << " mm\n";
  }
  for (std::size_t index = 0; index < kOutputs; ++index) {
    out << "    y" << index << ": {result: true}\n";
  }
  out << "formulas:\n";
  for (std::size_t index = 0; index < kOutputs; ++index) {
    out << "  M.y" << index << ": \"%M.x" << 2 * index << "% * 2.5 + sqrt(%M.x" << 2 * index + 1 << "%)\"\n";
  }
  out << "study:\n  target: minimise\n  cost: \"%M.y0% * 1.0 + %M.y9%\"\n  inputs: ["
      << listOf("M.x", kInputs) << "]\n  outputs: [" << listOf("M.y", kOutputs)
      << "]\n  variants: {csv: rows.csv}\n";
}

// Numbers of two digits behind the point, no two rows alike.
void writeRows(const std::string &file, std::size_t rows) {
  constexpr std::size_t kStep = 7919;
  constexpr std::size_t kPrime = 10'007;
  std::ofstream out(file);
  out << listOf("M.x", kInputs) << "\n";
  for (std::size_t row = 1; row < rows; ++row) {
    for (std::size_t index = 0; index < kInputs; ++index) {
      const std::size_t hundredths = row * kStep * (index + 1) % kPrime + 100;
      out << (index == 0 ? "" : ",") << hundredths / 100 << "." << hundredths / 10 % 10 << hundredths % 10;
    }
    out << "\n";
  }
}

// Where nothing waits for a disk, if there is such a place: each row is made durable, which is not what is measured.
std::string placeOfMaking(const std::string &folder) {
  const char *const memory = "/dev/shm";
  std::error_code ignored;
  return std::filesystem::is_directory(memory, ignored) ? memory : folder;
}

std::size_t linesIn(const std::string &text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

std::string optstudyProgram() {
  return OPTSTUDY_PROGRAM;
}

std::string sqliteShell() {
  return "/usr/bin/sqlite3";
}

LookedAtProject::LookedAtProject(const std::string &folder, std::size_t rows)
    : m_project(folder + "/" + std::to_string(rows) + ".optstudy"),
      m_database(folder + "/" + std::to_string(rows) + ".sqlite"), m_rows(rows) {
  const HostBenchmark::ScratchFolder making(placeOfMaking(folder));
  writeStudy(making.path() + "/look.study.yaml");
  writeRows(making.path() + "/rows.csv", rows);
  outputOf({optstudyProgram(), "run", "--quiet", making.path() + "/look.study.yaml"});
  outputOf({optstudyProgram(), "backup", "--quiet", making.path() + "/look.optstudy", m_project});
  const std::string table = making.path() + "/table.csv";
  const std::string exported = outputOf({optstudyProgram(), "export", m_project});
  constexpr std::size_t kHeading = 2; // titles and units
  if (linesIn(exported) != rows + kHeading) {
    throw std::runtime_error("export wrote " + std::to_string(linesIn(exported)) + " lines for " +
                             std::to_string(rows) + " rows");
  }
  std::ofstream(table, std::ios::binary) << exported;
  std::string numbers;
  for (std::size_t index = 0; index < kInputs; ++index) {
    numbers += ", x" + std::to_string(index) + " REAL";
  }
  for (std::size_t index = 0; index < kOutputs; ++index) {
    numbers += ", y" + std::to_string(index) + " REAL";
  }
  outputOf({sqliteShell(), m_database,
            "CREATE TABLE matrix(row INTEGER PRIMARY KEY, name TEXT, status TEXT, reason TEXT" + numbers +
                ", cost REAL)",
            ".mode csv", ".import --skip 2 " + table + " matrix"});
  const std::string count = outputOf({sqliteShell(), m_database, "SELECT count(*) FROM matrix"});
  if (count != std::to_string(rows) + "\n") {
    throw std::runtime_error("The table has " + count + " rows");
  }
}

} // namespace LookBenchmark
