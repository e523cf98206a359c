#include "EmbeddedHost/ResultExtractor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

ResultExtractor extractor(const std::string &pattern, std::size_t group = 1) {
  std::string problem;
  std::optional<ResultExtractor> made = ResultExtractor::create(pattern, group, problem);
  EXPECT_TRUE(made.has_value()) << problem;
  return std::move(*made);
}

TEST(ResultExtractorTest, Extract_OneMatch_GivesNumberAndLine) {
  const ExtractedResult result =
      extractor("^fcut\\s*=\\s*(\\S+)").extract("start\nfcut    =   1.12285e+03\r\nend\n", "log");
  EXPECT_EQ(result.failure, ExtractionFailure::None);
  EXPECT_EQ(result.value.value_or(0.0), 1122.85);
  EXPECT_EQ(result.line, 2U);
  EXPECT_EQ(result.reason, "");
}

TEST(ResultExtractorTest, Extract_GroupZero_IsTheWholeMatch) {
  EXPECT_EQ(extractor("-?[0-9]+", 0).extract("mass -42 kg", "log").value.value_or(0.0), -42.0);
}

TEST(ResultExtractorTest, Extract_EndOfLineWithCarriageReturn_IsTheLineEnd) {
  EXPECT_EQ(extractor("m=([0-9]+)$").extract("m=5\r\n", "log").value.value_or(0.0), 5.0);
}

TEST(ResultExtractorTest, Extract_SameNumberTwice_IsAccepted) {
  const ExtractedResult result = extractor("m=(\\S+)").extract("m=5 m=5.0\nm=5e0\n", "log");
  EXPECT_EQ(result.value.value_or(0.0), 5.0);
  EXPECT_EQ(result.line, 1U);
}

TEST(ResultExtractorTest, Extract_EveryFailure_HasItsOwnReason) {
  const struct {
    const char *text;
    ExtractionFailure failure;
    std::size_t line;
    const char *reason;
  } rows[] = {{"", ExtractionFailure::FileEmpty, 0, "log is empty"},
              {"nothing\n", ExtractionFailure::NoMatch, 0, "log: no line matches \"m=(\\S*)\""},
              {"x\nm= \n", ExtractionFailure::EmptyValue, 2, "log:2: nothing stands where the number should"},
              {"m=failed\n", ExtractionFailure::NotANumber, 1, "log:1: \"failed\" is not a number"},
              {"m=nan\n", ExtractionFailure::NotANumber, 1, "log:1: \"nan\" is not a number"},
              {"m=1,5\n", ExtractionFailure::NotANumber, 1, "log:1: \"1,5\" is not a number"},
              {"m=1\n\nm=2\n", ExtractionFailure::Ambiguous, 3,
               "log:3: a second, different number \"2\" after the one in line 1"},
              {"m=1\nm=x\n", ExtractionFailure::NotANumber, 2, "log:2: \"x\" is not a number"}};
  const ResultExtractor mass = extractor("m=(\\S*)");
  for (const auto &row : rows) {
    const ExtractedResult result = mass.extract(row.text, "log");
    EXPECT_FALSE(result.value.has_value()) << row.text;
    EXPECT_EQ(result.failure, row.failure) << row.text;
    EXPECT_EQ(result.line, row.line) << row.text;
    EXPECT_EQ(result.reason, row.reason) << row.text;
  }
}

TEST(ResultExtractorTest, Extract_GroupThatTookNoPart_IsAnEmptyValue) {
  EXPECT_EQ(extractor("m(=([0-9]+))?", 2).extract("m\n", "log").failure, ExtractionFailure::EmptyValue);
}

TEST(ResultExtractorTest, Extract_VeryLongLine_DoesNotOverrunTheStack) {
  const std::string text = "m=" + std::string(200000, ' ') + "7x\n";
  EXPECT_EQ(extractor("m=(.*)x").extract(text, "log").value.value_or(0.0), 7.0);
}

TEST(ResultExtractorTest, Extract_PatternThatBacktracks_EndsInTime) {
  EXPECT_EQ(extractor("(a*)*b").extract(std::string(300, 'a') + "\n", "log").failure,
            ExtractionFailure::NoMatch);
}

TEST(ResultExtractorTest, Create_BadPattern_SaysWhy) {
  std::string problem;
  EXPECT_FALSE(ResultExtractor::create("m=(", 1, problem).has_value());
  EXPECT_EQ(problem.rfind("\"m=(\" is no regular expression: ", 0), 0U) << problem;
  EXPECT_FALSE(ResultExtractor::create("(a)\\1", 1, problem).has_value());
  EXPECT_FALSE(ResultExtractor::create("m=(.*)", 2, problem).has_value());
  EXPECT_EQ(problem, "\"m=(.*)\" has no group 2");
}

TEST(ResultExtractorTest, ExtractFromFile_FoundMissingAndUnreadable_AreToldApart) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("extractor." + std::to_string(::getpid()));
  std::filesystem::create_directory(folder);
  std::ofstream(folder / "result.txt") << "m=3\n";
  const ResultExtractor mass = extractor("m=(\\S*)");
  const ExtractedResult found = mass.extractFromFile((folder / "result.txt").string(), "result.txt");
  const ExtractedResult missing = mass.extractFromFile((folder / "other.txt").string(), "other.txt");
  const ExtractedResult unreadable = mass.extractFromFile(folder.string(), "folder");
  std::filesystem::remove_all(folder);
  EXPECT_EQ(found.value.value_or(0.0), 3.0);
  EXPECT_EQ(missing.failure, ExtractionFailure::FileMissing);
  EXPECT_EQ(missing.reason, "other.txt was not written");
  EXPECT_EQ(unreadable.failure, ExtractionFailure::FileMissing);
  EXPECT_EQ(unreadable.reason, "folder cannot be read: " + folder.string() + ": not a regular file");
}

} // namespace
} // namespace EmbeddedHost
