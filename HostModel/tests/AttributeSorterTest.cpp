#include "HostModel/AttributeSorter.h"

#include "HostModel/tests/TinyModel.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace EntityModel {
namespace {

using TinyModel::Kind;

TypeRef type(const char *label) {
  return TypeRef::fromLabel(label);
}

// Root with the lists "Boxes" (b) and "Fans" (f0, f1); f0 has the list "Blades" (k) of its own.
class AttributeSorterTest : public ::testing::Test {
protected:
  AttributeSorterTest() {
    TinyModel::own(m_root.addList("Fans"), m_fan0);
    TinyModel::own(static_cast<TinyModel::List &>(*m_root.findAttribute(AttributePath("Fans"))), m_fan1);
    TinyModel::own(m_root.addList("Boxes"), m_box);
    TinyModel::own(m_fan0.addList("Blades"), m_blade);
  }

  bool isBefore(const Attribute *a, const Attribute *b) const { return AttributeSorter()(a, b); }

  TinyModel::Entity m_root{"Root", type("Root")};
  TinyModel::Entity m_fan0{"Z", type("Fan")};
  TinyModel::Entity m_fan1{"A", type("Fan")};
  TinyModel::Entity m_box{"M", type("Box")};
  TinyModel::Entity m_blade{"B", type("Blade")};
  Attribute *m_fan0Speed = &m_fan0.addValue("Speed", Kind::Real, "1");
  Attribute *m_fan0Power = &m_fan0.addValue("Power", Kind::Real, "1");
  Attribute *m_fan1Power = &m_fan1.addValue("Power", Kind::Real, "1");
  Attribute *m_boxWidth = &m_box.addValue("Width", Kind::Real, "1");
  Attribute *m_bladePitch = &m_blade.addValue("Pitch", Kind::Real, "1");
  Attribute *m_rootTitle = &m_root.addValue("Title", Kind::Text, "1");
};

TEST_F(AttributeSorterTest, SameOwner_ByPathText) {
  EXPECT_TRUE(isBefore(m_fan0Power, m_fan0Speed));
  EXPECT_FALSE(isBefore(m_fan0Speed, m_fan0Power));
}

TEST_F(AttributeSorterTest, OwnersInOneList_ByPositionNotByName) {
  EXPECT_TRUE(isBefore(m_fan0Speed, m_fan1Power));
  EXPECT_FALSE(isBefore(m_fan1Power, m_fan0Speed));
}

TEST_F(AttributeSorterTest, OwnersInSeveralLists_ByTheListsPath) {
  EXPECT_TRUE(isBefore(m_boxWidth, m_fan0Power));
  EXPECT_FALSE(isBefore(m_fan0Power, m_boxWidth));
}

TEST_F(AttributeSorterTest, OwnersAtSeveralDepths_OuterFirst) {
  EXPECT_TRUE(isBefore(m_rootTitle, m_boxWidth));
  EXPECT_TRUE(isBefore(m_fan0Speed, m_bladePitch));
  EXPECT_TRUE(isBefore(m_bladePitch, m_fan1Power));
}

TEST_F(AttributeSorterTest, Null_ComesFirstAndOnlyOnce) {
  EXPECT_TRUE(isBefore(nullptr, m_rootTitle));
  EXPECT_FALSE(isBefore(m_rootTitle, nullptr));
  EXPECT_FALSE(isBefore(nullptr, nullptr));
}

TEST_F(AttributeSorterTest, Itself_IsNotBefore) {
  EXPECT_FALSE(isBefore(m_fan0Speed, m_fan0Speed));
}

TEST_F(AttributeSorterTest, DifferentAttributesOfEqualPlace_AreNeverEqual) {
  TinyModel::Entity loose("Loose", type("Fan"));
  TinyModel::Entity other("Other", type("Fan"));
  const Attribute *first = &loose.addValue("Speed", Kind::Real, "1");
  const Attribute *second = &other.addValue("Speed", Kind::Real, "1");
  EXPECT_NE(isBefore(first, second), isBefore(second, first));
}

TEST_F(AttributeSorterTest, Clones_WithoutPlace_AreToldApart) {
  const auto first = m_fan0Speed->clone();
  const auto second = m_fan0Speed->clone();
  EXPECT_NE(isBefore(first.get(), second.get()), isBefore(second.get(), first.get()));
}

TEST_F(AttributeSorterTest, OwnerByALink_ComesByItsPath) {
  TinyModel::Entity hub("Hub", type("Hub"));
  hub.ownerLink = &m_root.addLink("Core", &hub);
  const Attribute *mass = &hub.addValue("Mass", Kind::Real, "1");
  EXPECT_TRUE(isBefore(m_boxWidth, mass));
  EXPECT_TRUE(isBefore(mass, m_fan0Power));
}

TEST_F(AttributeSorterTest, Set_HasTreeOrderWhateverTheOrderOfInsertion) {
  const std::vector<Attribute *> expected = {m_rootTitle, m_boxWidth,   m_fan0Power,
                                             m_fan0Speed, m_bladePitch, m_fan1Power};
  const std::set<Attribute *, AttributeSorter> forward(expected.begin(), expected.end());
  const std::set<Attribute *, AttributeSorter> backward(expected.rbegin(), expected.rend());
  EXPECT_EQ(std::vector<Attribute *>(forward.begin(), forward.end()), expected);
  EXPECT_EQ(std::vector<Attribute *>(backward.begin(), backward.end()), expected);
}

TEST_F(AttributeSorterTest, Order_IsTransitiveOverAllPairs) {
  const std::vector<Attribute *> all = {nullptr,     m_rootTitle,  m_boxWidth, m_fan0Power,
                                        m_fan0Speed, m_bladePitch, m_fan1Power};
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < all.size(); ++j) {
      EXPECT_EQ(isBefore(all[i], all[j]), i < j) << i << ' ' << j;
    }
  }
}

} // namespace
} // namespace EntityModel
