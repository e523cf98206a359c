#include "HostModel/TypeRef.h"

#include "HostModel/AttributePath.h"
#include "HostModel/Type.h"
#include "HostModel/TypeConstants.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace EntityModel {
namespace {

// Made before main, from constants that another file of the library defines.
const std::string s_labelAtStaticInitialisation(CostFunction_t.getLabel());
const TypeRef s_copyAtStaticInitialisation = OptimizationData_t;
const bool s_isInternedAtStaticInitialisation = TypeRef::fromLabel("CostFunction") == CostFunction_t;
const AttributePath s_pathAtStaticInitialisation(BaseVersionName_t);

TEST(TypeRefTest, Constants_UsedDuringStaticInitialisation_HaveTheirValues) {
  EXPECT_EQ(s_labelAtStaticInitialisation, "CostFunction");
  EXPECT_EQ(s_copyAtStaticInitialisation.getLabel(), "OptimizationData");
  EXPECT_TRUE(s_isInternedAtStaticInitialisation);
  EXPECT_EQ(s_pathAtStaticInitialisation, AttributePath("BaseVersionName"));
}

TEST(TypeRefTest, Constants_EachHasItsOwnLabel) {
  const std::vector<std::pair<TypeRef, std::string>> expected = {
      {OptimizationDataList_t, "OptimizationDataList"},
      {OptimizationData_t, "OptimizationData"},
      {BaseVersionName_t, "BaseVersionName"},
      {CopyVersionName_t, "CopyVersionName"},
      {CostFunction_t, "CostFunction"},
      {OptimisationTarget_t, "OptimisationTarget"},
      {Minimise_t, "Minimise"},
      {Maximise_t, "Maximise"},
      {OptimizationInputs_t, "OptimizationInputs"},
      {OptimizationOutputs_t, "OptimizationOutputs"},
      {OptimalityConfigurationLink_t, "OptimalityConfigurationLink"},
      {OptimalityConfiguration_t, "OptimalityConfiguration"},
      {OptimizationGroup_t, "OptimizationGroup"},
      {Group_Name_t, "Group_Name"},
      {OptimizationAttributes_t, "OptimizationAttributes"},
      {OptimizationAttribute_t, "OptimizationAttribute"},
      {ParentEntity_t, "ParentEntity"},
      {Path_t, "Path"},
      {MinimumValue_t, "MinimumValue"},
      {MaximumValue_t, "MaximumValue"},
      {StepValue_t, "StepValue"},
      {Result_Plane_t, "Result_Plane"},
      {Result_Cloud_t, "Result_Cloud"},
      {Streamline_Plot_t, "Streamline_Plot"},
      {Max_and_Min_t, "Max_and_Min"},
      {Push_Pin_t, "Push_Pin"},
      {Overlay_Text_Box_t, "Overlay_Text_Box"},
      {Chassis_Summary_t, "Chassis_Summary"},
      {Room_Summary_t, "Room_Summary"},
      {External_Domain_Summary_t, "External_Domain_Summary"},
      {PCB_Summary_t, "PCB_Summary"},
  };
  for (const auto &[type, label] : expected) {
    EXPECT_EQ(type.getLabel(), label);
    EXPECT_EQ(TypeRef::fromLabel(label), type) << label;
  }
}

TEST(TypeRefTest, FromLabel_SameLabelTwice_IsTheSameReference) {
  const std::string first = "Heat_Sink";
  const std::string second = "Heat_Sink";
  EXPECT_EQ(TypeRef::fromLabel(first), TypeRef::fromLabel(second));
}

TEST(TypeRefTest, FromLabel_OtherLabel_IsAnotherReference) {
  EXPECT_NE(TypeRef::fromLabel("Fan"), TypeRef::fromLabel("fan"));
  EXPECT_FALSE(TypeRef::fromLabel("Fan") == TypeRef::fromLabel("fan"));
}

TEST(TypeRefTest, FromLabel_TextGoesAway_KeepsItsLabel) {
  TypeRef type;
  {
    const std::string text = "A label that is too long for a small string buffer";
    type = TypeRef::fromLabel(text);
  }
  EXPECT_EQ(type.getLabel(), "A label that is too long for a small string buffer");
}

TEST(TypeRefTest, FromLabel_Empty_IsTheEmptyReference) {
  EXPECT_TRUE(TypeRef::fromLabel("").isEmpty());
  EXPECT_EQ(TypeRef::fromLabel(""), TypeRef());
}

TEST(TypeRefTest, Default_IsEmptyWithoutLabel) {
  const TypeRef type;
  EXPECT_TRUE(type.isEmpty());
  EXPECT_EQ(type.getLabel(), "");
  EXPECT_FALSE(CostFunction_t.isEmpty());
}

TEST(TypeRefTest, Hash_EqualReferences_AreOneKey) {
  const std::unordered_set<TypeRef> types = {TypeRef::fromLabel("Fan"), TypeRef::fromLabel("Fan"),
                                             TypeRef::fromLabel("Box")};
  EXPECT_EQ(types.size(), 2U);
}

TEST(TypeRefTest, Size_IsOnePointer) {
  EXPECT_EQ(sizeof(TypeRef), sizeof(void *));
}

TEST(TypeRefTest, FromType_IsTheReferenceThatNamesIt) {
  const Type type(Push_Pin_t, 3);
  const TypeRef reference = type;
  EXPECT_EQ(reference, Push_Pin_t);
}

TEST(TypeTest, Default_HasNoNameAndNoKind) {
  const Type type;
  EXPECT_TRUE(type.getReference().isEmpty());
  EXPECT_EQ(type.getKindCode(), 0);
  EXPECT_EQ(Type::kNoKind, 0);
}

TEST(TypeTest, Copy_KeepsNameAndKind) {
  const Type type(Room_Summary_t, 12);
  const Type copy(type); // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
  EXPECT_EQ(copy.getReference(), Room_Summary_t);
  EXPECT_EQ(copy.getKindCode(), 12);
}

TEST(TypeTest, EqualsReference_OnlyTheOneThatNamesIt) {
  const Type type(Push_Pin_t, 3);
  EXPECT_TRUE(type == Push_Pin_t);
  EXPECT_FALSE(type == PCB_Summary_t);
  EXPECT_FALSE(type == TypeRef());
}

TEST(TypeTest, EmptyTypeOfFactory_HasNoNameAndNoKind) {
  EXPECT_TRUE(TypeFactory::emptyType == TypeRef());
  EXPECT_EQ(TypeFactory::emptyType.getKindCode(), Type::kNoKind);
}

} // namespace
} // namespace EntityModel
