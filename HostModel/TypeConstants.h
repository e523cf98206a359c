#pragma once

#include "HostModel/Export.h"
#include "HostModel/TypeRef.h"

namespace EntityModel {

/// \name Study storage: the study list of the root entity and the members of a study entity
/// @{
extern HOSTMODEL_EXPORT const TypeRef OptimizationDataList_t;
extern HOSTMODEL_EXPORT const TypeRef OptimizationData_t;
extern HOSTMODEL_EXPORT const TypeRef BaseVersionName_t;
extern HOSTMODEL_EXPORT const TypeRef CopyVersionName_t;
extern HOSTMODEL_EXPORT const TypeRef CostFunction_t;
extern HOSTMODEL_EXPORT const TypeRef OptimisationTarget_t;
extern HOSTMODEL_EXPORT const TypeRef Minimise_t;
extern HOSTMODEL_EXPORT const TypeRef Maximise_t;
extern HOSTMODEL_EXPORT const TypeRef OptimizationInputs_t;
extern HOSTMODEL_EXPORT const TypeRef OptimizationOutputs_t;
extern HOSTMODEL_EXPORT const TypeRef OptimalityConfigurationLink_t;
extern HOSTMODEL_EXPORT const TypeRef OptimalityConfiguration_t;
/// @}

/// \name Groups and variables
/// @{
extern HOSTMODEL_EXPORT const TypeRef OptimizationGroup_t;
extern HOSTMODEL_EXPORT const TypeRef Group_Name_t;
extern HOSTMODEL_EXPORT const TypeRef OptimizationAttributes_t;
extern HOSTMODEL_EXPORT const TypeRef OptimizationAttribute_t;
extern HOSTMODEL_EXPORT const TypeRef ParentEntity_t;
extern HOSTMODEL_EXPORT const TypeRef Path_t;
extern HOSTMODEL_EXPORT const TypeRef MinimumValue_t;
extern HOSTMODEL_EXPORT const TypeRef MaximumValue_t;
extern HOSTMODEL_EXPORT const TypeRef StepValue_t;
/// @}

/// \name Displays and summaries of results, whose attributes never take part in a study
/// @{
extern HOSTMODEL_EXPORT const TypeRef Result_Plane_t;
extern HOSTMODEL_EXPORT const TypeRef Result_Cloud_t;
extern HOSTMODEL_EXPORT const TypeRef Streamline_Plot_t;
extern HOSTMODEL_EXPORT const TypeRef Max_and_Min_t;
extern HOSTMODEL_EXPORT const TypeRef Push_Pin_t;
extern HOSTMODEL_EXPORT const TypeRef Overlay_Text_Box_t;
extern HOSTMODEL_EXPORT const TypeRef Chassis_Summary_t;
extern HOSTMODEL_EXPORT const TypeRef Room_Summary_t;
extern HOSTMODEL_EXPORT const TypeRef External_Domain_Summary_t;
extern HOSTMODEL_EXPORT const TypeRef PCB_Summary_t;
/// @}

} // namespace EntityModel
