#include "EmbeddedHost/src/model/StudyStorageTypes.h"

#include "HostModel/TypeConstants.h"

#include <string>

namespace EmbeddedHost {

namespace {

std::string labelOf(const EntityModel::TypeRef &type) {
  return std::string(type.getLabel());
}

MemberType member(const std::string &label, MemberKind kind) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.isInternal = true;
  return type;
}

MemberType text(const EntityModel::TypeRef &type) {
  return member(labelOf(type), MemberKind::Text);
}

MemberType holder(const EntityModel::TypeRef &type, MemberKind kind, const EntityModel::TypeRef &target) {
  MemberType link = member(labelOf(type), kind);
  link.targetType = labelOf(target);
  return link;
}

MemberType optimisationTarget() {
  MemberType target = member(labelOf(EntityModel::OptimisationTarget_t), MemberKind::TypeReference);
  target.options = {labelOf(EntityModel::Minimise_t), labelOf(EntityModel::Maximise_t)};
  return target;
}

MemberType boundSwitch(const std::string &label) {
  MemberType enabled = member(label, MemberKind::Boolean);
  enabled.defaultText = "0";
  return enabled;
}

std::shared_ptr<const EntityType> makeType(const EntityModel::TypeRef &type,
                                           const std::vector<MemberType> &members) {
  return std::make_shared<const EntityType>(labelOf(type), members, true);
}

} // namespace

const std::vector<std::shared_ptr<const EntityType>> &studyStorageTypes() {
  using namespace EntityModel;
  static const std::vector<std::shared_ptr<const EntityType>> types = {
      makeType(OptimizationData_t,
               {text(BaseVersionName_t), text(CopyVersionName_t), text(CostFunction_t), optimisationTarget(),
                holder(OptimizationInputs_t, MemberKind::EntityList, OptimizationGroup_t),
                holder(OptimizationOutputs_t, MemberKind::EntityList, OptimizationGroup_t),
                holder(OptimalityConfigurationLink_t, MemberKind::EntityLink, OptimalityConfiguration_t)}),
      makeType(OptimizationGroup_t,
               {text(Group_Name_t),
                holder(OptimizationAttributes_t, MemberKind::EntityList, OptimizationAttribute_t)}),
      makeType(OptimizationAttribute_t,
               {member(labelOf(ParentEntity_t), MemberKind::EntityLink), text(Path_t), text(MinimumValue_t),
                text(MaximumValue_t), text(StepValue_t), boundSwitch("LowBoundEnabled"),
                member("LowBoundValue", MemberKind::Text), boundSwitch("HighBoundEnabled"),
                member("HighBoundValue", MemberKind::Text)}),
      makeType(OptimalityConfiguration_t, {}),
  };
  return types;
}

MemberType studyListMember() {
  MemberType list =
      holder(EntityModel::OptimizationDataList_t, MemberKind::EntityList, EntityModel::OptimizationData_t);
  list.isProjectLevel = true;
  return list;
}

} // namespace EmbeddedHost
