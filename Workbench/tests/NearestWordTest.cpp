#include "Workbench/src/NearestWord.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

TEST(NearestWordTest, OneLetterOff_IsFound) {
  const std::vector<std::string> words{"minimum", "maximum", "step"};
  EXPECT_EQ(nearestWord("minimun", words), "minimum");
  EXPECT_EQ(nearestWord("Maximum", words), "maximum");
  EXPECT_EQ(nearestWord("sttep", words), "step");
  EXPECT_EQ(nearestWord("setp", words), "step");
}

TEST(NearestWordTest, NothingNear_GivesNothing) {
  EXPECT_EQ(nearestWord("banana", {"minimum", "step"}), "");
  EXPECT_EQ(nearestWord("", {"step"}), "");
  EXPECT_EQ(nearestWord("step", {}), "");
}

TEST(NearestWordTest, DidYouMean_IsOnlySaidWithACandidate) {
  EXPECT_EQ(didYouMean("setp", {"step"}), ", did you mean \"step\"?");
  EXPECT_EQ(didYouMean("banana", {"step"}), "");
}

} // namespace
} // namespace Workbench
