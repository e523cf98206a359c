#include "HostModel/Attribute.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/tests/ManagedStudy.h"
#include "OptimizationTool/tests/ScriptedModel.h"

#include <gtest/gtest.h>

#include <set>

namespace OptimizationTool {
namespace {

using EntityModel::Attribute;
using EntityModel::Entity;
using EntityModel::ModelVersionStudyType;
using StudyTesting::ManagedStudy;
using Texts = std::vector<std::string>;

constexpr ModelVersionStudyType kOrdinary = ModelVersionStudyType::Parametric;
constexpr ModelVersionStudyType kOptimality = ModelVersionStudyType::Optimality;
constexpr ModelVersionStudyType kCalibration = ModelVersionStudyType::Calibration;

// An entity of any type.
class TypedEntity final : public StudyTesting::ScriptedEntity {
public:
  explicit TypedEntity(const EntityModel::TypeRef &type) : m_type(type, 1) {}

  EntityModel::Type getType() const override { return m_type; }

private:
  EntityModel::Type m_type;
};

// An attribute of which the named predicates are true, and which writes down what it is asked.
class QuestionedAttribute final : public StudyTesting::SilentAttribute<Attribute> {
public:
  explicit QuestionedAttribute(std::set<std::string> truths) : m_truths(std::move(truths)) {}

  Entity *getOwnerEntity() override { return owner; }
  const Entity *getOwnerEntity() const override {
    questions.emplace_back("owner");
    return owner;
  }
  bool isReadOnly(bool includeVersion) const override {
    return answer(includeVersion ? "read-only with version" : "read-only");
  }
  bool isLocked() const override { return answer("locked"); }
  bool isMonitor() const override { return answer("monitor"); }
  bool isInternal() const override { return answer("internal"); }
  bool isInteger() const override { return answer("integer"); }
  bool isReal() const override { return answer("real"); }
  bool isChoice() const override { return answer("choice"); }
  bool isBoolean() const override { return answer("boolean"); }
  bool isEntityLink() const override { return answer("link"); }
  bool isTypeReference() const override { return answer("type"); }
  bool isEntityList() const override { return answer("list"); }
  bool isText() const override { return answer("text"); }

  Entity *owner = nullptr;
  mutable Texts questions;

private:
  bool answer(const char *question) const {
    questions.emplace_back(question);
    return m_truths.count(question) != 0;
  }

  std::set<std::string> m_truths;
};

// Forwards everything to another host but the question whether an attribute has an impact.
class ImpactHost final : public HostModel::Host, private EntityModel::ModellingImpactService {
public:
  explicit ImpactHost(HostModel::Host &host) : m_host(host) {}

  EntityModel::EntityEditorService *getEntityEditor() override { return m_host.getEntityEditor(); }
  EntityGUI::EntityManagerService *getEntityManager() override { return m_host.getEntityManager(); }
  EntityModel::StudyTypeNameService *getStudyTypeNames() override { return m_host.getStudyTypeNames(); }
  EntityModel::ModellingImpactService *getModellingImpact() override { return this; }
  ProjectData::ProjectStoreService *getProjectStore() override { return m_host.getProjectStore(); }
  FileSystem::DirectoryService *getDirectories() override { return m_host.getDirectories(); }

  bool answer = false;
  Texts questions;

private:
  bool hasModellingImpact(const Attribute *attribute, const std::string &kind, bool includeOwners) override {
    questions.push_back(kind + (includeOwners ? " 1" : " 0") + (attribute == nullptr ? " null" : ""));
    return answer;
  }

  HostModel::Host &m_host;
};

struct Answer {
  bool isValid = false;
  Texts questions;
};

bool operator==(const Answer &a, const Answer &b) {
  return a.isValid == b.isValid && a.questions == b.questions;
}

void PrintTo(const Answer &answer, std::ostream *stream) {
  *stream << answer.isValid << ' ' << ::testing::PrintToString(answer.questions);
}

class IsItemValidTest : public ::testing::Test {
protected:
  IsItemValidTest() { study.begin(); }

  static Answer ask(const std::set<std::string> &truths, bool isInput, bool isResult,
                    ModelVersionStudyType type, Entity *owner = nullptr) {
    QuestionedAttribute attribute(truths);
    attribute.owner = owner;
    const bool isValid = OptimizationManager::isItemValid(&attribute, isInput, isResult, type);
    return {isValid, attribute.questions};
  }
  static bool isInput(const std::set<std::string> &truths, ModelVersionStudyType type) {
    return ask(truths, true, false, type).isValid;
  }
  static bool isOutput(const std::set<std::string> &truths, ModelVersionStudyType type) {
    return ask(truths, false, true, type).isValid;
  }

