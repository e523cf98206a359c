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

// The length of the well-formed UTF-8 sequence at `offset`, 0 when there is none or it is a NUL.
std::size_t sequenceLength(const std::string &text, std::size_t offset) {
  const auto byte = [&text](std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
  };
  const auto continues = [&](std::size_t index) {
    return (byte(index) & 0xC0U) == 0x80U;
  };
  const unsigned first = byte(offset);
  if (first < 0x80U) {
    return first == 0 ? 0 : 1;
  }
  const unsigned second = byte(offset + 1);
  if (first >= 0xC2U && first <= 0xDFU) {
    return continues(offset + 1) ? 2 : 0;
  }
  if (first >= 0xE0U && first <= 0xEFU) {
    const bool isOverlong = first == 0xE0U && second < 0xA0U;
    const bool isSurrogate = first == 0xEDU && second > 0x9FU;
    return continues(offset + 1) && continues(offset + 2) && !isOverlong && !isSurrogate ? 3 : 0;
  }
  if (first >= 0xF0U && first <= 0xF4U) {
    const bool isOverlong = first == 0xF0U && second < 0x90U;
    const bool isTooLarge = first == 0xF4U && second > 0x8FU;
    const bool isComplete = continues(offset + 1) && continues(offset + 2) && continues(offset + 3);
    return isComplete && !isOverlong && !isTooLarge ? 4 : 0;
  }
  return 0;
}

// Reports the first byte that is no UTF-8 text.
bool isText(const std::string &path, const std::string &text, std::vector<FileProblem> &problems) {
  std::size_t line = 1;
  std::size_t lineStart = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t length = sequenceLength(text, offset);
    if (length == 0) {
      problems.push_back({path, line, offset - lineStart + 1, "the file is not UTF-8 text"});
      return false;
    }
    if (text[offset] == '\n') {
      ++line;
      lineStart = offset + 1;
    }
    offset += length;
  }
  return true;
}

} // namespace

const StudyAttribute *StudyFile::findAttribute(const std::string &fullName) const {
  const auto found =
      std::find_if(attributes.begin(), attributes.end(),
                   [&fullName](const StudyAttribute &attribute) { return attribute.fullName() == fullName; });
  return found == attributes.end() ? nullptr : &*found;
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
  if (isText(path, text, found)) {
    YamlReader yaml(path, text, found);
    if (const std::optional<YAML::Node> document = yaml.document()) {
      StudyFileReader(yaml, units).readDocument(*document, file);
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const FileProblem &left, const FileProblem &right) {
    return std::tie(left.line, left.column) < std::tie(right.line, right.column);
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

void StudyFileReader::readDocument(const YAML::Node &document, StudyFile &file) {
  const std::optional<YamlReader::Map> map =
      m_yaml.map(document, "the study file", {"version", "title", "model", "solver", "study"});
  if (!map) {
    return;
  }
  const YAML::Node *version = map->find("version");
  if (version == nullptr) {
    m_yaml.report(document, "the study file needs \"version: 1\"");
  } else if (const auto number = m_yaml.whole(*version, "version"); number && *number != 1) {
    m_yaml.report(*version, "version " + std::to_string(*number) +
                                " is not known to this program, which reads version 1");
  }
  if (const YAML::Node *title = map->find("title")) {
    file.title = m_yaml.text(*title, "title").value_or("");
  }
  for (const char *key : {"model", "solver", "study"}) {
    if (map->find(key) == nullptr) {
      m_yaml.report(document, std::string("the study file needs \"") + key + "\"");
    }
  }
  if (const YAML::Node *model = map->find("model")) {
    readModel(*model, file);
  }
  // What refers to a model that is wrong would only repeat its mistakes.
  if (m_yaml.hasProblems()) {
    return;
  }
  if (const YAML::Node *solver = map->find("solver")) {
    readSolver(*solver, file);
  }
  if (const YAML::Node *study = map->find("study")) {
    readStudy(*study, file);
  }
}

} // namespace Workbench
