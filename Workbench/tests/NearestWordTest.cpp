#include "Workbench/NearestWord.h"

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

TEST(NearestWordTest, WordThatIsShortForACandidate_FindsIt) {
  EXPECT_EQ(nearestWord("volume", {"Cup.wall", "Cup.volume"}), "Cup.volume");
  EXPECT_EQ(nearestWord("min", {"maximum", "minimum"}), "minimum");
  EXPECT_EQ(nearestWord("MAX", {"maximum", "minimum"}), "maximum");
  EXPECT_EQ(nearestWord("st", {"stop-after"}), "");
  EXPECT_EQ(nearestWord("olume", {"Cup.pressure-volume"}), "");
  EXPECT_EQ(nearestWord("Cup.volume", {"volume"}), "");
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
