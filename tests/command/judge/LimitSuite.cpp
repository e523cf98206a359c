#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Report.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace CommandTests {

namespace {

using FaultTests::linesOf;
using FaultTests::readFile;
using FaultTests::Report;
using FaultTests::WorkFolder;

constexpr int kLimit = 1000; // ms
constexpr int kGrace = 2000; // between the request to end and the end
constexpr int kTolerance = 500;
constexpr int kStarved = 100; // between two ticks of ten
constexpr std::size_t kAllTicks = 20;
const std::string kReason = "failed: time limit: ended after 1 s";

// What a solver can do that does not end: rows 1 to 6.
const std::vector<std::string> &stubborn() {
  static const std::vector<std::string> all{"hang", "deaf", "serve-deaf", "flood", "silent", "stop"};
  return all;
}

std::string problemOfRow(const Call &show, const std::string &x, const Call &run,
                         const std::string &survivors) {
  if (!survivors.empty()) {
    return survivors;
  }
  if (run.exitCode() != 4) {
    return run.unless(4);
  }
  const Table table = Table::of(show.output);
  const auto found = table.others.find(x);
  if (found == table.others.end()) {
    return "the row did not fail";
  }
  return found->second == kReason ? "" : found->second;
}

// One run of all that does not end; each row is a trial.
void strikeAll(const Product &product, bool isControl, Report &report) {
  const Box box = Box::make(product, isControl ? "limit-control" : "limit");
  box.writeStudy(static_cast<int>(stubborn().size()) + 1, "1 s");
  std::string script;
  for (std::size_t number = 0; number < stubborn().size() && !isControl; ++number) {
    script += std::to_string(number + 1) + " " + stubborn()[number] + "\n";
  }
  // What fails by itself is not to be taken for what was ended at the limit.
  box.script(isControl ? "0 ok\n1 ok\n* exit 1\n" : script);
  const Call run = box.run();
  const std::string survivors = box.survivors();
  box.killSurvivors();
  const Call show = box.call({"show", "box.optstudy", "--format", "csv"});
  for (std::size_t number = 0; number < stubborn().size(); ++number) {
    report.add(isControl ? "ended by itself" : stubborn()[number],
               problemOfRow(show, std::to_string(number + 1), run, survivors));
  }
}

// How long a solver was alive, as it has measured itself: not what this machine had to do meanwhile counts. "" is also
// answered, with `isStarved` set, when the solver was not given the time to say so.
std::string problemOfTicks(const std::string &file, int longest, bool &isStarved) {
  int last = 0;
  for (const std::string &line : linesOf(readFile(file))) {
    const int tick = std::atoi(line.c_str());
    isStarved = isStarved || tick - last > kStarved;
    last = tick;
  }
  if (isStarved) {
    return "";
  }
  if (last < longest - kTolerance) {
    return "it was ended after " + std::to_string(last) + " ms already, not " + std::to_string(longest);
  }
  return last <= longest + kTolerance ? "" : "it was alive for " + std::to_string(last) + " ms";
}

void strikeTicking(const Product &product, const std::string &name, std::size_t count,
                   const std::string &limit, Report &report) {
  for (std::size_t number = 0; number < count; ++number) {
    const bool isDeaf = number % 2 == 1;
    const Box box = Box::make(product, name + std::to_string(number));
    const std::string ticks = box.beside("ticks");
    box.writeStudy(2, limit);
    box.script("0 ok\n1 " + std::string(isDeaf ? "deaf-tick " : "tick ") + ticks + "\n");
    box.run();
    bool isStarved = false;
    const std::string problem = problemOfTicks(ticks, isDeaf ? kLimit + kGrace : kLimit, isStarved);
    if (isStarved) {
      report.addMissed();
    } else {
      report.add(isDeaf ? "deaf" : "obedient", problem);
    }
    product.work().removeFolder(box.folder());
  }
}

} // namespace

Outcome runLimitSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  Report report("limit");
  Report control("limit control, ended by itself");
  strikeAll(product, false, report);
  strikeAll(product, true, control);
  report.close();
  control.close();
  bool isPassed = report.violations() == 0 && control.violations() > 0;
  if (options.sample == 0) {
    // By the clock, and so on a machine that has nothing else to do.
    Report ticking("limit, within half a second");
    Report late("limit control, two seconds late");
    strikeTicking(product, "ticks", kAllTicks, "1 s", ticking);
    strikeTicking(product, "late", 1, "3 s", late);
    ticking.close();
    late.close();
    isPassed = isPassed && ticking.violations() == 0 && late.violations() > 0 &&
               ticking.missed() <= static_cast<int>(kAllTicks) / 2;
  }
  return isPassed ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
