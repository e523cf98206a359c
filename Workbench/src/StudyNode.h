#pragma once

#include "Workbench/StudyFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {

// A part of a study file, whatever it is written in: a value with its place.
class StudyNode {
public:
  enum class Kind { Nothing, Scalar, List, Map };
  using Entry = std::pair<StudyNode, StudyNode>;

  StudyNode() = default;
  StudyNode(Kind kind, FilePlace place) : m_kind(kind), m_place(place) {}

  // A text, a number or a truth value, all as the text that stands in the file.
  static StudyNode scalar(std::string text, bool isPlain, FilePlace place);

  Kind kind() const { return m_kind; }
  bool isNothing() const { return m_kind == Kind::Nothing; }
  bool isScalar() const { return m_kind == Kind::Scalar; }
  bool isList() const { return m_kind == Kind::List; }
  bool isMap() const { return m_kind == Kind::Map; }
  // Whether a scalar stands in the file without quotes.
  bool isPlain() const { return m_isPlain; }
  FilePlace place() const { return m_place; }
  const std::string &text() const { return m_text; }
  // Of a list.
  const std::vector<StudyNode> &items() const { return m_items; }
  // Of a map, in file order; a key may be there twice.
  const std::vector<Entry> &entries() const { return m_entries; }

  void append(StudyNode item);
  void append(StudyNode key, StudyNode value);

private:
  Kind m_kind = Kind::Nothing;
  bool m_isPlain = false;
  FilePlace m_place{1, 1};
  std::string m_text;
  std::vector<StudyNode> m_items;
  std::vector<Entry> m_entries;
};

// Puts a tree of nodes together from its parts in file order; the last map that was begun takes turns of keys and
// values.
class NodeBuilder {
public:
  void begin(StudyNode::Kind kind, FilePlace place);
  void end();
  void add(StudyNode node);
  // The finished tree.
  std::optional<StudyNode> take();
  // The innermost node that was begun and is not ended.
  const StudyNode &last() const { return m_open.back().node; }

private:
  struct Open {
    StudyNode node;
    std::optional<StudyNode> key;
  };

  std::vector<Open> m_open;
  std::optional<StudyNode> m_root;
};

// What a text needs that YAML would take for something else.
constexpr const char *kQuoteIt = "a text with % or {{ must be put in quotes";

// What keeps a text from being read, with its place.
struct NodeProblem {
  FilePlace place{1, 1};
  std::string message;
};

// The only document of a YAML text. Anchors and aliases are understood.
std::optional<StudyNode> readYaml(const std::string &text, NodeProblem &problem);

// A JSON text.
std::optional<StudyNode> readJson(const std::string &text, NodeProblem &problem);

} // namespace Workbench
