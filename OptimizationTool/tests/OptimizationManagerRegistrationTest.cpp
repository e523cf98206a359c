// How attributes become inputs and outputs of the study that the manager holds.

#include "HostModel/Attribute.h"
#include "HostModel/AttributeSorter.h"
#include "OptimizationTool/tests/ManagedStudy.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ModelVersionStudyType;
using StudyTesting::ManagedStudy;
using Texts = std::vector<std::string>;

constexpr ModelVersionStudyType kOrdinary = ModelVersionStudyType::Parametric;
constexpr ModelVersionStudyType kOptimality = ModelVersionStudyType::Optimality;
constexpr ModelVersionStudyType kCalibration = ModelVersionStudyType::Calibration;

class RegistrationTest : public ::testing::Test {
protected:
  Attribute *fan(const char *path) { return ManagedStudy::attribute(study.fan(), path); }
  Attribute *pump(const char *path) { return ManagedStudy::attribute(study.pump(), path); }
  // Names of the variables of each group.
  static std::vector<Texts> groups(bool isInput) {
    std::vector<Texts> names;
    const OptimizationGroups &groups = ManagedStudy::data().getGroups(isInput);
    for (int index = 0; index < groups.size(); ++index) {
      names.emplace_back();
      for (int variable = 0; variable < groups.getGroup(index).size(); ++variable) {
        names.back().push_back(groups.getGroup(index).getAttributeDisplayName(variable));
      }
    }
    return names;
  }
  // Minimum, maximum and step of the first variable of a group.
  static Texts limits(bool isInput, int group) {
    const OptimizationGroupVariable variable =
        ManagedStudy::data().getGroup(isInput, group).getFrontVariable();
    return {variable.getMinimumValue(), variable.getMaximumValue(), variable.getStepValue()};
  }
  static Texts names(const std::set<Attribute *, EntityModel::AttributeSorter> &attributes) {
    Texts texts;
    for (const Attribute *attribute : attributes) {
      texts.push_back(attribute->getOwnerEntity()->getName(true) + "." +
                      attribute->getAttributePath().toString('.'));
    }
    return texts;
  }

  ManagedStudy study;
  OptimizationManager &manager = ManagedStudy::manager();
};

TEST_F(RegistrationTest, WithoutStudy_NothingHappens) {
  manager.addInputAttribute(fan("Length"));
  manager.addInputAttribute(study.fan(), AttributePath("Length"));
  manager.addOutputAttribute(fan("Power"));
  manager.addOutputAttribute(study.fan(), AttributePath("Power"));
  manager.removeInputAttribute(fan("Length"));
  manager.removeOutputAttribute(fan("Power"));

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_TRUE(manager.getInputAttributes().empty());
  EXPECT_TRUE(manager.getOutputAttributes().empty());
}

TEST_F(RegistrationTest, AddInputAttribute_MakesAGroupOfOneVariable) {
  study.begin();

  manager.addInputAttribute(fan("Length"));
  manager.addInputAttribute(pump("Ratio"));

  EXPECT_EQ(groups(true), (std::vector<Texts>{{"Fan.Length"}, {"Pump.Ratio"}}));
  EXPECT_EQ(groups(false), std::vector<Texts>{});
  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5"}));
}

TEST_F(RegistrationTest, AddInputAttribute_Registered_AddsNothing) {
  study.begin();
  manager.addInputAttribute(fan("Length"));
  study.data().getGroup(true, 0).appendVariable(pump("Length"));
  study.recording().clear();

  manager.addInputAttribute(fan("Length"));
  manager.addInputAttribute(pump("Length"));

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(groups(true), (std::vector<Texts>{{"Fan.Length", "Pump.Length"}}));
}

TEST_F(RegistrationTest, AddInputAttribute_RegisteredInOptimality_KeepsItsLimits) {
  study.begin(kOptimality);
  manager.addInputAttribute(fan("Length"));
  study.data().getGroup(true, 0).getFrontVariable().setMinimumValue("50 mm");

  manager.addInputAttribute(fan("Length"));

  EXPECT_EQ(limits(true, 0), (Texts{"50 mm", "100 mm", ""}));
}

