#include "tests/study-property/StoryProject.h"

#include <filesystem>
#include <fstream>
#include <iterator>

// Whole lives of studies, with what their user sees at each turn.

namespace StudyProperty {
namespace {

using EntityModel::ModelVersionStudyType;

class StudyLifeTest : public ProjectStoryTest {};

TEST_F(StudyLifeTest, FromTheFirstInputToTheLastVersion) {
  // Nothing can be picked before there is a study.
  EXPECT_FALSE(manager().isItemValid(value("Length"), true, false, ModelVersionStudyType::Parametric));
  begin();
  EXPECT_TRUE(manager().isItemValid(value("Length", 1), true, false, ModelVersionStudyType::Parametric));
  EXPECT_FALSE(manager().isItemValid(value("Mass", 1), true, false, ModelVersionStudyType::Parametric));
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "", ""}}));
  EXPECT_EQ(costs(), Costs{std::nullopt});

  EXPECT_EQ(data().addVariant({"2000 mm", "4"}, "Long", kAtEnd), 1U);
  EXPECT_EQ(data().addVariant({"1500 mm", "5"}, "", kAtEnd), 2U);
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Long", "Parametric Alternate 1 of Base"}));
  EXPECT_EQ(costs(), (Costs{std::nullopt, std::nullopt, std::nullopt}));
  EXPECT_EQ(current(), "Base");

  solve();
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"},
                              {"Long", "2000 mm", "4", "16 kg", "50 mm"},
                              {"Parametric Alternate 1 of Base", "1500 mm", "5", "15 kg", "30 mm"}}));
  EXPECT_EQ(costs(), (Costs{33.0, 66.0, 45.0}));

  // An edited row keeps its results until it is solved again.
  data().setVariantValues("Long", {"2500", "2"});
  EXPECT_EQ(matrix().at(1), (Texts{"Long", "2500 mm", "2", "16 kg", "50 mm"}));
  EXPECT_EQ(costs(), (Costs{33.0, 66.0, 45.0}));
  solve();
  EXPECT_EQ(matrix().at(1), (Texts{"Long", "2500 mm", "2", "10 kg", "125 mm"}));
  EXPECT_EQ(costs(), (Costs{33.0, 135.0, 45.0}));

  data().setVariantName(2, "Short");
  data().removeVariant(1, true);
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Short"}));
  switchTo("Short");
  EXPECT_EQ(manager().getData(), nullptr);
  EXPECT_EQ(shown("Length"), "1500 mm");
  EXPECT_EQ(shown("Deflection"), "30 mm");
  EXPECT_EQ(edit("Length", "1"), "The version \"Short\" is read-only.");
  switchTo("Base");
  EXPECT_EQ(matrix(),
            (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}, {"Short", "1500 mm", "5", "15 kg", "30 mm"}}));
  EXPECT_EQ(costs(), (Costs{33.0, 45.0}));

  saveAndReopen("life.study");
  EXPECT_EQ(matrix(),
            (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}, {"Short", "1500 mm", "5", "15 kg", "30 mm"}}));
  EXPECT_EQ(costs(), (Costs{33.0, 45.0}));

  // A row made from another one starts with the baseline's results, which are not its own.
  EXPECT_EQ(data().addVariant(std::size_t{1}, "Twin", kAtEnd), 2U);
  EXPECT_EQ(matrix().at(2), (Texts{"Twin", "1500 mm", "5", "8 kg", "25 mm"}));
  solve();
  EXPECT_EQ(costs(), (Costs{33.0, 45.0, 45.0}));

  manager().endStudy(false);
  EXPECT_EQ(manager().getData(), nullptr);
  EXPECT_EQ(versions(), (Texts{"Base", "Parametric Copy of Base", "Short", "Twin"}));
  saveAndReopen("life.study");
  EXPECT_EQ(manager().getData(), nullptr);
  switchTo("Short");
  EXPECT_EQ(edit("Length", "1600 mm"), "");
  switchTo("Base");

  // A second study of the same baseline knows nothing of the first one's rows, and its end takes all of them.
  begin();
  EXPECT_EQ(data().getCopyVersionName(), "Parametric Copy of Base - 1");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}}));
  EXPECT_EQ(costs(), Costs{33.0});
  manager().endStudy(true);
  saveAndReopen("life.study");
  EXPECT_EQ(versions(), Texts{"Base"});
  EXPECT_EQ(shown("Length"), "1000 mm");
  EXPECT_EQ(shown("Mass"), "8 kg");
  EXPECT_TRUE(manager().canBeginStudy(nullptr));
}

