#include "EmbeddedHost/tests/FixtureProject.h"

#include "EmbeddedHost/src/project/ProjectParts.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

void FixtureProjectTest::alter(const std::string &path, const std::string &sql) {
  sqlite3 *plain = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &plain), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(plain, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(plain);
  ASSERT_EQ(sqlite3_close(plain), SQLITE_OK);
}

void FixtureProjectTest::build(int format) const {
  std::filesystem::remove(file);
  alter(file, contentOf(OPTSTUDY_FIXTURES "/format-" + std::to_string(format) + ".sql"));
}

Names FixtureProjectTest::entries() const {
  Names names;
  for (const auto &entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

namespace {

// The bits of a real of one of the two parts as the current version has it.
std::uint64_t bitsOf(Project &opened, EntityModel::Entity *part, const char *path) {
  ModelEntity *entity = ModelEntity::from(part, opened.parts().model);
  const double value = std::get<RealValue>(entity->findSlot(AttributePath(path))->value).number;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

void show(Project &opened, const char *label) {
  EntityModel::ChangeManager &versions = opened.changeManager();
  ModelVersion *version = versions.findVersion(label, nullptr);
  ASSERT_NE(version, nullptr) << label;
  ASSERT_TRUE(versions.setCurrentVersion(version, nullptr, false, nullptr, true));
}

std::string text(Project &opened, EntityModel::Entity *entity, const char *path) {
  EntityModel::Attribute *found = opened.attribute(entity, path);
  return found == nullptr ? "(no attribute)" : found->getValueAsString();
}

void expectTree(Project &opened) {
  Names labels;
  for (const ModelVersion *version : opened.versions()) {
    const ModelVersion *previous = version->getPrevious();
    labels.push_back(version->getLabel() + " < " + (previous == nullptr ? "" : previous->getLabel()));
  }
  EXPECT_EQ(labels, (Names{"Base < ", "Copy < Base", "Row 1 < Base", "Row 2 < Base"}));
  EXPECT_EQ(opened.currentVersion()->getLabel(), "Row 1");
  Names family;
  ModelVersion *copy = opened.changeManager().findVersion("Copy", nullptr);
  std::vector<ModelVersion *> alternates;
  opened.changeManager().getAlternates(copy, alternates);
  for (const ModelVersion *version : alternates) {
    family.push_back(version->getLabel());
  }
  EXPECT_EQ(family, (Names{"Row 2", "Row 1"}));
}

void expectBase(Project &opened, EntityModel::Entity *a, EntityModel::Entity *b) {
  show(opened, "Base");
  EXPECT_EQ(text(opened, opened.rootEntity(), "Title"), "A fan's \"title\"\nin two lines, für alle");
  EXPECT_EQ(a->getName(true), "A");
  EXPECT_EQ(text(opened, a, "Width"), "12.5 mm");
  EXPECT_EQ(text(opened, a, "Ratio"), "0.5");
  EXPECT_EQ(text(opened, a, "Count"), "3");
  EXPECT_EQ(text(opened, a, "Law"), "Cubic");
  EXPECT_EQ(text(opened, a, "Note"), "noted");
  EXPECT_EQ(text(opened, a, "Mass"), "");
  EXPECT_EQ(opened.attribute(a, "Parts")->asList()->getCount(), 0);
  EXPECT_EQ(b->getName(true), "B");
  EXPECT_EQ(text(opened, b, "Open"), "0");
  EXPECT_EQ(text(opened, b, "Material"), "3");
  EXPECT_EQ(text(opened, b, "Next"), "");
  EXPECT_EQ(text(opened, b, "Core"), "");
}

void expectRows(Project &opened, EntityModel::Entity *a, EntityModel::Entity *b) {
  show(opened, "Row 2");
  EXPECT_EQ(text(opened, a, "Count"), "-5");
  show(opened, "Row 1");
  EXPECT_EQ(text(opened, a, "Count"), "7");
  EXPECT_EQ(text(opened, a, "Ratio"), "");
  EXPECT_EQ(text(opened, b, "Next"), "A #2");
  EXPECT_EQ(text(opened, b, "Core"), "Core #5");
  ASSERT_EQ(opened.attribute(a, "Parts")->asList()->getCount(), 1);
  EntityModel::Entity *inner = opened.attribute(a, "Parts")->asList()->getEntity(0);
  EXPECT_EQ(inner->getName(true), "Inner");
  EXPECT_EQ(bitsOf(opened, inner, "Size.Height"), 0x3FD5555555555555ULL);
  EXPECT_EQ(bitsOf(opened, a, "Mass"), 0x8000000000000000ULL);
  EXPECT_EQ(bitsOf(opened, b, "Mass"), 0x7FF8000000000000ULL);
  EXPECT_EQ(bitsOf(opened, a, "Field"), 0xFFF0000000000000ULL);
  EXPECT_EQ(bitsOf(opened, b, "Field"), 0x3FB999999999999AULL);
  EXPECT_EQ(text(opened, a, "Cycles"), "9007199254740991");
  EXPECT_EQ(text(opened, b, "Cycles"), "");
}

void expectRuns(Project &opened) {
  EntityModel::ChangeManager &versions = opened.changeManager();
  EXPECT_EQ(opened.runRecord(*versions.findVersion("Copy", nullptr)).status, RunStatus::None);
  const RunRecord ok = opened.runRecord(*versions.findVersion("Row 1", nullptr));
  EXPECT_EQ(ok.status, RunStatus::Ok);
  EXPECT_EQ(ok.keys, (Names{"run-1:a", "", "extract-1:b"}));
  EXPECT_EQ(ok.startedAt, 1234567890123);
  EXPECT_EQ(ok.durationSeconds, 0.125);
  EXPECT_EQ(ok.command, (Names{"solver", "-b", "in put"}));
  EXPECT_EQ(ok.exitCode, 0);
  EXPECT_EQ(ok.solverVersion, "7.1");
  EXPECT_EQ(ok.logTail, "last\nline");
  const RunRecord failed = opened.runRecord(*versions.findVersion("Row 2", nullptr));
  EXPECT_EQ(failed.status, RunStatus::Failed);
  EXPECT_EQ(failed.reason, "no result");
  EXPECT_EQ(failed.startedAt, 2);
  EXPECT_EQ(failed.durationSeconds, 1e300);
  EXPECT_FALSE(failed.exitCode.has_value());
}

} // namespace

void FixtureProjectTest::expectContent(Project &opened) {
  expectTree(opened);
  EntityModel::Entity *a = part(opened, 0);
  EntityModel::Entity *b = part(opened, 1);
  expectBase(opened, a, b);
  expectRows(opened, a, b);
  expectRuns(opened);
}

} // namespace EmbeddedHost
