#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/look/Benchmarks.h"
#include "benchmarks/look/LookedAtProject.h"

#include <functional>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/time.h>

// A command waits for the disk and for its own start, so the clock on the wall is what counts here.

namespace LookBenchmark {

using namespace Benchmarking;

namespace {

// Processor time of the processes that have ended so far, which a machine that does something else besides lengthens
// less than the time on the wall.
double childSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto seconds = [](const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// \param processor  receives the processor time
double secondsOf(const std::vector<std::string> &command, std::size_t leastOutput,
                 std::vector<double> &processor) {
  const double processorBegan = childSeconds();
  const double began = wallSeconds();
  const std::size_t size = outputOf(command).size();
  const double seconds = wallSeconds() - began;
  processor.push_back(childSeconds() - processorBegan);
  if (size < leastOutput) {
    throw std::runtime_error(command[0] + " " + command[1] + " printed " + std::to_string(size) +
                             " characters only");
  }
  return seconds;
}

using Command = std::vector<std::string>;

// One thing that is looked at, and what the shell of the database does for the same. Both may be another command each
// time, and print so much at least.
struct Look {
  std::string name;
  std::function<Command()> ours;
  std::function<Command()> theirs;
  std::size_t leastOutput;
};

std::vector<Look> looksAt(const LookedAtProject &project) {
  // A row of thirty numbers has more characters than this.
  constexpr std::size_t kLeastOfARow = 60;
  const std::size_t whole = kLeastOfARow * project.rows();
  const auto ours = [&project](const std::string &command) {
    return [&project, command] {
      return Command{optstudyProgram(), command, project.projectFile()};
    };
  };
  const auto theirs = [&project](const std::string &sql) {
    return [&project, sql] {
      return Command{sqliteShell(), "-csv", "-header", project.databaseFile(), sql};
    };
  };
  // Another cost every time: one that stays would be no work.
  const auto ourCost = [&project, turn = 0]() mutable {
    const char *const cost = ++turn % 2 == 0 ? "%M.y0% * 1.0 + %M.y9%" : "%M.y1% * 2.0 + %M.y3%";
    return Command{optstudyProgram(), "cost", project.projectFile(), cost};
  };
  const auto theirCost = [theirs, turn = 0]() mutable {
    const std::string cost = ++turn % 2 == 0 ? "y0 * 1.0 + y9" : "y1 * 2.0 + y3";
    return theirs("UPDATE matrix SET cost = " + cost + "; SELECT * FROM matrix")();
  };
  const std::string all = "SELECT * FROM matrix";
  return {{"show", ours("show"), theirs(all), whole},
          {"best", ours("best"), theirs(all + " ORDER BY cost LIMIT 1"), kLeastOfARow},
          {"export", ours("export"), theirs(all), whole},
          {"cost", ourCost, theirCost, whole}};
}

// Medians of one look.
struct LookTime {
  double ours = 0.0;
  double theirs = 0.0;
  double ourProcessor = 0.0;
};

// Ours and theirs in turn.
std::vector<LookTime> measure(const std::vector<Look> &looks, std::size_t repetitions) {
  std::vector<std::vector<double>> processor(2 * looks.size());
  std::vector<TimedWay> ways;
  for (const Look &look : looks) {
    for (const auto *command : {&look.ours, &look.theirs}) {
      ways.emplace_back([command, least = look.leastOutput, &processor, index = ways.size()] {
        return secondsOf((*command)(), least, processor[index]);
      });
    }
  }
  const std::vector<double> seconds = measureOneByOne(ways, repetitions);
  std::vector<LookTime> times;
  for (std::size_t look = 0; look < looks.size(); ++look) {
    times.push_back({seconds[2 * look], seconds[2 * look + 1], median(processor[2 * look])});
  }
  return times;
}

} // namespace

void measureLooking(const Setting &setting, BarList &bars) {
  std::cout
      << "\nProjects of solved rows, 20 inputs and 10 outputs each; each command is a process that opens "
         "the project first\n(time on the wall). sqlite3: the shell of the database library, on one table "
         "of the same numbers.\n";
  Table table({"command", "rows", "optstudy", "of it processor", "sqlite3", "optstudy / sqlite3", "growth"});
  std::vector<LookTime> before;
  std::vector<std::string> names;
  for (const std::size_t rows : setting.rows) {
    const LookedAtProject project(setting.folder, rows);
    const std::vector<Look> looks = looksAt(project);
    const std::vector<LookTime> times = measure(looks, setting.repetitions);
    names.clear();
    for (std::size_t look = 0; look < looks.size(); ++look) {
      names.push_back(looks[look].name);
      const LookTime &time = times[look];
      table.add({looks[look].name, std::to_string(rows), duration(time.ours), duration(time.ourProcessor),
                 duration(time.theirs), fixed(time.ours / time.theirs, 2),
                 before.empty() ? "" : fixed(time.ours / before[look].ours, 2)});
    }
    before = times;
  }
  table.print();
  for (std::size_t look = 0; look < names.size(); ++look) {
    bars.judge(names[look] + " of " + std::to_string(setting.rows.back()) + " rows, opening included",
               before[look].ours, 1.0, std::nullopt, " s");
  }
}

} // namespace LookBenchmark