TEST_F(RegistrationTest, SameAttribute_MayBeInputAndOutput) {
  study.begin();

  manager.addInputAttribute(fan("Length"));
  manager.addOutputAttribute(fan("Length"));

  EXPECT_EQ(groups(true), std::vector<Texts>{{"Fan.Length"}});
  EXPECT_EQ(groups(false), std::vector<Texts>{{"Fan.Length"}});
}

TEST_F(RegistrationTest, AddInputAttribute_OrdinaryStudies_SeedNoLimits) {
  for (const ModelVersionStudyType type : {kOrdinary, kCalibration}) {
    study.begin(type);

    manager.addInputAttribute(fan("Length"));
    manager.addInputAttribute(fan("Active"));
    manager.addInputAttribute(fan("Material"));

    for (int group = 0; group < 3; ++group) {
      EXPECT_EQ(limits(true, group), (Texts{"", "", ""}));
    }
    manager.endStudy(true);
  }
}

TEST_F(RegistrationTest, AddInputAttribute_Optimality_BooleanGoesFromZeroToOne) {
  for (const char *value : {"0", "1"}) {
    ManagedStudy::set(study.fan(), "Active", value);
    study.begin(kOptimality);

    manager.addInputAttribute(fan("Active"));

    EXPECT_EQ(limits(true, 0), (Texts{"0", "1", ""}));
    manager.endStudy(true);
  }
}

TEST_F(RegistrationTest, AddInputAttribute_Optimality_ChoiceGoesFromItsValueToTheLastOption) {
  ManagedStudy::set(study.fan(), "Material", "2");
  study.begin(kOptimality);

  manager.addInputAttribute(fan("Material"));
  manager.addInputAttribute(fan("Finish"));

  EXPECT_EQ(limits(true, 0), (Texts{"2", "3", "1"}));
  EXPECT_EQ(limits(true, 1), (Texts{"1", "2", "1"}));
}

TEST_F(RegistrationTest, AddInputAttribute_Optimality_OtherKindsStayAtTheirValue) {
  study.begin(kOptimality);

  manager.addInputAttribute(fan("Length"));
  manager.addInputAttribute(fan("Ratio"));
  manager.addInputAttribute(fan("Count"));

  EXPECT_EQ(limits(true, 0), (Texts{"100 mm", "100 mm", ""}));
  EXPECT_EQ(limits(true, 1), (Texts{"0.5", "0.5", ""}));
  EXPECT_EQ(limits(true, 2), (Texts{"3", "3", ""}));
}

TEST_F(RegistrationTest, AddInputAttribute_Optimality_RefusedGroupGetsNoLimits) {
  study.begin(kOptimality);
  study.faults().fail("EntityEditor::createEntity", HostTesting::FaultKind::Null);

  manager.addInputAttribute(fan("Length"));

  EXPECT_EQ(study.faults().strikes(), 1);
  EXPECT_EQ(groups(true), std::vector<Texts>{});
}

TEST_F(RegistrationTest, AddOutputAttribute_Optimality_SeedsNoLimits) {
  study.begin(kOptimality);

  manager.addOutputAttribute(fan("Active"));

  EXPECT_EQ(limits(false, 0), (Texts{"", "", ""}));
}

TEST_F(RegistrationTest, AddOutputAttribute_Registered_AddsNothing) {
  study.begin();
  manager.addOutputAttribute(fan("Power"));
  study.recording().clear();

  manager.addOutputAttribute(fan("Power"));

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(groups(false), std::vector<Texts>{{"Fan.Power"}});
  EXPECT_EQ(groups(true), std::vector<Texts>{});
}

TEST_F(RegistrationTest, AddAttribute_Null_AddsNothing) {
  for (const ModelVersionStudyType type : {kOrdinary, kOptimality}) {
    study.begin(type);

    manager.addInputAttribute(nullptr);
    manager.addOutputAttribute(nullptr);

    EXPECT_EQ(groups(true), std::vector<Texts>{});
    EXPECT_EQ(groups(false), std::vector<Texts>{});
    manager.endStudy(true);
  }
}

