// What observers are told when a new row's version becomes current.

#include "HostModel/ModelVersion.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using StudyTesting::RecordedStudy;
using StudyTesting::VersionListener;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

TEST(OptimizationDataVariantAddingNoticeTest, VersionRenamedWhileItIsLeft_IsNamedAsItWasBefore) {
  // A host that says nothing of its own.
  RecordedStudy study(EmbeddedHost::HostBehaviour{false, false});
  study.begin();
  std::vector<std::string> names;
  const VersionListener listener([&names](const std::string &name) { names.push_back(name); });
  study.hooked().runBefore("ChangeManager::setCurrentVersion",
                           [&study] { study.version("Base")->setLabel("Renamed"); });

  study.data().addVariant({"13", "23"}, "C", kAtEnd);

  ASSERT_FALSE(names.empty());
  EXPECT_EQ(names.front(), "Base");
}

} // namespace
} // namespace OptimizationTool
