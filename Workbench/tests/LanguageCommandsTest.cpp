#include "Workbench/LanguageCommands.h"

#include "ExpressionBuilder/BuilderBase.h"
#include "Workbench/ExitCode.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace Workbench {
namespace {

// The lines of the table, from "  " on, without the blanks that fill its columns: "a * b|double, int|product".
std::vector<std::string> tableLines() {
  ConsoleText text;
  EXPECT_EQ(functionsCommand(OutputFormat::Table, text.console), ExitCode::kDone);
  EXPECT_EQ(text.takeMessages(), "");
  std::istringstream stream(text.takeOut());
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (line.compare(0, 2, "  ") != 0) {
      continue;
    }
    std::string cells;
    for (std::size_t index = 2; index < line.size(); ++index) {
      const bool isGap = line.compare(index, 2, "  ") == 0;
      cells += isGap ? "|" : std::string(1, line[index]);
      index = isGap ? line.find_first_not_of(' ', index) - 1 : index;
    }
    lines.push_back(cells);
  }
  return lines;
}

TEST(LanguageCommandsTest, Functions_AsCsv_HaveALineEach) {
  ConsoleText text;
  EXPECT_EQ(functionsCommand(OutputFormat::Csv, text.console), ExitCode::kDone);
  const std::string csv = text.takeOut();
  EXPECT_EQ(csv.find("kind,form,types,meaning\noperator,(a),any type,grouping\n"), 0U) << csv;
  EXPECT_NE(csv.find("\nfunction,sqrt(a),double,square root\n"), std::string::npos) << csv;
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 21 + 25);
}

TEST(LanguageCommandsTest, Functions_AsJson_AreTwoLists) {
  ConsoleText text;
  EXPECT_EQ(functionsCommand(OutputFormat::Json, text.console), ExitCode::kDone);
  const auto document = nlohmann::json::parse(text.takeOut());
  EXPECT_EQ(document.at("version"), 1);
  EXPECT_EQ(document.at("operators").size(), 21U);
  EXPECT_EQ(document.at("functions").size(), 25U);
  EXPECT_EQ(document.at("operators").at(0).at("form"), "(a)");
  EXPECT_EQ(document.at("operators").at(0).at("types"), "any type");
  EXPECT_EQ(document.at("operators").at(0).at("meaning"), "grouping");
}

TEST(LanguageCommandsTest, Functions_EveryRegisteredFunction_HasOneLineWithAMeaning) {
  const std::vector<std::string> lines = tableLines();
  const ExpressionBuilder::BuilderBase builder;
  ASSERT_EQ(builder.functionNames().size(), 25U);
  for (const std::string &name : builder.functionNames()) {
    const auto isOf = [&name](const std::string &line) {
      return line.compare(0, name.size() + 1, name + "(") == 0;
    };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isOf), 1) << name;
    const auto line = std::find_if(lines.begin(), lines.end(), isOf);
    ASSERT_NE(line, lines.end()) << name;
    EXPECT_EQ(std::count(line->begin(), line->end(), '|'), 2) << *line;
  }
}

// A line of the table has one list of types for all arguments and the value.
TEST(LanguageCommandsTest, Functions_OverloadsHaveOneTypeAndOneNumberOfArguments) {
  const ExpressionBuilder::BuilderBase builder;
  for (const std::string &name : builder.functionNames()) {
    const ExpressionBuilder::OverloadTable &overloads = *builder.resolveFunction(name);
    for (const auto &[types, constructor] : overloads) {
      EXPECT_EQ(types.size(), overloads.begin()->first.size()) << name;
      EXPECT_EQ(std::set<ExpressionBuilder::ValueType>(types.begin(), types.end()).size(), 1U) << name;
    }
  }
}

TEST(LanguageCommandsTest, Functions_TypesAreThoseThatTheLanguageTakesAndGives) {
  const std::vector<std::string> lines = tableLines();
  for (const char *line :
       {"(int)a|any type -> int|conversion; the fraction is dropped", "-a|double, int, long long|negation",
        "a * b|double, int, long long; bool -> int|product",
        "a / b|double, int, long long|quotient; of two whole numbers without the fraction",
        "a + b|double, int, long long, string; bool -> int|sum; strings are put together",
        "a < b|any type -> bool|a is below b",
        "a && b|double, int, long long, bool -> bool|both are true; both are always computed",
        "a ? b : c|any type|b when a is true, else c; only that one is computed",
        "atan2(a, b)|double|angle in radians of the point (b, a), from -pi to pi",
        "clamp(a, b, c)|double, int, long long|c when a is above c, else b when a is below b, else a"}) {
    EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
  }
}

TEST(LanguageCommandsTest, Functions_EveryLineHasTypes) {
  const std::vector<std::string> lines = tableLines();
  ASSERT_EQ(lines.size(), 21U + 25U);
  for (const std::string &line : lines) {
    const std::string cells = line.find("a || b") == 0 ? line.substr(6) : line;
    EXPECT_EQ(std::count(cells.begin(), cells.end(), '|'), 2) << line;
    EXPECT_EQ(cells.find("||"), std::string::npos) << line;
  }
}

TEST(LanguageCommandsTest, Eval_MoreThanOneText_AsksForQuotes) {
  ConsoleText text;
  EXPECT_EQ(evalCommand({{"1", "+", "2"}, {}}, text.console), ExitCode::kUsage);
  EXPECT_EQ(text.takeMessages(), "More than one text: put it in quotes, '1' or '+'?\n");
  EXPECT_EQ(text.takeOut(), "");
}

} // namespace
} // namespace Workbench
