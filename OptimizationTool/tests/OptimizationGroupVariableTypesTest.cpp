#include "OptimizationTool/OptimizationGroupVariable.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <gtest/gtest.h>

namespace OptimizationTool {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using StudyTesting::ScriptedAttribute;
using StudyTesting::ScriptedEntity;
using StudyTesting::ScriptedTypeAttribute;
using StudyTesting::StudyFixture;

// A variable that refers to a scripted attribute.
struct ScriptedVariable {
  ScriptedEntity owner{"Owner"};
  std::unique_ptr<ScriptedEntity> entity = StudyTesting::makeScriptedVariable(&owner, "Value");

  OptimizationGroupVariable handle() const { return OptimizationGroupVariable(entity.get()); }
  ScriptedAttribute &attribute(const std::string &typeDescription) {
    auto &added = owner.add(AttributePath("Value"), std::make_unique<ScriptedAttribute>());
    added.typeDescription = typeDescription;
    return added;
  }
  ScriptedAttribute &reference(ScriptedAttribute *target, const std::string &typeDescription) {
    ScriptedAttribute &added = attribute(typeDescription);
    added.isReference = true;
    added.referenced = target;
    return added;
  }
  ScriptedTypeAttribute &type(int family, const std::string &typeDescription) {
    auto &added = owner.add(AttributePath("Value"), std::make_unique<ScriptedTypeAttribute>(family));
    added.typeDescription = typeDescription;
    return added;
  }
};

class OptimizationGroupVariableTypesTest : public ::testing::Test {
protected:
  bool isSameType() const {
    EXPECT_EQ(a.handle().isSameType(b.handle()), b.handle().isSameType(a.handle()));
    return a.handle().isSameType(b.handle());
  }

