#include "tests/fault/judge/Report.h"
#include "tests/fault/judge/Suites.h"
#include "tests/fault/judge/SyncOrder.h"

#include <iostream>

namespace FaultTests {

namespace {

// Every solved row of one session.
void judgeRows(const Bench &bench, const std::string &flaw, Report &report) {
  const std::string folder = bench.makeSessionFolder("order-" + flaw);
  const std::string log = folder + ".log";
  std::vector<std::string> command{
      "strace", "-qq", "-y", "-s", "40", "-o", log, "-e", "trace=" + writeClassCalls() + ",pwritev2,sendmsg"};
  for (const std::string &word : bench.sessionCommand("run", folder)) {
    command.push_back(word);
  }
  command.insert(command.end(), {folder + ".acks", flaw});
  if (runCommand(command, folder + ".out", folder + ".err").exitCode != 0) {
    report.add("session", "it failed: " + readFile(folder + ".err"));
    return;
  }
  for (const SolvedRow &row : solvedRows(readFile(log), folder)) {
    report.add(row.name, row.problem);
  }
}

} // namespace

bool runOrderSuite(const SuiteOptions &options) {
  const Bench bench(options);
  if (!bench.problem().empty()) {
    std::cout << "order: " << bench.problem() << "\n";
    return false;
  }
  Report report("order");
  judgeRows(bench, "none", report);
  Report control("order control, acknowledging too early");
  std::cout << "What the control finds is meant to be found:\n";
  judgeRows(bench, "early", control);
  report.close();
  control.close();
  return report.violations() == 0 && report.trials() == 4 && control.violations() > 0;
}

} // namespace FaultTests
