#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/HostProject.h"
#include "benchmarks/host/StoredProject.h"

#include <array>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

// How much memory a program has is measured in processes of their own, in which nothing was freed before. Whatever
// a version takes is counted for its edits.

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

struct Memory {
  double allocated = 0.0;
  double resident = 0.0;
};

Memory memoryNow() {
  const struct mallinfo2 heap = mallinfo2();
  std::ifstream statm("/proc/self/statm");
  double total = 0.0;
  double resident = 0.0;
  statm >> total >> resident;
  if (!statm) {
    throw std::runtime_error("The memory of this process cannot be read");
  }
  return {static_cast<double>(heap.uordblks + heap.hblkhd),
          resident * static_cast<double>(sysconf(_SC_PAGESIZE))};
}

Memory askChild(const Setting &setting, const std::string &file) {
  std::istringstream output(
      outputOf({setting.program, "--memory-of=" + file, "--alternates=" + std::to_string(setting.many)}));
  Memory memory;
  output >> memory.allocated >> memory.resident;
  if (!output) {
    throw std::runtime_error("The process that measures memory said nothing");
  }
  const double edits = static_cast<double>(setting.many * kEdits);
  return {memory.allocated / edits, memory.resident / edits};
}

} // namespace

void runMemoryChild(const std::string &file, std::size_t alternates) {
  // What every project needs, the units for example, is there before.
  HostProject host = makeProject(10);
  addAlternates(host, 10);
  const Memory before = memoryNow();
  std::unique_ptr<EmbeddedHost::Project> opened;
  if (file.empty()) {
    addAlternates(host, alternates);
  } else {
    std::string problem;
    opened = EmbeddedHost::Project::open(file, EmbeddedHost::OpenMode::ReadWrite, problem);
    if (opened == nullptr) {
      throw std::runtime_error(problem);
    }
  }
  const Memory after = memoryNow();
  std::cout << after.allocated - before.allocated << ' ' << after.resident - before.resident << '\n';
}

void measureMemory(const Setting &setting, BarList &bars) {
  const StoredProject stored(setting.folder, setting.many);
  const std::array<std::string, 2> names = {"after opening", "in the session that made them"};
  const std::array<Memory, 2> memory = {askChild(setting, stored.file()), askChild(setting, "")};

  std::cout << "\n5  Memory for each edit, " << setting.many << " alternates of ten edits\n";
  const std::size_t first = bars.size();
  Table table({"", "allocated", "resident"});
  for (std::size_t row = 0; row < names.size(); ++row) {
    table.add({names[row], fixed(memory[row].allocated, 1) + " B", fixed(memory[row].resident, 1) + " B"});
    bars.judge("memory for each edit, " + names[row], memory[row].resident, 200.0, std::nullopt, " B");
  }
  table.print();
  bars.print(first);
}

} // namespace HostBenchmark
