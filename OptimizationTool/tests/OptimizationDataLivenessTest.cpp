// Whatever a study tells the host may lead to the end of the study: an observer reloads, a dialog that the host
// shows meanwhile ends it. What was at work then stops without touching the study data again, which is what the
// address sanitizer watches over here.

#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "testing/RecordingProgress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <set>
#include <tuple>

namespace OptimizationTool {
namespace {

using EmbeddedHost::HostBehaviour;
using StudyTesting::ListeningChecker;
using StudyTesting::RecordedStudy;
using StudyTesting::VersionListener;
using Texts = std::vector<std::string>;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();
constexpr OptimizationData::UpdateType kWrite = OptimizationData::WriteToModel;
constexpr OptimizationData::UpdateType kRead = OptimizationData::ReadFromModel;

// A progress object that ends the study in its n-th call.
class EndingProgress final : public Tools::ToolProgress {
public:
  EndingProgress(int number, std::function<void()> end) : m_number(number), m_end(std::move(end)) {}

  void setText(const std::string & /*text*/) override { call(); }
  void finish() override { call(); }
  void start() override { call(); }
  void start(int /*position*/) override { call(); }
  bool isRunning() const override { return false; }
  void pushLevel(std::uint32_t steps) override {
    stepCounts.push_back(steps);
    call();
  }
  void advance(std::uint32_t /*steps*/,
               const Tools::Progress::AdditionalProgressAbstract & /*additional*/) override {
    call();
  }
  void reset() override { call(); }
  void setNumberOfSteps(int /*steps*/) override { call(); }
  void setPosition(int /*position*/) override { call(); }

private:
  void call() {
    if (++m_count == m_number) {
      m_end();
    }
  }

  int m_number;
  int m_count = 0;
  std::function<void()> m_end;
};

struct Operation {
  const char *name;
  std::function<void(RecordedStudy &)> prepare;
  std::function<void(RecordedStudy &)> run;
};

void begin(RecordedStudy &study) {
  study.begin();
  study.addRow("A", "11", "21");
  study.addRow("B", "12", "22");
  study.data().setCostFunction("%Fan.Speed% + %Fan.Power%");
}

const std::vector<Operation> &operations() {
  static const std::vector<Operation> all = {
      {"AddVariant", begin,
       [](RecordedStudy &study) {
         study.data().addVariant({"13", "23"}, "C", kAtEnd);
       }},
      {"AddVariantFromRow", begin,
       [](RecordedStudy &study) {
         study.data().addVariant(1, "C", kAtEnd);
       }},
      {"RemoveVariantAndVersion", begin,
       [](RecordedStudy &study) {
         study.data().removeVariant(1, true);
       }},
      {"RemoveVariantOnly", begin,
       [](RecordedStudy &study) {
         study.data().removeVariant(1, false);
       }},
      {"SetVariantName", begin,
       [](RecordedStudy &study) {
         study.adjusted().folderAnswers = {"first", "second", "third"};
         study.data().setVariantName(1, "C");
       }},
      {"SetVariantValues", begin,
       [](RecordedStudy &study) {
         study.data().setVariantValues("A", {"13", "23"});
       }},
      {"SetVariantValue", begin,
       [](RecordedStudy &study) {
         study.data().setVariantValue(1, 0, "13");
       }},
      {"UpdateAlternates", begin,
       [](RecordedStudy &study) {
         study.data().updateAlternates(kWrite | kRead, nullptr);
       }},
      {"CreateCopyVersion", begin,
       [](RecordedStudy &study) {
         study.data().createCopyVersion(true);
       }},
      {"AdoptCopyVersion",
       [](RecordedStudy &study) {
         begin(study);
         study.data().setCopyVersionName("");
       },
       [](RecordedStudy &study) {
         study.data().createCopyVersion(false);
       }},
      {"CreateMissingVersions",
       [](RecordedStudy &study) {
         begin(study);
         study.destroy("A");
         study.destroy("B");
         study.destroy("Steady Copy of Base");
         study.data().setCopyVersionName("");
       },
       [](RecordedStudy &study) {
         study.data().createMissingVersions();
       }},
      {"LoadStudy",
       [](RecordedStudy &study) {
         begin(study);
         study.data().setCopyVersionName("");
         study.show("Base");
         study.reopen();
       },
       [](RecordedStudy &study) {
         study.data().initializeVariants(nullptr);
       }},
      {"LoadStudyFromAnotherVersion",
       [](RecordedStudy &study) {
         begin(study);
         study.show("A");
         study.reopen();
       },
       [](RecordedStudy &study) {
         study.data().initializeVariants(nullptr);
       }},
      {"LoadNewStudy", [](RecordedStudy &study) { study.makeEntity(); },
       [](RecordedStudy &study) {
         study.data().initializeVariants(true, nullptr);
       }},
  };
  return all;
}

std::string operationOf(const std::string &call) {
  return call.substr(0, call.find('('));
}

// Calls that are made one after the other whatever becomes of the study, because neither looks at it: the marks of
// one version, and the end of every new version, after which the project is to be saved in any case.
bool belongTogether(const std::string &first, const std::string &second) {
  static const std::set<std::string> marks = {
      "ModelVersion::setLabel", "ModelVersion::clearStudy", "ModelVersion::removeFromStudy",
      "ModelVersion::setStudyCaseFlag", "ModelVersion::setReadOnlyVersion"};
  if (first == "EntityManager::checkSelectionsAreValid()") {
    return second == "EntityManager::setNeedsSave(true)";
  }
  return marks.count(operationOf(first)) != 0 && marks.count(operationOf(second)) != 0;
}

// An operation over a host of one kind: the numbers say whether switches notify and whether new versions become
// current.
class EndedStudyTest : public ::testing::TestWithParam<std::tuple<std::size_t, bool, bool>> {
protected:
  // A study on which the operation is about to run, with a model checker.
  struct Prepared {
    explicit Prepared(const Operation &operation, const HostBehaviour &behaviour) : study(behaviour) {
      operation.prepare(study);
      study.project().setModelChecker(&checker);
      study.host().clear();
    }
    Prepared(const Prepared &) = delete;
    Prepared &operator=(const Prepared &) = delete;
    ~Prepared() { study.project().setModelChecker(nullptr); }

