#include "OptimizationTool/OptimizationVariantGroup.h"

#include "OptimizationTool/tests/ScriptedModel.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace OptimizationTool {
namespace {

using StudyTesting::ScriptedAttribute;
using Log = ScriptedAttribute::Log;

static_assert(std::is_polymorphic_v<OptimizationVariantGroup>);
static_assert(std::has_virtual_destructor_v<OptimizationVariantGroup>);
static_assert(!std::is_copy_constructible_v<OptimizationVariantGroup>);
static_assert(!std::is_copy_assignable_v<OptimizationVariantGroup>);
static_assert(std::is_nothrow_move_constructible_v<OptimizationVariantGroup>);
static_assert(std::is_nothrow_move_assignable_v<OptimizationVariantGroup>);

TEST(OptimizationVariantGroupTest, Construct_Attribute_HoldsACloneOfItsOwn) {
  ScriptedAttribute attribute("12");
  const OptimizationVariantGroup cell(&attribute);
  ASSERT_NE(cell.get(), nullptr);
  EXPECT_NE(cell.get(), &attribute);
  attribute.text = "13";
  EXPECT_EQ(cell.get()->getValueAsString(), "12");
}

TEST(OptimizationVariantGroupTest, Construct_Null_IsEmpty) {
  const OptimizationVariantGroup cell(nullptr);
  EXPECT_EQ(cell.get(), nullptr);
}

TEST(OptimizationVariantGroupTest, Destruct_DestroysItsCopy) {
  Log log;
  ScriptedAttribute attribute("12", &log);
  { const OptimizationVariantGroup cell(&attribute); }
  EXPECT_EQ(log, (Log{"clone 12", "destroy 12"}));
}

TEST(OptimizationVariantGroupTest, Replace_Attribute_ClonesBeforeItDestroysTheOldCopy) {
  Log log;
  const ScriptedAttribute before("before", &log);
  const ScriptedAttribute after("after", &log);
  OptimizationVariantGroup cell(&before);
  log.clear();
  cell.replace(&after);
  EXPECT_EQ(log, (Log{"clone after", "destroy before"}));
  EXPECT_EQ(cell.get()->getValueAsString(), "after");
}

TEST(OptimizationVariantGroupTest, Replace_Null_DestroysTheCopyAndIsEmpty) {
  Log log;
  const ScriptedAttribute attribute("12", &log);
  OptimizationVariantGroup cell(&attribute);
  log.clear();
  cell.replace(nullptr);
  EXPECT_EQ(log, (Log{"destroy 12"}));
  EXPECT_EQ(cell.get(), nullptr);
}

TEST(OptimizationVariantGroupTest, Replace_ItsOwnCopy_HoldsAnEqualOne) {
  const ScriptedAttribute attribute("12");
  OptimizationVariantGroup cell(&attribute);
  cell.replace(cell.get());
  EXPECT_EQ(cell.get()->getValueAsString(), "12");
}

TEST(OptimizationVariantGroupTest, Replace_EmptyCell_TakesAClone) {
  const ScriptedAttribute attribute("12");
  OptimizationVariantGroup cell(nullptr);
  cell.replace(&attribute);
  EXPECT_EQ(cell.get()->getValueAsString(), "12");
}

TEST(OptimizationVariantGroupTest, MoveConstruct_StealsTheCopyAndLeavesTheSourceEmpty) {
  const ScriptedAttribute attribute("12");
  OptimizationVariantGroup source(&attribute);
  const EntityModel::Attribute *copy = source.get();
  const OptimizationVariantGroup target(std::move(source));
  EXPECT_EQ(target.get(), copy);
  // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what a move leaves is the subject here
  EXPECT_EQ(source.get(), nullptr);
}

TEST(OptimizationVariantGroupTest, MoveAssign_DestroysTheOldCopyStealsTheNewAndLeavesTheSourceEmpty) {
  Log log;
  const ScriptedAttribute first("first", &log);
  const ScriptedAttribute second("second", &log);
  OptimizationVariantGroup target(&first);
  OptimizationVariantGroup source(&second);
  const EntityModel::Attribute *copy = source.get();
  log.clear();
  target = std::move(source);
  EXPECT_EQ(log, (Log{"destroy first"}));
  EXPECT_EQ(target.get(), copy);
  // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what a move leaves is the subject here
  EXPECT_EQ(source.get(), nullptr);
}

// Writes down, when it is destroyed, whether a cell still holds something.
class Witness : public ScriptedAttribute {
public:
  Witness(const OptimizationVariantGroup **cell, std::vector<bool> *seen) : m_cell(cell), m_seen(seen) {}
  Witness(const Witness &) = delete;
  Witness &operator=(const Witness &) = delete;
  ~Witness() override {
    if (*m_cell != nullptr) {
      m_seen->push_back((*m_cell)->get() != nullptr);
    }
  }
  std::unique_ptr<EntityModel::Attribute> clone() const override {
    return std::make_unique<Witness>(m_cell, m_seen);
  }

private:
  const OptimizationVariantGroup **m_cell;
  std::vector<bool> *m_seen;
};

TEST(OptimizationVariantGroupTest, MoveAssign_DestroysTheOldCopyBeforeItTakesTheNew) {
  std::vector<bool> seen;
  const OptimizationVariantGroup *watched = nullptr;
  const Witness before(&watched, &seen);
  const ScriptedAttribute after("after");
  OptimizationVariantGroup target(&before);
  OptimizationVariantGroup source(&after);
  watched = &source;
  target = std::move(source);
  watched = nullptr;
  EXPECT_EQ(seen, std::vector<bool>{true});
}

TEST(OptimizationVariantGroupTest, MoveAssign_ToItself_KeepsTheCopy) {
  const ScriptedAttribute attribute("12");
  OptimizationVariantGroup cell(&attribute);
  OptimizationVariantGroup &alias = cell;
  cell = std::move(alias);
  ASSERT_NE(cell.get(), nullptr);
  EXPECT_EQ(cell.get()->getValueAsString(), "12");
}

} // namespace
} // namespace OptimizationTool
