#include "EmbeddedHost/TemplateFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace EmbeddedHost {
namespace {

class Values : public TemplateValueSource {
public:
  explicit Values(std::map<std::string, TemplateValue> values) : m_values(std::move(values)) {}

  TemplateValue value(const TemplatePlaceholder &placeholder) const override {
    const auto found =
        m_values.find(placeholder.name() + (placeholder.unit.empty() ? "" : " in " + placeholder.unit));
    return found == m_values.end() ? TemplateNoValue{"there is no such attribute"} : found->second;
  }

private:
  std::map<std::string, TemplateValue> m_values;
};

std::string render(const std::string &text, const std::map<std::string, TemplateValue> &values) {
  std::vector<FileProblem> problems;
  const std::optional<TemplateFile> file = TemplateFile::parse("in.txt", text, problems);
  std::optional<std::string> rendered;
  if (file) {
    rendered = file->render(Values(values), problems);
  }
  std::string result = rendered.value_or("");
  for (const FileProblem &problem : problems) {
    result += problem.toText() + "\n";
  }
  return result;
}

TEST(TemplateFileTest, Render_TextWithoutPlaceholders_IsCopiedByteByByte) {
  const std::string text("a }} {b}\r\n\0\xff{ {x} }", 19);
  EXPECT_EQ(render(text, {}), text);
}

TEST(TemplateFileTest, Render_EveryKindOfValue_IsWrittenPlainly) {
  EXPECT_EQ(
      render("{{A.x}}|{{ A.n }}|{{A.b}}|{{A.t}}",
             {{"A.x", 0.1}, {"A.n", 12345678901234567LL}, {"A.b", true}, {"A.t", std::string("{{A.x}}")}}),
      "0.1|12345678901234567|1|{{A.x}}");
}

TEST(TemplateFileTest, Render_UnitAndFormat_AreTakenFromThePlaceholder) {
  EXPECT_EQ(render("R1 in a {{Filter.R1 in kohm as %.4e}}\nC={{Filter.C as %g}} {{F.x in N.m}}",
                   {{"Filter.R1 in kohm", 10.0}, {"Filter.C", 1e-8}, {"F.x in N.m", 3.0}}),
            "R1 in a 1.0000e+01\nC=1e-08 3");
}

TEST(TemplateFileTest, Render_FormatOnWholeNumberAndTruth_IsApplied) {
  EXPECT_EQ(render("{{A.n as %05d}} {{A.b as %.1f}}", {{"A.n", 42LL}, {"A.b", true}}), "00042 1.0");
}

TEST(TemplateFileTest, Parse_EntityNameWithFullStop_SplitsAtTheLast) {
  std::vector<FileProblem> problems;
  const auto file = TemplateFile::parse("in.txt", "{{Stage 1.b.R}}", problems);
  ASSERT_TRUE(file.has_value());
  ASSERT_EQ(file->placeholders().size(), 1U);
  EXPECT_EQ(file->placeholders()[0].entity, "Stage 1.b");
  EXPECT_EQ(file->placeholders()[0].attribute, "R");
}

TEST(TemplateFileTest, Parse_Placeholder_KnowsItsPlace) {
  std::vector<FileProblem> problems;
  const auto file = TemplateFile::parse("in.txt", "one\ntwo {{A.x}} {{A.y}}\n{{A.z}}", problems);
  ASSERT_TRUE(file.has_value());
  ASSERT_EQ(file->placeholders().size(), 3U);
  EXPECT_EQ(file->placeholders()[1].line, 2U);
  EXPECT_EQ(file->placeholders()[1].column, 13U);
  EXPECT_EQ(file->placeholders()[2].line, 3U);
  EXPECT_EQ(file->placeholders()[2].column, 1U);
}

TEST(TemplateFileTest, Render_UnknownPlaceholder_IsAnErrorWithItsPlace) {
  EXPECT_EQ(render("a\n  {{A.x}} {{B.y}}\n", {{"A.x", 1.0}}),
            "in.txt:2:11: B.y: there is no such attribute\n");
}

TEST(TemplateFileTest, Parse_Malformed_ReportsEveryPlace) {
  const struct {
    const char *text;
    const char *message;
  } rows[] = {
      {"{{A.x\n}}", "in.txt:1:1: this placeholder is not closed with }} on its line\n"},
      {"x {{A.x", "in.txt:1:3: this placeholder is not closed with }} on its line\n"},
      {"{{}}", "in.txt:1:1: a placeholder reads {{Entity.Attribute}}, not \"\"\n"},
      {"{{x}}", "in.txt:1:1: a placeholder reads {{Entity.Attribute}}, not \"x\"\n"},
      {"{{.x}}", "in.txt:1:1: a placeholder reads {{Entity.Attribute}}, not \".x\"\n"},
      {"{{A.}}", "in.txt:1:1: a placeholder reads {{Entity.Attribute}}, not \"A.\"\n"},
      {"{{A.x as %s}}",
       "in.txt:1:1: \"%s\" is no number format: a number format ends with one of e, E, f, g, G and d\n"},
      {"{{A.x\n{{y}}", "in.txt:1:1: this placeholder is not closed with }} on its line\n"
                       "in.txt:2:1: a placeholder reads {{Entity.Attribute}}, not \"y\"\n"}};
  for (const auto &row : rows) {
    EXPECT_EQ(render(row.text, {}), row.message) << row.text;
  }
}

TEST(TemplateFileTest, Render_ValueThatCannotBeWritten_IsAnError) {
  EXPECT_EQ(render("{{A.x as %d}}", {{"A.x", 1.5}}), "in.txt:1:1: A.x: 1.5 cannot be written as %d\n");
  EXPECT_EQ(render("{{A.x}}", {{"A.x", std::nan("")}}),
            "in.txt:1:1: A.x: nan cannot be written as a number\n");
  EXPECT_EQ(render("{{A.t as %g}}", {{"A.t", std::string("hello")}}),
            "in.txt:1:1: A.t is a text and takes no number format\n");
}

} // namespace
} // namespace EmbeddedHost