TEST_F(StudyLifeTest, RowRemovedFromTheStudy_BecomesTheBaselineOfItsOwn) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  solve();
  data().removeVariant(1, false);

  saveAndReopen("own.study");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}}));
  switchTo("Long");
  EXPECT_TRUE(manager().canBeginStudy(nullptr));
  begin();
  EXPECT_EQ(manager().getBaseVersionName(), "Long");
  EXPECT_EQ(matrix(), (Matrix{{"Long", "2000 mm", "4", "16 kg", "50 mm"}}));
  EXPECT_EQ(costs(), Costs{66.0});
  data().addVariant({"2000 mm", "5"}, "Many", kAtEnd);
  solve();
  EXPECT_EQ(matrix().at(1), (Texts{"Many", "2000 mm", "5", "20 kg", "40 mm"}));

  // The older study's end takes what follows its baseline, and what follows that.
  saveAndReopen("own.study");
  EXPECT_EQ(manager().getBaseVersionName(), "Long");
  switchTo("Base");
  EXPECT_EQ(manager().getBaseVersionName(), "Base");
  manager().endStudy(true);
  EXPECT_EQ(versions(), Texts{"Base"});
  EXPECT_EQ(manager().getData(), nullptr);
  saveAndReopen("own.study");
  EXPECT_EQ(versions(), Texts{"Base"});
}

TEST_F(StudyLifeTest, ProjectsOneAfterTheOther_WithBaselinesOfOneLabel) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  solve();
  saveAs("first.study");
  close();

  create();
  EXPECT_EQ(manager().getData(), nullptr);
  manager().beginStudy(ModelVersionStudyType::Optimality);
  manager().addInputAttribute(value("Count", 1));
  EXPECT_EQ(matrix(), (Matrix{{"Base", "4"}}));
  EXPECT_EQ(data().getCopyVersionName(), "Optimality Copy of Base");
  saveAs("second.study");
  close();

  open("first.study");
  EXPECT_EQ(matrix(),
            (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}, {"Long", "2000 mm", "4", "16 kg", "50 mm"}}));
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));
  close();
  open("second.study");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "4"}}));
  EXPECT_EQ(manager().getStudyType(), ModelVersionStudyType::Optimality);
  EXPECT_EQ(data().getVariable(true, 0).getMaximumValue(), "4");
}

TEST_F(StudyLifeTest, FilesOfASolver_FollowTheVersions) {
  const auto fileOf = [this](const std::string &label) {
    return project->versionFolder(*version(label), true) + "/field.dat";
  };
  const auto write = [&fileOf](const std::string &label, const char *content) {
    std::ofstream(fileOf(label)) << content;
  };
  const auto read = [&fileOf](const std::string &label) {
    std::ifstream stream(fileOf(label));
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  saveAs("files.study");
  write("Base", "of the baseline");

  begin();
  EXPECT_EQ(read("Parametric Copy of Base"), "of the baseline");
  write("Base", "of the baseline, later");
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  EXPECT_EQ(read("Long"), "of the baseline"); // it is an alternate of the copy
  write("Long", "its own");

  data().setVariantName(1, "Longer");
  EXPECT_EQ(read("Longer"), "its own");
  saveAndReopen("files.study");
  EXPECT_EQ(read("Longer"), "its own");

  // A version that is lost is made again with the files of the baseline.
  bool isDestroyed = false;
  project->changeManager().destroyVersion(version("Longer"), nullptr, isDestroyed);
  EXPECT_FALSE(data().allVersionsExist());
  data().createMissingVersions();
  EXPECT_TRUE(data().allVersionsExist());
  EXPECT_EQ(read("Longer"), "of the baseline, later");
  EXPECT_EQ(read("Base"), "of the baseline, later");

  const std::string file = fileOf("Longer");
  manager().endStudy(true);
  save();
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(read("Base"), "of the baseline, later");
}

} // namespace
} // namespace StudyProperty
