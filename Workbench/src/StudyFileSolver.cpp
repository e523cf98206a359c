#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

const std::vector<std::string> kStreams{"stdout", "stderr"};

std::vector<std::string> attributeNames(const StudyFile &file, bool results) {
  std::vector<std::string> names;
  for (const StudyAttribute &attribute : file.attributes) {
    if (!results || attribute.isResult) {
      names.push_back(attribute.fullName());
    }
  }
  return names;
}

} // namespace

void StudyFileReader::readSolver(const YAML::Node &node, StudyFile &file) {
  const auto map = m_yaml.map(
      node, "the solver",
      {"install", "templates", "copies", "command", "environment", "timeout", "exit-codes", "results"});
  if (!map) {
    return;
  }
  if (const YAML::Node *install = map->find("install")) {
    file.solver.installHint = m_yaml.text(*install, "install").value_or("");
  }
  if (const YAML::Node *templates = map->find("templates")) {
    file.solver.templates = readInputFiles(*templates, "templates");
  }
  if (const YAML::Node *copies = map->find("copies")) {
    file.solver.copies = readInputFiles(*copies, "copies");
  }
  checkTargets(file.solver);
  if (const YAML::Node *command = map->find("command")) {
    readCommand(*command, file.solver);
  } else {
    m_yaml.report(node, "the solver needs a command");
  }
  if (const YAML::Node *environment = map->find("environment")) {
    readEnvironment(*environment, file.solver);
  }
  if (const YAML::Node *timeout = map->find("timeout")) {
    readTimeLimit(*timeout, file.solver);
  }
  if (const YAML::Node *codes = map->find("exit-codes")) {
    readExitCodes(*codes, file.solver);
  }
  if (const YAML::Node *results = map->find("results")) {
    readExtractors(*results, file);
  }
  for (const StudyAttribute &attribute : file.attributes) {
    const auto isFor = [&attribute](const StudyExtractor &extractor) {
      return extractor.attribute == attribute.fullName();
    };
    if (attribute.isResult &&
        std::none_of(file.solver.extractors.begin(), file.solver.extractors.end(), isFor)) {
      m_yaml.report(attribute.place, "nothing under \"results\" of the solver says where the result \"" +
                                         attribute.fullName() + "\" is found");
    }
  }
}

// A list of file names, or of maps with "from" and "to".
std::vector<StudyInputFile> StudyFileReader::readInputFiles(const YAML::Node &node, const std::string &what) {
  std::vector<StudyInputFile> files;
  for (const YAML::Node &item : m_yaml.sequence(node, what).value_or(std::vector<YAML::Node>())) {
    StudyInputFile file;
    file.place = YamlReader::place(item);
    if (item.IsMap()) {
      const auto map = m_yaml.map(item, "an entry of " + what, {"from", "to"});
      const YAML::Node *from = map ? map->find("from") : nullptr;
      const YAML::Node *to = map ? map->find("to") : nullptr;
      if (map && (from == nullptr || to == nullptr)) {
        m_yaml.report(item, "an entry of " + what + " needs \"from\" and \"to\"");
      }
      file.from = from == nullptr ? "" : m_yaml.word(*from, "from").value_or("");
      file.to = to == nullptr ? "" : m_yaml.word(*to, "to").value_or("");
    } else {
      file.from = m_yaml.word(item, "an entry of " + what).value_or("");
      file.to = file.from;
    }
    checkPath(item, file.from, "a file of the study");
    checkPath(item, file.to, "a file of a run");
    files.push_back(std::move(file));
  }
  return files;
}

// A study file from elsewhere must not read or write outside its own folder.
void StudyFileReader::checkPath(const YAML::Node &node, const std::string &path, const std::string &what) {
  if (path.empty()) {
    return;
  }
  const std::string guarded = "/" + path + "/";
  if (path.front() == '/' || guarded.find("/../") != std::string::npos ||
      guarded.find("//") != std::string::npos || guarded.find("/./") != std::string::npos ||
      path.find('\\') != std::string::npos) {
    m_yaml.report(node, "\"" + path + "\": " + what + " is named relative to its folder and stays inside it");
  }
}

void StudyFileReader::checkTargets(const StudySolver &solver) {
  std::map<std::string, FilePlace> targets;
  for (const auto *files : {&solver.templates, &solver.copies}) {
    for (const StudyInputFile &file : *files) {
      if (file.to.find('/') != std::string::npos) {
        m_yaml.report(file.place, "\"" + file.to + "\": a file of a run lies in the run's folder itself");
      } else if (file.to == "stdout.log" || file.to == "stderr.log") {
        m_yaml.report(file.place, "\"" + file.to + "\" is what the solver's own output is kept in");
      } else if (!targets.emplace(file.to, file.place).second && !file.to.empty()) {
        m_yaml.report(file.place, "two files go to \"" + file.to + "\"");
      }
    }
  }
}

void StudyFileReader::readCommand(const YAML::Node &node, StudySolver &solver) {
  solver.commandPlace = YamlReader::place(node);
  if (node.IsScalar()) {
    m_yaml.report(node,
                  "the command is a list of arguments, [program, argument, ...]; no shell takes it apart");
    return;
  }
  for (const YAML::Node &item : m_yaml.sequence(node, "the command").value_or(std::vector<YAML::Node>())) {
    const std::optional<std::string> argument = m_yaml.text(item, "an argument");
    if (argument && argument->find("{{") != std::string::npos) {
      m_yaml.report(item, "placeholders are filled in templates only, not in the command");
    }
    solver.command.push_back(argument.value_or(""));
  }
  if (node.IsSequence() && (solver.command.empty() || solver.command.front().empty())) {
    m_yaml.report(node, "the command must begin with a program");
  }
}