    ListeningChecker checker;
    RecordedStudy study;
  };

  const Operation &operation() const { return operations().at(std::get<0>(GetParam())); }
  HostBehaviour behaviour() const { return {std::get<1>(GetParam()), std::get<2>(GetParam())}; }

  // How many calls the operation makes that change something.
  int countCalls() const {
    Prepared prepared(operation(), behaviour());
    prepared.study.hooked().runBefore(0, nullptr);
    operation().run(prepared.study);
    return prepared.study.hooked().count();
  }
};

TEST_P(EndedStudyTest, StudyEndsInsideAnyCall_TheOperationStopsQuietly) {
  const int count = countCalls();
  EXPECT_GT(count, 0);
  for (int number = 1; number <= count; ++number) {
    Prepared prepared(operation(), behaviour());
    RecordedStudy &study = prepared.study;
    std::size_t callsAtEnd = 0;
    study.hooked().runBefore(number, [&study, &callsAtEnd] {
      callsAtEnd = study.host().texts().size();
      study.drop();
    });

    EXPECT_NO_THROW(operation().run(study));

    EXPECT_FALSE(study.isAlive());
    ASSERT_GE(callsAtEnd, 1U);
    const Texts texts = study.host().texts();
    const std::string &last = texts[callsAtEnd - 1];
    SCOPED_TRACE(last);
    for (std::size_t call = callsAtEnd; call < texts.size(); ++call) {
      EXPECT_TRUE(belongTogether(last, texts[call])) << texts[call];
    }
  }
}

TEST_P(EndedStudyTest, ObserverEndsTheStudyAndItsVersions_TheOperationStopsQuietly) {
  for (int number = 1; number <= 4; ++number) {
    SCOPED_TRACE(number);
    Prepared prepared(operation(), behaviour());
    RecordedStudy &study = prepared.study;
    int notifications = 0;
    const VersionListener listener([&](const std::string &) {
      if (++notifications != number) {
        return;
      }
      study.drop();
      // As the end of a study does that destroys all that follows the baseline.
      EntityModel::ChangeManager &manager = study.project().changeManager();
      const EntityModel::ModelVersion *root = study.project().rootVersion();
      std::vector<EntityModel::ModelVersion *> doomed(root->beginNext(), root->endNext());
      bool isDestroyed = false;
      manager.destroyVersions(doomed, nullptr, isDestroyed);
    });

    EXPECT_NO_THROW(operation().run(study));

    EXPECT_EQ(study.isAlive(), notifications < number);
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, EndedStudyTest,
                         ::testing::Combine(::testing::Range(std::size_t{0}, operations().size()),
                                            ::testing::Bool(), ::testing::Bool()),
                         [](const auto &parameters) {
                           return std::string(operations().at(std::get<0>(parameters.param)).name) +
                                  (std::get<1>(parameters.param) ? "_HostNotifies" : "_HostIsSilent") +
                                  (std::get<2>(parameters.param) ? "_NewVersionsBecomeCurrent" : "");
                         });

TEST(OptimizationDataLivenessTest, ModelCheckerEndsTheStudy_NeitherReadsNorPricesNorMarks) {
  RecordedStudy study;
  begin(study);
  ListeningChecker checker;
  checker.action = [&study](EntityModel::ChangeSet &) {
    study.drop();
  };
  study.project().setModelChecker(&checker);
  study.host().clear();

  study.data().updateAlternates(kWrite | kRead, nullptr);

  EXPECT_FALSE(study.isAlive());
  EXPECT_EQ(study.host().texts().back().rfind("ModelChecker::check(", 0), 0U);
  study.project().setModelChecker(nullptr);
}

TEST(OptimizationDataLivenessTest, AddVariant_StudyEndsWhileItIsMade_IsZero) {
  RecordedStudy study;
  begin(study);
  const VersionListener listener([&study](const std::string &) { study.drop(); });

  EXPECT_EQ(study.data().addVariant({"13", "23"}, "C", kAtEnd), 0U);
}

TEST(OptimizationDataLivenessTest, ProgressEndsTheStudy_ThePassStopsQuietly) {
  for (int number = 1; number <= 10; ++number) {
    SCOPED_TRACE(number);
    RecordedStudy study;
    begin(study);
    std::size_t callsAtEnd = 0;
    EndingProgress progress(number, [&study, &callsAtEnd] {
      callsAtEnd = study.host().texts().size();
      study.drop();
    });

    EXPECT_NO_THROW(study.data().updateAlternates(kWrite | kRead, &progress));

    EXPECT_FALSE(study.isAlive());
    EXPECT_EQ(study.host().texts().size(), callsAtEnd);
  }
}

TEST(OptimizationDataLivenessTest, ProgressEndsTheStudy_LoadingStopsQuietly) {
  for (int number = 1; number <= 9; ++number) {
    SCOPED_TRACE(number);
    RecordedStudy study;
    begin(study);
    study.reopen();
    std::size_t callsAtEnd = 0;
    EndingProgress progress(number, [&study, &callsAtEnd] {
      callsAtEnd = study.host().texts().size();
      study.drop();
    });

    EXPECT_NO_THROW(study.data().initializeVariants(&progress));

    EXPECT_FALSE(study.isAlive());
    EXPECT_EQ(study.host().texts().size(), callsAtEnd);
  }
}

Texts rowNames(RecordedStudy &study) {
  Texts names;
  for (std::size_t row = 0; row < study.data().getNumVariants(); ++row) {
    names.push_back(study.data().getVariantName(row));
  }
  return names;
}

TEST(OptimizationDataLivenessTest, RowGoesInsideAnyCall_ThePassLeavesItAndGoesOn) {
  int count = 0;
  for (int number = 0; number <= count; ++number) {
    RecordedStudy study;
    begin(study);
    ListeningChecker checker;
    study.project().setModelChecker(&checker);
    study.host().clear();
    std::size_t callsAtEnd = 0;
    study.hooked().runBefore(number, [&study, &callsAtEnd] {
      study.data().removeVariant(1, false);
      callsAtEnd = study.host().texts().size();
    });

    EXPECT_NO_THROW(study.data().updateAlternates(kWrite | kRead, nullptr));

    study.project().setModelChecker(nullptr);
    const Texts texts = study.host().texts();
    if (number == 0) {
      // The pass that nobody disturbs: three rows, two switches and the way back.
      count = study.hooked().count();
      EXPECT_EQ(count, 27);
      continue;
    }
    SCOPED_TRACE(number);
    ASSERT_GE(callsAtEnd, 1U);
    EXPECT_EQ(rowNames(study), (Texts{"Base", "B"}));
    EXPECT_EQ(study.currentLabel(), "Base");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), R"(ModelVersion::setLabel("B", "B"))"), 1);
    for (std::size_t call = callsAtEnd; call < texts.size(); ++call) {
      EXPECT_EQ(texts[call].find("\"A\""), std::string::npos) << texts[call];
      EXPECT_EQ(texts[call].find("\"11\""), std::string::npos) << texts[call];
    }
  }
}

