// The judge of the fault suites; see the README.

#include "tests/fault/judge/Suites.h"
#include "tests/fault/judge/WorkFolder.h"

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace {

using FaultTests::PowerOutcome;
using FaultTests::SuiteOptions;

constexpr int kSkipped = 77; // what ctest is told to show as such
constexpr const char *kSeedVariable = "OPTSTUDY_FAULT_SEED";

int usage() {
  std::cerr << "usage: FaultSuites kill|error|order|power all|COUNT PROGRAM [FILE]...\n";
  return EXIT_FAILURE;
}

unsigned long long chooseSeed() {
  const char *given = std::getenv(kSeedVariable);
  return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
}

int runPower(const SuiteOptions &options) {
  const PowerOutcome outcome = FaultTests::runPowerSuite(options);
  if (outcome == PowerOutcome::CannotMount) {
    std::cout << "power: NOT RUN. It needs root, loop devices and the right to mount.\n";
    return options.sample == 0 ? EXIT_FAILURE : kSkipped;
  }
  return outcome == PowerOutcome::Passed ? EXIT_SUCCESS : EXIT_FAILURE;
}

int runUnprivileged(const std::string &suite, SuiteOptions options) {
  // The tree may lie where only root can reach it, as in root's home.
  const FaultTests::WorkFolder reachable;
  options.program = reachable.takeFile(options.program);
  for (std::string &file : options.files) {
    file = reachable.takeFile(file);
  }
  if (!reachable.handOver() || !FaultTests::dropRights()) {
    std::cerr << "The rights of root cannot be given up; nothing is run with them.\n";
    return EXIT_FAILURE;
  }
  const bool isPassed = suite == "kill"    ? FaultTests::runKillSuite(options)
                        : suite == "error" ? FaultTests::runErrorSuite(options)
                                           : FaultTests::runOrderSuite(options);
  return isPassed ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 3) {
    return usage();
  }
  SuiteOptions options;
  const std::string &suite = arguments[0];
  options.sample = arguments[1] == "all" ? 0 : std::strtoul(arguments[1].c_str(), nullptr, 10);
  options.program = arguments[2];
  options.files.assign(arguments.begin() + 3, arguments.end());
  if (arguments[1] != "all" && options.sample == 0) {
    return usage();
  }
  options.seed = chooseSeed();
  std::cout << suite << ": seed " << options.seed << " (set " << kSeedVariable << " to repeat)\n";
  if (suite == "power") {
    return runPower(options);
  }
  return suite == "kill" || suite == "error" || suite == "order" ? runUnprivileged(suite, options) : usage();
}
