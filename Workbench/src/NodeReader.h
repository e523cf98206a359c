#pragma once

#include "Workbench/src/StudyNode.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {

// Reads the nodes of a study file with their places and collects what is wrong, so that one reading of the file
// reports everything. Every function reports before it returns nothing.
class NodeReader {
public:
  // One entry of a map, of which the nodes stay the document's.
  struct Entry {
    std::string key;
    const StudyNode &keyNode;
    const StudyNode &value;
  };

  // The entries of a map with fixed keys.
  class Map {
  public:
    Map() = default;
    Map(const StudyNode &node, std::vector<Entry> entries) : m_node(&node), m_entries(std::move(entries)) {}
    // The value of the key, or null when the map does not have it.
    const StudyNode *find(const std::string &key) const;
    const StudyNode &node() const { return *m_node; }

  private:
    const StudyNode *m_node = nullptr;
    std::vector<Entry> m_entries;
  };

  // `text` is what the nodes were read from; it is kept by reference.
  NodeReader(std::string file, const std::string &text, std::vector<FileProblem> &problems);

  const std::string &file() const { return m_file; }
  std::vector<FileProblem> &problems() const { return m_problems; }
  void report(const StudyNode &node, const std::string &message);
  void report(FilePlace place, const std::string &message);
  bool hasProblems() const { return !m_problems.empty(); }
  // What every message begins with, such as the row and column of a table.
  void setContext(std::string context) { m_context = std::move(context); }

  // Reports the first byte of the file that is no UTF-8 text without NUL.
  bool checkText();
  // Where byte `offset` of a scalar's text stands in the file; the scalar's own place where escapes hide it.
  FilePlace placeIn(const StudyNode &scalar, std::size_t offset) const;

  // A map with keys of the user's own choice: in file order, each key once. `what` names the map in messages.
  std::vector<Entry> entries(const StudyNode &node, const std::string &what);
  // A map with fixed keys.
  std::optional<Map> map(const StudyNode &node, const std::string &what,
                         const std::vector<std::string> &keys);
  // The items of a list; none when it is no list.
  const std::vector<StudyNode> &sequence(const StudyNode &node, const std::string &what);
  std::optional<std::string> text(const StudyNode &node, const std::string &what);
  // A text that is not empty.
  std::optional<std::string> word(const StudyNode &node, const std::string &what);
  std::optional<long long> whole(const StudyNode &node, const std::string &what);
  std::optional<bool> truth(const StudyNode &node, const std::string &what);
  // One of some words, as its position.
  std::optional<std::size_t> choice(const StudyNode &node, const std::string &what,
                                    const std::vector<std::string> &words);

private:
  bool looksUnquoted(const StudyNode &node) const;
  bool reportText(const StudyNode &node, const std::string &what);
  std::size_t offsetOf(FilePlace place) const;
  FilePlace placeAt(std::size_t offset) const;

  std::string m_file;
  const std::string &m_text;
  std::vector<FileProblem> &m_problems;
  std::vector<std::size_t> m_lineStarts;
  std::string m_context;
};

} // namespace Workbench