void StudyFileReader::readTimeLimit(const YAML::Node &node, StudySolver &solver) {
  const std::map<std::string, double> seconds{
      {"", 1.0}, {"ms", 0.001}, {"s", 1.0}, {"min", 60.0}, {"h", 3600.0}};
  const std::string text = m_yaml.text(node, "timeout").value_or("");
  std::size_t length = 0;
  const std::optional<double> number = EmbeddedHost::readLeadingNumber(text, length);
  const std::size_t unitBegin = text.find_first_not_of(" \t", length);
  const auto unit = seconds.find(unitBegin == std::string::npos ? "" : text.substr(unitBegin));
  constexpr double kLongest = 1e9;
  if (!number || unit == seconds.end() || *number * unit->second < 0.001 ||
      *number * unit->second > kLongest) {
    if (node.IsScalar()) {
      m_yaml.report(node, "timeout must be a time such as 30 s, 500 ms, 10 min or 2 h, not \"" + text + "\"");
    }
    return;
  }
  solver.timeLimit = std::chrono::milliseconds(std::llround(*number * unit->second * 1000.0));
}

void StudyFileReader::readExitCodes(const YAML::Node &node, StudySolver &solver) {
  solver.exitCodes.clear();
  for (const YAML::Node &item : m_yaml.sequence(node, "exit-codes").value_or(std::vector<YAML::Node>())) {
    const std::optional<long long> code = m_yaml.whole(item, "an exit code");
    if (code && (*code < 0 || *code > 255)) {
      m_yaml.report(item, "an exit code lies between 0 and 255");
    } else if (code) {
      solver.exitCodes.push_back(static_cast<int>(*code));
    }
  }
  if (node.IsSequence() && node.size() == 0) {
    m_yaml.report(node, "without an exit code that is accepted no row could succeed");
  }
}

void StudyFileReader::readEnvironment(const YAML::Node &node, StudySolver &solver) {
  for (const YamlReader::Entry &entry : m_yaml.entries(node, "the environment")) {
    if (entry.key.empty() || entry.key.find('=') != std::string::npos) {
      m_yaml.report(entry.keyNode, "\"" + entry.key + "\" cannot be the name of an environment variable");
    }
    solver.environment[entry.key] = m_yaml.text(entry.value, "an environment variable").value_or("");
  }
}

void StudyFileReader::readExtractors(const YAML::Node &node, StudyFile &file) {
  for (const YamlReader::Entry &entry : m_yaml.entries(node, "results")) {
    readExtractor(entry, file);
  }
}

void StudyFileReader::readExtractor(const YamlReader::Entry &entry, StudyFile &file) {
  const StudyAttribute *attribute = file.findAttribute(entry.key);
  if (attribute == nullptr) {
    m_yaml.report(entry.keyNode, "the model has no attribute \"" + entry.key + "\"" +
                                     didYouMean(entry.key, attributeNames(file, true)));
  } else if (!attribute->isResult) {
    m_yaml.report(entry.keyNode,
                  "\"" + entry.key + "\" is not declared as a result: it needs \"result: true\"");
  }
  const std::string what = "the result \"" + entry.key + "\"";
  const auto map = m_yaml.map(entry.value, what, {"file", "log", "pattern", "group", "unit"});
  if (!map) {
    return;
  }
  ResultSource source = ResultSource::StandardOutput;
  std::string fileName;
  const YAML::Node *log = map->find("log");
  if (log != nullptr) {
    const bool isError = m_yaml.choice(*log, "log", kStreams).value_or(0) == 1;
    source = isError ? ResultSource::StandardError : ResultSource::StandardOutput;
  }
  if (const YAML::Node *name = map->find("file")) {
    source = ResultSource::File;
    fileName = m_yaml.word(*name, "file").value_or("");
    checkPath(*name, fileName, "a file of a run");
    if (log != nullptr) {
      m_yaml.report(*name, what + " is found in a file or in a log, not in both");
    }
  }
  std::string unit;
  if (const YAML::Node *unitNode = map->find("unit")) {
    unit = m_yaml.text(*unitNode, "unit").value_or("");
    checkUnit(*unitNode, unit);
    if (attribute != nullptr && m_units.isUnit(unit) && !m_units.convert(1.0, unit, attribute->unit)) {
      m_yaml.report(*unitNode, "\"" + unit + "\" cannot be converted to \"" + attribute->unit +
                                   "\", in which \"" + entry.key + "\" is declared" +
                                   UnitSystem::conversionHint(unit, attribute->unit));
    }
  } else if (attribute != nullptr) {
    unit = attribute->unit;
  }
  const YAML::Node *group = map->find("group");
  const long long groupNumber = group == nullptr ? 1 : m_yaml.whole(*group, "group").value_or(1);
  if (groupNumber < 0) {
    m_yaml.report(*group, "a group is counted from 0, the whole match");
    return;
  }
  const YAML::Node *pattern = map->find("pattern");
  if (pattern == nullptr) {
    m_yaml.report(entry.value, what + " needs a pattern");
    return;
  }
  const std::optional<std::string> patternText = m_yaml.word(*pattern, "pattern");
  if (!patternText) {
    return;
  }
  std::string problem;
  auto extractor =
      EmbeddedHost::ResultExtractor::create(*patternText, static_cast<std::size_t>(groupNumber), problem);
  if (!extractor) {
    m_yaml.report(*pattern, problem);
    return;
  }
  file.solver.extractors.push_back(
      {entry.key, source, fileName, unit, std::move(*extractor), YamlReader::place(entry.keyNode)});
}

} // namespace Workbench
