#include "tests/command/judge/Processes.h"
#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Disk.h"
#include "tests/fault/judge/Report.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <sys/wait.h>
#include <thread>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::Disk;
using FaultTests::readFile;
using FaultTests::Report;
using FaultTests::WorkFolder;
using std::chrono::milliseconds;

constexpr int kRows = 400;
constexpr std::size_t kAllCuts = 100;
constexpr std::size_t kCutsOfADisk = 20;
constexpr int kLongestPause = 40; // ms from what was reported to the cut
const std::vector<std::string> kShow{"show", "box.optstudy", "--format", "csv"};

// A run of the command on a disk of its own, which is stopped for each cut.
class PoweredRun {
public:
  PoweredRun(const Product &product, const std::string &name, const Variables &variables)
      : m_root(product.work().path()), m_image(m_root + "/" + name + ".img"),
        m_made(FaultTests::makeImage(m_image)), m_disk(m_image, m_root + "/disk"),
        m_box(product, m_root + "/disk/box") {
    if (!problem().empty()) {
      return;
    }
    fs::create_directory(m_box.folder());
    m_box.keepBeside(m_root + "/" + name + ".");
    m_box.writeStudy(kRows);
    m_box.script("* work 5\n");
    m_process = m_box.start({"run", "box.study.yaml", "-j", "2"}, "run", variables);
  }
  PoweredRun(const PoweredRun &) = delete;
  PoweredRun &operator=(const PoweredRun &) = delete;
  ~PoweredRun() {
    if (m_process > 0) {
      ::kill(m_process, SIGKILL);
      FaultTests::waitFor(m_process);
    }
    m_box.survivors();
  }

  std::string problem() const { return m_made + m_disk.problem(); }
  const std::string &image() const { return m_image; }

  /// The rows that the command itself reports as done at this moment.
  Table reported() const {
    const Call show = m_box.call(kShow);
    return Table::of(show.exitCode() == 0 ? show.output : "");
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

private:
  std::string m_root;
  std::string m_image;
  std::string m_made;
  Disk m_disk;
  Box m_box;
  int m_process = -1;
};

class Cuts {
public:
  Cuts(const Product &product, unsigned long long seed) : m_product(product), m_random(seed) {}

  std::size_t rows() const { return m_rows; }

  /// \return false when there is nothing to be cut off
  bool cut(std::size_t count, const Variables &variables, Report &report) {
    while (static_cast<std::size_t>(report.trials()) < count) {
      const int before = report.trials();
      const std::size_t missing = count - static_cast<std::size_t>(before);
      PoweredRun run(m_product, "power-" + std::to_string(m_disks++), variables);
      if (!run.problem().empty()) {
        std::cout << "power: " << run.problem() << "\n";
        return false;
      }
      cutRun(run, std::min(kCutsOfADisk, missing), report);
      if (report.trials() == before) {
        return false;
      }
    }
    return true;
  }

private:
  void cutRun(PoweredRun &run, std::size_t count, Report &report) {
    std::size_t former = 0;
    for (std::size_t number = 0; number < count; ++number) {
      Table reported;
      // Too few come only when every row is solved, which the stop then shows.
      static_cast<void>(waitUntil(
          [&] {
            reported = run.reported();
            return reported.ok.size() > former;
          },
          milliseconds(20000)));
      const int pause = std::uniform_int_distribution<int>(0, kLongestPause)(m_random);
      std::this_thread::sleep_for(milliseconds(pause));
      if (!run.stop()) {
        return;
      }
      former = reported.ok.size();
      m_rows += former;
      report.add("cut after " + std::to_string(former) + " rows", judge(run.image(), reported));
      run.goOn();
    }
  }

  // What a power cut at this moment would have lost of what was reported.
  std::string judge(const std::string &image, const Table &reported) const {
    const std::string root = m_product.work().path();
    const std::string copy = root + "/cut.img";
    if (!FaultTests::copyImage(image, copy)) {
      return "the disk cannot be copied";
    }
    const Disk disk(copy, root + "/cut");
    if (!disk.problem().empty()) {
      return disk.problem();
    }
    Box box(m_product, root + "/cut/box");
    box.keepBeside(root + "/cut.");
    const Call show = box.call(kShow);
    if (show.exitCode() != 0) {
      return "the project cannot be shown: " + show.unless(0);
    }
    const Table found = Table::of(show.output);
    std::size_t lost = 0;
    std::string what;
    for (const auto &[x, line] : reported.ok) {
      const auto kept = found.ok.find(x);
      if (kept == found.ok.end() || kept->second != line) {
        const auto other = found.others.find(x);
        what = line + " is now " + (other == found.others.end() ? "another" : other->second);
        ++lost;
      }
    }
    return lost == 0 ? problemOfFiles(box, reported)
                     : std::to_string(lost) + " of " + std::to_string(reported.ok.size()) +
                           " rows are lost: " + what;
  }

  // The files that belong to reported rows hold what their solvers wrote.
  static std::string problemOfFiles(const Box &box, const Table &reported) {
    std::map<std::string, int> found;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(box.path("box.results"))) {
      if (entry.path().filename() == "result.txt" && entry.path().parent_path().filename() == "run") {
        ++found[readFile(entry.path().string())];
      }
    }
    for (const auto &[x, line] : reported.ok) {
      const std::string content = "sum = " + std::to_string(std::stoi(x) + 10) + "\n";
      if (found[content] != 1) {
        return "the result file of x = " + x + " is not there";
      }
    }
    return "";
  }

  const Product &m_product;
  std::mt19937_64 m_random;
  int m_disks = 0;
  std::size_t m_rows = 0;
};

bool canMount(const WorkFolder &work) {
  const std::string image = work.path() + "/try.img";
  const std::string made = FaultTests::makeImage(image);
  const std::string problem = made.empty() ? Disk(image, work.path() + "/cut").problem() : made;
  std::cout << problem;
  return problem.empty();
}

} // namespace

Outcome runPowerSuite(const SuiteOptions &options) {
  const WorkFolder work;
  if (!FaultTests::prepareMounting(work.path())) {
    return Outcome::CannotMount;
  }
  work.makeFolder("disk");
  work.makeFolder("cut");
  if (!canMount(work)) {
    return Outcome::CannotMount;
  }
  const Product product(work, options, FaultTests::startWithoutRights);
  Cuts cuts(product, options.seed);
  Report report("power");
  const bool isWhole = cuts.cut(options.trials(kAllCuts), {}, report);
  const std::size_t looked = cuts.rows();
  std::cout << "power: " << looked
            << " reported rows looked for\nWhat the control finds is meant to be found:\n";
  Report control("power control, not waiting for the disk");
  const bool isControlled = cuts.cut(options.sample == 0 ? 10 : 2,
                                     {{"LD_PRELOAD", product.file("libcommand_no_sync.so")}}, control);
  report.close();
  control.close();
  const bool isPassed =
      isWhole && isControlled && report.violations() == 0 && control.violations() > 0 && looked > 0;
  return isPassed ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
