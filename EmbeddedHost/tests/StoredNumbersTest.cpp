#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;

std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double fromBits(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Those that a database is known to change, then any pattern of bits.
std::vector<double> numbers(std::size_t count) {
  std::vector<double> all;
  for (const std::uint64_t bits : {
           0x0000000000000000ULL, // 0
           0x8000000000000000ULL, // -0
           0x0000000000000001ULL, // the smallest
           0x8000000000000001ULL, // the smallest below 0
           0x000FFFFFFFFFFFFFULL, // the largest that is not normal
           0x7FEFFFFFFFFFFFFFULL, // the largest
           0x7FF0000000000000ULL, // infinity
           0xFFF0000000000000ULL, // -infinity
           0x7FF8000000000000ULL, // no number
           0xFFF8000000000000ULL, // no number, with a sign
           0x7FF8000000000123ULL, // no number, with a note
           0x7FF0000000000001ULL, // no number, signalling
           0xFFFFFFFFFFFFFFFFULL, // no number, all bits set
           0x4059000000000000ULL, // 100, which a database may keep as a whole number
           0xC059000000000000ULL, // -100
           0x4340000000000001ULL, // a whole number that is odd as no double is
           0x43E0000000000000ULL, // 2 to the power of 63
           0x3FD5555555555555ULL, // 1/3
       }) {
    all.push_back(fromBits(bits));
  }
  std::mt19937_64 random(11);
  while (all.size() < count) {
    all.push_back(fromBits(random()));
  }
  return all;
}

/// Numbers that come back from the file bit for bit.
class StoredNumbersTest : public ProjectTest {
protected:
  static constexpr int kParts = 500;
  static constexpr std::size_t kNumbers = 10000;

  // The parts of the open project.
  std::vector<Entity *> makeParts() {
    while (list(root, "Parts").getCount() < kParts) {
      project->createEntity("Part", root, "Parts", "");
    }
    std::vector<Entity *> parts;
    parts.reserve(kParts);
    for (int index = 0; index < kParts; ++index) {
      parts.push_back(part(*project, index));
    }
    return parts;
  }
  static std::uint64_t bitsIn(Project &other, int index, const char *path) {
    ModelEntity *entity = ModelEntity::from(part(other, index), other.parts().model);
    return bitsOf(std::get<RealValue>(entity->findSlot(AttributePath(path))->value).number);
  }
};

TEST_F(StoredNumbersTest, ResultsOfRuns_KeepEveryBit) {
  const std::vector<Entity *> parts = makeParts();
  saveAs();
  const std::vector<double> all = numbers(kNumbers);
  for (std::size_t first = 0; first < all.size(); first += kParts) {
    std::vector<ResultValue> results;
    for (int index = 0; index < kParts; ++index) {
      const auto place = static_cast<std::size_t>(index);
      results.push_back({parts[place], AttributePath("Field"), all[first + place]});
    }
    std::string problem;
    ASSERT_TRUE(project->recordRun(*base, {}, results, problem)) << problem;
    const auto other = openCopy();
    for (int index = 0; index < kParts; ++index) {
      const std::uint64_t expected = bitsOf(all[first + static_cast<std::size_t>(index)]);
      EXPECT_EQ(bitsIn(*other, index, "Field"), expected) << std::hex << expected;
    }
  }
}

TEST_F(StoredNumbersTest, SavedValues_KeepEveryBit) {
  makeParts();
  saveAs();
  const std::vector<double> all = numbers(kNumbers);
  Model &model = project->parts().model;
  for (std::size_t first = 0; first < all.size(); first += kParts) {
    for (int index = 0; index < kParts; ++index) {
      ModelEntity *entity = ModelEntity::from(part(*project, index), model);
      const double number = all[first + static_cast<std::size_t>(index)];
      model.setValue(*entity->findSlot(AttributePath("Ratio")), RealValue{number, nullptr});
    }
    save();
    const auto other = openCopy();
    for (int index = 0; index < kParts; ++index) {
      const std::uint64_t expected = bitsOf(all[first + static_cast<std::size_t>(index)]);
      EXPECT_EQ(bitsIn(*other, index, "Ratio"), expected) << std::hex << expected;
    }
  }
}

TEST_F(StoredNumbersTest, LimitsOfMembers_KeepEveryBit) {
  const double limits[] = {-0.0,
                           std::numeric_limits<double>::denorm_min(),
                           1.0 / 3.0,
                           100.0,
                           9007199254740992.0,
                           std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::infinity()};
  ModelSchema schema;
  std::vector<MemberType> members;
  for (const double limit : limits) {
    MemberType member;
    member.label = "M" + std::to_string(members.size());
    member.minimum = -limit;
    member.maximum = limit;
    members.push_back(member);
  }
  members[0].minimum = -0.0;
  ASSERT_EQ(schema.declareType("Limited", members), "");
  std::string problem;
  ASSERT_TRUE(Project::create(schema)->saveAs(file, problem)) << problem;
  const auto other = openCopy();
  const std::vector<MemberType> &read = other->schema().declaration("Limited");
  ASSERT_EQ(read.size(), 7U);
  EXPECT_EQ(bitsOf(*read[0].minimum), 0x8000000000000000ULL);
  for (std::size_t index = 0; index < read.size(); ++index) {
    EXPECT_EQ(bitsOf(*read[index].maximum), bitsOf(limits[index])) << index;
  }
  EXPECT_EQ(bitsOf(*read[6].minimum), 0xFFF0000000000000ULL);
}

TEST_F(StoredNumbersTest, RanksOfAlternates_KeepEveryBit) {
  EntityModel::ModelVersion *copy = follow(base, "Copy");
  std::vector<std::uint64_t> ranks;
  alternate(copy, "Last");
  for (int index = 0; index < 40; ++index) {
    alternate(copy, "Row " + std::to_string(index), static_cast<std::size_t>(index % 3));
  }
  for (const auto &[number, version] : project->parts().model.tree().versions()) {
    ranks.push_back(bitsOf(version->rank));
  }
  saveAs();
  const auto other = openCopy();
  std::vector<std::uint64_t> read;
  for (const auto &[number, version] : other->parts().model.tree().versions()) {
    read.push_back(bitsOf(version->rank));
  }
  EXPECT_EQ(read.size(), 43U);
  EXPECT_EQ(read, ranks);
}

TEST_F(StoredNumbersTest, WhatIsNoNumber_IsDamage) {
  set(partA, "Ratio", "0.25");
  set(partA, "Count", "7");
  saveAs();
  closeProject();
  const char *const damages[] = {
      "UPDATE value SET value = 'half' WHERE value = 0.25",
      "UPDATE value SET value = x'0102' WHERE value = 0.25",
      "UPDATE value SET value = 'seven' WHERE value = 7",
      "UPDATE value SET value = 7.5 WHERE value = 7",
  };
  const char *const problems[] = {"a number that is none", "a number that is none",
                                  "a whole number that is none", "a whole number that is none"};
  const std::string sound = contentOf(file);
  for (std::size_t index = 0; index < 4; ++index) {
    writeFile(file, sound);
    Database(file, Database::Access::ReadWrite).execute(damages[index]);
    EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly),
              "The project " + file + " is damaged: it holds " + problems[index] + " (version 1, entity 2).");
  }
}

} // namespace
} // namespace EmbeddedHost
