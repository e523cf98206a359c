#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Report.h"

#include <csignal>
#include <iostream>

namespace CommandTests {

namespace {

using FaultTests::Report;
using FaultTests::WorkFolder;

// What a row's solver does, and what the matrix has to say of the row: "" for ok, else how the reason begins.
struct Ending {
  std::string order;
  std::string reason;
};

// Those that do not end a process by default are left out.
bool endsAProcess(int number) {
  return number != SIGCHLD && number != SIGCONT && number != SIGURG && number != SIGWINCH &&
         number != SIGSTOP && number != SIGTSTP && number != SIGTTIN && number != SIGTTOU;
}

std::vector<Ending> allEndings() {
  std::vector<Ending> all{{"work 50", ""},
                          {"leave", ""},
                          {"serve 20", ""},
                          {"generations 20", ""},
                          {"pieces 50", ""},
                          {"much 300", ""},
                          {"much 20000", "failed: output too large: stdout.log is not complete"},
                          {"partial", "failed: extraction: Box.product: stdout.log is empty"},
                          {"cut", "failed: extraction: Box.product: stdout.log:1: nothing stands where"},
                          {"late 200", "failed: extraction: Box.sum: result.txt was not written"}};
  for (int code = 1; code < 256; ++code) {
    all.push_back({"exit " + std::to_string(code), "failed: exit code: " + std::to_string(code)});
  }
  for (int number = 1; number < 32; ++number) {
    if (endsAProcess(number)) {
      all.push_back({"signal " + std::to_string(number), "failed: signal: " + std::to_string(number) + " ("});
    }
  }
  return all;
}

std::string problemOfRow(const Table &table, const std::string &x, const Ending &ending) {
  const bool isOk = table.ok.count(x) != 0;
  if (ending.reason.empty()) {
    return isOk ? "" : "it is not ok: " + (table.others.count(x) != 0 ? table.others.at(x) : "not there");
  }
  if (isOk) {
    return "it is ok";
  }
  const auto found = table.others.find(x);
  const std::string reason = found == table.others.end() ? "" : found->second;
  return reason.rfind(ending.reason, 0) == 0 ? "" : "\"" + reason + "\" instead of \"" + ending.reason + "\"";
}

// The row x = n does what the n-th entry says.
void judgeAll(const Product &product, const std::string &name, const std::vector<Ending> &endings,
              const std::vector<Ending> &expected, Report &report) {
  const Box box = Box::make(product, name);
  box.writeStudy(static_cast<int>(endings.size()) + 1);
  std::string script = "0 ok\n";
  for (std::size_t number = 0; number < endings.size(); ++number) {
    script += std::to_string(number + 1) + " " + endings[number].order + "\n";
  }
  box.script(script);
  const Call run = box.run();
  const std::string survivors = box.survivors();
  box.killSurvivors();
  report.add("run", run.unless(4) + survivors);
  const Table table = Table::of(box.call({"show", "box.optstudy", "--format", "csv"}).output);
  for (std::size_t number = 0; number < endings.size(); ++number) {
    report.add(endings[number].order, problemOfRow(table, std::to_string(number + 1), expected[number]));
  }
}

} // namespace

Outcome runEndsSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  const std::vector<Ending> all = allEndings();
  std::vector<Ending> chosen;
  // Of the many exit codes a sample; everything else every time.
  const std::size_t distance = options.sample == 0 ? 1 : 20;
  for (std::size_t number = 0; number < all.size(); ++number) {
    if (all[number].order.rfind("exit", 0) != 0 || (number + options.seed) % distance == 0) {
      chosen.push_back(all[number]);
    }
  }
  Report report("ends");
  judgeAll(product, "ends", chosen, chosen, report);
  // Everything ends in the way of the row before.
  std::vector<Ending> wrong(chosen.rbegin(), chosen.rend());
  Report control("ends control, each ending for another");
  std::cout << "What the control finds is meant to be found:\n";
  judgeAll(product, "ends-control", {wrong[0], wrong[1], wrong[2]}, {wrong[1], wrong[2], wrong[0]}, control);
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() == 3 ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
