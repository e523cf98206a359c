#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/TemplateFile.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

constexpr const char *kNoShell =
    "the command is a list of arguments, [program, argument, ...]; no shell takes it apart";
constexpr const char *kWholeArgument =
    "a placeholder fills a whole argument: let it stand alone, or fill it into a template";

// The name becomes a part of file names.
bool isStageName(const std::string &name) {
  constexpr std::size_t kLongest = 60;
  const auto isAllowed = [](char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '_';
  };
  return !name.empty() && name.size() <= kLongest && std::all_of(name.begin(), name.end(), isAllowed);
}

} // namespace

void StudyFileReader::readStages(const NodeReader::Map &map, StudySolver &solver) {
  StudyStage defaults;
  if (const StudyNode *timeout = map.find("timeout")) {
    readTimeLimit(*timeout, defaults);
  }
  if (const StudyNode *codes = map.find("exit-codes")) {
    readExitCodes(*codes, defaults);
  }
  const StudyNode *one = map.find("command");
  const StudyNode *several = map.find("commands");
  const StudyNode *version = map.find("version");
  if ((one == nullptr) == (several == nullptr)) {
    m_nodes.report(map.node(), one == nullptr ? "the solver needs a command"
                                              : "the solver has either \"command\" or \"commands\"");
    return;
  }
  if (one != nullptr) {
    readCommand(*one, defaults);
    if (version != nullptr) {
      readVersionCommand(*version, defaults);
    }
    if (!defaults.command.empty()) {
      solver.stages.push_back(std::move(defaults));
    }
    return;
  }
  if (version != nullptr) {
    m_nodes.report(*version, "each of several commands has a \"version\" of its own");
  }
  for (const StudyNode &item : m_nodes.sequence(*several, "commands")) {
    readStage(item, defaults, solver);
  }
  if (several->isList() && several->items().empty()) {
    m_nodes.report(*several, "the solver needs at least one command");
  }
}

void StudyFileReader::readStage(const StudyNode &node, const StudyStage &defaults, StudySolver &solver) {
  const auto map =
      m_nodes.map(node, "a command of several", {"name", "run", "timeout", "exit-codes", "version"});
  if (!map) {
    return;
  }
  StudyStage stage = defaults;
  const StudyNode *name = map->find("name");
  const StudyNode *run = map->find("run");
  if (name == nullptr || run == nullptr) {
    m_nodes.report(node, "a command of several needs \"name\" and \"run\"");
    return;
  }
  readStageName(*name, solver, stage);
  readCommand(*run, stage);
  if (const StudyNode *timeout = map->find("timeout")) {
    readTimeLimit(*timeout, stage);
  }
  if (const StudyNode *codes = map->find("exit-codes")) {
    readExitCodes(*codes, stage);
  }
  if (const StudyNode *version = map->find("version")) {
    readVersionCommand(*version, stage);
  }
  if (!stage.command.empty()) {
    solver.stages.push_back(std::move(stage));
  }
}

void StudyFileReader::readStageName(const StudyNode &node, const StudySolver &solver, StudyStage &stage) {
  const std::optional<std::string> name = m_nodes.word(node, "name");
  if (!name) {
    return;
  }
  stage.name = *name;
  const auto isSame = [&name](const StudyStage &other) {
    return other.name == *name;
  };
  if (!isStageName(*name)) {
    m_nodes.report(
        node, "the name of a command holds letters, digits, \"-\" and \"_\" only: files are named after it");
  } else if (std::any_of(solver.stages.begin(), solver.stages.end(), isSame)) {
    m_nodes.report(node, "two commands are called \"" + *name + "\"");
  }
}

