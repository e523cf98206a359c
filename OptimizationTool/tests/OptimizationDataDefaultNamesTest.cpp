// A row without a name gets the default name with the lowest number that no version has, whatever became of versions
// and labels since the last row.

#include "EmbeddedHost/Commands.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/FreedLabels.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <QCoreApplication>
#include <QTranslator>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

namespace OptimizationTool {
namespace {

using EntityModel::ModelVersion;
using Texts = std::vector<std::string>;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

std::string defaultName(int number) {
  return "Parametric Alternate " + std::to_string(number) + " of Base";
}

class OptimizationDataDefaultNamesTest : public StudyTesting::StudyDataFixture {
protected:
  // The name of a new row.
  std::string addRow() { return data().getVariantName(data().addVariant(Texts{}, "", kAtEnd)); }
  void addRows(int count) {
    for (int row = 0; row < count; ++row) {
      addRow();
    }
  }
  static void destroyVersion(const std::string &label) {
    bool isDestroyed = false;
    changeManager().destroyVersion(version(label), nullptr, isDestroyed);
  }
};

TEST_F(OptimizationDataDefaultNamesTest, RowsOneAfterTheOther_NumbersGoUp) {
  begin();
  addRows(3);
  EXPECT_EQ(rowNames(), (Texts{"Base", defaultName(1), defaultName(2), defaultName(3)}));
}

TEST_F(OptimizationDataDefaultNamesTest, RowRemovedWithItsVersion_ItsNumberComesNext) {
  begin();
  addRows(3);
  data().removeVariant(2, true);
  EXPECT_EQ(addRow(), defaultName(2));
  EXPECT_EQ(addRow(), defaultName(4));
}

TEST_F(OptimizationDataDefaultNamesTest, RowRemovedWithoutItsVersion_ItsNumberStaysTaken) {
  begin();
  addRows(3);
  data().removeVariant(2, false);
  EXPECT_EQ(addRow(), defaultName(4));
}

TEST_F(OptimizationDataDefaultNamesTest, RowRenamed_ItsNumberComesNext) {
  begin();
  addRows(3);
  data().setVariantName(1, "Better");
  EXPECT_EQ(addRow(), defaultName(1));
  EXPECT_EQ(addRow(), defaultName(4));
}

TEST_F(OptimizationDataDefaultNamesTest, VersionRelabelledByTheHost_ItsNumberComesNext) {
  begin();
  addRows(3);
  version(defaultName(2))->setLabel("Mine");
  EXPECT_EQ(addRow(), defaultName(2));
}

TEST_F(OptimizationDataDefaultNamesTest, VersionDestroyedByTheHost_ItsNumberComesNextBesideTheOldRow) {
  begin();
  addRows(3);
  destroyVersion(defaultName(3));
  EXPECT_EQ(addRow(), defaultName(3));
  EXPECT_EQ(rowNames(), (Texts{"Base", defaultName(1), defaultName(2), defaultName(3), defaultName(3)}));
}

TEST_F(OptimizationDataDefaultNamesTest, OneOfTwoVersionsWithTheLabelGoes_TheNumberStaysTaken) {
  begin();
  addRows(2);
  ModelVersion *other =
      changeManager().startNewVersion(defaultName(1), "", "", "", nullptr, version("Base"), false);
  ASSERT_NE(other, nullptr);
  other->setLabel("Other");
  EXPECT_EQ(addRow(), defaultName(3));
}

TEST_F(OptimizationDataDefaultNamesTest, NumberTakenByAVersionOutsideTheStudy_IsLeftOut) {
  begin();
  addRow();
  changeManager().startNewVersion(defaultName(2), "", "", "", nullptr, version("Base"), false);
  EXPECT_EQ(addRow(), defaultName(3));
  destroyVersion(defaultName(2));
  EXPECT_EQ(addRow(), defaultName(2));
}

TEST_F(OptimizationDataDefaultNamesTest, LabelTakenAndFreedBetweenRows_IsNotLeftOut) {
  begin();
  addRows(2);
  changeManager().startNewVersion(defaultName(3), "", "", "", nullptr, version("Base"), false);
  destroyVersion(defaultName(3));
  EXPECT_EQ(addRow(), defaultName(3));
}

TEST_F(OptimizationDataDefaultNamesTest, BaseNameChanged_CountsFromOneUnderTheNewName) {
  begin();
  addRows(3);
  data().setBaseVersionName("Other");
  EXPECT_EQ(addRow(), "Parametric Alternate 1 of Other");
  data().setBaseVersionName("Base");
  EXPECT_EQ(addRow(), defaultName(4));
}

TEST_F(OptimizationDataDefaultNamesTest, StudyTypeChanged_CountsFromOneUnderTheNewType) {
  begin();
  addRows(3);
  version("Base")->setStudyType(EntityModel::ModelVersionStudyType::Optimality);
  EXPECT_EQ(addRow(), "Optimality Alternate 1 of Base");
}

// Another language.
class OtherNamesTranslator final : public QTranslator {
public:
  QString translate(const char * /*context*/, const char *sourceText, const char * /*disambiguation*/,
                    int /*n*/) const override {
    return std::strcmp(sourceText, "%1 Alternate %2 of %3") == 0 ? QStringLiteral("%3: %1 %2") : QString();
  }
  bool isEmpty() const override { return false; }
};

TEST_F(OptimizationDataDefaultNamesTest, LanguageChanged_CountsFromOneInTheNewOne) {
  begin();
  addRows(3);
  int argc = 1;
  char name[] = "test";
  char *argv[] = {name, nullptr};
  const QCoreApplication application(argc, argv);
  OtherNamesTranslator translator;
  QCoreApplication::installTranslator(&translator);
  EXPECT_EQ(addRow(), "Base: Parametric 1");
  QCoreApplication::removeTranslator(&translator);
  EXPECT_EQ(addRow(), defaultName(4));
}

TEST_F(OptimizationDataDefaultNamesTest, CopyVersionMissing_NoRow_AndTheNextOneGetsTheSameNumber) {
  begin();
  addRow();
  const std::string copy = data().getCopyVersionName();
  data().setCopyVersionName("");
  EXPECT_EQ(data().addVariant(Texts{}, "", kAtEnd), 0U);
  data().setCopyVersionName(copy);
  EXPECT_EQ(addRow(), defaultName(2));
}

TEST_F(OptimizationDataDefaultNamesTest, HostThatCountsNoFreedLabels_SameNames) {
  begin();
  addRows(2);
  record();
  ASSERT_EQ(dynamic_cast<EntityModel::FreedLabels *>(&changeManager()), nullptr);
  data().removeVariant(1, true);
  EXPECT_EQ(addRow(), defaultName(1));
  EXPECT_EQ(addRow(), defaultName(3));
}

// The name of every new row is that of a count from one over the labels that versions have.
TEST_F(OptimizationDataDefaultNamesTest, LabelsComeAndGoAtRandom_AlwaysTheLowestFreeNumber) {
  begin();
  std::mt19937 random(20261121);
  const auto below = [&random](std::size_t count) {
    return static_cast<std::size_t>(random() % count);
  };
  int notTheHighest = 0;
  for (int step = 0; step < 400; ++step) {
    const std::size_t rows = data().getNumVariants();
    const std::size_t row = rows > 1 ? 1 + below(rows - 1) : 0;
    const std::size_t what = below(8);
    if (row == 0 || what < 4) {
      int number = 1;
      while (version(defaultName(number)) != nullptr) {
        ++number;
      }
      ASSERT_EQ(addRow(), defaultName(number)) << step;
      notTheHighest += version(defaultName(number + 1)) != nullptr ? 1 : 0;
    } else if (what < 6) {
      data().removeVariant(row, what == 4);
    } else if (version(data().getVariantName(row)) != nullptr) {
      // Some names are default names, too, so that labels change places.
      const std::string label =
          below(2) == 0 ? "Row " + std::to_string(step) : defaultName(1 + static_cast<int>(below(60)));
      if (what == 6) {
        data().setVariantName(row, label);
      } else {
        version(data().getVariantName(row))->setLabel(label);
      }
    }
  }
  EXPECT_GT(notTheHighest, 20);
}

} // namespace
} // namespace OptimizationTool
