#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace Workbench {

namespace fs = std::filesystem;

BoxStudy::BoxStudy() {
  std::string pattern = (fs::temp_directory_path() / "box study XXXXXX").string();
  m_folder = ::mkdtemp(pattern.data());
  m_text = R"yaml(version: 1
title: Box
model:
  Box:
    x: {value: 1, minimum: 0, maximum: 100}
    y: 10 m
    note: {kind: text, value: hello}
    sum: {result: true}
    product: {result: true, unit: m}
solver:
  templates: [{from: in.txt.template, to: in.txt}]
  command: [./solve.sh]
  timeout: 20 s
  results:
    Box.sum: {file: result.txt, pattern: '^sum = (.*)$'}
    Box.product: {pattern: '^product = (.*)$', unit: mm}
study:
  target: maximise
  cost: "%Box.sum% + %Box.product%"
  inputs: [{name: width, attribute: Box.x, minimum: 0, maximum: 50, step: 1}, Box.y]
  outputs: [{name: total, attribute: Box.sum}, Box.product]
  variants:
    - {name: two, values: {width: 2}}
    - {values: {width: 3}}
)yaml";
  write("box.study.yaml", m_text);
  write("in.txt.template", "{{Box.x}} {{Box.y in mm}}\n");
  writeSolver("");
}

BoxStudy::~BoxStudy() {
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

void BoxStudy::write(const std::string &name, const std::string &content) const {
  std::ofstream(m_folder / name, std::ios::binary) << content;
}

std::string BoxStudy::read(const std::string &name) const {
  std::ifstream stream(m_folder / name, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

void BoxStudy::writeSolver(const std::string &commands) const {
  writeProgram("solve.sh", "read x y < in.txt\n" + commands +
                               "\necho \"sum = $((x + y))\" > result.txt\necho \"product = $((x * y))\"\n");
}

void BoxStudy::writeProgram(const std::string &name, const std::string &commands) const {
  write(name, "#!/bin/sh\n" + commands);
  fs::permissions(m_folder / name, fs::perms::owner_all);
}

void BoxStudy::edit(const std::string &from, const std::string &to) {
  const std::size_t at = m_text.find(from);
  ASSERT_NE(at, std::string::npos) << from;
  m_text.replace(at, from.size(), to);
  write("box.study.yaml", m_text);
}

std::unique_ptr<StudyFile> BoxStudy::study() const {
  std::vector<FileProblem> problems;
  const HostUnits units;
  std::optional<StudyFile> study = StudyFile::read(file("box.study.yaml"), units, problems);
  for (const FileProblem &problem : problems) {
    ADD_FAILURE() << problem.toText();
  }
  return study ? std::make_unique<StudyFile>(std::move(*study)) : nullptr;
}

void TestObserver::begun(std::size_t toSolve, std::size_t alreadySolved) {
  m_toSolve = toSolve;
  m_alreadySolved = alreadySolved;
}

void TestObserver::finished(const std::string &rowName, const RowState &state, double) {
  m_finished.push_back(rowName + (state.status == RowStatus::Ok ? "" : ": " + state.reason));
  if (m_onFinished) {
    m_onFinished();
  }
}

int TestObserver::interruptions() const {
  if (m_onAsked) {
    m_onAsked();
  }
  if (++m_questions > m_endNowAfter) {
    return 2;
  }
  return m_finished.size() >= m_stopAfter ? 1 : 0;
}

OpenBox open(const BoxStudy &box) {
  static const HostUnits units;
  OpenBox open;
  open.study = box.study();
  OpenFailure failure;
  open.session = StudySession::open(*open.study, box.projectFile(), Keeping::Changes, failure);
  open.problem = failure.problem;
  if (!open.session) {
    return open;
  }
  std::vector<FileProblem> problems;
  std::vector<FileProblem> doubts;
  std::optional<RunInputs> inputs = RunInputs::load(*open.study, units, doubts, problems);
  EXPECT_TRUE(inputs.has_value());
  open.inputs = std::make_unique<RunInputs>(std::move(*inputs));
  std::optional<SolverPrograms> programs = SolverPrograms::find(*open.study, "/usr/bin:/bin", problems);
  EXPECT_TRUE(programs.has_value());
  EXPECT_EQ(programs->askVersions(*open.study, "/usr/bin:/bin"), "");
  open.programs = std::make_unique<SolverPrograms>(std::move(*programs));
  open.runner =
      std::make_unique<SolveRunner>(*open.session, *open.study, *open.inputs, units, *open.programs);
  return open;
}

SolveReport solve(OpenBox &open, TestObserver &observer) {
  open.runner->assess();
  open.session->clearUnreliableCosts();
  SolveReport report = open.runner->solve({1, true}, observer);
  EXPECT_EQ(open.session->updateAndPrice(), "");
  EXPECT_EQ(open.session->save(), "");
  return report;
}

SolveReport solve(OpenBox &open) {
  TestObserver observer;
  return solve(open, observer);
}

} // namespace Workbench
