#include "tests/command/judge/SmallDisk.h"
#include "tests/command/judge/Suites.h"
#include "tests/command/judge/Undisturbed.h"
#include "tests/fault/judge/Disk.h"
#include "tests/fault/judge/Report.h"

#include <filesystem>
#include <iostream>
#include <random>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::Report;
using FaultTests::WorkFolder;

constexpr int kRows = 20;
constexpr std::size_t kAllDisks = 30;
constexpr std::size_t kSmallest = 40; // kB; the study alone takes less
constexpr std::size_t kLargest = 1400;
constexpr std::size_t kEnough = 16000;
constexpr const char *kScript = "* ballast 65536\n";

// The product says so, or the row's solver, which had no room either.
bool saysThatItIsFull(const Call &call) {
  return call.messages.find("No space left on device") != std::string::npos ||
         call.messages.find("database or disk is full") != std::string::npos ||
         call.output.find("exit code: 28") != std::string::npos;
}

class DiskTrials {
public:
  DiskTrials(const Product &product, unsigned long long seed)
      : m_product(product), m_random(seed), m_undisturbed(Undisturbed::of(product, kRows, kScript)) {}

  const std::string &problem() const { return m_undisturbed.problem; }
  std::size_t finishedRows() const { return m_finishedRows; }

  void fill(std::size_t count, bool isLarge, Report &report) {
    for (std::size_t number = 0; number < count; ++number) {
      const std::size_t size =
          isLarge ? kEnough : std::uniform_int_distribution<std::size_t>(kSmallest, kLargest)(m_random);
      const SmallDisk disk(m_product.work().path() + "/disk", size);
      const std::string name = "box-" + std::to_string(isLarge ? 1 : 0) + "-" + std::to_string(number);
      report.add(std::to_string(size) + " kB", disk.problem().empty() ? judge(disk, name) : disk.problem());
    }
  }

private:
  std::string judge(const SmallDisk &disk, const std::string &name) {
    const std::string folder = m_product.work().path() + "/disk/" + name;
    fs::create_directory(folder);
    Box box(m_product, folder);
    box.keepBeside(m_product.work().path() + "/" + name + ".");
    box.writeStudy(kRows);
    box.script(kScript);
    const Call run = box.run();
    if (!run.isInTime || run.exitCode() <= 0) {
      return run.isInTime ? "it did not notice: " + run.unless(1) : "it does not end";
    }
    if (!saysThatItIsFull(run)) {
      return "it does not say that the disk is full: " + run.messages + run.output;
    }
    Table shown;
    std::string problem = problemAfterStrike(box, m_undisturbed, shown);
    m_finishedRows += shown.ok.size();
    if (!problem.empty()) {
      return problem;
    }
    return disk.resize(kEnough) ? problemOfGoingOn(box, m_undisturbed, shown)
                                : "the disk cannot be made larger";
  }

  const Product &m_product;
  std::mt19937_64 m_random;
  Undisturbed m_undisturbed;
  std::size_t m_finishedRows = 0;
};

} // namespace

Outcome runDiskSuite(const SuiteOptions &options) {
  const WorkFolder work;
  if (!FaultTests::prepareMounting(work.path())) {
    return Outcome::CannotMount;
  }
  const std::string place = work.makeFolder("disk");
  if (!SmallDisk(place, kSmallest).problem().empty()) {
    return Outcome::CannotMount;
  }
  const Product product(work, options, FaultTests::startWithoutRights);
  DiskTrials trials(product, options.seed);
  if (!trials.problem().empty()) {
    std::cout << "disk: with room: " << trials.problem() << "\n";
    return Outcome::Failed;
  }
  Report report("disk");
  trials.fill(options.trials(kAllDisks), false, report);
  std::cout << "disk: " << trials.finishedRows() << " finished rows looked for\n"
            << "What the control finds is meant to be found:\n";
  Report control("disk control, with room");
  trials.fill(1, true, control);
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() == 1 ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
