// What becomes of a study when any one operation of its host fails, in every flow that it goes through.

#include "tests/study-fault/Flow.h"
#include "tests/study-fault/Suite.h"
#include "tests/study-fault/Table.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace StudyFaults;

constexpr int kSampleOfControls = 60;

struct Options {
  Selection selection;
  std::string flow;
  // Of so many shares, the one of this number is done, from 1.
  int share = 1;
  int shares = 1;
  bool doesControls = false;
  std::string table;
};

int usage() {
  std::fputs("usage: StudyFaultTest [--flow NAME] [--share I/N] [--sample TRIALS-PER-FLOW] [--seed SEED]\n"
             "                      [--table FILE|-] | --controls\n",
             stderr);
  return 2;
}

bool parse(int argc, char **argv, Options &options) {
  for (int index = 1; index < argc; ++index) {
    const std::string option = argv[index];
    if (option == "--controls") {
      options.doesControls = true;
      continue;
    }
    if (++index == argc) {
      return false;
    }
    const std::string value = argv[index];
    if (option == "--flow") {
      options.flow = value;
    } else if (option == "--share") {
      options.share = std::atoi(value.c_str());
      options.shares = std::atoi(value.c_str() + std::min(value.size(), value.find('/') + 1));
    } else if (option == "--sample") {
      options.selection.sample = std::atoi(value.c_str());
    } else if (option == "--seed") {
      options.selection.seed = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
    } else if (option == "--table") {
      options.table = value;
    } else {
      return false;
    }
  }
  return options.share >= 1 && options.share <= options.shares;
}

void printFindings(const Flow &flow, const std::vector<Result> &results, int &findings) {
  for (const Result &result : results) {
    for (const std::string &finding : result.findings) {
      ++findings;
      std::printf("%s | %s | %s | %s: %s\n", flow.name.c_str(), result.operation.c_str(), result.kind.c_str(),
                  result.where.c_str(), finding.c_str());
    }
  }
}

int runFlows(const Options &options) {
  int trials = 0;
  int findings = 0;
  int flowsDone = 0;
  Table table;
  for (std::size_t index = 0; index < flows().size(); ++index) {
    const Flow &flow = flows()[index];
    const bool isChosen = options.flow.empty() ? static_cast<int>(index) % options.shares == options.share - 1
                                               : flow.name == options.flow;
    if (!isChosen) {
      continue;
    }
    const std::vector<Result> results = runTrials(flow, options.selection);
    ++flowsDone;
    trials += static_cast<int>(results.size());
    printFindings(flow, results, findings);
    table.add(flow.name, results);
  }
  if (!options.table.empty() && !table.write(options.table)) {
    std::printf("cannot write %s\n", options.table.c_str());
    return EXIT_FAILURE;
  }
  std::printf("study-fault: %d flows, %d trials%s, %d findings\n", flowsDone, trials,
              options.selection.sample == 0
                  ? ""
                  : (" (drawn by seed " + std::to_string(options.selection.seed) + ")").c_str(),
              findings);
  return flowsDone > 0 && findings == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Each control must be found, by what is wrong with it.
int runControls() {
  int missed = 0;
  for (const Control &control : controls()) {
    const std::vector<Result> results = runTrials(control.flow, {kSampleOfControls, 1});
    const auto found = std::count_if(results.begin(), results.end(), [&](const Result &result) {
      return std::find(result.findings.begin(), result.findings.end(), control.finding) !=
             result.findings.end();
    });
    std::printf("control \"%s\": %s in %d of %d trials\n", control.flow.name.c_str(),
                found > 0 ? "found" : "NOT FOUND", static_cast<int>(found), static_cast<int>(results.size()));
    missed += found > 0 ? 0 : 1;
  }
  return missed == 0 && !controls().empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    return usage();
  }
  try {
    return options.doesControls ? runControls() : runFlows(options);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
  }
}
