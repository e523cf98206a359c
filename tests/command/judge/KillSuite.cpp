#include "tests/command/judge/Suites.h"
#include "tests/command/judge/Undisturbed.h"
#include "tests/fault/judge/Report.h"

#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::Report;
using FaultTests::WorkFolder;
using std::chrono::milliseconds;

constexpr int kRows = 50;
constexpr int kAtATime = 2;
constexpr std::size_t kAllKills = 40;
constexpr const char *kScript = "* work 20\n";

// What the judge has to find out: a product that forgets, and one that leaves something running.
enum class Flaw { None, Forgets, LeavesARun };

// What was begun and is not finished was running: as many as run side by side.
std::string problemOfLosses(const Box &box, const Table &shown) {
  int lost = 0;
  for (const auto &[x, times] : box.begun()) {
    lost += shown.ok.count(x) == 0 ? 1 : 0;
  }
  return lost <= kAtATime ? "" : std::to_string(lost) + " rows that were begun are not finished";
}

void forget(const Box &box) {
  std::error_code error;
  for (const char *name : {"box.optstudy", "box.results"}) {
    fs::rename(box.path(name), box.beside(std::string(name) + ".forgotten"), error);
  }
}

class KillTrials {
public:
  KillTrials(const Product &product, unsigned long long seed)
      : m_product(product), m_random(seed), m_undisturbed(Undisturbed::of(product, kRows, kScript)) {}

  const std::string &problem() const { return m_undisturbed.problem; }
  std::size_t finishedRows() const { return m_finishedRows; }

  void strike(std::size_t count, Flaw flaw, Report &report) {
    for (std::size_t number = 0; number < count; ++number) {
      const std::string name =
          "kill-" + std::to_string(static_cast<int>(flaw)) + "-" + std::to_string(number);
      const Box box = Box::make(m_product, name);
      strikeOne(box, flaw, report);
      m_product.work().removeFolder(box.folder());
    }
  }

private:
  void strikeOne(const Box &box, Flaw flaw, Report &report) {
    box.writeStudy(kRows);
    box.script(kScript);
    const int process = box.start({"run", "box.study.yaml", "-j", std::to_string(kAtATime)}, "run");
    const std::string at = "killed " + waitForAnInstant(box, flaw);
    ::kill(process, SIGKILL);
    if (box.finish(process, "run").ending.signal != SIGKILL) {
      report.addMissed();
      return;
    }
    const int left = flaw == Flaw::LeavesARun ? box.startOther({"sleep", "3600"}, "left") : 0;
    report.add(at, judge(box, flaw));
    if (left > 0) {
      ::kill(left, SIGKILL);
      FaultTests::waitFor(left);
    }
  }

  // So many rows, and then so long, after the start: on a loaded machine, too, any instant of a solve is as likely as
  // any other. What controls strike has solved something and not everything.
  std::string waitForAnInstant(const Box &box, Flaw flaw) {
    const int first = flaw == Flaw::None ? 0 : 10;
    const int begun =
        std::uniform_int_distribution<int>(first, flaw == Flaw::None ? kRows - 1 : 40)(m_random);
    const milliseconds pause{std::uniform_int_distribution<int>(0, begun == 0 ? 300 : 30)(m_random)};
    static_cast<void>(box.waitForBeginnings(begun));
    std::this_thread::sleep_for(pause);
    return std::to_string(pause.count()) + " ms after row " + std::to_string(begun);
  }

  std::string judge(const Box &box, Flaw flaw) {
    Table shown;
    std::string problem = problemAfterStrike(box, m_undisturbed, shown);
    m_finishedRows += shown.ok.size();
    if (flaw == Flaw::Forgets) {
      forget(box);
    }
    problem = problem.empty() ? problemOfLosses(box, shown) : problem;
    return problem.empty() ? problemOfGoingOn(box, m_undisturbed, shown) : problem;
  }

  const Product &m_product;
  std::mt19937_64 m_random;
  Undisturbed m_undisturbed;
  std::size_t m_finishedRows = 0;
};

} // namespace

Outcome runKillSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  KillTrials trials(product, options.seed);
  if (!trials.problem().empty()) {
    std::cout << "kill: undisturbed: " << trials.problem() << "\n";
    return Outcome::Failed;
  }
  const std::size_t wanted = options.trials(kAllKills);
  Report report("kill");
  for (std::size_t before = 0; static_cast<std::size_t>(report.trials()) < wanted && before < 2 * wanted;
       ++before) {
    trials.strike(1, Flaw::None, report); // one that came too late is made up for
  }
  const std::size_t looked = trials.finishedRows();
  std::cout << "kill: " << looked
            << " finished rows looked for\nWhat the controls find is meant to be found:\n";
  const std::size_t fewer = options.sample == 0 ? 5 : 2;
  Report forgetting("kill control, forgetting what was solved");
  Report leaving("kill control, leaving a process");
  trials.strike(fewer, Flaw::Forgets, forgetting);
  trials.strike(1, Flaw::LeavesARun, leaving);
  report.close();
  forgetting.close();
  leaving.close();
  const bool isPassed = static_cast<std::size_t>(report.trials()) == wanted && report.violations() == 0 &&
                        forgetting.violations() > 0 && leaving.violations() > 0 && looked > 0;
  return isPassed ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