  ManagedStudy study;
  ImpactHost impact{study.recording()};
  HostModel::HostInstallation installation{impact};
};

TEST_F(IsItemValidTest, IsItemValid_CurrentVersionWithoutStudy_FalseForEveryAttribute) {
  ManagedStudy::manager().endStudy(false);

  EXPECT_EQ(ask({"real"}, true, false, kOrdinary), (Answer{false, {}}));
  EXPECT_EQ(ask({"real"}, false, true, kOrdinary), (Answer{false, {}}));
  EXPECT_EQ(ask({"real", "read-only"}, false, false, kOptimality), (Answer{false, {}}));
}

TEST_F(IsItemValidTest, IsItemValid_NullAttribute_False) {
  for (const bool isInputSide : {true, false}) {
    for (const bool isResult : {true, false}) {
      EXPECT_FALSE(OptimizationManager::isItemValid(nullptr, isInputSide, isResult, kOrdinary));
      EXPECT_FALSE(OptimizationManager::isItemValid(nullptr, isInputSide, isResult, kOptimality));
    }
  }
}

TEST_F(IsItemValidTest, IsItemValid_Input_MustBeEditableAndNoResult) {
  EXPECT_TRUE(ask({"real"}, true, false, kOrdinary).isValid);
  EXPECT_EQ(ask({"real", "read-only"}, true, false, kOrdinary), (Answer{false, {"read-only"}}));
  EXPECT_EQ(ask({"real"}, true, true, kOrdinary), (Answer{false, {"read-only"}}));
}

TEST_F(IsItemValidTest, IsItemValid_Output_MustBeReadOnlyOrAResult) {
  EXPECT_EQ(ask({"real"}, false, false, kOrdinary), (Answer{false, {"read-only"}}));
  EXPECT_TRUE(ask({"real"}, false, true, kOrdinary).isValid);
  EXPECT_TRUE(ask({"real", "read-only"}, false, false, kOrdinary).isValid);
  EXPECT_TRUE(ask({"real", "read-only"}, false, true, kOrdinary).isValid);
}

TEST_F(IsItemValidTest, IsItemValid_ReadOnlyVersion_DoesNotCount) {
  EXPECT_TRUE(isInput({"real", "read-only with version"}, kOrdinary));
}

TEST_F(IsItemValidTest, IsItemValid_Locked_False) {
  EXPECT_EQ(ask({"real", "locked", "internal"}, true, false, kOrdinary),
            (Answer{false, {"read-only", "locked"}}));
  EXPECT_EQ(ask({"real", "locked"}, false, true, kOptimality), (Answer{false, {"read-only", "locked"}}));
}

TEST_F(IsItemValidTest, IsItemValid_Internal_False) {
  EXPECT_EQ(ask({"real", "internal"}, true, false, kOrdinary),
            (Answer{false, {"read-only", "locked", "internal"}}));
  EXPECT_EQ(ask({"real", "internal"}, false, true, kOptimality),
            (Answer{false, {"read-only", "locked", "internal"}}));
}

TEST_F(IsItemValidTest, IsItemValid_OrdinaryStudy_TriesTheKindsInOrder) {
  EXPECT_EQ(ask({}, true, false, kOrdinary), (Answer{false,
                                                     {"read-only", "locked", "internal", "integer", "real",
                                                      "type", "choice", "text", "boolean", "link"}}));
  EXPECT_EQ(ask({"link", "list"}, true, false, kOrdinary),
            (Answer{false,
                    {"read-only", "locked", "internal", "integer", "real", "type", "choice", "text",
                     "boolean", "link", "list"}}));
  EXPECT_EQ(
      ask({"type"}, true, false, kOrdinary),
      (Answer{true, {"read-only", "locked", "internal", "integer", "real", "type", "owner", "monitor"}}));
}

TEST_F(IsItemValidTest, IsItemValid_OrdinaryStudy_AcceptsEachKindAlone) {
  for (const char *kind : {"integer", "real", "type", "choice", "text", "boolean", "link"}) {
    SCOPED_TRACE(kind);
    EXPECT_TRUE(isInput({kind}, kOrdinary));
    EXPECT_TRUE(isOutput({kind}, kOrdinary));
    EXPECT_TRUE(isInput({kind}, static_cast<ModelVersionStudyType>(2)));
    EXPECT_TRUE(isInput({kind}, static_cast<ModelVersionStudyType>(5)));
    EXPECT_TRUE(isInput({kind}, ModelVersionStudyType::None));
  }
  EXPECT_FALSE(isInput({"list"}, kOrdinary));
  EXPECT_FALSE(isInput({"link", "list"}, kOrdinary));
  EXPECT_FALSE(isOutput({"link", "list"}, kOrdinary));
}

TEST_F(IsItemValidTest, IsItemValid_ListSpoilsTheLinkOnly) {
  EXPECT_TRUE(isInput({"link", "list", "text"}, kOrdinary));
}

TEST_F(IsItemValidTest, IsItemValid_NarrowStudies_TryTheKindsInOrder) {
  for (const ModelVersionStudyType type : {kOptimality, kCalibration}) {
    EXPECT_EQ(ask({"integer", "type", "text", "link"}, true, false, type),
              (Answer{false, {"read-only", "locked", "internal", "real", "choice", "boolean"}}));
    EXPECT_EQ(ask({"choice"}, true, false, type),
              (Answer{true, {"read-only", "locked", "internal", "real", "choice", "owner", "monitor"}}));
  }
}

TEST_F(IsItemValidTest, IsItemValid_NarrowStudies_AcceptRealsChoicesAndBooleans) {
  for (const ModelVersionStudyType type : {kOptimality, kCalibration}) {
    for (const char *kind : {"real", "choice", "boolean"}) {
      SCOPED_TRACE(kind);
      EXPECT_TRUE(isInput({kind}, type));
      EXPECT_TRUE(isOutput({kind}, type));
    }
    for (const char *kind : {"integer", "type", "text", "link", "list"}) {
      SCOPED_TRACE(kind);
      EXPECT_FALSE(isInput({kind}, type));
      EXPECT_FALSE(isOutput({kind}, type));
    }
  }
}

TEST_F(IsItemValidTest, IsItemValid_OwnerIsADisplayOrSummary_False) {
  for (const EntityModel::TypeRef &type :
       {EntityModel::Result_Plane_t, EntityModel::Result_Cloud_t, EntityModel::Streamline_Plot_t,
        EntityModel::Max_and_Min_t, EntityModel::Push_Pin_t, EntityModel::Overlay_Text_Box_t,
        EntityModel::Chassis_Summary_t, EntityModel::Room_Summary_t, EntityModel::External_Domain_Summary_t,
        EntityModel::PCB_Summary_t}) {
    SCOPED_TRACE(std::string(type.getLabel()));
    TypedEntity owner(type);
    impact.questions.clear();

    EXPECT_FALSE(ask({"real"}, true, false, kOrdinary, &owner).isValid);
    EXPECT_FALSE(ask({"real"}, false, true, kOrdinary, &owner).isValid);
    EXPECT_FALSE(ask({"boolean"}, true, false, kOptimality, &owner).isValid);
    EXPECT_EQ(impact.questions, Texts{});
  }
}

TEST_F(IsItemValidTest, IsItemValid_AnyOtherOwner_IsAccepted) {
  TypedEntity owner(EntityModel::OptimizationGroup_t);

  EXPECT_EQ(ask({"real"}, true, false, kOrdinary, &owner),
            (Answer{true, {"read-only", "locked", "internal", "integer", "real", "owner", "monitor"}}));
  EXPECT_TRUE(ask({"real"}, false, true, kOrdinary, &owner).isValid);
}

TEST_F(IsItemValidTest, IsItemValid_InputWithoutEffectOnTheSimulation_False) {
  impact.answer = true;

  EXPECT_EQ(ask({"real"}, true, false, kOrdinary),
            (Answer{false, {"read-only", "locked", "internal", "integer", "real", "owner"}}));
  EXPECT_EQ(impact.questions, Texts{"NoCFDImpact 1"});
}

TEST_F(IsItemValidTest, IsItemValid_Output_IsNotAskedForItsEffect) {
  impact.answer = true;

  EXPECT_TRUE(isOutput({"real"}, kOrdinary));
  EXPECT_EQ(impact.questions, Texts{});
}

TEST_F(IsItemValidTest, IsItemValid_Monitor_OnlyAsOutputOfAnOptimality) {
  EXPECT_TRUE(isOutput({"real", "monitor"}, kOptimality));
  EXPECT_FALSE(isInput({"real", "monitor"}, kOptimality));
  EXPECT_FALSE(isOutput({"real", "monitor"}, kCalibration));
  EXPECT_FALSE(isInput({"real", "monitor"}, kCalibration));
  EXPECT_FALSE(isOutput({"real", "monitor"}, kOrdinary));
  EXPECT_FALSE(isInput({"real", "monitor"}, kOrdinary));
}

// Members of a real model.
TEST_F(IsItemValidTest, IsItemValid_MembersOfAModel) {
  const auto isValid = [&](const char *path, bool isInputSide, ModelVersionStudyType type) {
    return OptimizationManager::isItemValid(ManagedStudy::attribute(study.fan(), path), isInputSide, false,
                                            type);
  };

  EXPECT_TRUE(isValid("Length", true, kOrdinary));
  EXPECT_FALSE(isValid("Length", false, kOrdinary));
  EXPECT_TRUE(isValid("Neighbour", true, kOrdinary));
  EXPECT_FALSE(isValid("Neighbour", true, kOptimality));
  EXPECT_FALSE(isValid("Children", true, kOrdinary));
  EXPECT_TRUE(isValid("Note", true, kOrdinary));
  EXPECT_FALSE(isValid("Shape", true, kOrdinary));
  EXPECT_TRUE(isValid("Shape.Height", true, kOptimality));
  EXPECT_TRUE(isValid("Power", false, kOrdinary));
  EXPECT_FALSE(isValid("Power", true, kOrdinary));
  EXPECT_FALSE(isValid("Field", false, kOrdinary));
  EXPECT_TRUE(isValid("Field", false, kOptimality));
}

} // namespace
} // namespace OptimizationTool
