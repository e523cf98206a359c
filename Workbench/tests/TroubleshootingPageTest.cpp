#include "Workbench/tests/PageText.h"
#include "Workbench/tests/SourceMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

namespace Workbench {
namespace {

namespace fs = std::filesystem;
using Statements = std::vector<SourceStatement>;

// Sources besides the workbench's own whose messages a user of the command meets.
constexpr const char *kOfTheHost[] = {
    "project/FileLock.cpp",        "project/ProjectFile.cpp",  "project/FileChecks.cpp",
    "project/NewProject.cpp",      "solve/TemplateFile.cpp",   "solve/ResultExtractor.cpp",
    "solve/ExtractionTable.cpp",   "solve/ExtractionJson.cpp", "solve/RunFiles.cpp",
    "solve/SolverSupervisors.cpp", "model/UnitText.cpp",       "model/UnitDatabase.cpp",
    "solve/LinePattern.cpp",       "solve/CsvText.cpp",        "solve/SolverNumber.cpp"};

// What is returned or reported and is no mistake of anybody, by its first literal.
constexpr const char *kNoMistakes[] = {
    "the exit code",                  // places where a result was found
    "the time it took",               //
    " (what rows are alternates of)", // a line of the tree of versions
    "at least ",                      // limits, as they are shown
    "minimise",                       // a word of the command line
    ", did you mean \"",              // said on top of the page, for all messages
};

void read(const fs::path &file, Statements &all) {
  const Statements found =
      statementsOf(fs::relative(file, OPTSTUDY_SOURCES).string(), fileText(file.string()));
  all.insert(all.end(), found.begin(), found.end());
}

Statements statementsBelow(const std::string &folder) {
  Statements all;
  for (const auto &entry : fs::recursive_directory_iterator(fs::path(OPTSTUDY_SOURCES) / folder)) {
    const std::string ending = entry.path().extension().string();
    if ((ending == ".cpp" || ending == ".h") && entry.path().string().find("/tests/") == std::string::npos) {
      read(entry.path(), all);
    }
  }
  return all;
}

std::size_t wordsIn(const std::string &text) {
  static const std::regex word("[A-Za-z]{2,}");
  return static_cast<std::size_t>(
      std::distance(std::sregex_iterator(text.begin(), text.end(), word), std::sregex_iterator()));
}

bool contains(const std::string &text, std::initializer_list<const char *> parts) {
  return std::any_of(parts.begin(), parts.end(),
                     [&text](const char *part) { return text.find(part) != std::string::npos; });
}

// Whether the statement tells somebody of a mistake: it reports, returns or stores a text, and is no note or result.
bool isMistake(const SourceStatement &statement) {
  std::size_t words = 0;
  for (const std::string &literal : statement.literals) {
    words += wordsIn(literal);
  }
  const bool isReport =
      contains(statement.code, {"report(", "console.error(", "problem =", "problem +=", "problems.push_back",
                                "return", "fail(", "failed(", "findings.bad(", "message =", "givenUp ="});
  const bool isQuiet =
      contains(statement.code, {"console.note(", "console.out", "<<", "notes.push_back", "changes."});
  const bool isExcepted =
      std::any_of(std::begin(kNoMistakes), std::end(kNoMistakes), [&statement](const char *literal) {
        const auto isWord = [](const std::string &text) {
          return wordsIn(text) > 0;
        };
        const auto first = std::find_if(statement.literals.begin(), statement.literals.end(), isWord);
        return first != statement.literals.end() && *first == literal;
      });
  return words >= 3 && isReport && !isQuiet && !isExcepted;
}

// The texts of a mistake that no message of the page has a part in; all of them when none has.
std::vector<std::string> untold(const SourceStatement &statement, const std::vector<std::string> &messages) {
  constexpr std::size_t kLongText = 4;
  std::set<std::size_t> told;
  for (const std::string &message : messages) {
    const std::set<std::size_t> literals = literalsOf(message, statement);
    told.insert(literals.begin(), literals.end());
  }
  if (told.empty()) {
    return statement.literals;
  }
  // What to do about a finding stands behind the finding itself.
  const bool isFinding = contains(statement.code, {"findings."});
  std::vector<std::string> rest;
  for (std::size_t index = 0; index < statement.literals.size() && !isFinding; ++index) {
    if (told.count(index) == 0 && wordsIn(statement.literals[index]) >= kLongText) {
      rest.push_back(statement.literals[index]);
    }
  }
  return rest;
}

std::string joined(const std::vector<std::string> &texts) {
  std::string all;
  for (const std::string &text : texts) {
    all.append(all.empty() ? "" : " | ").append(text);
  }
  return all;
}

std::vector<std::string> messagesOfThePage() {
  return messagesOf(fileText(OPTSTUDY_TROUBLESHOOTING_PAGE));
}

TEST(TroubleshootingPageTest, EveryMessageOfThePage_IsOneThatTheSourcesMake) {
  Statements all = statementsBelow("Workbench");
  for (const char *folder : {"apps", "EmbeddedHost"}) {
    const Statements more = statementsBelow(folder);
    all.insert(all.end(), more.begin(), more.end());
  }
  ASSERT_GT(all.size(), 1000U);
  const std::vector<std::string> messages = messagesOfThePage();
  ASSERT_GT(messages.size(), 300U);
  for (const std::string &message : messages) {
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const SourceStatement &statement) {
      return !literalsOf(message, statement).empty();
    })) << message;
  }
}

TEST(TroubleshootingPageTest, EveryMistakeThatTheSourcesTellOf_IsOnThePage) {
  Statements all = statementsBelow("Workbench/src");
  for (const char *file : kOfTheHost) {
    read(fs::path(OPTSTUDY_SOURCES) / "EmbeddedHost/src" / file, all);
  }
  const std::vector<std::string> messages = messagesOfThePage();
  std::size_t mistakes = 0;
  for (const SourceStatement &statement : all) {
    if (isMistake(statement)) {
      ++mistakes;
      EXPECT_EQ(joined(untold(statement, messages)), "")
          << statement.file << ":" << statement.line
          << ": docs/troubleshooting.md does not tell of this text";
    }
  }
  EXPECT_GT(mistakes, 200U);
}

// The control of the test above.
TEST(TroubleshootingPageTest, MistakeThatIsNotOnThePage_IsMissed) {
  const Statements found = statementsOf(
      "x.cpp",
      "m_nodes.report(node, \"the moon is \" + phase + \" and too far away from here\");\n"
      "m_nodes.report(node, what + \" must not be empty\");\n"
      "console.note(\"the moon is full today\");\n"
      "return isBelow ? \"the maximum is below the minimum\" : \"the maximum is not there at all\";\n");
  const std::vector<std::string> messages = messagesOfThePage();
  ASSERT_EQ(found.size(), 4U);
  EXPECT_TRUE(isMistake(found[0]));
  EXPECT_EQ(joined(untold(found[0], messages)), "the moon is  |  and too far away from here");
  EXPECT_TRUE(isMistake(found[1]));
  EXPECT_EQ(joined(untold(found[1], messages)), "");
  EXPECT_FALSE(isMistake(found[2]));
  EXPECT_EQ(joined(untold(found[3], messages)), "the maximum is not there at all");
}

TEST(TroubleshootingPageTest, EveryExceptionFromThePage_IsStillInTheSources) {
  const Statements all = statementsBelow("Workbench/src");
  for (const char *exception : kNoMistakes) {
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [exception](const SourceStatement &statement) {
      return std::find(statement.literals.begin(), statement.literals.end(), exception) !=
             statement.literals.end();
    })) << exception;
  }
}

} // namespace
} // namespace Workbench
