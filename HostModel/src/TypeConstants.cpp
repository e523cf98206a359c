#include "HostModel/TypeConstants.h"

#include "HostModel/src/TypeTable.h"

namespace EntityModel {

namespace {

const TypeName kOptimizationDataList("OptimizationDataList");
const TypeName kOptimizationData("OptimizationData");
const TypeName kBaseVersionName("BaseVersionName");
const TypeName kCopyVersionName("CopyVersionName");
const TypeName kCostFunction("CostFunction");
const TypeName kOptimisationTarget("OptimisationTarget");
const TypeName kMinimise("Minimise");
const TypeName kMaximise("Maximise");
const TypeName kOptimizationInputs("OptimizationInputs");
const TypeName kOptimizationOutputs("OptimizationOutputs");
const TypeName kOptimalityConfigurationLink("OptimalityConfigurationLink");
const TypeName kOptimalityConfiguration("OptimalityConfiguration");
const TypeName kOptimizationGroup("OptimizationGroup");
const TypeName kGroupName("Group_Name");
const TypeName kOptimizationAttributes("OptimizationAttributes");
const TypeName kOptimizationAttribute("OptimizationAttribute");
const TypeName kParentEntity("ParentEntity");
const TypeName kPath("Path");
const TypeName kMinimumValue("MinimumValue");
const TypeName kMaximumValue("MaximumValue");
const TypeName kStepValue("StepValue");
const TypeName kResultPlane("Result_Plane");
const TypeName kResultCloud("Result_Cloud");
const TypeName kStreamlinePlot("Streamline_Plot");
const TypeName kMaxandMin("Max_and_Min");
const TypeName kPushPin("Push_Pin");
const TypeName kOverlayTextBox("Overlay_Text_Box");
const TypeName kChassisSummary("Chassis_Summary");
const TypeName kRoomSummary("Room_Summary");
const TypeName kExternalDomainSummary("External_Domain_Summary");
const TypeName kPCBSummary("PCB_Summary");

} // namespace

const TypeRef OptimizationDataList_t(kOptimizationDataList);
const TypeRef OptimizationData_t(kOptimizationData);
const TypeRef BaseVersionName_t(kBaseVersionName);
const TypeRef CopyVersionName_t(kCopyVersionName);
const TypeRef CostFunction_t(kCostFunction);
const TypeRef OptimisationTarget_t(kOptimisationTarget);
const TypeRef Minimise_t(kMinimise);
const TypeRef Maximise_t(kMaximise);
const TypeRef OptimizationInputs_t(kOptimizationInputs);
const TypeRef OptimizationOutputs_t(kOptimizationOutputs);
const TypeRef OptimalityConfigurationLink_t(kOptimalityConfigurationLink);
const TypeRef OptimalityConfiguration_t(kOptimalityConfiguration);
const TypeRef OptimizationGroup_t(kOptimizationGroup);
const TypeRef Group_Name_t(kGroupName);
const TypeRef OptimizationAttributes_t(kOptimizationAttributes);
const TypeRef OptimizationAttribute_t(kOptimizationAttribute);
const TypeRef ParentEntity_t(kParentEntity);
const TypeRef Path_t(kPath);
const TypeRef MinimumValue_t(kMinimumValue);
const TypeRef MaximumValue_t(kMaximumValue);
const TypeRef StepValue_t(kStepValue);
const TypeRef Result_Plane_t(kResultPlane);
const TypeRef Result_Cloud_t(kResultCloud);
const TypeRef Streamline_Plot_t(kStreamlinePlot);
const TypeRef Max_and_Min_t(kMaxandMin);
const TypeRef Push_Pin_t(kPushPin);
const TypeRef Overlay_Text_Box_t(kOverlayTextBox);
const TypeRef Chassis_Summary_t(kChassisSummary);
const TypeRef Room_Summary_t(kRoomSummary);
const TypeRef External_Domain_Summary_t(kExternalDomainSummary);
const TypeRef PCB_Summary_t(kPCBSummary);

const std::vector<const TypeName *> &builtInTypeNames() {
  static const std::vector<const TypeName *> names = {
      &kOptimizationDataList,
      &kOptimizationData,
      &kBaseVersionName,
      &kCopyVersionName,
      &kCostFunction,
      &kOptimisationTarget,
      &kMinimise,
      &kMaximise,
      &kOptimizationInputs,
      &kOptimizationOutputs,
      &kOptimalityConfigurationLink,
      &kOptimalityConfiguration,
      &kOptimizationGroup,
      &kGroupName,
      &kOptimizationAttributes,
      &kOptimizationAttribute,
      &kParentEntity,
      &kPath,
      &kMinimumValue,
      &kMaximumValue,
      &kStepValue,
      &kResultPlane,
      &kResultCloud,
      &kStreamlinePlot,
      &kMaxandMin,
      &kPushPin,
      &kOverlayTextBox,
      &kChassisSummary,
      &kRoomSummary,
      &kExternalDomainSummary,
      &kPCBSummary,
  };
  return names;
}

} // namespace EntityModel
