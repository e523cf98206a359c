#include "HostModel/AttributePath.h"

#include "HostModel/TypeConstants.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace EntityModel {
namespace {

TEST(AttributePathTest, Default_IsEmpty) {
  const AttributePath path;
  EXPECT_EQ(path.size(), 0U);
  EXPECT_TRUE(path.empty());
  EXPECT_TRUE(path.back().isEmpty());
  EXPECT_EQ(path.toString('.'), "");
  EXPECT_TRUE(path.elements().empty());
}

TEST(AttributePathTest, FromEmptyTexts_IsTheEmptyPath) {
  EXPECT_EQ(AttributePath(""), AttributePath());
  EXPECT_EQ(AttributePath(std::string()), AttributePath());
  EXPECT_EQ(AttributePath(static_cast<const char *>(nullptr)), AttributePath());
  EXPECT_EQ(AttributePath(TypeRef()), AttributePath());
  EXPECT_EQ(AttributePath(std::vector<TypeRef>()), AttributePath());
}

TEST(AttributePathTest, FromType_HasThatElement) {
  const AttributePath path(CostFunction_t);
  EXPECT_EQ(path.size(), 1U);
  EXPECT_FALSE(path.empty());
  EXPECT_EQ(path.back(), CostFunction_t);
  EXPECT_EQ(path.toString('.'), "CostFunction");
}

TEST(AttributePathTest, FromText_SplitsAtFullStops) {
  const AttributePath path("Thermal.Outlet.Temperature");
  ASSERT_EQ(path.size(), 3U);
  EXPECT_EQ(path.elements()[0].getLabel(), "Thermal");
  EXPECT_EQ(path.elements()[1].getLabel(), "Outlet");
  EXPECT_EQ(path.elements()[2].getLabel(), "Temperature");
  EXPECT_EQ(path.back(), TypeRef::fromLabel("Temperature"));
}

TEST(AttributePathTest, FromText_IsInverseOfToString) {
  for (const char *text : {"", "Speed", "Thermal.Outlet", "A.B.C.D", "With blank.And-hyphen"}) {
    EXPECT_EQ(AttributePath(text).toString('.'), text);
    EXPECT_EQ(AttributePath(std::string(text)).toString('.'), text);
  }
}

TEST(AttributePathTest, ToString_OtherSeparator_StandsBetweenElements) {
  EXPECT_EQ(AttributePath("Thermal.Outlet.Temperature").toString('/'), "Thermal/Outlet/Temperature");
  EXPECT_EQ(AttributePath("Speed").toString('/'), "Speed");
}

TEST(AttributePathTest, Equality_ByElementsWhateverTheyAreMadeFrom) {
  const TypeRef thermal = TypeRef::fromLabel("Thermal");
  const TypeRef outlet = TypeRef::fromLabel("Outlet");
  const AttributePath fromElements(std::vector<TypeRef>{thermal, outlet});
  EXPECT_EQ(fromElements, AttributePath("Thermal.Outlet"));
  EXPECT_EQ(fromElements, AttributePath(std::string("Thermal.Outlet")));
  EXPECT_EQ(AttributePath(thermal), AttributePath("Thermal"));
}

TEST(AttributePathTest, Equality_OtherElementsOrOrder_IsFalse) {
  EXPECT_NE(AttributePath("Thermal.Outlet"), AttributePath("Outlet.Thermal"));
  EXPECT_NE(AttributePath("Thermal"), AttributePath("Thermal.Outlet"));
  EXPECT_NE(AttributePath(), AttributePath("Thermal"));
  EXPECT_FALSE(AttributePath("Thermal") == AttributePath("thermal"));
}

TEST(AttributePathTest, Copy_IsEqualAndIndependent) {
  AttributePath path("Thermal.Outlet");
  const AttributePath copy = path;
  path = AttributePath(CostFunction_t);
  EXPECT_EQ(copy.toString('.'), "Thermal.Outlet");
  EXPECT_EQ(path.toString('.'), "CostFunction");
}

TEST(AttributePathTest, Hash_EqualPaths_AreOneKey) {
  const std::unordered_set<AttributePath> paths = {AttributePath("A.B"), AttributePath("A.B"),
                                                   AttributePath("B.A"), AttributePath()};
  EXPECT_EQ(paths.size(), 3U);
}

TEST(AttributePathTest, Interning_FromSeveralThreads_GivesEqualPaths) {
  std::vector<AttributePath> paths(8);
  std::vector<std::thread> threads;
  threads.reserve(paths.size());
  for (AttributePath &path : paths) {
    threads.emplace_back([&path] {
      for (int i = 0; i < 200; ++i) {
        path = AttributePath("Thread." + std::to_string(i));
      }
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  for (const AttributePath &path : paths) {
    EXPECT_EQ(path, AttributePath("Thread.199"));
  }
}

} // namespace
} // namespace EntityModel