  ScriptedVariable a;
  ScriptedVariable b;
};

EntityModel::Type typeOfKind(int kindCode) {
  return EntityModel::Type(EntityModel::TypeRef::fromLabel("Kind"), kindCode);
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_EqualDescriptions_IsTrue) {
  a.attribute("real m");
  b.attribute("real m");
  EXPECT_TRUE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_DescriptionsDifferInOneByte_IsFalse) {
  a.attribute("real m");
  b.attribute("real M");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_AttributeNotFound_IsTrue) {
  a.attribute("real m");
  EXPECT_TRUE(isSameType());
  EXPECT_TRUE(a.handle().isSameType(OptimizationGroupVariable()));
  EXPECT_TRUE(OptimizationGroupVariable().isSameType(OptimizationGroupVariable()));
}

TEST_F(OptimizationGroupVariableTypesTest,
       IsSameType_TwoTypes_AsksWhetherTheyAcceptTheSameTypesAndNothingElse) {
  a.type(1, "type a");
  b.type(1, "type b");
  EXPECT_TRUE(isSameType());
  b.type(2, "type a");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_TwoTypesThatDisagree_TheFirstIsAsked) {
  class Decided : public ScriptedTypeAttribute {
  public:
    explicit Decided(bool answer) : ScriptedTypeAttribute(1), m_answer(answer) {}
    bool hasSameTypes(const EntityModel::TypeAttribute &) const override { return m_answer; }

  private:
    bool m_answer;
  };
  a.owner.add(AttributePath("Value"), std::make_unique<Decided>(true));
  b.owner.add(AttributePath("Value"), std::make_unique<Decided>(false));
  EXPECT_TRUE(a.handle().isSameType(b.handle()));
  EXPECT_FALSE(b.handle().isSameType(a.handle()));
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_OneTypeOnly_ComparesTheDescriptions) {
  a.type(1, "x");
  b.attribute("x");
  EXPECT_TRUE(isSameType());
  b.attribute("y");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_ReferencesToDifferentKinds_IsFalse) {
  ScriptedAttribute first;
  first.type = typeOfKind(1);
  ScriptedAttribute second;
  second.type = typeOfKind(2);
  a.reference(&first, "reference");
  b.reference(&second, "reference");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_ReferencesToTheSameKind_ComparesTheDescriptions) {
  ScriptedAttribute first;
  first.type = typeOfKind(1);
  ScriptedAttribute second;
  second.type = typeOfKind(1);
  a.reference(&first, "reference");
  b.reference(&second, "reference");
  EXPECT_TRUE(isSameType());
  b.reference(&second, "other reference");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_ReferenceToNothing_HasAKindOfItsOwn) {
  ScriptedAttribute target;
  target.type = typeOfKind(1);
  a.reference(nullptr, "reference");
  b.reference(&target, "reference");
  EXPECT_FALSE(isSameType());
  b.reference(nullptr, "reference");
  EXPECT_TRUE(isSameType());
  target.type = EntityModel::Type();
  b.reference(&target, "reference");
  EXPECT_TRUE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_OneReferenceOnly_ComparesTheDescriptions) {
  ScriptedAttribute target;
  target.type = typeOfKind(1);
  a.reference(&target, "x");
  b.attribute("x").type = typeOfKind(2);
  EXPECT_TRUE(isSameType());
  b.attribute("y");
  EXPECT_FALSE(isSameType());
}

TEST_F(OptimizationGroupVariableTypesTest, IsSameType_Pointer_IsFalseForNullAndElseTheSame) {
  a.attribute("x");
  b.attribute("x");
  const OptimizationGroupVariable other = b.handle();
  const OptimizationGroupVariable *null = nullptr;
  EXPECT_FALSE(a.handle().isSameType(null));
  EXPECT_FALSE(OptimizationGroupVariable().isSameType(null));
  EXPECT_TRUE(a.handle().isSameType(&other));
  b.attribute("y");
  EXPECT_FALSE(a.handle().isSameType(&other));
}

struct HostPair {
  const char *a;
  const char *b;
  bool isSame;
};

TEST(OptimizationGroupVariableHostTypesTest, IsSameType_AttributesOfTheEmbeddedHost) {
  const HostPair pairs[] = {
      {"Length", "Width", true},  {"Length", "Length", true},    {"Length", "Ratio", false},
      {"Count", "Ratio", false},  {"Material", "Finish", false}, {"Mode", "OtherMode", true},
      {"Mode", "Law", false},     {"Mode", "Note", false},       {"Source", "Target", true},
      {"Length", "Lenght", true},
  };
  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  const OptimizationGroup group = study.addGroup(study.addStudy(), true, "Group");
  for (const HostPair &pair : pairs) {
    const OptimizationGroupVariable a = study.addVariable(group, fan, pair.a);
    const OptimizationGroupVariable b = study.addVariable(group, fan, pair.b);
    EXPECT_EQ(a.isSameType(b), pair.isSame) << pair.a << " and " << pair.b;
    EXPECT_EQ(b.isSameType(a), pair.isSame) << pair.b << " and " << pair.a;
  }
}

TEST(OptimizationGroupVariableHostTypesTest, IsSameType_ReferencesOfTheEmbeddedHost_DependOnWhatTheyReferTo) {
  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  const OptimizationGroup group = study.addGroup(study.addStudy(), true, "Group");
  const OptimizationGroupVariable source = study.addVariable(group, fan, "Source");
  const OptimizationGroupVariable target = study.addVariable(group, fan, "Target");
  study.refer(fan, "Source", fan, "Length");
  EXPECT_FALSE(source.isSameType(target));
  study.refer(fan, "Target", fan, "Count");
  EXPECT_FALSE(source.isSameType(target));
  study.refer(fan, "Target", fan, "Ratio");
  EXPECT_TRUE(source.isSameType(target));
}

TEST(OptimizationGroupVariableHostTypesTest, IsSameType_AttributeHasDisappeared_IsTrue) {
  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  Entity *pump = study.addPart("Pump");
  const OptimizationGroup group = study.addGroup(study.addStudy(), true, "Group");
  const OptimizationGroupVariable length = study.addVariable(group, fan, "Length");
  const OptimizationGroupVariable note = study.addVariable(group, pump, "Note");
  EXPECT_FALSE(length.isSameType(note));
  study.remove(pump);
  EXPECT_TRUE(length.isSameType(note));
  EXPECT_TRUE(note.isSameType(length));
}

} // namespace
} // namespace OptimizationTool
