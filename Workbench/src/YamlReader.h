#pragma once

#include "Workbench/StudyFile.h"

#include <yaml-cpp/yaml.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {

// Reads the nodes of a YAML document with their places and collects what is wrong, so that one reading of the
// file reports everything. Every function reports before it returns nothing.
class YamlReader {
public:
  // One entry of a map.
  struct Entry {
    std::string key;
    YAML::Node keyNode;
    YAML::Node value;
  };

  // The entries of a map with fixed keys.
  class Map {
  public:
    Map() = default;
    Map(const YAML::Node &node, std::vector<Entry> entries) : m_node(node), m_entries(std::move(entries)) {}
    // The value of the key, or null when the map does not have it.
    const YAML::Node *find(const std::string &key) const;
    const YAML::Node &node() const { return m_node; }

  private:
    YAML::Node m_node;
    std::vector<Entry> m_entries;
  };

  YamlReader(std::string file, const std::string &text, std::vector<FileProblem> &problems);

  // The only document of the text.
  std::optional<YAML::Node> document();

  static FilePlace place(const YAML::Node &node);
  void report(const YAML::Node &node, const std::string &message);
  void report(FilePlace place, const std::string &message);
  bool hasProblems() const { return !m_problems.empty(); }

  // A map with keys of the user's own choice: in file order, each key once. `what` names the map in messages.
  std::vector<Entry> entries(const YAML::Node &node, const std::string &what);
  // A map with fixed keys.
  std::optional<Map> map(const YAML::Node &node, const std::string &what,
                         const std::vector<std::string> &keys);
  std::optional<std::vector<YAML::Node>> sequence(const YAML::Node &node, const std::string &what);
  std::optional<std::string> text(const YAML::Node &node, const std::string &what);
  // A text that is not empty.
  std::optional<std::string> word(const YAML::Node &node, const std::string &what);
  std::optional<long long> whole(const YAML::Node &node, const std::string &what);
  std::optional<bool> truth(const YAML::Node &node, const std::string &what);
  // One of some words, as its position.
  std::optional<std::size_t> choice(const YAML::Node &node, const std::string &what,
                                    const std::vector<std::string> &words);

private:
  bool looksUnquoted(const YAML::Node &node) const;
  std::string lineAt(std::size_t line) const;

  std::string m_file;
  const std::string &m_text;
  std::vector<FileProblem> &m_problems;
};

} // namespace Workbench
