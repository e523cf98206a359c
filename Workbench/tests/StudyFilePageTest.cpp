#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/StudyNode.h"
#include "Workbench/tests/SchemaCheck.h"
#include "Workbench/tests/StudyDocs.h"
#include "Workbench/tests/StudyText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Workbench {
namespace {

namespace fs = std::filesystem;

// A folder with the files that the page shows.
class PageFolder {
public:
  PageFolder() {
    std::string pattern = (fs::temp_directory_path() / "study-page.XXXXXX").string();
    m_path = ::mkdtemp(pattern.data());
    for (const auto &[name, text] : filesOfThePage()) {
      std::ofstream(m_path / name, std::ios::binary) << text;
    }
  }
  PageFolder(const PageFolder &) = delete;
  PageFolder &operator=(const PageFolder &) = delete;
  ~PageFolder() {
    std::error_code error;
    fs::remove_all(m_path, error);
  }
  std::string file(const std::string &name) const { return (m_path / name).string(); }

private:
  fs::path m_path;
};

StudyFile readStudy(const std::string &path, const std::string &text) {
  std::vector<FileProblem> problems;
  const HostUnits units;
  std::optional<StudyFile> study = StudyFile::parse(path, text, units, problems);
  for (const FileProblem &problem : problems) {
    ADD_FAILURE() << problem.toText() << "\n" << text;
  }
  return study ? std::move(*study) : StudyFile();
}

SchemaCheck schema() {
  NodeProblem problem;
  std::optional<StudyNode> node = readJson(fileText(OPTSTUDY_STUDY_FILE_SCHEMA), problem);
  EXPECT_TRUE(node.has_value()) << problem.message;
  return SchemaCheck(std::move(*node));
}

std::string schemaRefusal(const SchemaCheck &check, const std::string &text) {
  NodeProblem problem;
  const std::optional<StudyNode> node = readYaml(text, problem);
  EXPECT_TRUE(node.has_value()) << problem.message << "\n" << text;
  return node ? check.refusal(*node) : problem.message;
}

TEST(StudyFilePageTest, EveryExample_IsAStudyFileWithoutAMistake) {
  const PageFolder folder;
  const std::vector<std::string> studies = studiesOfThePage();
  ASSERT_GE(studies.size(), 8U);
  for (const std::string &text : studies) {
    const StudyFile study = readStudy(folder.file("page.study.yaml"), text);
    EXPECT_TRUE(study.warnings.empty()) << text;
  }
}

TEST(StudyFilePageTest, EveryExampleOfAResult_FindsWhatItsCommentSays) {
  const PageFolder folder;
  std::size_t found = 0;
  for (const std::string &text : studiesOfThePage()) {
    const StudyFile study = readStudy(folder.file("page.study.yaml"), text);
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
      const std::size_t comment = line.rfind("# ");
      for (const StudyExtractor &extractor : study.solver.extractors) {
        if (comment == std::string::npos || line.find(" " + extractor.attribute + ":") == std::string::npos) {
          continue;
        }
        const EmbeddedHost::ExtractedResult result =
            extractor.extractor->extractFromFile(folder.file(extractor.file), extractor.file);
        EXPECT_EQ(result.value.value_or(-1.0),
                  EmbeddedHost::readSolverNumber(line.substr(comment + 2)).value_or(0.0))
            << line << "\n"
            << result.reason;
        ++found;
      }
    }
  }
  EXPECT_EQ(found, 11U);
}

TEST(StudyFilePageTest, ExampleOfATable_MakesTheRowsThatThePageCounts) {
  const PageFolder folder;
  const StudyFile study = readStudy(folder.file("page.study.yaml"), studiesOfThePage().back());
  ASSERT_EQ(study.rows.size(), 2U);
  EXPECT_EQ(study.rows[0].name, "small");
  EXPECT_EQ(study.rows[0].values[0].number, 4.7);
  EXPECT_EQ(study.rows[0].values[1].number, 22.0);
  EXPECT_EQ(study.rows[1].name, "");
  EXPECT_EQ(study.rows[1].values[0].number, 22.0);
  EXPECT_EQ(study.rows[1].values[1].number, 10.0); // the baseline's
}

