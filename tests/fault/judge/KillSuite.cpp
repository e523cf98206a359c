#include "tests/fault/judge/Report.h"
#include "tests/fault/judge/Suites.h"

#include <algorithm>
#include <csignal>
#include <iostream>

namespace FaultTests {

namespace {

constexpr std::size_t kFewestPoints = 300;
constexpr std::size_t kControlTrials = 40;

std::string violationOf(const Trial &trial, const States &states) {
  if (!trial.isOpened) {
    return "the project cannot be opened: " + trial.state;
  }
  if (!states.isAllowed(trial.state, trial.acknowledged)) {
    return "after step " + std::to_string(trial.acknowledged) +
           " it is neither before nor after the next: " + states.difference(trial.state, trial.acknowledged);
  }
  if (!trial.problemAfterwards.empty()) {
    return trial.problemAfterwards;
  }
  return trial.litter.empty() ? "" : trial.litter.front();
}

void strikeAll(const Bench &bench, const std::vector<std::size_t> &chosen, const std::string &flaw,
               Report &report) {
  inPairs(chosen.size(), [&](std::size_t number) {
    const CallPoint &point = bench.points()[chosen[number]];
    const std::string inject = point.name + ":signal=SIGKILL:when=" + std::to_string(point.ordinal);
    const Trial trial = bench.run(flaw + std::to_string(number), point.name, inject, flaw);
    if (trial.ending.signal == SIGKILL) {
      report.add("killed at " + point.text(), violationOf(trial, bench.states()));
    } else if (trial.ending.exitCode == 0) {
      report.addMissed();
    } else {
      report.add("at " + point.text(), "the session failed by itself: " + trial.message);
    }
    bench.clear(trial);
  });
}

} // namespace

bool runKillSuite(const SuiteOptions &options) {
  const Bench bench(options);
  if (!bench.problem().empty()) {
    std::cout << "kill: " << bench.problem() << "\n";
    return false;
  }
  std::cout << "kill: " << bench.steps() << " steps, " << bench.points().size() << " points\n";
  const std::vector<std::size_t> chosen = choose(bench.points().size(), options.sample, options.seed);
  Report report("kill");
  strikeAll(bench, chosen, "none", report);
  // A session that reports every step too early has to be found out.
  const std::size_t fewer =
      options.sample == 0 ? kControlTrials : std::max<std::size_t>(8, options.sample / 3);
  Report control("kill control, acknowledging too early");
  std::cout << "What the control finds is meant to be found:\n";
  strikeAll(bench, choose(bench.points().size(), fewer, options.seed), "early", control);
  report.close();
  control.close();
  // The number of calls varies by one or two from session to session, so that the last may not be reached.
  const auto missed = static_cast<std::size_t>(report.missed());
  const bool isWhole =
      bench.points().size() >= kFewestPoints && missed <= std::max<std::size_t>(1, chosen.size() / 100);
  return report.violations() == 0 && control.violations() > 0 && isWhole;
}

} // namespace FaultTests
