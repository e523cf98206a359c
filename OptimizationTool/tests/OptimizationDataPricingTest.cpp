// Rows priced together: the host is asked for what they have in common once, and what a call to the host leads to
// meanwhile is survived, which is what the address sanitizer watches over here.

#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/StudyDataFixture.h"
#include "testing/WrappedHost.h"

#include <limits>
#include <map>
#include <string>
#include <utility>

namespace {

using HostTesting::HostCall;
using HostTesting::Verdict;
using StudyTesting::thrownBy;
using Costs = std::vector<std::optional<double>>;

// Counts the calls, and runs an action before one of them.
class CountingHost final : public HostTesting::WrappedHost {
public:
  explicit CountingHost(HostModel::Host &host) : WrappedHost(host) {}

  // Before the call of that number, counted from 1 and from now on, of an operation of copies of attributes.
  void runBefore(const std::string &operation, int number, std::function<void()> action) {
    forget();
    m_operation = operation;
    m_number = number;
    m_action = std::move(action);
  }
  // Before the call of that number to anything else.
  void runBeforeOfModel(int number, std::function<void()> action) {
    forget();
    m_numberOfModel = number;
    m_action = std::move(action);
  }
  bool hasRun() const { return m_action == nullptr; }
  void forget() {
    m_numberOfModel = 0;
    m_number = 0;
    m_ofModel = 0;
    m_ofCopies.clear();
  }
  // Calls to anything but copies of attributes.
  int ofModel() const { return m_ofModel; }
  int ofCopies(const std::string &operation) const {
    const auto found = m_ofCopies.find(operation);
    return found == m_ofCopies.end() ? 0 : found->second;
  }

protected:
  Verdict intercept(const HostCall &call) override {
    if (!call.isDetached) {
      if (++m_ofModel == m_numberOfModel && m_action) {
        const std::function<void()> action = std::exchange(m_action, nullptr);
        action();
      }
      return Verdict::Proceed;
    }
    if (++m_ofCopies[call.operation.name] == m_number && m_operation == call.operation.name && m_action) {
      const std::function<void()> action = std::exchange(m_action, nullptr);
      action();
    }
    return Verdict::Proceed;
  }

private:
  int m_ofModel = 0;
  int m_numberOfModel = 0;
  std::map<std::string, int> m_ofCopies;
  std::string m_operation;
  int m_number = 0;
  std::function<void()> m_action;
};

class OptimizationDataPricingTest : public StudyTesting::StudyDataFixture {
protected:
  // Rows in which FanA.Speed is the number of the row and 10, and FanB.Ratio the number of the row and 1.
  void beginWithManyRows(int count) {
    begin();
    addInput("FanA.Speed");
    addInput("FanB.Ratio");
    for (int row = 1; row < count; ++row) {
      data().addVariant({std::to_string(row + 10), std::to_string(row + 1)}, "Row " + std::to_string(row),
                        std::numeric_limits<std::uint64_t>::max());
    }
    m_host = std::make_unique<CountingHost>(*HostModel::installedHost());
    m_installed = std::make_unique<HostModel::HostInstallation>(*m_host);
    reload();
  }
  ~OptimizationDataPricingTest() override {
    drop();
    m_installed.reset();
  }
  CountingHost &host() { return *m_host; }

private:
  std::unique_ptr<CountingHost> m_host;
  std::unique_ptr<HostModel::HostInstallation> m_installed;
};

TEST_F(OptimizationDataPricingTest, RecalculateCosts_ManyRows_PricesEachWithItsValues) {
  beginWithManyRows(40);
  data().setCostFunction("2.0 * %FanA.Speed% + %FanB.Ratio%");
  for (std::size_t row = 0; row < 40; ++row) {
    EXPECT_EQ(data().getVariantCost(row),
              2.0 * (static_cast<double>(row) + 10.0) + static_cast<double>(row) + 1.0);
  }
}

// More than are kept in columns at a time.
TEST_F(OptimizationDataPricingTest, RecalculateCosts_MoreRowsThanABlockHolds_PricesEachWithItsValues) {
  beginWithManyRows(1100);
  data().setCostFunction("2.0 * %FanA.Speed% + %FanB.Ratio%");
  for (std::size_t row = 0; row < 1100; ++row) {
    ASSERT_EQ(data().getVariantCost(row),
              2.0 * (static_cast<double>(row) + 10.0) + static_cast<double>(row) + 1.0);
  }
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_RowThatThrows_LeavesTheRowsBehindItAlone) {
  beginWithManyRows(40);
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(thrownBy([this] { data().setCostFunction("60 / (int)(%FanB.Ratio% - 21.0)"); }),
            "std::runtime_error: Integer division by zero");
  EXPECT_EQ(data().getVariantCost(0), -3.0);
  EXPECT_EQ(data().getVariantCost(19), -60.0);
  EXPECT_EQ(data().getVariantCost(20), 30.0);
  EXPECT_EQ(data().getVariantCost(39), 49.0);
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_AsksTheModelNoMoreForManyRowsThanForOne) {
  beginWithManyRows(40);
  data().setCostFunction("%FanA.Speed% + %FanB.Ratio%");
  host().forget();
  data().recalculateCost(0);
  const int forOne = host().ofModel();
  EXPECT_GT(forOne, 0);
  host().forget();
  data().recalculateCosts();
  EXPECT_EQ(host().ofModel(), forOne);
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_AsksTheBaselineOnceForItsUnits) {
  beginWithManyRows(40);
  data().setCostFunction("%FanA.Speed% + %FanB.Ratio%");
  host().forget();
  data().recalculateCosts();
  EXPECT_EQ(host().ofCopies("Attribute::getUnits"), 1);
  EXPECT_EQ(host().ofCopies("Attribute::getValueInUnits"), 40);
  EXPECT_EQ(host().ofCopies("Attribute::getStandardValue"), 40);
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_RowsRemovedMeanwhile_AreNotPricedAnyMore) {
  beginWithManyRows(40);
  data().setCostFunction("%FanB.Ratio%");
  data().clearCosts();
  host().runBefore("Attribute::hasValue", 30, [this] {
    // One before, the row itself, and two behind.
    for (const std::size_t row : {20U, 15U, 14U, 3U}) {
      data().removeVariant(row, false);
    }
  });
  data().recalculateCosts();
  ASSERT_EQ(data().getNumVariants(), 36U);
  EXPECT_EQ(data().getVariantName(3), "Row 4");
  EXPECT_EQ(data().getVariantCost(3), 5.0);
  EXPECT_EQ(data().getVariantName(13), "Row 16");
  EXPECT_EQ(data().getVariantCost(13), 17.0);
  EXPECT_EQ(data().getVariantName(35), "Row 39");
  EXPECT_EQ(data().getVariantCost(35), 40.0);
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_CostFunctionSetMeanwhile_ItsCostsStay) {
  beginWithManyRows(40);
  data().setCostFunction("%FanB.Ratio%");
  host().runBefore("Attribute::hasValue", 30, [this] { data().setCostFunction("1000.0 * %FanB.Ratio%"); });
  data().recalculateCosts();
  for (std::size_t row = 0; row < 40; ++row) {
    EXPECT_EQ(data().getVariantCost(row), 1000.0 * (static_cast<double>(row) + 1.0));
  }
}

// Before any row is read: while the groups and the cost function are.
TEST_F(OptimizationDataPricingTest, RecalculateCosts_CostFunctionSetWhileTheStudyIsRead_ItsCostsStay) {
  beginWithManyRows(10);
  int calls = 0;
  for (bool hasRun = true; hasRun; ++calls) {
    data().setCostFunction("%FanB.Ratio%");
    host().runBeforeOfModel(calls + 1, [this] { data().setCostFunction("1000.0 * %FanB.Ratio%"); });
    data().recalculateCosts();
    hasRun = host().hasRun();
    host().forget();
    EXPECT_EQ(data().getVariantCost(9), hasRun ? 10000.0 : 10.0) << calls;
  }
  EXPECT_GT(calls, 2);
}

TEST_F(OptimizationDataPricingTest, RecalculateCosts_CostFunctionRemovedMeanwhile_NoRowIsPriced) {
  beginWithManyRows(40);
  data().setCostFunction("%FanB.Ratio%");
  host().runBefore("Attribute::hasValue", 30, [this] { data().setCostFunction(""); });
  data().recalculateCosts();
  EXPECT_EQ(costs(), Costs(40, std::nullopt));
}

TEST_F(OptimizationDataPricingTest, RecalculateCost_CostFunctionSetMeanwhile_ItsCostStays) {
  beginWithManyRows(3);
  data().setCostFunction("%FanB.Ratio%");
  host().runBefore("Attribute::hasValue", 1, [this] { data().setCostFunction("1000.0 * %FanB.Ratio%"); });
  data().recalculateCost(1);
  EXPECT_EQ(costs(), Costs({1000.0, 2000.0, 3000.0}));
}

} // namespace
