#include "HostModel/ChangeSet.h"

#include "HostModel/tests/TinyModel.h"

#include <gtest/gtest.h>

namespace EntityModel {
namespace {

using TinyModel::Kind;

class ChangeSetTest : public ::testing::Test {
protected:
  TinyModel::Entity m_fan{"Fan", TypeRef::fromLabel("Fan")};
  TinyModel::Entity m_box{"Box", TypeRef::fromLabel("Box")};
  Attribute *m_speed = &m_fan.addValue("Speed", Kind::Real, "1");
  Attribute *m_power = &m_fan.addValue("Power", Kind::Real, "2");
  Attribute *m_width = &m_box.addValue("Width", Kind::Real, "3");
  ChangeSet m_changes;
};

TEST_F(ChangeSetTest, Default_IsEmpty) {
  EXPECT_TRUE(m_changes.isEmpty());
  EXPECT_TRUE(m_changes.getModifiedEntities().empty());
}

TEST_F(ChangeSetTest, AddModified_EntityAlone_HasNoAttributes) {
  m_changes.addModified(&m_fan);
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].entity, &m_fan);
  EXPECT_TRUE(m_changes.getModifiedEntities()[0].attributes.empty());
  EXPECT_FALSE(m_changes.isEmpty());
}

TEST_F(ChangeSetTest, AddModifiedAttribute_NewEntity_AddsItToo) {
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].entity, &m_fan);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_speed}));
}

TEST_F(ChangeSetTest, Order_EntitiesOfFirstAdditionAttributesOfAddition) {
  m_changes.addModifiedAttribute(&m_fan, m_power);
  m_changes.addModifiedAttribute(&m_box, m_width);
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 2U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].entity, &m_fan);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_power, m_speed}));
  EXPECT_EQ(m_changes.getModifiedEntities()[1].entity, &m_box);
  EXPECT_EQ(m_changes.getModifiedEntities()[1].attributes, std::vector<Attribute *>({m_width}));
}

TEST_F(ChangeSetTest, Repetition_IsNotRecorded) {
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  m_changes.addModifiedAttribute(&m_fan, m_power);
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  m_changes.addModified(&m_fan);
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_speed, m_power}));
}

TEST_F(ChangeSetTest, Null_IsNotRecorded) {
  m_changes.addModified(nullptr);
  m_changes.addModifiedAttribute(nullptr, m_speed);
  m_changes.addModifiedAttribute(&m_fan, nullptr);
  EXPECT_TRUE(m_changes.isEmpty());
}

TEST_F(ChangeSetTest, Clear_ForgetsEverythingAndTheOrder) {
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  m_changes.addModified(&m_box);
  m_changes.clear();
  EXPECT_TRUE(m_changes.isEmpty());
  m_changes.addModified(&m_box);
  m_changes.addModifiedAttribute(&m_fan, m_power);
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 2U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].entity, &m_box);
  EXPECT_EQ(m_changes.getModifiedEntities()[1].attributes, std::vector<Attribute *>({m_power}));
}

TEST_F(ChangeSetTest, Copy_IsIndependentOfTheOriginal) {
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  ChangeSet copy = m_changes;
  m_changes.addModifiedAttribute(&m_fan, m_power);
  copy.addModifiedAttribute(&m_box, m_width);
  ASSERT_EQ(copy.getModifiedEntities().size(), 2U);
  EXPECT_EQ(copy.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_speed}));
  ASSERT_EQ(m_changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(m_changes.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_speed, m_power}));
}

TEST_F(ChangeSetTest, Assignment_ReplacesWhatWasRecorded) {
  ChangeSet other;
  other.addModified(&m_box);
  m_changes.addModifiedAttribute(&m_fan, m_speed);
  other = m_changes;
  ASSERT_EQ(other.getModifiedEntities().size(), 1U);
  EXPECT_EQ(other.getModifiedEntities()[0].entity, &m_fan);
  other.addModifiedAttribute(&m_fan, m_power);
  EXPECT_EQ(other.getModifiedEntities()[0].attributes, std::vector<Attribute *>({m_speed, m_power}));
}

} // namespace
} // namespace EntityModel
