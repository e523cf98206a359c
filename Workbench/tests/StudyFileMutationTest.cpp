#include "Workbench/StudyFile.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/tests/StudyDocs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {
namespace {

constexpr std::size_t kMutations = 2000;

// Files with their paths.
using Texts = std::vector<std::pair<std::string, std::string>>;

Texts examples() {
  Texts texts;
  for (const std::string &file : exampleStudyFiles()) {
    texts.emplace_back("no-folder/example.study.yaml", fileText(file));
  }
  return texts;
}

// The page's studies, with the JSON form of one.
Texts pages() {
  Texts texts;
  for (const std::string &text : studiesOfThePage()) {
    texts.emplace_back("no-folder/page.study.yaml", text);
  }
  texts.emplace_back("no-folder/page.study.json",
                     R"({"version": 1, "model": {"A": {"x": "1 mm", "r": {"result": true}}},
 "solver": {"command": ["a", "{{A.x in m}}"], "results": {"A.r": {"pattern": "r=(.*)\u0021", "group": 1}}},
 "study": {"inputs": ["A.x"], "outputs": ["A.r"], "cost": "%A.r% * 2.0",
 "variants": {"grid": {"A.x": [1, 2.5, 3e0]}}}})");
  return texts;
}

// A refusal has a reason, and its line is one of the file's.
void expectReadOrRefused(const std::string &path, const std::string &text) {
  static const HostUnits units;
  std::vector<FileProblem> problems;
  const auto begin = std::chrono::steady_clock::now();
  const std::optional<StudyFile> study = StudyFile::parse(path, text, units, problems);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  ASSERT_LT(time.count(), 20.0) << text;
  ASSERT_EQ(study.has_value(), problems.empty());
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  for (const FileProblem &problem : problems) {
    ASSERT_FALSE(problem.message.empty());
    ASSERT_EQ(problem.file, path);
    ASSERT_GE(problem.line, 1U) << problem.toText() << "\n" << text;
    ASSERT_LE(problem.line, lines) << problem.toText() << "\n" << text;
    ASSERT_GE(problem.column, 1U) << problem.toText() << "\n" << text;
  }
}

void tryEveryPrefix(const Texts &texts) {
  std::size_t trials = 0;
  for (const auto &[path, text] : texts) {
    for (std::size_t length = 0; length <= text.size(); ++length) {
      expectReadOrRefused(path, text.substr(0, length));
      ++trials;
      if (::testing::Test::HasFatalFailure()) {
        FAIL() << "length " << length;
      }
    }
  }
  EXPECT_GT(trials, 5000U);
  std::printf("%zu prefixes, 0 violations\n", trials);
}

TEST(StudyFileMutationTest, EveryPrefixOfThePagesStudies_IsReadOrRefused) {
  tryEveryPrefix(pages());
}

TEST(StudyFileMutationTest, EveryPrefixOfTheExamples_IsReadOrRefused) {
  tryEveryPrefix(examples());
}

TEST(StudyFileMutationTest, RandomMutations_AreReadOrRefused) {
  Texts texts = pages();
  for (auto &example : examples()) {
    texts.push_back(std::move(example));
  }
  const std::vector<std::string> pieces{
      "%",   "{{",          "}}",  "\"",      "'",       ":",    "- ",   "[",       "]", "{",
      "}",   ",",           "\n",  "  ",      "\t",      "#",    "&a ",  "*a",      "|", ">",
      "!!x", "<<:",         "0",   "1e99",    "-",       "\\",   "null", "\xff",    "?", "--- ",
      "~",   "%Filter.R1%", "nan", "10 kohm", "\\u0000", "1e-9", "true", "result: "};
  std::mt19937 random(20);
  std::size_t refused = 0;
  for (std::size_t trial = 0; trial < kMutations; ++trial) {
    const auto &[path, original] = texts[random() % texts.size()];
    std::string text = original;
    for (std::size_t change = 1 + random() % 3; change-- > 0;) {
      const std::size_t at = random() % (text.size() + 1);
      switch (random() % 4) {
      case 0:
        text.insert(at, pieces[random() % pieces.size()]);
        break;
      case 1:
        text.erase(at, 1 + random() % 20);
        break;
      case 2:
        text.insert(at, text.substr(random() % text.size(), random() % 60));
        break;
      default:
        text.replace(std::min(at, text.size() - 1), 1, 1, static_cast<char>(random() % 256));
      }
    }
    expectReadOrRefused(path, text);
    if (HasFatalFailure()) {
      FAIL() << "trial " << trial;
    }
    std::vector<FileProblem> problems;
    const HostUnits units;
    refused += StudyFile::parse(path, text, units, problems) ? 0 : 1;
  }
  std::printf("%zu mutations, %zu refused, 0 violations\n", kMutations, refused);
  EXPECT_GT(refused, kMutations / 4);
}

} // namespace
} // namespace Workbench
