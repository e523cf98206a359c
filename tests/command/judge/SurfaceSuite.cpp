#include "tests/command/judge/CommandPage.h"
#include "tests/command/judge/Looks.h"
#include "tests/command/judge/Processes.h"
#include "tests/command/judge/Suites.h"
#include "tests/command/judge/SurfaceCalls.h"
#include "tests/fault/judge/Report.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <set>

namespace CommandTests {

namespace {

using FaultTests::readFile;
using FaultTests::Report;
using FaultTests::WorkFolder;

constexpr int kRows = 5;
// A disk that is full gives 1, in the suite of full disks.
constexpr int kElsewhere = 1;

class Surface {
public:
  explicit Surface(const Product &product) : m_product(product), m_box(Box::make(product, "surface")) {
    m_box.writeStudy(kRows);
  }

  void callAll(Report &report) {
    for (const SurfaceCall &call : surfaceCalls()) {
      report.add(joined(call.words), problemOf(m_box, call));
    }
    const bool isLogged = readFile(m_box.path("messages.log")).find("Nothing to solve") != std::string::npos;
    report.add("the log file", isLogged ? "" : "it does not hold the messages");
  }

  /// The exit codes that need something to happen.
  void failAll(Report &report) {
    const Box box = Box::make(m_product, "failures");
    box.writeStudy(kRows);
    box.script("0 ok\n1 ok\n2 exit 3\n3 signal 11\n4 ok\n");
    report.add("some fail", problemOf(box, {{"run", "box.study.yaml"}, 4, "5 rows: 3 ok, 2 failed."}));
    report.add(
        "some may fail",
        problemOf(box, {{"run", "box.study.yaml", "--allow-failures", "2"}, 0, "5 rows: 3 ok, 2 failed."}));
    report.add("all that are tried fail",
               problemOf(box, {{"solve", "box.optstudy", "--failed"}, 5, "now solved 0, failed 2"}));
    const Box none = Box::make(m_product, "none");
    none.writeStudy(kRows);
    none.script("* exit 1\n");
    report.add("none is solved",
               problemOf(none, {{"run", "box.study.yaml"}, 5, "Stopped: the baseline failed"}));
    interrupt(report);
  }

  /// What the page names and nothing has called or produced.
  void compare(const CommandPage &page, Report &report) const {
    for (const std::string &command : page.commands) {
      report.add(command, m_called.count(command) != 0 ? "" : "no call has it");
    }
    for (const std::string &option : page.options) {
      report.add(option, m_used.count(option) != 0 ? "" : "no call has it");
    }
    for (const int code : page.exitCodes) {
      report.add("exit code " + std::to_string(code),
                 code == kElsewhere || m_exitCodes.count(code) != 0 ? "" : "no call has ended with it");
    }
  }

  /// Every command tells about itself.
  void help(const CommandPage &page, Report &report) {
    for (const std::string &command : page.commands) {
      for (const char *const option : {"-h", "--help"}) {
        Words words = wordsOf(command);
        words.emplace_back(option);
        report.add(joined(words), problemOf(m_box, {words, 0, "Example:\n  optstudy " + command}));
      }
    }
  }

private:
  static Words wordsOf(const std::string &command) {
    const std::size_t blank = command.find(' ');
    return blank == std::string::npos ? Words{command}
                                      : Words{command.substr(0, blank), command.substr(blank + 1)};
  }

  void note(const Words &words, int exitCode) {
    m_exitCodes.insert(exitCode);
    if (words.empty()) {
      return;
    }
    m_called.insert(words[0]);
    if (words.size() > 1) {
      m_called.insert(words[0] + " " + words[1]);
    }
    for (const std::string &word : words) {
      m_used.insert(word.substr(0, word.find('=')));
    }
  }

  std::string problemOf(const Box &box, const SurfaceCall &expected) {
    const Call call = box.call(expected.words);
    note(expected.words, call.exitCode());
    std::string problem = call.unless(expected.exitCode);
    if (!problem.empty()) {
      return problem;
    }
    return (call.output + call.messages).find(expected.prints) != std::string::npos
               ? ""
               : "it does not print \"" + expected.prints + "\": " + call.output + call.messages;
  }

  // 6 for whoever comes second, 130 and 143 for those that are interrupted.
  void interrupt(Report &report) {
    const Box box = Box::make(m_product, "interrupted");
    box.writeStudy(kRows);
    box.script("0 ok\n* hang\n");
    int begun = 0;
    for (const int signal : {SIGINT, SIGTERM}) {
      const int process = box.start({"run", "box.study.yaml", "-j", "2"}, "run");
      begun = begun == 0 ? 3 : begun + 2;
      report.add("rows that hang", box.waitForBeginnings(begun) ? "" : "they do not begin");
      report.add("held", problemOf(box, {{"run", "box.study.yaml"}, 6, "is open in process"}));
      ::kill(process, signal);
      waitUntilDelivered(process, signal);
      if (signal == SIGINT) {
        ::kill(process, SIGINT);
      }
      const Call ended = box.finish(process, "run");
      note({"run"}, ended.exitCode());
      report.add("interrupted", ended.unless(signal == SIGINT ? 130 : 143));
    }
  }

  const Product &m_product;
  Box m_box;
  std::set<std::string> m_called;
  std::set<std::string> m_used;
  std::set<int> m_exitCodes;
};

} // namespace

Outcome runSurfaceSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  const std::string text = readFile(options.commandPage);
  const CommandPage page = CommandPage::read(text);
  Surface surface(product);
  Report report("surface");
  report.add("the page", page.commands.size() > 20 && page.options.size() > 20 && page.exitCodes.size() > 7
                             ? ""
                             : options.commandPage + " is not understood");
  surface.callAll(report);
  surface.failAll(report);
  surface.help(page, report);
  surface.compare(page, report);
  // Three more of what a page can name.
  Report control("surface control, a page with more");
  std::cout << "What the control finds is meant to be found:\n";
  surface.compare(
      CommandPage::read("| command | what it does |\n|---|---|\n| `juggle PROJECT [--balls N]` | |\n\n"
                        "| code | meaning |\n|---|---|\n| 77 | fell down |\n"),
      control);
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() == 3 ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
