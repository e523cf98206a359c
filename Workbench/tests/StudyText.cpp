#include "Workbench/tests/StudyText.h"

#include "Workbench/tests/FewUnits.h"

#include <gtest/gtest.h>

namespace Workbench {

namespace {

std::string linesOf(const std::vector<FileProblem> &problems) {
  std::string all;
  for (const FileProblem &problem : problems) {
    all += problem.toText() + "\n";
  }
  return all;
}

} // namespace

std::string problemsIn(const std::string &text, const std::string &path) {
  std::vector<FileProblem> problems;
  const FewUnits units;
  const std::optional<StudyFile> file = StudyFile::parse(path, text, units, problems);
  EXPECT_EQ(file.has_value(), problems.empty());
  return linesOf(problems);
}

std::string warningsIn(const std::string &text) {
  return linesOf(studyIn(text).warnings);
}

StudyFile studyIn(const std::string &text, const std::string &path) {
  std::vector<FileProblem> problems;
  const FewUnits units;
  std::optional<StudyFile> file = StudyFile::parse(path, text, units, problems);
  EXPECT_EQ(linesOf(problems), "") << text;
  return file ? std::move(*file) : StudyFile();
}

std::string with(const std::string &text, const std::string &from, const std::string &to) {
  std::string changed = text;
  const std::size_t at = changed.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : changed.replace(at, from.size(), to);
}

} // namespace Workbench