// Leaves the command empty when it is none.
void StudyFileReader::readCommand(const StudyNode &node, StudyStage &stage) {
  stage.place = node.place();
  if (node.isScalar()) {
    m_nodes.report(node, kNoShell);
    return;
  }
  for (const StudyNode &item : m_nodes.sequence(node, "the command")) {
    stage.command.push_back(readArgument(item).value_or(StudyArgument()));
  }
  if (node.isList() && (stage.command.empty() || stage.command.front().text.empty())) {
    m_nodes.report(node, "the command must begin with a program");
    stage.command.clear();
  } else if (!stage.command.empty() && stage.command.front().isPlaceholder) {
    m_nodes.report(node.items().front(), "the program cannot be a placeholder");
  }
}

std::optional<StudyArgument> StudyFileReader::readArgument(const StudyNode &node) {
  const std::optional<std::string> text = m_nodes.text(node, "an argument");
  if (!text) {
    return std::nullopt;
  }
  StudyArgument argument{*text, false, node.place()};
  const std::size_t open = text->find("{{");
  if (open == std::string::npos) {
    return argument;
  }
  std::vector<FileProblem> problems;
  const auto parsed = EmbeddedHost::TemplateFile::parse("", *text, problems);
  if (!parsed) {
    m_nodes.report(m_nodes.placeIn(node, problems.front().column - 1), problems.front().message);
    return std::nullopt;
  }
  if (open != 0 || parsed->placeholders().size() != 1 || text->find("}}") + 2 != text->size()) {
    m_nodes.report(m_nodes.placeIn(node, open), kWholeArgument);
    return std::nullopt;
  }
  argument.isPlaceholder = true;
  return argument;
}

void StudyFileReader::readVersionCommand(const StudyNode &node, StudyStage &stage) {
  if (node.isScalar()) {
    m_nodes.report(node,
                   "version is a command that prints it: a list of arguments, [program, argument, ...]");
    return;
  }
  for (const StudyNode &item : m_nodes.sequence(node, "version")) {
    stage.versionCommand.push_back(m_nodes.text(item, "an argument").value_or(""));
    if (stage.versionCommand.back().find("{{") != std::string::npos) {
      m_nodes.report(item, "a version does not depend on a row: no placeholder is filled here");
    }
  }
  if (node.isList() && (stage.versionCommand.empty() || stage.versionCommand.front().empty())) {
    m_nodes.report(node, "the command must begin with a program");
  }
}

void StudyFileReader::readTimeLimit(const StudyNode &node, StudyStage &stage) {
  const std::map<std::string, double> seconds{
      {"", 1.0}, {"ms", 0.001}, {"s", 1.0}, {"min", 60.0}, {"h", 3600.0}};
  const std::optional<std::string> text = m_nodes.text(node, "timeout");
  if (!text) {
    return;
  }
  std::size_t length = 0;
  const std::optional<double> number = EmbeddedHost::readLeadingNumber(*text, length);
  const std::size_t unitBegin = text->find_first_not_of(" \t", length);
  const auto unit = seconds.find(unitBegin == std::string::npos ? "" : text->substr(unitBegin));
  constexpr double kLongest = 1e9;
  if (!number || unit == seconds.end() || *number * unit->second < 0.001 ||
      *number * unit->second > kLongest) {
    m_nodes.report(node, "timeout must be a time such as 30 s, 500 ms, 10 min or 2 h, not \"" + *text + "\"");
    return;
  }
  stage.timeLimit = std::chrono::milliseconds(std::llround(*number * unit->second * 1000.0));
}

void StudyFileReader::readExitCodes(const StudyNode &node, StudyStage &stage) {
  stage.exitCodes.clear();
  for (const StudyNode &item : m_nodes.sequence(node, "exit-codes")) {
    const std::optional<long long> code = m_nodes.whole(item, "an exit code");
    if (code && (*code < 0 || *code > 255)) {
      m_nodes.report(item, "an exit code lies between 0 and 255");
    } else if (code) {
      stage.exitCodes.push_back(static_cast<int>(*code));
    }
  }
  if (node.isList() && node.items().empty()) {
    m_nodes.report(node, "without an exit code that is accepted no row could succeed");
  }
}

} // namespace Workbench
