#include "Workbench/src/NodeReader.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/PlainText.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace Workbench {

namespace {

std::string kindOf(const StudyNode &node) {
  switch (node.kind()) {
  case StudyNode::Kind::Map:
    return "a map";
  case StudyNode::Kind::List:
    return "a list";
  case StudyNode::Kind::Scalar:
    return "\"" + node.text() + "\"";
  default:
    return "nothing";
  }
}

// Where a text begins that YAML reads another way as soon as it stands elsewhere in its line: a placeholder or a
// variable of a formula. One "%" alone is a unit. The text's length when there is none.
std::size_t unquotedMark(const std::string &text) {
  const std::size_t first = text.find('%');
  const bool isVariable = first != std::string::npos && text.find('%', first + 1) != std::string::npos;
  return std::min({text.find("{{"), isVariable ? first : std::string::npos, text.size()});
}

} // namespace

const StudyNode *NodeReader::Map::find(const std::string &key) const {
  for (const Entry &entry : m_entries) {
    if (entry.key == key) {
      return &entry.value;
    }
  }
  return nullptr;
}

NodeReader::NodeReader(std::string file, const std::string &text, std::vector<FileProblem> &problems)
    : m_file(std::move(file)), m_text(text), m_problems(problems), m_lineStarts{0} {
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1)) {
    m_lineStarts.push_back(end + 1);
  }
}

std::size_t NodeReader::offsetOf(FilePlace place) const {
  const std::size_t line = std::min(place.line, m_lineStarts.size());
  return std::min(m_lineStarts[line - 1] + place.column - 1, m_text.size());
}

FilePlace NodeReader::placeAt(std::size_t offset) const {
  const auto line = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset) - 1;
  return {static_cast<std::size_t>(line - m_lineStarts.begin()) + 1, offset - *line + 1};
}

// Walks through the scalar's text and the file side by side.
FilePlace NodeReader::placeIn(const StudyNode &scalar, std::size_t offset) const {
  const std::string &text = scalar.text();
  std::size_t at = offsetOf(scalar.place());
  const char quote = scalar.isPlain() || at >= m_text.size() ? '\0' : m_text[at];
  std::size_t indentation = m_text.size(); // blanks that begin each line and are no text
  if (quote == '"' || quote == '\'') {
    ++at;
  } else if (quote == '|' || quote == '>') {
    at = m_text.find('\n', at);
    at = at == std::string::npos ? m_text.size() : m_text.find_first_not_of(" \n", at);
    indentation = placeAt(std::min(at, m_text.size())).column - 1;
  }
  for (std::size_t index = 0; index <= std::min(offset, text.size()) && at < m_text.size(); ++index) {
    const bool isDoubled = quote == '\'' && m_text.compare(at, 2, "''") == 0;
    const bool isEscape = quote == '"' && m_text[at] == '\\' && at + 1 < m_text.size();
    if (index == offset || index == text.size()) {
      return placeAt(at);
    }
    if (isDoubled || isEscape) {
      const char meant = m_text[at + 1] == 'n' ? '\n' : m_text[at + 1] == 't' ? '\t' : m_text[at + 1];
      if (text[index] != meant) {
        break;
      }
      at += 2;
    } else if (m_text[at] == text[index] && text[index] != '\n') {
      ++at;
    } else if ((text[index] == ' ' || text[index] == '\n') && m_text[at] == '\n') {
      // A text that goes on in the next line, where it is indented.
      const std::size_t next = std::min(m_text.find_first_not_of(" \t", at + 1), m_text.size());
      at = std::min(next, at + 1 + indentation);
    } else {
      break;
    }
  }
  return scalar.place();
}

bool NodeReader::checkText() {
  for (std::size_t offset = 0; offset < m_text.size();) {
    const std::size_t length = utf8Length(m_text, offset);
    if (length == 0) {
      report(placeAt(offset), "the file is not UTF-8 text");
      return false;
    }
    offset += length;
  }
  return true;
}

void NodeReader::report(const StudyNode &node, const std::string &message) {
  report(node.place(), message);
}

void NodeReader::report(FilePlace place, const std::string &message) {
  m_problems.push_back({m_file, place.line, place.column, m_context + message});
}