TEST(OptimizationDataLivenessTest, ObserverRemovesRowsWithTheirVersions_ThePassGoesOnWithTheOthers) {
  for (const std::string &removed : Texts{"A", "B"}) {
    for (int number = 1; number <= 3; ++number) {
      SCOPED_TRACE(removed + std::to_string(number));
      RecordedStudy study;
      begin(study);
      study.addRow("C", "13", "23");
      int notifications = 0;
      const VersionListener listener([&](const std::string &) {
        if (++notifications == number) {
          study.data().removeVariant(study.data().getVariantIndex(removed).value(), true);
        }
      });

      EXPECT_NO_THROW(study.data().updateAlternates(kWrite | kRead, nullptr));

      EXPECT_EQ(rowNames(study), removed == "A" ? (Texts{"Base", "B", "C"}) : (Texts{"Base", "A", "C"}));
      EXPECT_EQ(study.currentLabel(), "Base");
      EXPECT_EQ(study.cells(2), (Texts{"13", "23", "100", "50"}));
      EXPECT_EQ(study.valueIn("C", study.fan(), "Speed"), "13");
    }
  }
}

TEST(OptimizationDataLivenessTest, RowOfTheVersionThatWasCurrentGoes_ThePassEndsWhereItIs) {
  RecordedStudy study;
  begin(study);
  study.show("A");
  study.host().clear();
  bool isRemoved = false;
  const VersionListener listener([&](const std::string &) {
    if (!isRemoved) {
      isRemoved = true;
      study.data().removeVariant(1, true);
    }
  });

  EXPECT_NO_THROW(study.data().updateAlternates(kRead, nullptr));

  EXPECT_EQ(rowNames(study), (Texts{"Base", "B"}));
  EXPECT_EQ(study.currentLabel(), "B");
  EXPECT_EQ(study.host().texts().back(), R"(ChangeManager::findVersion("A", entity=null))");
}

