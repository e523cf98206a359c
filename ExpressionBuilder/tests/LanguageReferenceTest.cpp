#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Functions.h"
#include "ExpressionBuilder/tests/LanguagePage.h"
#include "ExpressionBuilder/tests/TestValue.h"
#include "ExpressionBuilder/tests/TextErrors.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::Example;
using Testing::ExampleBlock;
using Testing::executionProblems;
using Testing::languageElements;
using Testing::LanguagePage;
using Testing::readPage;
using Testing::valueOf;
using Words = std::vector<std::string>;

/// A page that has lost its examples fails.
constexpr std::size_t kMinimumExamples = 230;

std::string pageText() {
  std::ifstream file(OPTSTUDY_LANGUAGE_PAGE, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << OPTSTUDY_LANGUAGE_PAGE;
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

Words allProblems(const LanguagePage &page) {
  Words problems = page.problems;
  for (const ExampleBlock &block : page.blocks) {
    const Words more = executionProblems(block);
    problems.insert(problems.end(), more.begin(), more.end());
  }
  return problems;
}

/// What the page's examples with a value consist of.
std::set<std::string> shownElements(const LanguagePage &page) {
  std::set<std::string> shown;
  for (const Example &example : page.examples()) {
    if (example.outcome == Example::Outcome::Value) {
      const Words elements = languageElements(example.text);
      shown.insert(elements.begin(), elements.end());
    }
  }
  return shown;
}

void expectShown(const std::set<std::string> &shown, const Words &elements) {
  for (const std::string &element : elements) {
    EXPECT_EQ(shown.count(element), 1U) << "no example with " << element;
  }
}

TEST(LanguageReferenceTest, EveryExample_HasTheOutcomeThatThePageGives) {
  const LanguagePage page = readPage(pageText());
  EXPECT_EQ(allProblems(page), Words{});
  EXPECT_GE(page.examples().size(), kMinimumExamples);
}

TEST(LanguageReferenceTest, EveryFunctionAndConstant_HasAnExample) {
  Words names = {"pi", "e"};
  for (const std::string &name : BuilderBase().functionNames()) {
    names.push_back(name + "(");
  }
  EXPECT_EQ(names.size(), 2U + 25U);
  expectShown(shownElements(readPage(pageText())), names);
}

TEST(LanguageReferenceTest, EveryOperator_HasAnExample) {
  expectShown(
      shownElements(readPage(pageText())),
      {"+",  "-",        "*",        "/",        "==", "!=",    "<",        "<=",     ">",        ">=", "&&",
       "||", "prefix !", "prefix -", "prefix +", "?:", "(int)", "(double)", "(bool)", "(string)", "(",  ","});
}

TEST(LanguageReferenceTest, EveryType_HasAnExample) {
  const Words types = {"double ", "int ", "bool ", "string ", "long long "};
  std::set<std::string> shown;
  for (const Example &example : readPage(pageText()).examples()) {
    for (const std::string &type : types) {
      if (example.outcome == Example::Outcome::Value && example.expected.compare(0, type.size(), type) == 0) {
        shown.insert(type);
      }
    }
  }
  expectShown(shown, types);
}

TEST(LanguageReferenceTest, EveryErrorOfATextOrItsEvaluation_HasAnExampleAndARemedy) {
  const std::string text = pageText();
  std::set<std::string> shown;
  for (const Example &example : readPage(text).examples()) {
    if (example.outcome != Example::Outcome::Value) {
      const std::string undefined = "Undefined variable : ";
      shown.insert(example.expected.compare(0, undefined.size(), undefined) == 0 ? undefined
                                                                                 : example.expected);
    }
  }
  const std::set<std::string> errors =
      textErrorsAnd({"Undefined variable : ", "Missing Variable", "Variable has invalid Return Type",
                     "Circular Dependency"});
  for (const std::string &error : errors) {
    EXPECT_EQ(shown.count(error), 1U) << "no example ends with " << error;
    EXPECT_NE(text.find("\n| \"" + error + "\""), std::string::npos) << "nothing to do about " << error;
    shown.erase(error);
  }
  shown.erase("Invalid expression");
  EXPECT_EQ(shown, std::set<std::string>{}) << "in the page and not in this list";
}

TEST(LanguageReferenceTest, EveryErrorThatOnlyAProgramMeets_IsOnThePage) {
  BuilderBase builder;
  SimpleVariableCollection &variables = builder.variables();
  variables.declare("x", constant(1.5));
  builder.registerOverload("hollow", {ValueType::Int}, nullptr);
  builder.registerOverload("wrong", {ValueType::Int},
                           std::make_unique<ElementFunctionConstructorOverload<Maximum<int>, int, int>>());
  const ValueType unknown = static_cast<ValueType>(6);
  // The error that each call really gives; the texts beside them are those of the page.
  const std::vector<std::pair<std::string, std::string>> errors = {
      {errorOf([&] { variables.replace("y", constant(1.5)); }), "logic_error: Variable does not exist"},
      {errorOf([&] { variables.replace("x", constant(1)); }), "Invalid Type"},
      {errorOf([&] { variables.declare("y", nullptr); }), "Invalid Type"},
      {errorOf([&] { valueOf(*makeVariable(ValueType::Int, "x"), variables); }), "Variable is of wrong type"},
      {errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, nullptr, constant(1)); }),
       "No left hand side of binary operator"},
      {errorOf([] { makeBinary(BinaryOperator::Add, ValueType::Int, constant(1), nullptr); }),
       "No right hand side of binary operator"},
      {errorOf([] { valueOf(*makeConditional(ValueType::Int, constant(false), constant(1), nullptr)); }),
       "No Element in container"},
      {errorOf([&] { builder.build("hollow(1)"); }), "Syntax Error : No Overload"},
      {errorOf([&] { builder.build("wrong(1)"); }), "Invalid number of arguments"},
      {errorOf([&] { builder.castTo(ValueType::Int, nullptr); }), "logic_error: Invalid Cast"},
      {errorOf([&] { valueTypeName(unknown); }), "logic_error: Not implemented"},
      {errorOf([&] { mergedValueType(unknown, unknown); }), "logic_error: Invalid option"},
  };
  const std::string text = pageText();
  for (const auto &[given, expected] : errors) {
    EXPECT_EQ(given, expected);
    const std::string prefix = "logic_error: ";
    const std::string message =
        expected.compare(0, prefix.size(), prefix) == 0 ? expected.substr(prefix.size()) : expected;
    EXPECT_NE(text.find('"' + message + '"'), std::string::npos) << message;
  }
}

