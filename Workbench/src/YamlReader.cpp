#include "Workbench/src/YamlReader.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/NearestWord.h"

#include <cmath>
#include <map>
#include <sstream>

namespace Workbench {

namespace {

constexpr const char *kQuoteIt = "a text with % or {{ must be put in quotes";

std::string kindOf(const YAML::Node &node) {
  switch (node.Type()) {
  case YAML::NodeType::Map:
    return "a map";
  case YAML::NodeType::Sequence:
    return "a list";
  case YAML::NodeType::Scalar:
    return "\"" + node.Scalar() + "\"";
  default:
    return "nothing";
  }
}

} // namespace

const YAML::Node *YamlReader::Map::find(const std::string &key) const {
  for (const Entry &entry : m_entries) {
    if (entry.key == key) {
      return &entry.value;
    }
  }
  return nullptr;
}

YamlReader::YamlReader(std::string file, const std::string &text, std::vector<FileProblem> &problems)
    : m_file(std::move(file)), m_text(text), m_problems(problems) {}

std::optional<YAML::Node> YamlReader::document() {
  std::vector<YAML::Node> documents;
  try {
    std::istringstream stream(m_text);
    documents = YAML::LoadAll(stream);
  } catch (const YAML::Exception &error) {
    const FilePlace at{static_cast<std::size_t>(error.mark.line + 1),
                       static_cast<std::size_t>(error.mark.column + 1)};
    const std::string line = lineAt(at.line);
    const bool needsQuotes = line.find('%') != std::string::npos || line.find("{{") != std::string::npos;
    report(at, needsQuotes ? kQuoteIt : error.msg);
    return std::nullopt;
  }
  if (documents.size() != 1) {
    report(FilePlace{1, 1},
           documents.empty() ? "the file is empty" : "the file holds more than one document");
    return std::nullopt;
  }
  return documents.front();
}

std::string YamlReader::lineAt(std::size_t line) const {
  std::size_t begin = 0;
  for (std::size_t number = 1; number < line && begin != std::string::npos; ++number) {
    const std::size_t end = m_text.find('\n', begin);
    begin = end == std::string::npos ? end : end + 1;
  }
  return begin == std::string::npos ? "" : m_text.substr(begin, m_text.find('\n', begin) - begin);
}

FilePlace YamlReader::place(const YAML::Node &node) {
  const YAML::Mark mark = node.Mark();
  return mark.is_null()
             ? FilePlace{1, 1}
             : FilePlace{static_cast<std::size_t>(mark.line + 1), static_cast<std::size_t>(mark.column + 1)};
}

void YamlReader::report(const YAML::Node &node, const std::string &message) {
  report(place(node), message);
}

void YamlReader::report(FilePlace place, const std::string &message) {
  m_problems.push_back({m_file, place.line, place.column, message});
}

// "{{Entity.Attribute}}" without quotes is two nested maps for YAML.
bool YamlReader::looksUnquoted(const YAML::Node &node) const {
  const FilePlace at = place(node);
  return node.IsMap() && lineAt(at.line).compare(at.column - 1, 2, "{{") == 0;
}

std::vector<YamlReader::Entry> YamlReader::entries(const YAML::Node &node, const std::string &what) {
  std::vector<Entry> entries;
  if (!node.IsMap()) {
    report(node, what + " must be a map, not " + kindOf(node));
    return entries;
  }
  if (looksUnquoted(node)) {
    report(node, kQuoteIt);
    return entries;
  }
  std::map<std::string, std::size_t> lines;
  for (const auto &pair : node) {
    if (!pair.first.IsScalar()) {
      report(pair.first, what + ": a key must be a text, not " + kindOf(pair.first));
      continue;
    }
    const std::string key = pair.first.Scalar();
    const auto [known, isNew] = lines.emplace(key, place(pair.first).line);
    if (isNew) {
      entries.push_back({key, pair.first, pair.second});
    } else {
      std::string twice = what;
      twice.append(": \"").append(key).append("\" is already in line ").append(std::to_string(known->second));
      report(pair.first, twice);
    }
  }
  return entries;
}

std::optional<YamlReader::Map> YamlReader::map(const YAML::Node &node, const std::string &what,
                                               const std::vector<std::string> &keys) {
  if (!node.IsMap() || looksUnquoted(node)) {
    entries(node, what);
    return std::nullopt;
  }
  std::vector<Entry> known;
  for (Entry &entry : entries(node, what)) {
    bool isKnown = false;
    for (const std::string &key : keys) {
      isKnown = isKnown || key == entry.key;
    }
    if (isKnown) {
      known.push_back(std::move(entry));
    } else {
      report(entry.keyNode, what + " has no key \"" + entry.key + "\"" + didYouMean(entry.key, keys));
    }
  }
  return Map(node, std::move(known));
}

std::optional<std::vector<YAML::Node>> YamlReader::sequence(const YAML::Node &node, const std::string &what) {
  if (!node.IsSequence()) {
    report(node, what + " must be a list, not " + kindOf(node));
    return std::nullopt;
  }
  return std::vector<YAML::Node>(node.begin(), node.end());
}

std::optional<std::string> YamlReader::text(const YAML::Node &node, const std::string &what) {
  if (node.IsScalar()) {
    return node.Scalar();
  }
  report(node, looksUnquoted(node) ? kQuoteIt : what + " must be a text, not " + kindOf(node));
  return std::nullopt;
}

std::optional<std::string> YamlReader::word(const YAML::Node &node, const std::string &what) {
  std::optional<std::string> found = text(node, what);
  if (found && found->empty()) {
    report(node, what + " must not be empty");
    return std::nullopt;
  }
  return found;
}

std::optional<long long> YamlReader::whole(const YAML::Node &node, const std::string &what) {
  constexpr double kLargest = 1e15; // every whole number up to here is exact
  const std::optional<double> number =
      node.IsScalar() ? EmbeddedHost::readSolverNumber(node.Scalar()) : std::nullopt;
  if (!number || *number != std::trunc(*number) || std::fabs(*number) > kLargest) {
    report(node, what + " must be a whole number, not " + kindOf(node));
    return std::nullopt;
  }
  return static_cast<long long>(*number);
}

std::optional<bool> YamlReader::truth(const YAML::Node &node, const std::string &what) {
  if (node.IsScalar() && (node.Scalar() == "true" || node.Scalar() == "false")) {
    return node.Scalar() == "true";
  }
  report(node, what + " must be true or false, not " + kindOf(node));
  return std::nullopt;
}

std::optional<std::size_t> YamlReader::choice(const YAML::Node &node, const std::string &what,
                                              const std::vector<std::string> &words) {
  const std::optional<std::string> found = text(node, what);
  if (!found) {
    return std::nullopt;
  }
  std::string list;
  for (std::size_t index = 0; index < words.size(); ++index) {
    if (words[index] == *found) {
      return index;
    }
    list += (index == 0 ? "" : index + 1 == words.size() ? " or " : ", ") + words[index];
  }
  report(node, what + " must be " + list + ", not \"" + *found + "\"" + didYouMean(*found, words));
  return std::nullopt;
}

} // namespace Workbench
