#include "EmbeddedHost/src/project/ProjectReader.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace EmbeddedHost {
namespace {

/// Declared types that are read from a file.
class SchemaReaderTest : public testing::Test {
protected:
  TestFolder folder;
  Database database{folder.path("types"), Database::Access::Create};

  SchemaReaderTest() {
    createTables(database);
    database.execute("INSERT INTO type VALUES ('Part', 0)");
  }
  void addMember(std::int64_t number, std::int64_t parent, const std::string &label, MemberKind kind) {
    database.prepare("INSERT INTO member VALUES (?, 'Part', ?, ?, ?, '', '', NULL, NULL, '', '', 0, '')")
        .bind(1, number)
        .bind(2, parent)
        .bindText(3, label)
        .bind(4, std::int64_t{static_cast<int>(kind)})
        .run();
  }
  std::string problem() {
    try {
      readSchema(database);
    } catch (const DamagedProject &damage) {
      return damage.what();
    }
    return "";
  }
};

TEST_F(SchemaReaderTest, Composites_HoldTheirMembersInOrder) {
  addMember(1, 0, "Size", MemberKind::Composite);
  addMember(2, 0, "Count", MemberKind::Integer);
  addMember(3, 1, "Height", MemberKind::Real);
  addMember(4, 1, "Depth", MemberKind::Real);
  const ModelSchema schema = readSchema(database);
  const std::vector<MemberType> &members = schema.declaration("Part");
  ASSERT_EQ(members.size(), 2U);
  EXPECT_EQ(members[0].label, "Size");
  EXPECT_EQ(members[1].label, "Count");
  ASSERT_EQ(members[0].members.size(), 2U);
  EXPECT_EQ(members[0].members[0].label, "Height");
  EXPECT_EQ(members[0].members[1].label, "Depth");
}

TEST_F(SchemaReaderTest, MembersWithoutPlace_AreDamage) {
  addMember(1, 0, "Count", MemberKind::Integer);
  EXPECT_EQ(problem(), "");
  addMember(2, 9, "Lost", MemberKind::Integer);
  EXPECT_EQ(problem(), "a member without place");
}

TEST_F(SchemaReaderTest, CompositesInEachOther_AreDamage) {
  addMember(1, 2, "One", MemberKind::Composite);
  addMember(2, 1, "Other", MemberKind::Composite);
  EXPECT_EQ(problem(), "a member without place");
  addMember(0, 0, "Itself", MemberKind::Composite);
  EXPECT_EQ(problem(), "a composite that is nested too deeply");
}

TEST_F(SchemaReaderTest, CompositesDeepInsideEachOther_AreDamage) {
  for (std::int64_t number = 1; number <= 66; ++number) {
    addMember(number, number - 1, "C", MemberKind::Composite);
  }
  EXPECT_EQ(problem(), "a composite that is nested too deeply");
}

double processorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

TEST_F(SchemaReaderTest, ManyMembers_AreReadAboutAsFastAsTheyAreDeclared) {
  constexpr std::int64_t kMembers = 50000;
  std::vector<MemberType> members;
  Transaction transaction(database);
  for (std::int64_t number = 1; number <= kMembers; ++number) {
    MemberType member;
    member.label = "M" + std::to_string(number);
    member.kind = MemberKind::Integer;
    addMember(number, 0, member.label, member.kind);
    members.push_back(std::move(member));
  }
  transaction.commit();
  const double start = processorSeconds();
  ModelSchema declared;
  EXPECT_EQ(declared.declareType("Part", members), "");
  const double floor = processorSeconds() - start;
  const ModelSchema schema = readSchema(database);
  const double reading = processorSeconds() - start - floor;
  EXPECT_EQ(schema.declaration("Part").size(), 50000U);
  // Comparing each with each takes ten times as long and more.
  EXPECT_LT(reading, 5.0 * floor) << reading << " s, declaring alone " << floor << " s";
}

} // namespace
} // namespace EmbeddedHost