// "{{Entity.Attribute}}" without quotes is two nested maps for YAML.
bool NodeReader::looksUnquoted(const StudyNode &node) const {
  return node.isMap() && m_text.compare(offsetOf(node.place()), 2, "{{") == 0;
}

// Reports a text that cannot be meant.
bool NodeReader::reportText(const StudyNode &node, const std::string &what) {
  if (node.text().find('\0') != std::string::npos) {
    report(node, what + " must not hold a NUL character");
    return true;
  }
  const std::size_t mark = node.isPlain() ? unquotedMark(node.text()) : node.text().size();
  if (mark < node.text().size()) {
    report(placeIn(node, mark), kQuoteIt);
    return true;
  }
  return false;
}

std::vector<NodeReader::Entry> NodeReader::entries(const StudyNode &node, const std::string &what) {
  std::vector<Entry> entries;
  if (!node.isMap()) {
    report(node, what + " must be a map, not " + kindOf(node));
    return entries;
  }
  if (looksUnquoted(node)) {
    report(node, kQuoteIt);
    return entries;
  }
  std::map<std::string, std::size_t> lines;
  for (const auto &[keyNode, value] : node.entries()) {
    if (!keyNode.isScalar()) {
      report(keyNode, what + ": a key must be a text, not " + kindOf(keyNode));
      continue;
    }
    const std::string &key = keyNode.text();
    if (reportText(keyNode, what + ": a key")) {
      continue;
    }
    const auto [known, isNew] = lines.emplace(key, keyNode.place().line);
    if (isNew) {
      entries.push_back({key, keyNode, value});
    } else {
      std::string twice = what;
      twice.append(": \"").append(key).append("\" is already in line ").append(std::to_string(known->second));
      report(keyNode, twice);
    }
  }
  return entries;
}

std::optional<NodeReader::Map> NodeReader::map(const StudyNode &node, const std::string &what,
                                               const std::vector<std::string> &keys) {
  if (!node.isMap() || looksUnquoted(node)) {
    entries(node, what);
    return std::nullopt;
  }
  std::vector<Entry> known;
  for (Entry &entry : entries(node, what)) {
    if (std::find(keys.begin(), keys.end(), entry.key) != keys.end()) {
      known.push_back(std::move(entry));
    } else {
      report(entry.keyNode, what + " has no key \"" + entry.key + "\"" + didYouMean(entry.key, keys));
    }
  }
  return Map(node, std::move(known));
}

const std::vector<StudyNode> &NodeReader::sequence(const StudyNode &node, const std::string &what) {
  if (!node.isList()) {
    report(node, what + " must be a list, not " + kindOf(node));
  }
  return node.items();
}

std::optional<std::string> NodeReader::text(const StudyNode &node, const std::string &what) {
  if (!node.isScalar()) {
    report(node, looksUnquoted(node) ? kQuoteIt : what + " must be a text, not " + kindOf(node));
    return std::nullopt;
  }
  return reportText(node, what) ? std::nullopt : std::optional<std::string>(node.text());
}

std::optional<std::string> NodeReader::word(const StudyNode &node, const std::string &what) {
  std::optional<std::string> found = text(node, what);
  if (found && found->empty()) {
    report(node, what + " must not be empty");
    return std::nullopt;
  }
  return found;
}

std::optional<long long> NodeReader::whole(const StudyNode &node, const std::string &what) {
  constexpr double kLargest = 1e15; // every whole number up to here is exact
  const std::optional<double> number =
      node.isScalar() ? EmbeddedHost::readSolverNumber(node.text()) : std::nullopt;
  if (!number || *number != std::trunc(*number) || std::fabs(*number) > kLargest) {
    report(node, what + " must be a whole number, not " + kindOf(node));
    return std::nullopt;
  }
  return static_cast<long long>(*number);
}

std::optional<bool> NodeReader::truth(const StudyNode &node, const std::string &what) {
  if (node.isScalar() && (node.text() == "true" || node.text() == "false")) {
    return node.text() == "true";
  }
  report(node, what + " must be true or false, not " + kindOf(node));
  return std::nullopt;
}

std::optional<std::size_t> NodeReader::choice(const StudyNode &node, const std::string &what,
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
