#include "tests/fault/judge/Report.h"
#include "tests/fault/judge/Suites.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace FaultTests {

namespace {

constexpr std::array<const char *, 4> kErrors{"ENOSPC", "EIO", "EROFS", "EACCES"};
constexpr std::size_t kKinds = kErrors.size() * 2; // each once, and from then on
constexpr std::size_t kControlTrials = 40;
constexpr int kGaveUp = 3;

struct Fault {
  CallPoint point;
  std::string error;
  bool isForEver = false;

  std::string text() const { return error + (isForEver ? " from " : " at ") + point.text(); }
  std::string inject() const {
    return point.name + ":error=" + error + ":when=" + std::to_string(point.ordinal) + (isForEver ? "+" : "");
  }
};

using Points = std::vector<CallPoint>;

// The sanitizers find out by writing into a pipe whether an address is readable, and trust what they are told.
Points pointsThatMayFail(const Bench &bench) {
  Points points = bench.points();
#ifdef OPTSTUDY_ADDRESS_SANITIZER
  const auto isWrite = [](const CallPoint &point) {
    return point.name == "write";
  };
  points.erase(std::remove_if(points.begin(), points.end(), isWrite), points.end());
#endif
  return points;
}

Fault faultOf(const Points &points, std::size_t number) {
  const std::size_t kind = number % kKinds;
  return {points[number / kKinds], kErrors.at(kind / 2), kind % 2 == 1};
}

std::string violationOf(const Trial &trial, const States &states) {
  const bool isToTheEnd = trial.ending.exitCode == 0;
  if (!isToTheEnd && trial.ending.exitCode != kGaveUp) {
    return "it crashed: signal " + std::to_string(trial.ending.signal) + ", exit code " +
           std::to_string(trial.ending.exitCode) + " " + trial.message;
  }
  if (!isToTheEnd && trial.message.find(trial.folder) == std::string::npos) {
    return "the message names no path of the project: " + trial.message;
  }
  if (!trial.isOpened) {
    return "the project cannot be opened: " + trial.state;
  }
  const bool isLost = isToTheEnd ? trial.state != states.after.back()
                                 : !states.isAllowedAfterError(trial.state, trial.acknowledged);
  if (isLost) {
    return "what step " + std::to_string(trial.acknowledged) +
           " acknowledged is not there: " + states.difference(trial.state, trial.acknowledged);
  }
  if (!trial.problemAfterwards.empty()) {
    return trial.problemAfterwards;
  }
  return trial.litter.empty() ? "" : trial.litter.front();
}

void failAll(const Bench &bench, const Points &points, const std::vector<std::size_t> &chosen,
             const std::string &flaw, Report &report) {
  inPairs(chosen.size(), [&](std::size_t number) {
    const Fault fault = faultOf(points, chosen[number]);
    const Trial trial = bench.run(flaw + std::to_string(number), fault.point.name, fault.inject(), flaw);
    report.add(fault.text(), violationOf(trial, bench.states()));
    bench.clear(trial);
  });
}

} // namespace

bool runErrorSuite(const SuiteOptions &options) {
  const Bench bench(options);
  if (!bench.problem().empty()) {
    std::cout << "error: " << bench.problem() << "\n";
    return false;
  }
  const Points points = pointsThatMayFail(bench);
  const std::size_t all = points.size() * kKinds;
  std::cout << "error: " << points.size() << " points, " << all << " faults\n";
  const std::vector<std::size_t> chosen = choose(all, options.sample, options.seed);
  Report report("error");
  failAll(bench, points, chosen, "none", report);
  // A session that takes every failure for a success has to be found out.
  const std::size_t fewer =
      options.sample == 0 ? kControlTrials : std::max<std::size_t>(8, options.sample / 3);
  Report control("error control, deaf to failures");
  std::cout << "What the control finds is meant to be found:\n";
  failAll(bench, points, choose(all, fewer, options.seed), "deaf", control);
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() > 0 &&
         report.trials() == static_cast<int>(chosen.size());
}

} // namespace FaultTests
