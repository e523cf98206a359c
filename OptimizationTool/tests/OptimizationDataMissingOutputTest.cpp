// A list of output groups with a place that holds none, as a damaged model may have it.

#include "HostModel/Attribute.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <memory>
#include <vector>

namespace {

using EntityModel::AttributePath;
using OptimizationTool::OptimizationData;
using StudyTesting::ScriptedAttribute;

class OptimizationDataMissingOutputTest : public StudyTesting::StudyDataFixture {};

TEST_F(OptimizationDataMissingOutputTest, Loading_MissingGroupGetsNoCell_AndThoseBehindItMoveUp) {
  const auto variable = StudyTesting::makeScriptedVariable(fan("FanA"), "Blades");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::BaseVersionName_t), std::make_unique<ScriptedAttribute>("Base"));
  entity.add(
      AttributePath(EntityModel::OptimizationOutputs_t),
      std::make_unique<StudyTesting::ScriptedList>(std::vector<EntityModel::Entity *>{nullptr, group.get()}));
  OptimizationData study(&entity, nullptr);

  study.initializeVariants(nullptr);

  ASSERT_NE(study.getVariantGroup(false, 0, 0), nullptr);
  EXPECT_EQ(study.getVariantGroup(false, 0, 0)->getValueAsString(), "5");
  EXPECT_EQ(study.getVariantGroup(false, 0, 1), nullptr);
}

} // namespace
