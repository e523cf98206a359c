#include "OptimizationTool/OptimizationDataSolvingGuard.h"

#include "OptimizationTool/OptimizationData.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <type_traits>

namespace {

using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationDataSolvingGuard;

static_assert(std::has_virtual_destructor_v<OptimizationDataSolvingGuard>);
static_assert(!std::is_copy_constructible_v<OptimizationDataSolvingGuard>);
static_assert(!std::is_move_constructible_v<OptimizationDataSolvingGuard>);
static_assert(!std::is_copy_assignable_v<OptimizationDataSolvingGuard>);
static_assert(!std::is_move_assignable_v<OptimizationDataSolvingGuard>);

// The guard needs nothing of a host, so there is none.
class OptimizationDataSolvingGuardTest : public ::testing::Test {
protected:
  OptimizationData m_data{nullptr, nullptr};
};

TEST_F(OptimizationDataSolvingGuardTest, WithoutGuard_IsNotSolving) {
  EXPECT_FALSE(m_data.isSolvingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, OneGuard_IsSolvingUntilItEnds) {
  {
    const OptimizationDataSolvingGuard guard(m_data);
    EXPECT_TRUE(m_data.isSolvingVersions());
  }
  EXPECT_FALSE(m_data.isSolvingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, NestedGuards_AreSolvingUntilTheOuterOneEnds) {
  {
    const OptimizationDataSolvingGuard outer(m_data);
    {
      const OptimizationDataSolvingGuard inner(m_data);
      EXPECT_TRUE(m_data.isSolvingVersions());
    }
    EXPECT_TRUE(m_data.isSolvingVersions());
  }
  EXPECT_FALSE(m_data.isSolvingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, OverlappingGuards_AreSolvingUntilTheLastOneEnds) {
  auto first = std::make_unique<OptimizationDataSolvingGuard>(m_data);
  auto second = std::make_unique<OptimizationDataSolvingGuard>(m_data);
  auto third = std::make_unique<OptimizationDataSolvingGuard>(m_data);
  first.reset();
  EXPECT_TRUE(m_data.isSolvingVersions());
  third.reset();
  EXPECT_TRUE(m_data.isSolvingVersions());
  second.reset();
  EXPECT_FALSE(m_data.isSolvingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, AfterTheLastGuard_AnotherOneCounts) {
  { const OptimizationDataSolvingGuard guard(m_data); }
  const OptimizationDataSolvingGuard again(m_data);
  EXPECT_TRUE(m_data.isSolvingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, Exception_EndsTheGuard) {
  try {
    const OptimizationDataSolvingGuard guard(m_data);
    throw std::runtime_error("the solver failed");
  } catch (const std::runtime_error &) {
    EXPECT_FALSE(m_data.isSolvingVersions());
  }
}

TEST_F(OptimizationDataSolvingGuardTest, Guard_LeavesTheEditingFlag) {
  const OptimizationDataSolvingGuard guard(m_data);
  EXPECT_FALSE(m_data.isEditingVersions());
}

TEST_F(OptimizationDataSolvingGuardTest, Guard_CountsForItsOwnStudyDataOnly) {
  const OptimizationData other(nullptr, nullptr);
  const OptimizationDataSolvingGuard guard(m_data);
  EXPECT_FALSE(other.isSolvingVersions());
}

class CountingGuard : public OptimizationDataSolvingGuard {
public:
  CountingGuard(OptimizationData &data, int &ended) : OptimizationDataSolvingGuard(data), m_ended(ended) {}
  CountingGuard(const CountingGuard &) = delete;
  CountingGuard &operator=(const CountingGuard &) = delete;
  ~CountingGuard() override { ++m_ended; }

private:
  int &m_ended;
};

TEST_F(OptimizationDataSolvingGuardTest, DeletedAsAGuard_EndsTheDerivedOneToo) {
  int ended = 0;
  std::unique_ptr<OptimizationDataSolvingGuard> guard = std::make_unique<CountingGuard>(m_data, ended);
  guard.reset();
  EXPECT_EQ(ended, 1);
  EXPECT_FALSE(m_data.isSolvingVersions());
}

} // namespace
