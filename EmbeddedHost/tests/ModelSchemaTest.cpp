#include "EmbeddedHost/ModelSchema.h"

#include "HostModel/TypeConstants.h"

#include <gtest/gtest.h>

namespace EmbeddedHost {
namespace {

MemberType member(const std::string &label, MemberKind kind) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  return type;
}

std::string problemOf(const MemberType &type) {
  ModelSchema schema;
  std::string problem = schema.declareType("Thing", {type});
  EXPECT_EQ(schema.findType("Thing") == nullptr, !problem.empty());
  return problem;
}

TEST(ModelSchemaTest, NewSchema_HasTheStudyStorageAndARootWithAStudyList) {
  const ModelSchema schema;

  for (const char *label :
       {"OptimizationData", "OptimizationGroup", "OptimizationAttribute", "OptimalityConfiguration"}) {
    ASSERT_NE(schema.findType(label), nullptr) << label;
    EXPECT_TRUE(schema.findType(label)->isStudyStorage());
  }
  const Member *list =
      schema.rootType()->findMember(EntityModel::AttributePath(EntityModel::OptimizationDataList_t));
  ASSERT_NE(list, nullptr);
  EXPECT_TRUE(list->isProjectLevel);
  EXPECT_EQ(list->kind, MemberKind::EntityList);
  EXPECT_TRUE(schema.declaredTypes().empty());
}

TEST(ModelSchemaTest, DeclaredMembersOfComposites_HavePathsBelowTheirComposite) {
  MemberType size = member("Size", MemberKind::Composite);
  size.members = {member("Height", MemberKind::Real)};
  ModelSchema schema;
  ASSERT_EQ(schema.declareType("Box", {member("Note", MemberKind::Text), size}), "");

  const auto type = schema.findType("Box");
  ASSERT_EQ(type->members().size(), 3U);
  const Member *height = type->findMember(EntityModel::AttributePath("Size.Height"));
  ASSERT_NE(height, nullptr);
  EXPECT_EQ(height->parent, 1U);
  EXPECT_EQ(type->findMember(EntityModel::AttributePath("Height")), nullptr);
}

TEST(ModelSchemaTest, ManyMembers_AreAllFoundByTheirPath) {
  std::vector<MemberType> members(300);
  for (std::size_t index = 0; index < members.size(); ++index) {
    members[index] = member("M" + std::to_string(index), MemberKind::Real);
  }
  ModelSchema schema;
  ASSERT_EQ(schema.declareType("Box", members), "");

  const auto type = schema.findType("Box");
  for (int index = 0; index < 300; ++index) {
    const Member *found = type->findMember(EntityModel::AttributePath("M" + std::to_string(index)));
    ASSERT_NE(found, nullptr) << index;
    EXPECT_EQ(found->index, static_cast<std::size_t>(index));
  }
  EXPECT_EQ(type->findMember(EntityModel::AttributePath("M300")), nullptr);
  EXPECT_EQ(type->findMember(EntityModel::AttributePath()), nullptr);
}

TEST(ModelSchemaTest, BadLabels_AreRefused) {
  ModelSchema schema;
  EXPECT_EQ(schema.declareType("", {}), "A label is empty.");
  EXPECT_EQ(schema.declareType("a.b", {}), "The label \"a.b\" holds one of \".\", \"%\", \"#\" and \":\".");
  EXPECT_EQ(schema.declareType("OptimizationData", {}), "The type \"OptimizationData\" is there already.");
  EXPECT_EQ(schema.declareType("T", {member("A", MemberKind::Text), member("A", MemberKind::Real)}),
            "The label \"A\" is used twice.");
  EXPECT_EQ(schema.declareRootMembers({member("OptimizationDataList", MemberKind::Text)}),
            "The label \"OptimizationDataList\" is used twice.");
  EXPECT_TRUE(schema.declaredTypes().empty());
}

TEST(ModelSchemaTest, BadUnits_AreRefused) {
  MemberType real = member("X", MemberKind::Real);
  real.displayUnit = "mm";
  EXPECT_EQ(problemOf(real), "The member \"X\" has a display unit but no standard unit.");
  real.standardUnit = "s";
  EXPECT_EQ(problemOf(real), "The member \"X\" cannot be displayed in mm: that does not convert to s.");
  real.standardUnit = "W/m2K";
  EXPECT_EQ(
      problemOf(real),
      "The member \"X\": The unit \"W/m2K\" is ambiguous: W/(m2.K) or W.K/m2; write the one that is meant.");
  MemberType integer = member("N", MemberKind::Integer);
  integer.standardUnit = "m";
  EXPECT_EQ(problemOf(integer), "The member \"N\" has a unit but is no real number.");
}

TEST(ModelSchemaTest, BadLimitsOptionsAndDefaults_AreRefused) {
  MemberType real = member("X", MemberKind::Real);
  real.minimum = 2.0;
  real.maximum = 1.0;
  EXPECT_EQ(problemOf(real), "The minimum of the member \"X\" is above its maximum.");
  MemberType text = member("T", MemberKind::Text);
  text.minimum = 0.0;
  EXPECT_EQ(problemOf(text), "The member \"T\" has limits but is no number.");
  EXPECT_EQ(problemOf(member("C", MemberKind::Choice)), "The choice \"C\" has no options.");
  MemberType choice = member("C", MemberKind::Choice);
  choice.options = {"a", "a"};
  EXPECT_EQ(problemOf(choice), "The member \"C\" has an option twice.");
  MemberType integer = member("N", MemberKind::Integer);
  integer.defaultText = "1.5";
  EXPECT_EQ(problemOf(integer), "A default is no value: N: \"1.5\" is no whole number.");
  MemberType odd = member("T", MemberKind::Text);
  odd.members = {member("Inner", MemberKind::Text)};
  EXPECT_EQ(problemOf(odd), "The member \"T\" is no composite but has members.");
}

TEST(ModelSchemaTest, RootMembers_AreDeclaredOnce) {
  ModelSchema schema;
  EXPECT_EQ(schema.declareRootMembers({member("Title", MemberKind::Text)}), "");
  EXPECT_EQ(schema.declareRootMembers({member("Other", MemberKind::Text)}),
            "The members of the root entity are declared already.");
  EXPECT_NE(schema.rootType()->findMember(EntityModel::AttributePath("Title")), nullptr);
  ASSERT_EQ(schema.declaredTypes().size(), 1U);
  EXPECT_EQ(schema.declaration("Model").front().label, "Title");
}

} // namespace
} // namespace EmbeddedHost
