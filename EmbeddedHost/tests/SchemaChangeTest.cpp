#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <fstream>
#include <sstream>

// A project whose types change while it is opened.

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;

class SchemaChangeTest : public ProjectTest {
protected:
  // Changes the members of "Part".
  static SchemaChange changingParts(const std::function<void(std::vector<MemberType> &)> &change) {
    return [change](ModelSchema &schema) {
      ModelSchema changed;
      std::string refusal;
      for (const auto &type : schema.declaredTypes()) {
        std::vector<MemberType> members = schema.declaration(type->label());
        if (type->label() == "Part") {
          change(members);
        }
        refusal += changed.declareType(type->label(), members);
      }
      schema = changed;
      return refusal;
    };
  }

  static MemberType &member(std::vector<MemberType> &members, const std::string &label) {
    for (MemberType &each : members) {
      if (each.label == label) {
        return each;
      }
    }
    throw std::runtime_error("no such member");
  }

  static void addDepth(std::vector<MemberType> &members) {
    MemberType depth;
    depth.label = "Depth";
    depth.standardUnit = "mm";
    depth.defaultText = "7";
    members.push_back(depth);
  }

  std::unique_ptr<Project> openChanged(const SchemaChange &change) {
    std::unique_ptr<Project> opened = Project::open(file, change, problem);
    EXPECT_TRUE(opened) << problem;
    return opened;
  }

  // Tells nobody of a switch: the project that is installed is closed.
  std::unique_ptr<Project> openAgain() {
    HostBehaviour behaviour;
    behaviour.switchesNotify = false;
    std::unique_ptr<Project> opened = Project::open(file, OpenMode::ReadOnly, problem, behaviour);
    EXPECT_TRUE(opened) << problem;
    return opened;
  }

  std::string content() const {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
  }

  std::string problem;
};

TEST_F(SchemaChangeTest, NewMember_HasItsDefaultInEveryVersionAndIsSaved) {
  EntityModel::ModelVersion *next = follow(base, "Next");
  show(next);
  set(partA, "Count", "3");
  show(base);
  saveAs();
  closeProject();
  {
    const auto changed = openChanged(changingParts(addDepth));
    EXPECT_TRUE(changed->needsSave());
    EXPECT_EQ(changed->attribute(part(*changed, 0), "Depth")->getValueAsString(), "7 mm");
    ASSERT_TRUE(changed->save(problem)) << problem;
    EXPECT_FALSE(changed->needsSave());
    EXPECT_TRUE(changed->setValue(part(*changed, 0), "Depth", "8 mm"));
    ASSERT_TRUE(changed->save(problem)) << problem;
  }
  const auto again = openAgain();
  EXPECT_EQ(again->attribute(part(*again, 0), "Depth")->getValueAsString(), "8 mm");
  EXPECT_EQ(again->attribute(part(*again, 1), "Depth")->getValueAsString(), "7 mm");
  again->changeManager().setCurrentVersion(again->changeManager().findVersion("Next", nullptr), nullptr,
                                           false, nullptr, true);
  EXPECT_EQ(again->attribute(part(*again, 0), "Count")->getValueAsString(), "3");
}

TEST_F(SchemaChangeTest, Nothing_IsWrittenBeforeItIsSaved) {
  saveAs();
  closeProject();
  const std::string before = content();
  {
    const auto changed = openChanged(changingParts(addDepth));
    RunRecord record;
    record.status = RunStatus::Ok;
    EXPECT_FALSE(changed->recordRun(*changed->rootVersion(), record, {}, problem));
    EXPECT_NE(problem.find("has to be saved with its changed types before it is solved."), std::string::npos)
        << problem;
    EXPECT_FALSE(changed->beginRun(*changed->rootVersion(), record, {}, problem));
  }
  EXPECT_TRUE(content() == before);
}

TEST_F(SchemaChangeTest, RunsAfterSaving_AreRecordedWithNewResults) {
  saveAs();
  closeProject();
  {
    const auto changed = openChanged(changingParts([](std::vector<MemberType> &members) {
      MemberType heat;
      heat.label = "Heat";
      heat.isResult = true;
      members.push_back(heat);
    }));
    ASSERT_TRUE(changed->save(problem)) << problem;
    RunRecord record;
    record.status = RunStatus::Ok;
    ASSERT_TRUE(changed->recordRun(*changed->rootVersion(), record,
                                   {{part(*changed, 0), AttributePath("Heat"), 4.5}}, problem))
        << problem;
  }
  const auto again = openAgain();
  EXPECT_EQ(again->attribute(part(*again, 0), "Heat")->getStandardValue(), 4.5);
}

TEST_F(SchemaChangeTest, OtherUnit_ConvertsWhatEveryVersionHas) {
  set(partA, "Width", "1.5 m");
  set(partB, "Width", "20 mm");
  EntityModel::ModelVersion *next = follow(base, "Next");
  show(next);
  set(partA, "Width", "12 cm");
  show(base);
  saveAs();
  closeProject();
  {
    const auto changed = openChanged(changingParts([](std::vector<MemberType> &members) {
      MemberType &width = member(members, "Width");
      width.standardUnit = "cm";
      width.displayUnit = "cm";
      width.maximum = 200.0;
    }));
    ASSERT_TRUE(changed->save(problem)) << problem;
  }
  const auto again = openAgain();
  EXPECT_EQ(again->attribute(part(*again, 0), "Width")->getValueAsString(), "150 cm");
  EXPECT_EQ(again->attribute(part(*again, 1), "Width")->getValueAsString(), "2 cm");
  EXPECT_EQ(again->attribute(part(*again, 1), "Width")->getStandardValue(), 2.0);
  again->changeManager().setCurrentVersion(again->changeManager().findVersion("Next", nullptr), nullptr,
                                           false, nullptr, true);
  EXPECT_EQ(again->attribute(part(*again, 0), "Width")->getValueAsString(), "12 cm");
}

TEST_F(SchemaChangeTest, ValueThatDoesNotFit_IsRefusedAndTheFileIsLeftAlone) {
  set(partA, "Width", "1.5 m");
  set(partA, "Note", "text");
  saveAs();
  closeProject();
  const std::string before = content();
  EXPECT_FALSE(Project::open(file, changingParts([](std::vector<MemberType> &members) {
                               MemberType &width = member(members, "Width");
                               width.standardUnit = "kg";
                               width.displayUnit = "kg";
                               width.maximum.reset();
                             }),
                             problem));
  EXPECT_NE(problem.find(" does not fit the changed types: it holds a value in a unit of another quantity"),
            std::string::npos)
      << problem;
  EXPECT_FALSE(Project::open(
      file, [](ModelSchema & /*schema*/) { return std::string("Not today."); }, problem));
  EXPECT_EQ(problem, "Not today.");
  EXPECT_TRUE(content() == before);
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), "");
}

TEST_F(SchemaChangeTest, SavedElsewhere_HasTheChangedTypes) {
  saveAs();
  closeProject();
  {
    const auto changed = openChanged(changingParts(addDepth));
    ASSERT_TRUE(changed->saveAs(folder.path("other.optstudy"), problem)) << problem;
    ASSERT_TRUE(changed->save(problem)) << problem;
  }
  const auto other = Project::open(folder.path("other.optstudy"), OpenMode::ReadOnly, problem);
  ASSERT_TRUE(other) << problem;
  EXPECT_EQ(other->attribute(part(*other, 0), "Depth")->getValueAsString(), "7 mm");
}

} // namespace
} // namespace EmbeddedHost
