#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

// In the order of FailureReason.
const std::vector<std::string> kReasons{"exit-code",  "signal",       "time-limit",
                                        "extraction", "not-a-number", "output-too-large"};
const std::vector<std::string> kKept{"all", "outputs", "failed"};
constexpr long long kMostRetries = 100;

} // namespace

void StudyFileReader::readSolver(const StudyNode &node, StudyFile &file) {
  const auto map = m_nodes.map(node, "the solver",
                               {"install", "templates", "copies", "command", "commands", "version",
                                "environment", "timeout", "exit-codes", "retries", "keep", "output-limit",
                                "file-limit", "folder-limit", "success", "results"});
  if (!map) {
    return;
  }
  if (const StudyNode *install = map->find("install")) {
    file.solver.installHint = m_nodes.text(*install, "install").value_or("");
  }
  if (const StudyNode *templates = map->find("templates")) {
    file.solver.templates = readInputFiles(*templates, "templates");
  }
  if (const StudyNode *copies = map->find("copies")) {
    file.solver.copies = readInputFiles(*copies, "copies");
  }
  readStages(*map, file.solver);
  checkTargets(file.solver);
  readRunSettings(*map, file.solver);
  if (file.solver.stages.empty()) {
    return; // what refers to a stage that is wrong would only repeat its mistakes
  }
  if (const StudyNode *success = map->find("success")) {
    readSuccess(*success, file.solver);
  }
  if (const StudyNode *results = map->find("results")) {
    readExtractors(*results, file);
  }
}

void StudyFileReader::readRunSettings(const NodeReader::Map &map, StudySolver &solver) {
  if (const StudyNode *environment = map.find("environment")) {
    readEnvironment(*environment, solver);
  }
  if (const StudyNode *retries = map.find("retries")) {
    readRetries(*retries, solver);
  }
  if (const StudyNode *keep = map.find("keep")) {
    solver.keep = static_cast<KeptFiles>(m_nodes.choice(*keep, "keep", kKept).value_or(0));
  }
  readSizeLimit(map, "output-limit", solver.outputLimit);
  readSizeLimit(map, "file-limit", solver.fileLimit);
  readSizeLimit(map, "folder-limit", solver.folderLimit);
}

// A list of file names, or of maps with "from" and "to".
std::vector<StudyInputFile> StudyFileReader::readInputFiles(const StudyNode &node, const std::string &what) {
  std::vector<StudyInputFile> files;
  for (const StudyNode &item : m_nodes.sequence(node, what)) {
    StudyInputFile file;
    file.place = item.place();
    bool isOutside = false;
    if (item.isMap()) {
      const auto map = m_nodes.map(item, "an entry of " + what, {"from", "to", "outside"});
      const StudyNode *from = map ? map->find("from") : nullptr;
      const StudyNode *to = map ? map->find("to") : nullptr;
      const StudyNode *outside = map ? map->find("outside") : nullptr;
      if (map && (from == nullptr || to == nullptr)) {
        m_nodes.report(item, "an entry of " + what + " needs \"from\" and \"to\"");
      }
      file.from = from == nullptr ? "" : m_nodes.word(*from, "from").value_or("");
      file.to = to == nullptr ? "" : m_nodes.word(*to, "to").value_or("");
      isOutside = outside != nullptr && m_nodes.truth(*outside, "outside").value_or(false);
    } else {
      file.from = m_nodes.word(item, "an entry of " + what).value_or("");
      file.to = file.from;
    }
    if (!isOutside) {
      checkPath(item, file.from, "a file of the study");
    }
    checkPath(item, file.to, "a file of a run");
    files.push_back(std::move(file));
  }
  return files;
}

