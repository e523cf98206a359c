#include "Workbench/RunKeys.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

namespace Workbench {
namespace {

using EmbeddedHost::ExtractionRule;

StudyFile study(const ExtractionRule &rule) {
  StudyFile study;
  StudyStage stage;
  stage.command = {{"solve", false, {}}};
  study.solver.stages.push_back(stage);
  StudyExtractor extractor;
  extractor.attribute = "A.b";
  extractor.source = ResultSource::File;
  extractor.file = "out";
  extractor.unit = "m";
  std::string problem;
  extractor.extractor = EmbeddedHost::ResultExtractor::create(rule, problem);
  EXPECT_EQ(problem, "");
  study.solver.extractors.push_back(std::move(extractor));
  return study;
}

ExtractionRule rule() {
  ExtractionRule rule;
  rule.pattern = "(x)(y)";
  rule.firstColumn = 1;
  rule.lastColumn = 2;
  return rule;
}

RunContents contents() {
  return {{{"in", "1 2", "", ""}, {"lib", "", "/somewhere/lib", "abc"}}, {{"solve", "-b"}}, {"A.c=2"}};
}

RunKeys keys(const StudyFile &study, const RunContents &run = contents(), const std::string &program = "p") {
  return runKeys(study, {program}, run);
}

TEST(RunKeysTest, SameInputs_GiveTheSameKeys) {
  EXPECT_EQ(keys(study(rule())).texts(), keys(study(rule())).texts());
  EXPECT_EQ(keys(study(rule())).run.rfind("run-2:", 0), 0U);
  EXPECT_EQ(keys(study(rule())).extract.rfind("extract-2:", 0), 0U);
}

TEST(RunKeysTest, EveryInput_ChangesTheRunKeyAlone) {
  std::set<std::string> known{keys(study(rule())).run};
  const std::string extract = keys(study(rule())).extract;
  const auto expectNew = [&](const StudyFile &changedStudy, const RunContents &changed, const char *what,
                             const std::string &program = "p") {
    const RunKeys found = keys(changedStudy, changed, program);
    EXPECT_TRUE(known.insert(found.run).second) << what;
    EXPECT_EQ(found.extract, extract) << what;
  };
  expectNew(study(rule()), contents(), "program", "q");
  const struct {
    const char *what;
    void (*change)(StudyFile &study);
  } studies[] = {
      {"environment",
       [](StudyFile &study) {
         study.solver.environment = {{"A", "1"}};
       }},
      {"exit codes",
       [](StudyFile &study) {
         study.solver.stages[0].exitCodes = {0, 1};
       }},
      {"stage name",
       [](StudyFile &study) {
         study.solver.stages[0].name = "a";
       }},
  };
  for (const auto &row : studies) {
    StudyFile changed = study(rule());
    row.change(changed);
    expectNew(changed, contents(), row.what);
  }
  const struct {
    const char *what;
    void (*change)(RunContents &run);
  } runs[] = {{"command",
               [](RunContents &run) {
                 run.commands[0] = {"solve-b"};
               }},
              {"argument",
               [](RunContents &run) {
                 run.commands[0] = {"solve", "-c"};
               }},
              {"another stage",
               [](RunContents &run) {
                 run.commands.push_back({"solve", "-b"});
               }},
              {"content",
               [](RunContents &run) {
                 run.files[0].content = "1 2 ";
               }},
              {"name",
               [](RunContents &run) {
                 run.files[0].name = "inp";
               }},
              {"copied file", [](RunContents &run) {
                 run.files[1].fingerprint = "abd";
               }}};
  for (const auto &row : runs) {
    RunContents changed = contents();
    row.change(changed);
    expectNew(study(rule()), changed, row.what);
  }
}

TEST(RunKeysTest, WhatDoesNotChangeResults_ChangesNoKey) {
  StudyFile changed = study(rule());
  changed.solver.retries.fill(3);
  changed.solver.keep = KeptFiles::Failed;
  changed.solver.installHint = "apt";
  changed.solver.stages[0].timeLimit = std::chrono::seconds(1);
  changed.cost = "1.0";
  EXPECT_EQ(keys(changed).texts(), keys(study(rule())).texts());
}

TEST(RunKeysTest, ConstantOfAFormula_ChangesTheExtractKeyAlone) {
  RunContents changed = contents();
  changed.constants[0] = "A.c=3";
  EXPECT_EQ(keys(study(rule()), changed).run, keys(study(rule())).run);
  EXPECT_NE(keys(study(rule()), changed).extract, keys(study(rule())).extract);
}

TEST(RunKeysTest, PlaceOfACopiedFile_ChangesNothing) {
  RunContents moved = contents();
  moved.files[1].copyOf = "/elsewhere/lib";
  EXPECT_EQ(keys(study(rule()), moved).run, keys(study(rule())).run);
}

TEST(RunKeysTest, EveryFieldOfARule_ChangesTheExtractKeyAlone) {
  const struct {
    const char *what;
    void (*change)(ExtractionRule &rule);
  } rows[] = {{"kind",
               [](ExtractionRule &rule) {
                 rule.kind = EmbeddedHost::ExtractionKind::WholeText;
               }},
              {"reduction",
               [](ExtractionRule &rule) {
                 rule.reduction = EmbeddedHost::Reduction::Last;
               }},
              {"after",
               [](ExtractionRule &rule) {
                 rule.after = "a";
               }},
              {"until",
               [](ExtractionRule &rule) {
                 rule.until = "a";
               }},
              {"pattern",
               [](ExtractionRule &rule) {
                 rule.pattern = "(x)(z)";
               }},
              {"group",
               [](ExtractionRule &rule) {
                 rule.group = 2;
               }},
              {"key",
               [](ExtractionRule &rule) {
                 rule.key = "a";
               }},
              {"separators",
               [](ExtractionRule &rule) {
                 rule.separators = "=";
               }},
              {"column title",
               [](ExtractionRule &rule) {
                 rule.column.title = "a";
               }},
              {"column number",
               [](ExtractionRule &rule) {
                 rule.column.number = 2;
               }},
              {"delimiter",
               [](ExtractionRule &rule) {
                 rule.delimiter = ';';
               }},
              {"skipped lines",
               [](ExtractionRule &rule) {
                 rule.skippedLines = 1;
               }},
              {"where",
               [](ExtractionRule &rule) {
                 rule.whereColumn.emplace();
               }},
              {"where title",
               [](ExtractionRule &rule) {
                 rule.whereColumn = {"t", 0};
               }},
              {"where number",
               [](ExtractionRule &rule) {
                 rule.whereColumn = {"", 1};
               }},
              {"where value",
               [](ExtractionRule &rule) {
                 rule.whereValue = "1";
               }},
              {"nearest",
               [](ExtractionRule &rule) {
                 rule.isNearest = true;
               }},
              {"pointer",
               [](ExtractionRule &rule) {
                 rule.pointer = "/a";
               }},
              {"line",
               [](ExtractionRule &rule) {
                 rule.lineNumber = 1;
               }},
              {"first column",
               [](ExtractionRule &rule) {
                 rule.firstColumn = 2;
               }},
              {"last column", [](ExtractionRule &rule) {
                 rule.lastColumn = 3;
               }}};
  const RunKeys before = keys(study(rule()));
  std::set<std::string> known{before.extract};
  for (const auto &row : rows) {
    ExtractionRule changed = rule();
    row.change(changed);
    const RunKeys after = keys(study(changed));
    EXPECT_TRUE(known.insert(after.extract).second) << row.what;
    EXPECT_EQ(after.run, before.run) << row.what;
  }
}

TEST(RunKeysTest, EveryOtherWayToReadResults_ChangesTheExtractKeyAlone) {
  const struct {
    const char *what;
    void (*change)(StudyFile &study);
  } rows[] = {{"attribute",
               [](StudyFile &study) {
                 study.solver.extractors[0].attribute = "A.c";
               }},
              {"source",
               [](StudyFile &study) {
                 study.solver.extractors[0].source = ResultSource::StandardError;
               }},
              {"file",
               [](StudyFile &study) {
                 study.solver.extractors[0].file = "out2";
               }},
              {"stage",
               [](StudyFile &study) {
                 study.solver.extractors[0].stage = 0;
               }},
              {"unit",
               [](StudyFile &study) {
                 study.solver.extractors[0].unit = "mm";
               }},
              {"minimum",
               [](StudyFile &study) {
                 study.solver.extractors[0].minimum = 0.0;
               }},
              {"maximum",
               [](StudyFile &study) {
                 study.solver.extractors[0].maximum = 0.0;
               }},
              {"success",
               [](StudyFile &study) {
                 std::string problem;
                 study.solver.success = StudyMarker{
                     *EmbeddedHost::LinePattern::create("done", problem), ResultSource::File, "log", 0, {}};
               }},
              {"formula",
               [](StudyFile &study) {
                 study.formulas.push_back({"A.d", "1.0", {}, {}, {}, {}});
               }},
              {"formula text",
               [](StudyFile &study) {
                 study.formulas.push_back({"A.d", "2.0", {}, {}, {}, {}});
               }},
              {"formula limit", [](StudyFile &study) {
                 study.formulas.push_back({"A.d", "1.0", {}, 1.0, {}, {}});
               }}};
  const RunKeys before = keys(study(rule()));
  std::set<std::string> known{before.extract};
  for (const auto &row : rows) {
    StudyFile changed = study(rule());
    row.change(changed);
    const RunKeys after = keys(changed);
    EXPECT_TRUE(known.insert(after.extract).second) << row.what;
    EXPECT_EQ(after.run, before.run) << row.what;
  }
}

TEST(RunKeysTest, Fingerprint_FollowsTheContent) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("fingerprint." + std::to_string(::getpid()));
  std::string problem;
  std::ofstream(file) << "one";
  const std::string one = fileFingerprint(file.string(), problem);
  std::ofstream(file) << "two";
  const std::string two = fileFingerprint(file.string(), problem);
  std::filesystem::remove(file);
  EXPECT_EQ(one.size(), 64U);
  EXPECT_NE(one, two);
  EXPECT_EQ(fileFingerprint(file.string(), problem), "");
  EXPECT_EQ(problem, file.string() + ": No such file or directory");
}

} // namespace
} // namespace Workbench
