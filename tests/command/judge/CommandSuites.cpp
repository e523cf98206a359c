// The judge of the command; see the README.

#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/WorkFolder.h"

#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace CommandTests;

constexpr int kSkipped = 77; // what ctest is told to show as such
constexpr const char *kSeedVariable = "OPTSTUDY_COMMAND_SEED";

struct Suite {
  Outcome (*run)(const SuiteOptions &);
  bool mounts;
};

const std::map<std::string, Suite> &suites() {
  static const std::map<std::string, Suite> all{
      {"kill", {runKillSuite, false}},         {"interrupt", {runInterruptSuite, false}},
      {"limit", {runLimitSuite, false}},       {"ends", {runEndsSuite, false}},
      {"hostile", {runHostileSuite, false}},   {"held", {runHeldSuite, false}},
      {"readonly", {runReadOnlySuite, false}}, {"locale", {runLocaleSuite, false}},
      {"surface", {runSurfaceSuite, false}},   {"disk", {runDiskSuite, true}},
      {"media", {runMediaSuite, true}},        {"power", {runPowerSuite, true}}};
  return all;
}

int usage() {
  std::cerr << "usage: CommandSuites SUITE all|COUNT PAGE FILE...\nsuites:";
  for (const auto &[name, suite] : suites()) {
    std::cerr << " " << name;
  }
  std::cerr << "\n";
  return EXIT_FAILURE;
}

unsigned long long chooseSeed() {
  const char *given = std::getenv(kSeedVariable);
  return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
}

int exitCodeOf(const std::string &suite, Outcome outcome, bool isSample) {
  if (outcome == Outcome::CannotMount) {
    std::cout << suite << ": NOT RUN. It needs root and the right to mount.\n";
    return isSample ? kSkipped : EXIT_FAILURE;
  }
  return outcome == Outcome::Passed ? EXIT_SUCCESS : EXIT_FAILURE;
}

// The tree may lie where only root can reach it, as in root's home: what the suites need is copied first.
bool giveUpRights(SuiteOptions &options, const FaultTests::WorkFolder &reachable) {
  options.commandPage = reachable.takeFile(options.commandPage);
  for (std::string &file : options.files) {
    file = reachable.takeFile(file);
  }
  return reachable.handOver() && FaultTests::dropRights();
}

} // namespace

int main(int argc, char **argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 4 || suites().count(arguments[0]) == 0) {
    return usage();
  }
  SuiteOptions options;
  const std::string &name = arguments[0];
  options.sample = arguments[1] == "all" ? 0 : std::strtoul(arguments[1].c_str(), nullptr, 10);
  options.commandPage = arguments[2];
  options.files.assign(arguments.begin() + 3, arguments.end());
  if (arguments[1] != "all" && options.sample == 0) {
    return usage();
  }
  options.seed = chooseSeed();
  std::cout << name << ": seed " << options.seed << " (set " << kSeedVariable << " to repeat)\n";
  const Suite &suite = suites().at(name);
  std::optional<FaultTests::WorkFolder> reachable;
  if (!suite.mounts && !giveUpRights(options, reachable.emplace())) {
    std::cerr << "The rights of root cannot be given up; nothing is run with them.\n";
    return EXIT_FAILURE;
  }
  return exitCodeOf(name, suite.run(options), options.sample != 0);
}
