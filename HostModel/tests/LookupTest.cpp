#include "HostModel/Lookup.h"

#include "HostModel/TypeConstants.h"
#include "HostModel/tests/TinyModel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace EntityModel {
namespace {

using TinyModel::Kind;

class LookupTest : public ::testing::Test {
protected:
  TinyModel::Entity m_fan{"Fan", TypeRef::fromLabel("Fan")};
  TinyModel::Entity m_box{"Box", TypeRef::fromLabel("Box")};
  TinyModel::Value &m_speed = m_fan.addValue("Thermal.Speed", Kind::Real, "2.5");
  TinyModel::Value &m_isOn = m_fan.addValue("On", Kind::Boolean, "1");
  TinyModel::Link &m_part = m_fan.addLink("Part", &m_box);
  TinyModel::List &m_parts = m_fan.addList("Parts");
  TinyModel::TypeValue &m_target = m_fan.addType("Target", Minimise_t);
  const AttributePath m_missing{"Missing"};
  CompositeAttribute *m_null = nullptr;
};

TEST_F(LookupTest, FindAttribute_AtThePath) {
  EXPECT_EQ(findAttribute(&m_fan, AttributePath("Thermal.Speed")), &m_speed);
  const CompositeAttribute *constant = &m_fan;
  EXPECT_EQ(findAttribute(constant, AttributePath("Thermal.Speed")), &m_speed);
}

TEST_F(LookupTest, FindAttribute_EmptyPath_IsTheCompositeItself) {
  EXPECT_EQ(findAttribute(&m_fan, AttributePath()), &m_fan);
}

TEST_F(LookupTest, FindAttribute_MissingOrNullComposite_IsNull) {
  EXPECT_EQ(findAttribute(&m_fan, m_missing), nullptr);
  EXPECT_EQ(findAttribute(m_null, AttributePath("On")), nullptr);
  EXPECT_EQ(findAttribute(static_cast<const CompositeAttribute *>(nullptr), AttributePath("On")), nullptr);
}

TEST_F(LookupTest, ConstFindAttributeByType_FindsTheSame) {
  const CompositeAttribute *constant = &m_fan;
  EXPECT_EQ(constant->findAttribute(TypeRef::fromLabel("Speed"), true), &m_speed);
  EXPECT_EQ(constant->findAttribute(TypeRef::fromLabel("Speed"), false), nullptr);
}

TEST_F(LookupTest, GetLinkedEntity_OfALink) {
  EXPECT_EQ(getLinkedEntity(&m_fan, AttributePath("Part")), &m_box);
  m_part.linked = nullptr;
  EXPECT_EQ(getLinkedEntity(&m_fan, AttributePath("Part")), nullptr);
}

TEST_F(LookupTest, GetLinkedEntity_OfAList_IsItsFirst) {
  EXPECT_EQ(getLinkedEntity(&m_fan, AttributePath("Parts")), nullptr);
  m_parts.entities = {&m_box, &m_fan};
  EXPECT_EQ(getLinkedEntity(&m_fan, AttributePath("Parts")), &m_box);
}

TEST_F(LookupTest, GetLinkedEntity_NoLinkMissingOrNullComposite_IsNull) {
  EXPECT_EQ(getLinkedEntity(&m_fan, AttributePath("On")), nullptr);
  EXPECT_EQ(getLinkedEntity(&m_fan, m_missing), nullptr);
  EXPECT_EQ(getLinkedEntity(nullptr, AttributePath("Part")), nullptr);
}

TEST_F(LookupTest, GetLinkedEntities_InListOrderWithoutNullEntries) {
  m_parts.entities = {&m_box, nullptr, &m_fan, &m_fan};
  EXPECT_EQ(getLinkedEntities(&m_fan, AttributePath("Parts")),
            std::vector<Entity *>({&m_box, &m_fan, &m_fan}));
}

TEST_F(LookupTest, GetLinkedEntities_NoListMissingOrNullComposite_IsEmpty) {
  EXPECT_EQ(getLinkedEntities(&m_fan, AttributePath("Parts")), std::vector<Entity *>());
  EXPECT_EQ(getLinkedEntities(&m_fan, AttributePath("Part")), std::vector<Entity *>());
  EXPECT_EQ(getLinkedEntities(&m_fan, m_missing), std::vector<Entity *>());
  EXPECT_EQ(getLinkedEntities(nullptr, AttributePath("Parts")), std::vector<Entity *>());
}

TEST_F(LookupTest, GetStringValue_OfAnyKind) {
  EXPECT_EQ(getStringValue(&m_fan, AttributePath("Thermal.Speed"), "default"), "2.5");
  EXPECT_EQ(getStringValue(&m_fan, AttributePath(), "default"), "Fan");
}

TEST_F(LookupTest, GetStringValue_EmptyOrUnset_IsEmptyNotTheDefault) {
  m_speed.answers.isHeld = false;
  EXPECT_EQ(getStringValue(&m_fan, AttributePath("Thermal.Speed"), "default"), "");
}

TEST_F(LookupTest, GetStringValue_MissingOrNullComposite_IsTheDefault) {
  EXPECT_EQ(getStringValue(&m_fan, m_missing, "default"), "default");
  EXPECT_EQ(getStringValue(nullptr, AttributePath("On"), "default"), "default");
}

TEST_F(LookupTest, GetBoolValue_OfABoolean) {
  EXPECT_TRUE(getBoolValue(&m_fan, AttributePath("On"), false));
  m_isOn.answers.text = "0";
  EXPECT_FALSE(getBoolValue(&m_fan, AttributePath("On"), true));
}

TEST_F(LookupTest, GetBoolValue_OtherKindUnsetMissingOrNullComposite_IsTheDefault) {
  for (const bool defaultValue : {false, true}) {
    EXPECT_EQ(getBoolValue(&m_fan, AttributePath("Thermal.Speed"), defaultValue), defaultValue);
    EXPECT_EQ(getBoolValue(&m_fan, m_missing, defaultValue), defaultValue);
    EXPECT_EQ(getBoolValue(nullptr, AttributePath("On"), defaultValue), defaultValue);
  }
  m_isOn.answers.isHeld = false;
  EXPECT_TRUE(getBoolValue(&m_fan, AttributePath("On"), true));
}

TEST_F(LookupTest, GetTypeValue_OfATypeReference) {
  EXPECT_EQ(getTypeValue(&m_fan, AttributePath("Target"), Maximise_t), Minimise_t);
}

TEST_F(LookupTest, GetTypeValue_NoneHeldOtherKindMissingOrNullComposite_IsTheDefault) {
  m_target.held = TypeRef();
  EXPECT_EQ(getTypeValue(&m_fan, AttributePath("Target"), Maximise_t), Maximise_t);
  EXPECT_EQ(getTypeValue(&m_fan, AttributePath("On"), Maximise_t), Maximise_t);
  EXPECT_EQ(getTypeValue(&m_fan, m_missing, Maximise_t), Maximise_t);
  EXPECT_EQ(getTypeValue(nullptr, AttributePath("Target"), TypeFactory::emptyType), TypeRef());
}

TEST_F(LookupTest, ViewsOfAnAttribute_ByDefaultNull) {
  EXPECT_EQ(m_speed.asEntity(), nullptr);
  EXPECT_EQ(m_speed.asLink(), nullptr);
  EXPECT_EQ(m_speed.asList(), nullptr);
  EXPECT_EQ(m_speed.asTypeAttribute(), nullptr);
  EXPECT_EQ(m_speed.Attribute::getReferencedAttribute(), nullptr);
}

} // namespace
} // namespace EntityModel
