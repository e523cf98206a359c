#include "ExpressionBuilder/ElementFactory.h"

#include "ExpressionBuilder/ElementVariable.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <string>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::Value;
using Testing::valueOf;

constexpr auto kZero = static_cast<ValueType>(0);
constexpr auto kSix = static_cast<ValueType>(6);

TEST(ElementFactoryTest, MakeConstant_EveryType) {
  EXPECT_TRUE(valueOf(*makeConstant<double>(2.5)) == Value(2.5));
  EXPECT_TRUE(valueOf(*makeConstant<int>(2)) == Value(2));
  EXPECT_TRUE(valueOf(*makeConstant<bool>(true)) == Value(true));
  EXPECT_TRUE(valueOf(*makeConstant<std::string>("a")) == Value(std::string("a")));
  EXPECT_TRUE(valueOf(*makeConstant<long long>(2)) == Value(2LL));
  EXPECT_EQ(makeConstant<int>(2)->kind(), ElementKind::Constant);
}

TEST(ElementFactoryTest, MakeVariable_EveryType) {
  for (const ValueType type :
       {ValueType::Double, ValueType::Int, ValueType::Bool, ValueType::String, ValueType::LongLong}) {
    const auto node = makeVariable(type, "x");
    EXPECT_EQ(node->type(), type);
    EXPECT_EQ(node->kind(), ElementKind::Variable);
  }
}

TEST(ElementFactoryTest, UnknownTypeCode_IsNotImplemented) {
  const std::string message = "logic_error: Not implemented";
  EXPECT_EQ(errorOf([] { makeVariable(kZero, "x"); }), message);
  EXPECT_EQ(errorOf([] { makeVariable(kSix, "x"); }), message);
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, kZero, constant(1), constant(1)); }), message);
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, kSix, constant(1), constant(1)); }), message);
  EXPECT_EQ(errorOf([] { makeConditional(kZero, constant(true), constant(1), constant(1)); }), message);
  EXPECT_EQ(errorOf([] { makeConditional(kSix, constant(true), constant(1), constant(1)); }), message);
}

/// Reports a code that no value type has.
class CodelessElement : public ElementVariable<int> {
public:
  explicit CodelessElement(ValueType type) : ElementVariable<int>("x"), m_type(type) {}
  ValueType type() const override { return m_type; }

private:
  ValueType m_type;
};

TEST(ElementFactoryTest, MakeUnary_OperandWithUnknownTypeCode_IsNotImplemented) {
  for (const ValueType type : {kZero, kSix}) {
    for (const UnaryOperator operation : {UnaryOperator::Negate, UnaryOperator::LogicalNot}) {
      EXPECT_EQ(errorOf([&] { makeUnary(operation, std::make_unique<CodelessElement>(type)); }),
                "logic_error: Not implemented");
    }
  }
}

TEST(ElementFactoryTest, MissingOperand_Throws) {
  EXPECT_EQ(errorOf([] { makeUnary(UnaryOperator::Negate, nullptr); }),
            "No right hand side of unary operator");
  EXPECT_EQ(errorOf([] { makeUnary(UnaryOperator::LogicalNot, nullptr); }),
            "No right hand side of unary operator");
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, nullptr, constant(1)); }),
            "No left hand side of binary operator");
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, constant(1), nullptr); }),
            "No right hand side of binary operator");
}

TEST(ElementFactoryTest, OperandOfAnotherType_Throws) {
  const std::string message = "logic_error: Invalid Cast";
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, constant(1.0), constant(1)); }),
            message);
  EXPECT_EQ(errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, constant(1), constant(1.0)); }),
            message);
  EXPECT_EQ(errorOf([] { makeConditional(ValueType::Int, constant(1), constant(1), constant(1)); }), message);
  EXPECT_EQ(errorOf([] { makeConditional(ValueType::Int, constant(true), constant(1.0), constant(1)); }),
            message);
}

TEST(ElementFactoryTest, MakeConditional_MissingChild_IsFoundByValidation) {
  const auto node = makeConditional(ValueType::Int, constant(true), constant(1), nullptr);
  EXPECT_EQ(errorOf([&] { node->validate(EmptyVariableCollection::instance()); }), "No Element in container");
}

TEST(ElementFactoryTest, MakeConditional_EveryType) {
  const auto chosen = [](const Value &value) {
    return valueOf(
        *makeConditional(constant(value)->type(), constant(true), constant(value), constant(value)));
  };
  EXPECT_TRUE(chosen(2.5) == Value(2.5));
  EXPECT_TRUE(chosen(2) == Value(2));
  EXPECT_TRUE(chosen(true) == Value(true));
  EXPECT_TRUE(chosen(std::string("a")) == Value(std::string("a")));
  EXPECT_TRUE(chosen(2LL) == Value(2LL));
}

TEST(ElementFactoryTest, MakeConstantFrom_HoldsTheValue) {
  const auto sum = makeBinary(BinaryOperator::Add, ValueType::Int, constant(1), constant(2));
  const auto folded = makeConstantFrom(*sum);
  EXPECT_EQ(folded->kind(), ElementKind::Constant);
  EXPECT_TRUE(valueOf(*folded) == Value(3));
}

} // namespace
} // namespace ExpressionBuilder
