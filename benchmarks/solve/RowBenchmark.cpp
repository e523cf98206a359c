#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/solve/Benchmarks.h"
#include "benchmarks/solve/Floor.h"
#include "benchmarks/solve/SolvedStudy.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <sys/mman.h>
#include <system_error>

// A row waits for processes and for the disk, so the clock on the wall is what counts here.

namespace SolveBenchmark {

using namespace Benchmarking;

namespace {

const char *const kIdleSolver = OPTSTUDY_IDLE_SOLVER;

struct RowTime {
  double own = 0.0;
  double floor = 0.0;
};

std::string productJournalMode(const Setting &setting) {
  const SolvedStudy study(setting.folder, kIdleSolver, 1 + 1);
  study.solve(1);
  return journalModeOf(study.projectFile());
}

// The floor is measured right after the rows, and in the same folder.
RowTime measureOnce(const Setting &setting, Floor &floor, std::size_t rows) {
  constexpr std::size_t kFewest = 30;
  constexpr std::size_t kMost = 300;
  const SolvedStudy study(setting.folder, kIdleSolver, rows);
  const double own = study.solve(1) / static_cast<double>(rows);
  return {own, floor.measure(std::clamp(rows, kFewest, kMost))};
}

RowTime mediansOf(const std::vector<RowTime> &times) {
  std::vector<double> own;
  std::vector<double> floor;
  for (const RowTime &time : times) {
    own.push_back(time.own);
    floor.push_back(time.floor);
  }
  return {median(own), median(floor)};
}

// A gigabyte that has been written to, so that a copy of the process would have to copy its tables.
class TouchedMemory {
public:
  TouchedMemory()
      : m_memory(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (m_memory == MAP_FAILED) {
      throw std::system_error(errno, std::generic_category(), "mmap");
    }
    madvise(m_memory, kSize, MADV_NOHUGEPAGE);
    constexpr std::size_t kPage = 4096;
    for (std::size_t at = 0; at < kSize; at += kPage) {
      static_cast<volatile char *>(m_memory)[at] = 1;
    }
  }
  TouchedMemory(const TouchedMemory &) = delete;
  TouchedMemory &operator=(const TouchedMemory &) = delete;
  ~TouchedMemory() { munmap(m_memory, kSize); }

private:
  static constexpr std::size_t kSize = std::size_t{1} << 30U;
  void *m_memory;
};

} // namespace

void measureRows(const Setting &setting, BarList &bars) {
  Floor floor(setting.folder, kIdleSolver, productJournalMode(setting));
  std::vector<std::vector<RowTime>> times(setting.rows.size());
  for (std::size_t repetition = 0; repetition < setting.repetitions; ++repetition) {
    for (std::size_t size = 0; size < setting.rows.size(); ++size) {
      // What takes long is repeated less often.
      const bool isLong = setting.rows[size] >= 1000;
      if (!isLong || repetition % 3 == 0) {
        times[size].push_back(measureOnce(setting, floor, setting.rows[size]));
      }
    }
  }
  std::cout << "\n1  Our own time for each solved row (time on the wall)\n";
  const std::size_t first = bars.size();
  Table table({"rows", "a row", "floor", "a row / floor"});
  std::vector<RowTime> medians;
  for (std::size_t size = 0; size < setting.rows.size(); ++size) {
    medians.push_back(mediansOf(times[size]));
    const std::string rows = std::to_string(setting.rows[size]);
    const RowTime &time = medians.back();
    table.add({rows, duration(time.own), duration(time.floor), fixed(time.own / time.floor, 2)});
    bars.judge("a row of " + rows + " / floor", time.own / time.floor, 3.0, std::nullopt);
  }
  table.print();
  if (medians.size() > 1) {
    // Each against the floor of its own moment, which the state of the machine has changed as well.
    bars.judge("a row of " + std::to_string(setting.rows.back()) + " / a row of " +
                   std::to_string(setting.rows.front()) + ", each in floors",
               medians.back().own / medians.back().floor / (medians.front().own / medians.front().floor),
               1.25, std::nullopt);
  }
  bars.print(first);
}

void measureLargeProcess(const Setting &setting, BarList &bars) {
  constexpr std::size_t kRows = 100;
  Floor floor(setting.folder, kIdleSolver, productJournalMode(setting));
  std::vector<RowTime> small;
  std::vector<RowTime> large;
  for (std::size_t repetition = 0; repetition < setting.repetitions; ++repetition) {
    small.push_back(measureOnce(setting, floor, kRows));
    const TouchedMemory memory;
    large.push_back(measureOnce(setting, floor, kRows));
  }
  const RowTime of = mediansOf(small);
  const RowTime with = mediansOf(large);
  std::cout << "\n2  The same in a process that has touched 1 GiB (time on the wall)\n";
  const std::size_t first = bars.size();
  Table table({"process", "a row", "floor", "a row / floor"});
  table.add({"small", duration(of.own), duration(of.floor), fixed(of.own / of.floor, 2)});
  table.add({"1 GiB", duration(with.own), duration(with.floor), fixed(with.own / with.floor, 2)});
  table.print();
  bars.judge("a row in a process of 1 GiB / in a small one", with.own / of.own, 1.25, std::nullopt);
  bars.print(first);
}

} // namespace SolveBenchmark