TEST_F(RegistrationTest, AddAttribute_ByPath_ResolvesTheMember) {
  study.begin();

  manager.addInputAttribute(study.fan(), AttributePath("Shape.Height"));
  manager.addInputAttribute(study.fan(), AttributePath("Shape.Depth"));
  manager.addInputAttribute(nullptr, AttributePath("Length"));
  manager.addOutputAttribute(study.pump(), AttributePath("Power"));
  manager.addOutputAttribute(study.pump(), AttributePath("Heat"));
  manager.addOutputAttribute(nullptr, AttributePath("Power"));

  EXPECT_EQ(groups(true), std::vector<Texts>{{"Fan.Shape.Height"}});
  EXPECT_EQ(groups(false), std::vector<Texts>{{"Pump.Power"}});
}

TEST_F(RegistrationTest, RemoveAttribute_RemovesTheGroupThatIsLeftEmpty) {
  study.beginWithRows();

  manager.removeInputAttribute(fan("Length"));

  EXPECT_EQ(groups(true), std::vector<Texts>{{"Fan.Ratio"}});
  EXPECT_EQ(groups(false), std::vector<Texts>{{"Fan.Power"}});
  EXPECT_EQ(ManagedStudy::cells(1), (Texts{"1.5", ""}));

  manager.removeOutputAttribute(fan("Power"));

  EXPECT_EQ(groups(true), std::vector<Texts>{{"Fan.Ratio"}});
  EXPECT_EQ(groups(false), std::vector<Texts>{});
  EXPECT_EQ(ManagedStudy::cells(1), Texts{"1.5"});
}

TEST_F(RegistrationTest, RemoveAttribute_TouchesItsOwnSideOnly) {
  study.begin();
  manager.addInputAttribute(fan("Length"));
  manager.addOutputAttribute(fan("Power"));
  manager.addOutputAttribute(fan("Length"));

  manager.removeInputAttribute(fan("Power"));
  EXPECT_EQ(groups(false), (std::vector<Texts>{{"Fan.Power"}, {"Fan.Length"}}));
  manager.removeOutputAttribute(fan("Length"));

  EXPECT_EQ(groups(true), std::vector<Texts>{{"Fan.Length"}});
  EXPECT_EQ(groups(false), std::vector<Texts>{{"Fan.Power"}});
}

TEST_F(RegistrationTest, GetAttributes_InTheOrderOfTheModelAndOfTheirSideOnly) {
  study.begin();
  manager.addInputAttribute(pump("Ratio"));
  manager.addInputAttribute(fan("Width"));
  manager.addInputAttribute(fan("Length"));
  manager.addOutputAttribute(pump("Power"));
  manager.addOutputAttribute(fan("Power"));

  EXPECT_EQ(names(manager.getInputAttributes()), (Texts{"Fan.Length", "Fan.Width", "Pump.Ratio"}));
  EXPECT_EQ(names(manager.getOutputAttributes()), (Texts{"Fan.Power", "Pump.Power"}));
  EXPECT_EQ(*manager.getInputAttributes().begin(), fan("Length"));
}

TEST_F(RegistrationTest, GetAttributes_HaveEveryVariableOnce) {
  study.begin();
  manager.addInputAttribute(fan("Length"));
  study.data().getGroup(true, 0).appendVariable(pump("Length"));
  study.data().addGroup(true, fan("Length"));

  EXPECT_EQ(names(manager.getInputAttributes()), (Texts{"Fan.Length", "Pump.Length"}));
}

TEST_F(RegistrationTest, GetAttributes_VariablesThatResolveToNothing_AreLeftOut) {
  study.begin();
  manager.addInputAttribute(fan("Length"));
  manager.addInputAttribute(pump("Ratio"));
  manager.addOutputAttribute(pump("Power"));

  ManagedStudy::remove(study.pump());

  EXPECT_EQ(names(manager.getInputAttributes()), Texts{"Fan.Length"});
  EXPECT_TRUE(manager.getOutputAttributes().empty());
}

} // namespace
} // namespace OptimizationTool