TEST(LanguageReferenceTest, Limits_AreThoseOfTheBuilder) {
  const std::string text = pageText();
  static_assert(BuilderBase::kMaximumTextBytes == std::size_t{16} * 1024 * 1024);
  static_assert(BuilderBase::kMaximumNesting == 1'000'000);
  EXPECT_NE(text.find("at most 16 MiB"), std::string::npos);
  EXPECT_NE(text.find("at most 1,000,000 levels"), std::string::npos);
}

// The checks above are worth something only if a wrong page does not pass them.

Words problemsOf(const std::string &content) {
  return allProblems(readPage(content));
}

TEST(LanguagePageTest, RightExamples_HaveNoProblems) {
  EXPECT_EQ(problemsOf("# Title\n\n```expr\nwith x = 2.5\n\n%x% * 2 => int 4\n1 + => error: "
                       "Syntax error - Right hand side invalid\n```\n\nprose\n"),
            Words{});
}

TEST(LanguagePageTest, WrongOutcomes_AreReportedWithTheirLines) {
  EXPECT_EQ(
      problemsOf("```expr\n1 + 1 => int 3\n1 + 1 => double 2\n1 + => int 1\n1 => error: Syntax error\n```\n"),
      (Words{"line 2: '1 + 1' gives int 2", "line 3: '1 + 1' gives int 2",
             "line 4: '1 +' gives error: Syntax error - Right hand side invalid",
             "line 5: '1' gives int 1"}));
}

TEST(LanguagePageTest, WrongCause_IsReported) {
  EXPECT_EQ(problemsOf("```expr\nwith x = 1\n%x% => cause: Missing Variable\n```\n"),
            Words{"line 3: '%x%' gives cause: (none)"});
}

TEST(LanguagePageTest, WrongWarning_IsReported) {
  EXPECT_EQ(problemsOf("```expr\n1 + 1 => int 2\n  warning at 0: \"1\" is odd\n```\n"),
            Words{"line 2: '1 + 1': warnings are\n  (none)"});
}

TEST(LanguagePageTest, WarningThatIsNotThere_IsReportedWhereAllAreListed) {
  const std::string example = "7 / 2 => int 3\n```\n";
  EXPECT_EQ(problemsOf("```expr\n" + example), Words{});
  EXPECT_EQ(
      problemsOf("```expr\nall warnings\n" + example),
      Words{"line 3: '7 / 2': warnings are\n  at 2: \"/\" divides two whole numbers and drops the fraction."
            " Write \"2.0\" instead of \"2\" to keep it"});
}

TEST(LanguagePageTest, LineThatIsNoExample_IsReported) {
  EXPECT_EQ(problemsOf("```expr\n1 + 1 = 2\nwith x\n  warning at 0: early\n```\n"),
            (Words{"line 2: not understood: 1 + 1 = 2", "line 3: not understood: x",
                   "line 4: a warning without an example"}));
}

TEST(LanguagePageTest, ExampleOutsideOfABlock_IsReported) {
  EXPECT_EQ(problemsOf("so `1 + 1 => int 3`\n"),
            Words{"line 1: an example outside of a block: so `1 + 1 => int 3`"});
}

TEST(LanguagePageTest, OpenBlock_IsReported) {
  EXPECT_EQ(problemsOf("```expr\n1 => int 1\n"), Words{"line 2: the last block is not closed"});
}

TEST(LanguagePageTest, VariableWithoutALiteral_IsReported) {
  EXPECT_EQ(problemsOf("```expr\nwith x = 2 m\n%x% => int 2\n```\n"), Words{"line 3: no literal: 2 m"});
}

TEST(LanguagePageTest, LanguageElements_TellPrefixFromBinaryAndSkipNamesAndTexts) {
  EXPECT_EQ(languageElements("%a - b% - -%x% + 1e-3 * -5"), (Words{"-", "prefix -", "+", "*"}));
  EXPECT_EQ(languageElements("\"a * b\" != (int)pi"), (Words{"!=", "(int)", "pi"}));
  EXPECT_EQ(languageElements("!(1 <= 2) ? max(1, 2) : 3"), (Words{"prefix !", "(", "<=", "?:", "max(", ","}));
}

} // namespace
} // namespace ExpressionBuilder
