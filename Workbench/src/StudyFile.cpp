#include "Workbench/StudyFile.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <tuple>

namespace Workbench {

namespace {

constexpr std::size_t kLargestStudyFile = std::size_t{64} * 1024 * 1024;

bool isJson(const std::string &path) {
  return std::filesystem::path(path).extension() == ".json";
}

} // namespace

const StudyAttribute *StudyFile::findAttribute(const std::string &fullName) const {
  const auto found =
      std::find_if(attributes.begin(), attributes.end(),
                   [&fullName](const StudyAttribute &attribute) { return attribute.fullName() == fullName; });
  return found == attributes.end() ? nullptr : &*found;
}

std::string StudyFile::pathOf(const std::string &from) const {
  return !from.empty() && from.front() == '/' ? from : folder + "/" + from;
}

std::optional<StudyFile> StudyFile::read(const std::string &path, const UnitSystem &units,
                                         std::vector<FileProblem> &problems) {
  std::string problem;
  const std::optional<std::string> text = EmbeddedHost::readWholeFile(path, kLargestStudyFile, problem);
  if (!text) {
    problems.push_back({path, 1, 1, problem});
    return std::nullopt;
  }
  return parse(path, *text, units, problems);
}

std::optional<StudyFile> StudyFile::parse(const std::string &path, const std::string &text,
                                          const UnitSystem &units, std::vector<FileProblem> &problems) {
  std::vector<FileProblem> found;
  StudyFile file;
  file.path = path;
  file.folder = std::filesystem::path(path).parent_path().string();
  if (file.folder.empty()) {
    file.folder = ".";
  }
  NodeReader nodes(path, text, found);
  if (nodes.checkText()) {
    NodeProblem problem;
    if (const std::optional<StudyNode> document =
            isJson(path) ? readJson(text, problem) : readYaml(text, problem)) {
      StudyFileReader(nodes, units).readDocument(*document, file);
    } else {
      nodes.report(problem.place, problem.message);
    }
  }
  // The study file's own problems first, those of a table that it names behind them.
  std::stable_sort(found.begin(), found.end(), [&path](const FileProblem &left, const FileProblem &right) {
    return std::make_tuple(left.file != path, left.line, left.column) <
           std::make_tuple(right.file != path, right.line, right.column);
  });
  problems.insert(problems.end(), found.begin(), found.end());
  return found.empty() ? std::optional<StudyFile>(std::move(file)) : std::nullopt;
}

std::string hostText(const StudyAttribute &attribute, const StudyValue &value) {
  if (attribute.kind == AttributeKind::Text) {
    return value.text;
  }
  const std::string number = EmbeddedHost::writeSolverNumber(value.number);
  return attribute.unit.empty() ? number : number + " " + attribute.unit;
}

void StudyFileReader::readDocument(const StudyNode &document, StudyFile &file) {
  const std::optional<NodeReader::Map> map =
      m_nodes.map(document, "the study file", {"version", "title", "model", "solver", "formulas", "study"});
  if (!map) {
    return;
  }
  const StudyNode *version = map->find("version");
  if (version == nullptr) {
    m_nodes.report(document, "the study file needs \"version: 1\"");
  } else if (const auto number = m_nodes.whole(*version, "version"); number && *number != 1) {
    m_nodes.report(*version, "version " + std::to_string(*number) +
                                 " is not known to this program, which reads version 1");
  }
  if (const StudyNode *title = map->find("title")) {
    file.title = m_nodes.text(*title, "title").value_or("");
  }
  for (const char *key : {"model", "study"}) {
    if (map->find(key) == nullptr) {
      m_nodes.report(document, std::string("the study file needs \"") + key + "\"");
    }
  }
  if (map->find("solver") == nullptr && map->find("formulas") == nullptr) {
    m_nodes.report(document, "the study file needs \"solver\", or \"formulas\" that compute every result");
  }
  if (const StudyNode *model = map->find("model")) {
    readModel(*model, file);
  }
  // What refers to a model that is wrong would only repeat its mistakes.
  if (m_nodes.hasProblems()) {
    return;
  }
  if (const StudyNode *solver = map->find("solver")) {
    readSolver(*solver, file);
  }
  if (const StudyNode *formulas = map->find("formulas")) {
    readFormulas(*formulas, file);
  }
  // Where no command could be read the results were not read either.
  if (map->find("solver") == nullptr || !file.solver.stages.empty()) {
    checkResults(file);
  }
  if (const StudyNode *study = map->find("study")) {
    readStudy(*study, file);
  }
}

} // namespace Workbench
