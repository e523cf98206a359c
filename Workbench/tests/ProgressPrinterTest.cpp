#include "Workbench/ProgressPrinter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Workbench {
namespace {

RowState ok() {
  RowState state;
  state.status = RowStatus::Ok;
  return state;
}

RowState failed() {
  RowState state;
  state.status = RowStatus::Failed;
  state.reason = "exit code: 3";
  return state;
}

// A console and a clock that the test moves on.
struct Shown {
  explicit Shown(bool isTerminal, bool isQuiet = false, bool isVerbose = false)
      : console{stream,
                stream,
                isTerminal,
                isQuiet,
                isVerbose,
                [this] {
                  return interruptions;
                }},
        printer(console, [this] { return now; }) {}

  std::string take() {
    std::string text = stream.str();
    stream.str("");
    return text;
  }

  double now = 100.0;
  int interruptions = 0;
  std::ostringstream stream;
  Console console;
  ProgressPrinter printer;
};

const std::string kNewLine = "\r\x1b[K";

TEST(ProgressPrinterTest, File_GetsALineEveryFiveSecondsAndOneAtTheEnd) {
  Shown shown(false);
  shown.printer.begun(4, 1);
  EXPECT_EQ(shown.take(), "Solving 4 rows; 1 is solved already\n");
  shown.now += 4.0;
  shown.printer.finished("Base", ok(), 0.25);
  shown.printer.progressed({1, 21.5, false});
  EXPECT_EQ(shown.take(), "");
  shown.now += 4.0;
  shown.printer.finished("two", ok(), 0.25);
  shown.printer.progressed({1, 21.5, false});
  EXPECT_EQ(shown.take(), "2/4, 1 running, 15/min, 8 s left, best 21.5\n");
  shown.now += 2.0;
  shown.printer.finished("three", ok(), 0.25);
  shown.printer.progressed({1, 21.5, false});
  EXPECT_EQ(shown.take(), "");
  shown.printer.finished("four", ok(), 0.25);
  shown.printer.progressed({0, 20.5, false});
  shown.printer.ended();
  EXPECT_EQ(shown.take(), "4/4, 24/min, best 20.5\n");
}

TEST(ProgressPrinterTest, FailedRow_HasALineOfItsOwnAnywhere) {
  Shown file(false);
  file.printer.begun(2, 0);
  file.take();
  file.printer.finished("a\nb", failed(), 1.0);
  EXPECT_EQ(file.take(), "[1/2] a?b: failed: exit code: 3\n");
  Shown terminal(true);
  terminal.printer.begun(2, 0);
  terminal.take();
  terminal.printer.finished("V", failed(), 1.0);
  EXPECT_EQ(terminal.take(), kNewLine + "[1/2] V: failed: exit code: 3\n" + kNewLine + "[" +
                                 std::string(20, '#') + std::string(20, '.') +
                                 "] 1/2, 1 failed (1 exit code)");
}

TEST(ProgressPrinterTest, Verbose_GivesEveryRowALine) {
  Shown shown(false, false, true);
  shown.printer.begun(2, 0);
  shown.take();
  shown.printer.finished("Base", ok(), 0.25);
  EXPECT_EQ(shown.take(), "[1/2] Base: ok, 0.25 s\n");
}

TEST(ProgressPrinterTest, Terminal_GetsABarThatIsDrawnTenTimesASecondAtMost) {
  Shown shown(true);
  shown.printer.begun(2, 0);
  EXPECT_EQ(shown.take(), "Solving 2 rows\n" + kNewLine + "[" + std::string(40, '.') + "] 0/2");
  shown.now += 0.05;
  shown.printer.progressed({1, {}, false});
  EXPECT_EQ(shown.take(), "");
  shown.now += 0.06;
  shown.printer.progressed({1, {}, false});
  EXPECT_EQ(shown.take(), kNewLine + "[" + std::string(40, '.') + "] 0/2, 1 running");
  shown.now += 0.39;
  shown.printer.finished("Base", ok(), 0.25);
  shown.printer.progressed({1, 21.5, false});
  EXPECT_EQ(shown.take(), kNewLine + "[" + std::string(17, '#') + std::string(17, '.') +
                              "] 1/2, 1 running, 2.0/s, 1 s left, best 21.5");
  shown.printer.finished("two", ok(), 0.25);
  shown.printer.ended();
  EXPECT_EQ(shown.take(), kNewLine + "[" + std::string(40, '#') + "] 2/2, 4.0/s, best 21.5\n");
}

TEST(ProgressPrinterTest, Bar_FitsTheTerminal) {
  Shown shown(true);
  shown.console.width = [] {
    return std::size_t{30};
  };
  shown.printer.begun(2, 0);
  EXPECT_EQ(shown.take(), "Solving 2 rows\n" + kNewLine + "[" + std::string(23, '.') + "] 0/2");
}

TEST(ProgressPrinterTest, Suspension_DoesNotCount) {
  Shown shown(false);
  shown.printer.begun(4, 0);
  shown.now += 1.0;
  shown.printer.finished("Base", ok(), 0.25);
  shown.take();
  shown.now += 3600.0; // of which the longest possible gap counts, five seconds
  shown.printer.progressed({1, {}, false});
  EXPECT_EQ(shown.take(), "1/4, 1 running, 10/min, 18 s left\n");
}

TEST(ProgressPrinterTest, FirstInterruption_IsAcknowledgedOnce) {
  Shown shown(false);
  shown.printer.begun(4, 0);
  shown.take();
  shown.interruptions = 1;
  shown.printer.progressed({2, {}, true});
  shown.printer.progressed({2, {}, true});
  EXPECT_EQ(shown.take(), "Stopping when the rows that run are finished; Ctrl-C again ends them now.\n");
}

TEST(ProgressPrinterTest, Quiet_SaysNothing) {
  Shown shown(true, true);
  shown.printer.begun(1, 0);
  shown.interruptions = 1;
  shown.now += 10.0;
  shown.printer.progressed({1, 1.0, true});
  shown.printer.finished("V", failed(), 1.0);
  shown.printer.ended();
  EXPECT_EQ(shown.take(), "");
}

TEST(ProgressPrinterTest, Interruptions_AreThoseOfTheConsole) {
  std::ostringstream stream;
  const Console never{stream, stream};
  EXPECT_EQ(ProgressPrinter(never).interruptions(), 0);
  const Console twice{stream, stream, false, false, false, [] {
                        return 2;
                      }};
  EXPECT_EQ(ProgressPrinter(twice).interruptions(), 2);
}

} // namespace
} // namespace Workbench
