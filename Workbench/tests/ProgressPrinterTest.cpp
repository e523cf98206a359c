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

TEST(ProgressPrinterTest, File_GetsOneLineForEachRow) {
  std::ostringstream stream;
  const Console console{stream, stream};
  ProgressPrinter printer(console);
  printer.begun(2, 1);
  printer.finished("Base", ok(), 0.25);
  printer.finished("V", failed(), 1.0);
  printer.ended();
  EXPECT_EQ(stream.str(), "Solving 2 rows; 1 is solved already\n"
                          "[1/2] Base: ok, 0.25 s\n"
                          "[2/2] V: failed: exit code: 3\n");
}

TEST(ProgressPrinterTest, Terminal_GetsABarAndALineForEachFailure) {
  std::ostringstream stream;
  const Console console{stream, stream, true};
  ProgressPrinter printer(console);
  printer.begun(2, 0);
  printer.finished("Base", ok(), 0.25);
  printer.finished("V", failed(), 1.0);
  printer.ended();
  const std::string empty(40, '.');
  const std::string half = std::string(20, '#') + std::string(20, '.');
  const std::string full(40, '#');
  EXPECT_EQ(stream.str(), "Solving 2 rows\n"
                          "\r\x1b[K[" +
                              empty +
                              "] 0/2"
                              "\r\x1b[K[" +
                              half +
                              "] 1/2"
                              "\r\x1b[K[2/2] V: failed: exit code: 3\n"
                              "\r\x1b[K[" +
                              full + "] 2/2, 1 failed\n");
}

TEST(ProgressPrinterTest, Quiet_SaysNothing) {
  std::ostringstream stream;
  const Console console{stream, stream, true, true};
  ProgressPrinter printer(console);
  printer.begun(1, 0);
  printer.finished("V", failed(), 1.0);
  printer.ended();
  EXPECT_EQ(stream.str(), "");
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