// A study file from elsewhere must not read or write outside its own folder unless it says so openly.
void StudyFileReader::checkPath(const StudyNode &node, const std::string &path, const std::string &what) {
  if (path.empty()) {
    return;
  }
  const std::string guarded = "/" + path + "/";
  if (path.front() == '/' || guarded.find("/../") != std::string::npos ||
      guarded.find("//") != std::string::npos || guarded.find("/./") != std::string::npos ||
      path.find('\\') != std::string::npos) {
    m_nodes.report(node,
                   "\"" + path + "\": " + what + " is named relative to its folder and stays inside it");
  }
}

void StudyFileReader::checkTargets(const StudySolver &solver) {
  std::map<std::string, FilePlace> targets;
  for (const auto *files : {&solver.templates, &solver.copies}) {
    for (const StudyInputFile &file : *files) {
      const auto isLog = [&file](const StudyStage &stage) {
        return file.to == stage.outputLog() || file.to == stage.errorLog();
      };
      if (file.to.find('/') != std::string::npos) {
        m_nodes.report(file.place, "\"" + file.to + "\": a file of a run lies in the run's folder itself");
      } else if (std::any_of(solver.stages.begin(), solver.stages.end(), isLog)) {
        m_nodes.report(file.place, "\"" + file.to + "\" is what the solver's own output is kept in");
      } else if (!targets.emplace(file.to, file.place).second && !file.to.empty()) {
        m_nodes.report(file.place, "two files go to \"" + file.to + "\"");
      }
    }
  }
}

void StudyFileReader::readEnvironment(const StudyNode &node, StudySolver &solver) {
  for (const NodeReader::Entry &entry : m_nodes.entries(node, "the environment")) {
    if (entry.key.empty() || entry.key.find('=') != std::string::npos) {
      m_nodes.report(entry.keyNode, "\"" + entry.key + "\" cannot be the name of an environment variable");
    }
    const std::string value = m_nodes.text(entry.value, "an environment variable").value_or("");
    if (value.find("{{") != std::string::npos) {
      m_nodes.report(
          entry.value,
          "an environment variable takes no placeholder; give the value in a file or as an argument");
    }
    solver.environment[entry.key] = value;
  }
}

void StudyFileReader::readRetries(const StudyNode &node, StudySolver &solver) {
  for (const NodeReader::Entry &entry : m_nodes.entries(node, "retries")) {
    const auto reason = std::find(kReasons.begin(), kReasons.end(), entry.key);
    if (reason == kReasons.end()) {
      m_nodes.report(entry.keyNode,
                     "retries has no reason \"" + entry.key + "\"" + didYouMean(entry.key, kReasons));
      continue;
    }
    const std::optional<long long> count = m_nodes.whole(entry.value, "the number of retries");
    if (count && (*count < 0 || *count > kMostRetries)) {
      m_nodes.report(entry.value, "the number of retries lies between 0 and " + std::to_string(kMostRetries));
    } else if (count) {
      solver.retries.at(static_cast<std::size_t>(reason - kReasons.begin())) = static_cast<int>(*count);
    }
  }
}

void StudyFileReader::readSizeLimit(const NodeReader::Map &map, const std::string &key, std::size_t &limit) {
  const std::map<std::string, double> bytes{{"", 1.0},          {"B", 1.0},           {"kB", 1e3},
                                            {"MB", 1e6},        {"GB", 1e9},          {"KiB", 1024.0},
                                            {"MiB", 1048576.0}, {"GiB", 1073741824.0}};
  const StudyNode *node = map.find(key);
  const std::optional<std::string> text = node == nullptr ? std::nullopt : m_nodes.text(*node, key);
  if (!text) {
    return;
  }
  constexpr double kLargest = 1e12;
  const std::optional<WrittenQuantity> quantity = readQuantity(*text);
  const auto unit = bytes.find(quantity ? quantity->unit : "?");
  const double size = unit == bytes.end() ? 0.0 : std::floor(quantity->number * unit->second);
  if (size < 1.0 || size > kLargest) {
    m_nodes.report(*node, key + " must be a size such as 500 kB, 16 MB or 1 GiB, not \"" + *text + "\"");
    return;
  }
  limit = static_cast<std::size_t>(size);
}

} // namespace Workbench
