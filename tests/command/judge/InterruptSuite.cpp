#include "tests/command/judge/Processes.h"
#include "tests/command/judge/Suites.h"
#include "tests/command/judge/Undisturbed.h"
#include "tests/fault/judge/Report.h"

#include <csignal>
#include <iostream>
#include <random>
#include <thread>

namespace CommandTests {

namespace {

using FaultTests::Report;
using FaultTests::WorkFolder;
using std::chrono::milliseconds;

constexpr int kRows = 12;
constexpr int kInterrupted = 130;
constexpr int kTerminated = 143;
constexpr std::size_t kAllDoubles = 20;
constexpr std::size_t kAllOthers = 5;

enum class Strike { Twice, Once, Terminate, HangUp, Kill, TwiceLeavingARun };

std::string nameOf(Strike strike) {
  switch (strike) {
  case Strike::Twice:
  case Strike::TwiceLeavingARun:
    return "Ctrl-C twice";
  case Strike::Once:
    return "Ctrl-C once";
  case Strike::Terminate:
    return "SIGTERM";
  case Strike::HangUp:
    return "SIGHUP";
  default:
    return "SIGKILL";
  }
}

// Rows x = 0 to first - 1 are solved, the next two do not end by themselves, the rest is not begun.
class InterruptTrials {
public:
  InterruptTrials(const Product &product, unsigned long long seed)
      : m_product(product), m_random(seed), m_undisturbed(Undisturbed::of(product, kRows, "")) {}

  const std::string &problem() const { return m_undisturbed.problem; }

  void strike(std::size_t count, Strike strike, Report &report) {
    for (std::size_t number = 0; number < count; ++number) {
      const Box box = Box::make(m_product, "signal-" + std::to_string(static_cast<int>(strike)) + "-" +
                                               std::to_string(number));
      box.writeStudy(kRows);
      const int first = std::uniform_int_distribution<int>(1, kRows - 3)(m_random);
      report.add(nameOf(strike) + " in row " + std::to_string(first), judge(box, strike, first));
      box.killSurvivors();
      m_product.work().removeFolder(box.folder());
    }
  }

private:
  std::string judge(const Box &box, Strike strike, int first) {
    const bool isPatient = strike == Strike::Once;
    const std::string release = box.beside("release");
    const std::string what = isPatient ? "until " + release : "serve-deaf";
    std::string script;
    for (int x = 0; x < first; ++x) {
      script += std::to_string(x) + " ok\n";
    }
    box.script(script + "* " + what + "\n");
    const int process = box.start({"run", "box.study.yaml", "-j", "2"}, "run");
    if (!box.waitForBeginnings(first + 2)) {
      return "it does not begin " + std::to_string(first + 2) +
             " rows: " + box.finish(process, "run").messages;
    }
    pause(100);
    std::string early = send(box, process, strike);
    if (isPatient) {
      FaultTests::writeFile(release, "");
    }
    const Call ended = box.finish(process, "run");
    if (!early.empty()) {
      return early;
    }
    const std::string problem = problemOfEnd(ended, strike);
    return problem.empty() ? judgeProject(box, first, isPatient ? first + 2 : first) : problem;
  }

  std::string send(const Box &box, int process, Strike strike) {
    const bool isTwice = strike == Strike::Twice || strike == Strike::TwiceLeavingARun;
    const int number = strike == Strike::Terminate ? SIGTERM
                       : strike == Strike::HangUp  ? SIGHUP
                       : strike == Strike::Kill    ? SIGKILL
                                                   : SIGINT;
    ::kill(process, number);
    if (number != SIGINT) {
      return "";
    }
    waitUntilDelivered(process, SIGINT);
    pause(50);
    const std::string status = FaultTests::readFile("/proc/" + std::to_string(process) + "/status");
    if (status.empty() || status.find("\nState:\tZ") != std::string::npos) {
      return "it ended at the first Ctrl-C, with rows running";
    }
    if (isTwice) {
      ::kill(process, SIGINT);
    }
    if (strike == Strike::TwiceLeavingARun) {
      m_left = box.startOther({"sleep", "3600"}, "left");
    }
    return "";
  }

  static std::string problemOfEnd(const Call &ended, Strike strike) {
    const bool isCtrlC = strike != Strike::Terminate && strike != Strike::HangUp;
    std::string problem = ended.unless(isCtrlC ? kInterrupted : kTerminated);
    if (!problem.empty()) {
      return problem;
    }
    return ended.messages.find("run the same command again") != std::string::npos
               ? ""
               : "it does not say how to go on: " + ended.messages;
  }

  std::string judgeProject(const Box &box, int first, int solved) {
    Table shown;
    std::string problem = problemAfterStrike(box, m_undisturbed, shown);
    if (m_left > 0) {
      FaultTests::waitFor(m_left);
      m_left = 0;
    }
    if (!problem.empty()) {
      return problem;
    }
    if (shown.ok.size() != static_cast<std::size_t>(solved)) {
      return std::to_string(shown.ok.size()) + " rows are ok, not " + std::to_string(solved);
    }
    if (box.beginnings() != first + 2) {
      return "rows were begun after the signal";
    }
    box.script("");
    return problemOfGoingOn(box, m_undisturbed, shown);
  }

  void pause(int longest) {
    std::this_thread::sleep_for(milliseconds(std::uniform_int_distribution<int>(0, longest)(m_random)));
  }

  const Product &m_product;
  std::mt19937_64 m_random;
  Undisturbed m_undisturbed;
  int m_left = 0;
};

} // namespace

Outcome runInterruptSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  InterruptTrials trials(product, options.seed);
  if (!trials.problem().empty()) {
    std::cout << "interrupt: undisturbed: " << trials.problem() << "\n";
    return Outcome::Failed;
  }
  Report report("interrupt");
  trials.strike(options.trials(kAllDoubles), Strike::Twice, report);
  for (const Strike strike : {Strike::Once, Strike::Terminate, Strike::HangUp}) {
    trials.strike(options.sample == 0 ? kAllOthers : 1, strike, report);
  }
  std::cout << "What the controls find is meant to be found:\n";
  Report killing("interrupt control, killed instead");
  Report leaving("interrupt control, leaving a process");
  trials.strike(1, Strike::Kill, killing);
  trials.strike(1, Strike::TwiceLeavingARun, leaving);
  report.close();
  killing.close();
  leaving.close();
  const bool isPassed = report.violations() == 0 && killing.violations() > 0 && leaving.violations() > 0;
  return isPassed ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
