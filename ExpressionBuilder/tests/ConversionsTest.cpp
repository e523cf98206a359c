#include "ExpressionBuilder/Conversions.h"

#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementFunctional.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <climits>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::shown;
using Testing::Value;
using Testing::valueOf;
using namespace std::string_literals;

struct Row {
  Value from;
  Value to;
};

void expectRows(const std::vector<Row> &rows) {
  for (const Row &row : rows) {
    SCOPED_TRACE(shown(row.from) + " to " + shown(row.to));
    const auto node = makeCast(constant(row.to)->type(), constant(row.from));
    EXPECT_EQ(node->kind(), ElementKind::Function);
    const Value value = valueOf(*node);
    EXPECT_TRUE(value == row.to) << "is " << shown(value);
  }
}

TEST(ConversionsTest, FromInt) {
  expectRows({{-7, -7},
              {INT_MIN, -2147483648LL},
              {-7, -7.0},
              {INT_MAX, 2147483647.0},
              {-7, true},
              {0, false},
              {-7, "-7"s},
              {1234567, "1234567"s}});
}

TEST(ConversionsTest, FromLongLong) {
  expectRows({{4294967301LL, 5},
              {2147483648LL, INT_MIN},
              {-1LL, -1},
              {5000000000LL, 5000000000LL},
              {9007199254740993LL, 9007199254740992.0},
              {9007199254740995LL, 9007199254740996.0},
              {4294967296LL, true},
              {0LL, false},
              {LLONG_MIN, "-9223372036854775808"s}});
}

TEST(ConversionsTest, FromDouble) {
  expectRows({{3.9, 3},
              {-3.9, -3},
              {3.9, 3LL},
              {-3.9, -3LL},
              {0.1, 0.1},
              {0.5, true},
              {-0.0, false},
              {std::numeric_limits<double>::quiet_NaN(), true},
              {2.5, "2.5"s},
              {1.0, "1"s},
              {0.1234567, "0.123457"s},
              {1234567.0, "1.23457e+06"s},
              {100000.0, "100000"s},
              {0.0001, "0.0001"s},
              {0.00001, "1e-05"s},
              {-0.0, "-0"s},
              {std::numeric_limits<double>::infinity(), "inf"s},
              {-std::numeric_limits<double>::infinity(), "-inf"s},
              {std::numeric_limits<double>::quiet_NaN(), "nan"s}});
}

TEST(ConversionsTest, FromDouble_OutOfRange_IsTheMostNegativeInteger) {
  const double infinity = std::numeric_limits<double>::infinity();
  expectRows({{2147483647.9, INT_MAX},
              {2147483648.0, INT_MIN},
              {-2147483648.9, INT_MIN},
              {1e19, INT_MIN},
              {infinity, INT_MIN},
              {-infinity, INT_MIN},
              {std::numeric_limits<double>::quiet_NaN(), INT_MIN},
              {9223372036854774784.0, 9223372036854774784LL},
              {9223372036854775808.0, LLONG_MIN},
              {-9223372036854775808.0, LLONG_MIN},
              {1e19, LLONG_MIN},
              {-1e19, LLONG_MIN},
              {infinity, LLONG_MIN},
              {std::numeric_limits<double>::quiet_NaN(), LLONG_MIN}});
}

TEST(ConversionsTest, FromBool) {
  expectRows({{true, 1},
              {false, 0},
              {true, 1LL},
              {false, 0LL},
              {true, 1.0},
              {false, 0.0},
              {true, true},
              {false, false},
              {true, "1"s},
              {false, "0"s}});
}

TEST(ConversionsTest, FromString_TakesTheLongestPrefix) {
  expectRows({{"42"s, 42},
              {" \t\n42 apples"s, 42},
              {"+42"s, 42},
              {"-42.9"s, -42},
              {"0x10"s, 0},
              {"1,234"s, 1},
              {"42"s, 42LL},
              {"-5000000000"s, -5000000000LL},
              {"2.5"s, 2.5},
              {"+2.5e1x"s, 25.0},
              {"2,5"s, 2.0},
              {"a\0b"s, "a\0b"s}});
}

TEST(ConversionsTest, FromString_WithoutNumber_IsZero) {
  expectRows({{""s, 0},
              {" "s, 0},
              {"apples"s, 0},
              {"- 5"s, 0},
              {""s, 0LL},
              {"x"s, 0LL},
              {""s, 0.0},
              {"x"s, 0.0},
              {"inf"s, 0.0},
              {"nan"s, 0.0},
              {"."s, 0.0},
              {""s, false},
              {"x"s, false},
              {"\0001"s, 0}});
}

TEST(ConversionsTest, FromString_HexadecimalDouble_IsNotRead) {
  expectRows({{"0x10"s, 0.0}});
}

TEST(ConversionsTest, FromString_Overflow_IsTheNearestValueOfTheType) {
  expectRows({{"2147483648"s, INT_MAX},
              {"-2147483649"s, INT_MIN},
              {"99999999999999999999"s, LLONG_MAX},
              {"-99999999999999999999"s, LLONG_MIN},
              {"1e999"s, std::numeric_limits<double>::max()},
              {"-1e999"s, -std::numeric_limits<double>::max()}});
}

TEST(ConversionsTest, FromString_ToBool_ReadsANumber) {
  expectRows({{"1"s, true}, {"0"s, false}, {" 0"s, false}, {"2"s, true}, {"-1"s, true}, {"true"s, false}});
}

TEST(ConversionsTest, Cast_EveryPair_IsANodeOfItsOwn) {
  const std::vector<Value> values = {1.0, 1, true, "1"s, 1LL};
  for (const Value &from : values) {
    for (const Value &to : values) {
      const auto node = makeCast(constant(to)->type(), constant(from));
      EXPECT_EQ(node->kind(), ElementKind::Function);
      EXPECT_EQ(node->type(), constant(to)->type());
      EXPECT_TRUE(valueOf(*node) == to) << shown(from) << " to " << shown(to);
    }
  }
}

TEST(ConversionsTest, Cast_NodeClass_HasTheTargetTypeFirst) {
  const auto node = makeCast(ValueType::Int, constant(2.5));
  using Expected = ElementFunctional<Cast<int, double>, double>;
  const auto *const cast = dynamic_cast<const Expected *>(node.get());
  ASSERT_NE(cast, nullptr);
  EXPECT_TRUE(valueOf(*cast->argument<0>()) == Value(2.5));
}

TEST(ConversionsTest, MakeCast_MissingElement_Throws) {
  EXPECT_EQ(errorOf([] { makeCast(ValueType::Int, nullptr); }), "logic_error: Invalid Cast");
}

TEST(ConversionsTest, MakeCast_UnknownTarget_Throws) {
  EXPECT_EQ(errorOf([] { makeCast(static_cast<ValueType>(0), constant(1)); }),
            "logic_error: Not implemented");
}

} // namespace
} // namespace ExpressionBuilder