TEST(StudyFilePageTest, EveryKeyOfTheSchema_IsOnThePage) {
  const std::string page = fileText(OPTSTUDY_STUDY_FILE_PAGE);
  const std::string text = fileText(OPTSTUDY_STUDY_FILE_SCHEMA);
  NodeProblem problem;
  const std::optional<StudyNode> node = readJson(text, problem);
  ASSERT_TRUE(node.has_value());
  std::vector<const StudyNode *> open{&*node};
  std::size_t keys = 0;
  while (!open.empty()) {
    const StudyNode &at = *open.back();
    open.pop_back();
    for (const auto &[key, value] : at.entries()) {
      open.push_back(&value);
      if (key.text() != "properties") {
        continue;
      }
      for (const auto &[name, ignored] : value.entries()) {
        EXPECT_NE(page.find(name.text()), std::string::npos) << name.text();
        ++keys;
      }
    }
    for (const StudyNode &item : at.items()) {
      open.push_back(&item);
    }
  }
  EXPECT_GT(keys, 80U);
}

TEST(StudyFileSchemaTest, ExamplesOfThePageAndOfTheExamplesFolder_AreAccepted) {
  const SchemaCheck check = schema();
  for (const std::string &text : studiesOfThePage()) {
    EXPECT_EQ(schemaRefusal(check, text), "") << text;
  }
  const std::vector<std::string> files = exampleStudyFiles();
  EXPECT_GE(files.size(), 1U);
  for (const std::string &file : files) {
    EXPECT_EQ(schemaRefusal(check, fileText(file)), "") << file;
    readStudy(file, fileText(file));
  }
}

// Mistakes that the schema can see; each is one for the reader too.
TEST(StudyFileSchemaTest, Mistakes_AreRefused) {
  const SchemaCheck check = schema();
  const PageFolder folder;
  const std::string page = studiesOfThePage().front();
  const std::string stages = studiesOfThePage()[3];
  const struct {
    const std::string &text;
    const char *from;
    const char *to;
    const char *refusal;
  } rows[] = {
      {page, "version: 1", "version: 2", "document/version: const"},
      {page, "version: 1\n", "", "document: required version"},
      {page, "model:\n", "modle:\n", "document: required model"},
      {page, "study:\n", "extra: 1\nstudy:\n", "document/extra: additionalProperties"},
      {page, "kind: integer", "kind: int", "document/model/Filter/Stages/kind: enum"},
      {page, "R2: 10 kohm", "R2: [10 kohm]", "document/model/Filter/R2: type"},
      {page, "result: true, unit", "result: yes, unit", "document/model/Filter/CutOff/result: type"},
      {page, "from: filter.cir.template, ", "", "document/solver/templates/0: required from"},
      {page, "[ngspice, -b, filter.cir]", "ngspice -b filter.cir", "document/solver/command: type"},
      {page, "timeout: 30 s", "timeout: soon", "document/solver/timeout: pattern"},
      {page, "exit-codes: [0]", "exit-codes: [256]", "document/solver/exit-codes/0: range"},
      {page, "exit-codes: [0]", "exit-codes: []", "document/solver/exit-codes: number of items"},
      {page, "file: result.txt, pattern: 'peak=(.*)'", "file: result.txt", "document/solver/results"},
      {page, "file: result.txt, pattern", "file: result.txt, whole: true, pattern",
       "document/solver/results/Filter.Peaking: oneOf"},
      {page, "target: minimise", "target: minimize", "document/study/target: enum"},
      {page, "stop-after: 5", "stop-after: -1", "document/study/stop-after: range"},
      {page, "variants:\n", "variant:\n", "document/study/variant: additionalProperties"},
      {page, "minimum: 10 nF, maximum: 30 nF", "minimum: 10 nF, maximun: 30 nF", "document/study/variants"},
      {stages, "name: mesh, run", "name: me sh, run", "document/solver/commands/0/name: pattern"},
      {stages, "exit-code: 2", "exit-code: 200", "document/solver/retries/exit-code: range"},
      {stages, "keep: outputs", "keep: none", "document/solver/keep: enum"},
      {stages, "4 MB", "4 MeB", "document/solver/output-limit: pattern"},
      {stages, "1 GB", "1 gigabyte", "document/solver/file-limit: pattern"},
      {stages, "100 MB", "-100 MB", "document/solver/folder-limit: pattern"}};
  for (const auto &row : rows) {
    const std::string text = with(row.text, row.from, row.to);
    const std::string refusal = schemaRefusal(check, text);
    EXPECT_EQ(refusal.compare(0, std::string(row.refusal).size(), row.refusal), 0) << row.to << "\n"
                                                                                   << refusal;
    std::vector<FileProblem> problems;
    const HostUnits units;
    EXPECT_FALSE(StudyFile::parse(folder.file("page.study.yaml"), text, units, problems).has_value())
        << row.to;
  }
}

} // namespace
} // namespace Workbench
