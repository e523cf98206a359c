#include "tests/fault/judge/Disk.h"
#include "tests/fault/judge/Report.h"
#include "tests/fault/judge/Suites.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace FaultTests {

namespace {

using std::chrono::milliseconds;

constexpr int kAllCuts = 100;
constexpr int kControlCuts = 10;
constexpr int kCutsOfADisk = 20;
constexpr int kMostRows = 4;      // reported between two cuts
constexpr int kLongestPause = 20; // ms from the last of them to the cut
constexpr milliseconds kLongestWait{30000};

/// One project on one disk, whose writer is stopped again and again.
class PoweredWriter {
public:
  PoweredWriter(const WorkFolder &work, const std::string &program, bool skipsSyncing)
      : m_root(work.path()), m_program(program), m_disk(m_root + "/disk.img", m_root + "/disk") {
    if (!m_disk.problem().empty()) {
      return;
    }
    writeFile(acknowledgements(), "");
    waitFor(startWithoutRights({m_program, "prepare", m_disk.folder()}, m_root + "/out", m_root + "/err"));
    std::vector<std::string> command{m_program, "power", m_disk.folder(), acknowledgements()};
    if (skipsSyncing) {
      command.emplace_back("off");
    }
    m_process = startWithoutRights(command, m_root + "/writer.out", m_root + "/writer.err");
  }
  PoweredWriter(const PoweredWriter &) = delete;
  PoweredWriter &operator=(const PoweredWriter &) = delete;
  ~PoweredWriter() {
    if (m_process > 0) {
      ::kill(m_process, SIGKILL);
      waitFor(m_process);
    }
  }

  std::string problem() const { return m_disk.problem(); }
  std::string said() const { return readFile(m_root + "/writer.err"); }

  /// Waits for so many more lines; not for ever.
  bool waitForReports(int count) const {
    const std::size_t wanted = reports() + static_cast<std::size_t>(count);
    for (milliseconds waited{0}; waited < kLongestWait && reports() < wanted; waited += milliseconds(1)) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    return reports() >= wanted;
  }

  /// \return false when it has come to its end
  bool stop() {
    ::kill(m_process, SIGSTOP);
    int status = 0;
    ::waitpid(m_process, &status, WUNTRACED);
    if (!WIFSTOPPED(status)) {
      m_process = -1;
    }
    return WIFSTOPPED(status);
  }
  void goOn() const { ::kill(m_process, SIGCONT); }

  /// What a power cut at this moment would have lost; "" for nothing. Counts the reported rows.
  std::string judgeCut(int &rows) const {
    const std::string cut = m_root + "/cut.img";
    rows = static_cast<int>(reports()) - 1;
    if (!copyImage(m_root + "/disk.img", cut)) {
      return "the disk cannot be copied";
    }
    const Disk disk(cut, m_root + "/cut");
    if (!disk.problem().empty()) {
      return disk.problem();
    }
    const std::string output = m_root + "/lost.out";
    const Ending ending = waitFor(startWithoutRights({m_program, "lost", disk.folder(), acknowledgements()},
                                                     output, m_root + "/lost.err"));
    if (ending.exitCode != 0) {
      return "the project cannot be opened: " + readFile(m_root + "/lost.err");
    }
    const std::string lost = linesOf(readFile(output) + "\n").front();
    return lost == "0" ? "" : lost + " of " + std::to_string(rows) + " reported rows are lost";
  }

private:
  std::string acknowledgements() const { return m_root + "/power.acks"; }
  std::size_t reports() const { return linesOf(readFile(acknowledgements())).size(); }

  std::string m_root;
  std::string m_program;
  Disk m_disk;
  int m_process = -1;
};

struct Cuts {
  const WorkFolder &work;
  std::string program;
  std::mt19937_64 random;
  int rows = 0; ///< reported before any of the cuts

  /// \return false when there is no writer to be cut off
  bool ofOneDisk(int count, bool skipsSyncing, Report &report);
  bool of(int count, bool skipsSyncing, Report &report);
};

bool Cuts::ofOneDisk(int count, bool skipsSyncing, Report &report) {
  const std::string made = makeImage(work.path() + "/disk.img");
  PoweredWriter writer(work, program, skipsSyncing);
  if (!made.empty() || !writer.problem().empty() || !writer.waitForReports(1)) {
    report.add("begin", made + writer.problem() + writer.said());
    return false;
  }
  for (int cut = 0; cut < count; ++cut) {
    // Too few come only when every row is solved, which the stop then shows.
    static_cast<void>(writer.waitForReports(std::uniform_int_distribution<int>(1, kMostRows)(random)));
    std::this_thread::sleep_for(milliseconds(std::uniform_int_distribution<int>(0, kLongestPause)(random)));
    if (!writer.stop()) {
      // Every row is solved: another disk goes on.
      return writer.said().empty();
    }
    int reported = 0;
    const std::string violation = writer.judgeCut(reported);
    rows += reported;
    report.add("cut after " + std::to_string(reported) + " rows", violation);
    writer.goOn();
  }
  return true;
}

bool Cuts::of(int count, bool skipsSyncing, Report &report) {
  while (report.trials() < count) {
    const int before = report.trials();
    if (!ofOneDisk(std::min(kCutsOfADisk, count - before), skipsSyncing, report) ||
        report.trials() == before) {
      return false;
    }
  }
  return true;
}

std::string installProgram(const SuiteOptions &options, const WorkFolder &work) {
  namespace fs = std::filesystem;
  const std::string folder = work.makeFolder("program");
  for (const std::string &file : options.files) {
    fs::copy_file(file, folder + "/" + fs::path(file).filename().string());
  }
  std::string program = folder + "/" + fs::path(options.program).filename().string();
  fs::copy_file(options.program, program);
  ::setenv("LD_LIBRARY_PATH", folder.c_str(), 1);
  return program;
}

bool canMount(const WorkFolder &work) {
  const std::string image = work.path() + "/try.img";
  const std::string made = makeImage(image);
  const std::string problem = made.empty() ? Disk(image, work.path() + "/cut").problem() : made;
  std::cout << problem;
  return problem.empty();
}

} // namespace

PowerOutcome runPowerSuite(const SuiteOptions &options) {
  const WorkFolder work;
  if (!prepareMounting(work.path())) {
    return PowerOutcome::CannotMount;
  }
  work.makeFolder("disk");
  work.makeFolder("cut");
  if (!canMount(work)) {
    return PowerOutcome::CannotMount;
  }
  const int wanted = options.sample == 0 ? kAllCuts : static_cast<int>(options.sample);
  const int fewer = options.sample == 0 ? kControlCuts : 3;
  Cuts cuts{work, installProgram(options, work), std::mt19937_64(options.seed)};
  Report report("power");
  const bool isWhole = cuts.of(wanted, false, report);
  Report control("power control, synchronous=OFF");
  std::cout << "What the control finds is meant to be found:\n";
  const bool isControlled = cuts.of(fewer, true, control);
  std::cout << "power: " << cuts.rows << " reported rows looked for\n";
  report.close();
  control.close();
  const bool isPassed =
      isWhole && isControlled && report.violations() == 0 && control.violations() > 0 && cuts.rows > 0;
  return isPassed ? PowerOutcome::Passed : PowerOutcome::Failed;
}

} // namespace FaultTests
