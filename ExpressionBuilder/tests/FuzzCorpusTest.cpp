#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/FunctionOverload.h"
#include "ExpressionBuilder/fuzz/ExpressionCase.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Fuzzing::caseOf;
using Fuzzing::Examiner;
using Fuzzing::ExpressionCase;

ExpressionCase caseOfText(const std::string &bytes) {
  const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
  return caseOf(copy.data(), copy.size());
}

TEST(FuzzCorpusTest, KeptCases_HaveNoContradiction) {
  Examiner examiner;
  std::size_t cases = 0;
  for (const auto &entry : std::filesystem::directory_iterator(OPTSTUDY_FUZZ_CORPUS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    ASSERT_TRUE(file) << entry.path();
    EXPECT_EQ(examiner.contradictionIn(caseOfText(bytes)), "") << entry.path();
    ++cases;
  }
  EXPECT_GE(cases, 600U);
}

/// Gives another value each time, which no function of the language does.
struct Counting {
  double operator()(double argument) const {
    static double calls = 0.0;
    calls += 1.0;
    return argument + calls;
  }
};

struct Surprising {
  double operator()(double /*argument*/) const { throw std::runtime_error("Surprise"); }
};

template <class Function> void prepareWithAnotherAbs(BuilderBase &builder) {
  Fuzzing::declareVariables(builder);
  builder.registerOverload("abs", {ValueType::Double},
                           std::make_unique<ElementFunctionConstructorOverload<Function, double>>());
}

TEST(FuzzCorpusTest, FunctionWithAnotherValueEachTime_IsFound) {
  EXPECT_EQ(Examiner(prepareWithAnotherAbs<Counting>).contradictionIn(caseOfText("Z%a%+1.0")), "");
  EXPECT_EQ(Examiner(prepareWithAnotherAbs<Counting>).contradictionIn(caseOfText("Zabs(%a%)+1.0")),
            "value of tree and copy");
}

TEST(FuzzCorpusTest, ErrorThatIsNotDocumented_IsFound) {
  EXPECT_EQ(Examiner(prepareWithAnotherAbs<Surprising>).contradictionIn(caseOfText("Zabs(%a%)+1.0")),
            "not a documented error: Surprise");
  EXPECT_EQ(Examiner(prepareWithAnotherAbs<Surprising>).contradictionIn(caseOfText("Zabs(1.0)")),
            "not a documented error: Surprise");
}

TEST(FuzzCorpusTest, FirstByte_ChoosesTypeAndOptions) {
  const ExpressionCase plain = caseOfText("Z%a%");
  EXPECT_EQ(plain.type, ValueType::Double);
  EXPECT_TRUE(plain.foldConstants);
  EXPECT_FALSE(plain.allowEscapes);
  EXPECT_FALSE(plain.hasManyRows);
  EXPECT_EQ(plain.text, "%a%");
  EXPECT_EQ(caseOfText("^").type, ValueType::LongLong);
  EXPECT_FALSE(caseOfText("U").foldConstants);
  EXPECT_TRUE(caseOfText("F").allowEscapes);
  EXPECT_TRUE(caseOfText("x").hasManyRows);
  EXPECT_EQ(caseOfText("").text, "");
}

} // namespace
} // namespace ExpressionBuilder