TEST(OptimizationDataLivenessTest, ProgressRemovesARow_ItIsNeitherShownNorUpdated) {
  RecordedStudy study;
  begin(study);
  // The fifth call is the text of row 0, the seventh that of row 1.
  EndingProgress progress(7, [&study] { study.data().removeVariant(1, false); });
  study.host().clear();

  study.data().updateAlternates(kRead, &progress);

  EXPECT_EQ(rowNames(study), (Texts{"Base", "B"}));
  const Texts texts = study.host().texts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), R"(ModelVersion::setLabel("A", "A"))"), 0);
}

TEST(OptimizationDataLivenessTest, RemoveVariant_ObserverRemovesAnEarlierRow_EachRemovesItsOwn) {
  RecordedStudy study;
  begin(study);
  study.addRow("C", "13", "23");
  bool isRemoved = false;
  const VersionListener listener([&](const std::string &) {
    if (!isRemoved) {
      isRemoved = true;
      study.data().removeVariant(1, true);
    }
  });

  study.data().removeVariant(2, true);

  EXPECT_EQ(rowNames(study), (Texts{"Base", "C"}));
}

TEST(OptimizationDataLivenessTest, RemoveVariant_ObserverRemovesTheSameRow_NoOtherRowGoes) {
  RecordedStudy study;
  begin(study);
  bool isRemoved = false;
  const VersionListener listener([&](const std::string &) {
    if (!isRemoved) {
      isRemoved = true;
      study.data().removeVariant(1, false);
    }
  });

  study.data().removeVariant(1, true);

  EXPECT_EQ(rowNames(study), (Texts{"Base", "B"}));
}

TEST(OptimizationDataLivenessTest, StudyIsReplacedInsideASwitch_TheNewOneIsLeftAlone) {
  RecordedStudy study;
  begin(study);
  bool isReplaced = false;
  const VersionListener listener([&](const std::string &) {
    if (!isReplaced) {
      isReplaced = true;
      study.reopen();
    }
  });

  study.data().setVariantValue(1, 0, "13");

  EXPECT_TRUE(isReplaced);
  EXPECT_EQ(study.data().getNumVariants(), 0U);
  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_EQ(study.currentLabel(), "A");
}

} // namespace
} // namespace OptimizationTool
