#include "Workbench/MatrixTable.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Workbench {
namespace {

MatrixTable table() {
  MatrixTable table;
  table.title = "T";
  table.hasCost = true;
  table.inputs = {{"R", "C.R", "kohm"}, {"kind", "C.kind", ""}};
  table.outputs = {{"f", "C.f", "Hz"}};
  table.rows = {{0, "Base", {RowStatus::Ok, ""}, {"10", "a"}, {100.0}, 2.0},
                {1, "V\xC3\xA4r", {RowStatus::Ok, ""}, {"4.7", "b"}, {150.0}, 1.0},
                {2, "bad", {RowStatus::Failed, "exit code: 3"}, {"22", "c"}, {std::nullopt}, std::nullopt}};
  table.baseline = table.rows.front();
  table.bestNumber = 1;
  return table;
}

TEST(MatrixTextTest, Table_HasTitlesUnitsDifferencesAndTheBestMarked) {
  EXPECT_EQ(table().toText(), "T\n"
                              "\n"
                              "row  name     R  kind    f   diff  cost   diff  status\n"
                              "           kohm         Hz      %            %\n"
                              "---  ----  ----  ----  ---  -----  ----  -----  --------------------\n"
                              "  0  Base    10     a  100   +0.0     2   +0.0  ok\n"
                              "* 1  V\xC3\xA4r    4.7     b  150  +50.0     1  -50.0  ok\n"
                              "  2  bad     22     c                           failed: exit code: 3\n");
}

TEST(MatrixTextTest, Table_WithoutCostOrTitle_LeavesThemOut) {
  MatrixTable plain = table();
  plain.title.clear();
  plain.hasCost = false;
  plain.bestNumber.reset();
  plain.rows.resize(1);
  EXPECT_EQ(plain.toText(), "row  name     R  kind    f  diff  status\n"
                            "           kohm         Hz     %\n"
                            "---  ----  ----  ----  ---  ----  ------\n"
                            "  0  Base    10     a  100  +0.0  ok\n");
}

TEST(MatrixTextTest, Difference_ToZeroOrNothing_IsLeftOut) {
  MatrixTable zero = table();
  zero.baseline.outputs[0] = 0.0;
  zero.rows[0].outputs[0] = 0.0;
  EXPECT_NE(zero.toText().find("* 1  V\xC3\xA4r    4.7     b  150           1  -50.0  ok\n"),
            std::string::npos)
      << zero.toText();
}

TEST(MatrixTextTest, Difference_ToANegativeBaseline_KeepsItsDirection) {
  MatrixTable negative = table();
  negative.baseline.cost = -2.0;
  negative.rows[0].cost = -2.0;
  negative.rows[1].cost = -1.0;
  EXPECT_NE(negative.toText().find("-1  +50.0  ok\n"), std::string::npos) << negative.toText();
}

TEST(MatrixTextTest, Differences_Absolute_HaveTheUnitOfTheirColumn) {
  EXPECT_EQ(table().toText(Differences::Absolute),
            "T\n"
            "\n"
            "row  name     R  kind    f  diff  cost  diff  status\n"
            "           kohm         Hz    Hz\n"
            "---  ----  ----  ----  ---  ----  ----  ----  --------------------\n"
            "  0  Base    10     a  100    +0     2    +0  ok\n"
            "* 1  V\xC3\xA4r    4.7     b  150   +50     1    -1  ok\n"
            "  2  bad     22     c                         failed: exit code: 3\n");
}

TEST(MatrixTextTest, Differences_None_HaveNoColumns) {
  MatrixTable plain = table();
  plain.rows.resize(1);
  EXPECT_EQ(plain.toText(Differences::None), "T\n"
                                             "\n"
                                             "row  name     R  kind    f  cost  status\n"
                                             "           kohm         Hz\n"
                                             "---  ----  ----  ----  ---  ----  ------\n"
                                             "  0  Base    10     a  100     2  ok\n");
}

TEST(MatrixTextTest, Row_ThatIsNotInTheStudyFile_IsMarked) {
  MatrixTable gone = table();
  gone.rows[1].state.isInStudyFile = false;
  EXPECT_NE(gone.toText().find("-50.0  ok (not in the study file)\n"), std::string::npos);
}

TEST(MatrixTextTest, Cost_ThatIsNoNumber_IsShownAsIs) {
  MatrixTable odd = table();
  odd.rows[1].cost = std::nan("");
  EXPECT_NE(odd.toText().find("nan        ok\n"), std::string::npos) << odd.toText();
}

TEST(MatrixTextTest, Text_WithLineFeeds_StaysInItsLine) {
  MatrixTable odd = table();
  odd.rows[1].name = "a\nb";
  odd.rows[1].inputs[1] = "\x1b[2J";
  EXPECT_NE(odd.toText().find("* 1  a?b"), std::string::npos);
  EXPECT_NE(odd.toText().find("?[2J"), std::string::npos);
}

} // namespace
} // namespace Workbench
