#include "tests/command/judge/Looks.h"
#include "tests/command/judge/Suites.h"
#include "tests/command/judge/Undisturbed.h"
#include "tests/fault/judge/Report.h"

#include <iostream>

namespace CommandTests {

namespace {

using FaultTests::Report;
using FaultTests::WorkFolder;

constexpr int kRows = 6;
constexpr int kSolved = 2;

class HeldTrials {
public:
  HeldTrials(const Product &product, Report &report)
      : m_undisturbed(Undisturbed::of(product, kRows, "")), m_box(Box::make(product, "held")),
        m_report(report) {
    m_box.writeStudy(kRows);
  }

  void judge() {
    m_report.add("undisturbed", m_undisturbed.problem);
    hold();
    judgeRefusals("process " + std::to_string(m_holder) + " on ");
    for (const Look &look : looks()) {
      m_report.add(joined(look.words), problemOfLook(m_box, look));
    }
    m_report.add("rows that run",
                 problemOfLook(m_box, {{"show", "box.optstudy", "--status", "running"}, "Variant 2"}));
    judgeBackup();
    release();
  }

  /// Nobody is refused where nobody holds.
  void judgeUnheld() {
    m_report.add("run", m_box.run().unless(0));
    judgeRefusals("process ");
  }

private:
  // Two rows are solved, two run, and two wait.
  void hold() {
    m_box.script("0 ok\n1 ok\n* until " + m_box.beside("release") + "\n");
    m_holder = m_box.start({"run", "box.study.yaml", "-j", "2"}, "holder");
    m_report.add("holding", m_box.waitForBeginnings(kSolved + 2) ? "" : "the first does not begin");
  }

  // They end while the first still holds, which only release() ends: at once, that is.
  void judgeRefusals(const std::string &holder) {
    for (const Words &words : changes()) {
      m_report.add(joined(words), problemOfRefusal(m_box, words, holder));
    }
  }

  void judgeBackup() {
    std::string problem = m_box.call({"backup", "box.optstudy", "copy.optstudy"}).unless(0);
    const Call show = m_box.call({"show", "copy.optstudy", "--format", "csv"});
    problem += show.unless(0);
    const Table table = Table::of(show.output);
    const bool isWhole = table.ok.size() == kSolved && table.ok.count("1") == 1 &&
                         table.ok.at("1") == "1,Variant 1,ok,,1,11,2,13";
    m_report.add("backup", problem.empty() && !isWhole
                               ? "the copy does not hold the solved rows: " + show.output
                               : problem);
  }

  void release() {
    FaultTests::writeFile(m_box.beside("release"), "");
    const Call ended = m_box.finish(m_holder, "holder");
    const Call show = m_box.call({"show", "box.optstudy", "--format", "csv"});
    m_report.add("the holder",
                 ended.unless(0) + difference(m_undisturbed.table.text, show.output) + m_box.survivors());
    m_report.add("starts", m_box.beginnings() == kRows ? "" : "somebody else has begun rows");
  }

  Undisturbed m_undisturbed;
  Box m_box;
  Report &m_report;
  int m_holder = 0;
};

} // namespace

Outcome runHeldSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  Report report("held");
  HeldTrials(product, report).judge();
  const WorkFolder other;
  const Product unheld(other, options);
  Report control("held control, held by nobody");
  std::cout << "What the control finds is meant to be found:\n";
  HeldTrials(unheld, control).judgeUnheld();
  report.close();
  control.close();
  const bool isControlled = control.violations() == static_cast<int>(changes().size());
  return report.violations() == 0 && isControlled ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
