#include "Workbench/src/StudyNode.h"

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

#include <map>
#include <sstream>
#include <stdexcept>

namespace Workbench {

namespace {

constexpr std::size_t kMostCopies = 200'000;

FilePlace placeOf(const YAML::Mark &mark) {
  return mark.is_null()
             ? FilePlace{1, 1}
             : FilePlace{static_cast<std::size_t>(mark.line) + 1, static_cast<std::size_t>(mark.column) + 1};
}

// Ends the reading of a document from within the parser's calls.
class Refused : public std::runtime_error {
public:
  Refused(FilePlace place, const std::string &message) : std::runtime_error(message), m_place(place) {}
  FilePlace place() const { return m_place; }

private:
  FilePlace m_place;
};

std::size_t nodesIn(const StudyNode &node) {
  std::size_t count = 1;
  for (const StudyNode &item : node.items()) {
    count += nodesIn(item);
  }
  for (const StudyNode::Entry &entry : node.entries()) {
    count += nodesIn(entry.first) + nodesIn(entry.second);
  }
  return count;
}

class YamlNodes final : public YAML::EventHandler {
public:
  void OnDocumentStart(const YAML::Mark & /*mark*/) override {}
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark &mark, YAML::anchor_t anchor) override {
    add(StudyNode(StudyNode::Kind::Nothing, placeOf(mark)), anchor);
  }
  void OnAlias(const YAML::Mark &mark, YAML::anchor_t anchor) override {
    const auto known = m_anchored.find(anchor);
    if (known == m_anchored.end()) {
      throw Refused(placeOf(mark), "an alias stands inside of what it stands for");
    }
    const Anchored &anchored = known->second;
    countCopies(anchored.size, placeOf(mark));
    m_builder.add(anchored.node);
  }
  void OnScalar(const YAML::Mark &mark, const std::string &tag, YAML::anchor_t anchor,
                const std::string &value) override {
    add(StudyNode::scalar(value, tag == "?", placeOf(mark)), anchor);
  }
  void OnSequenceStart(const YAML::Mark &mark, const std::string & /*tag*/, YAML::anchor_t anchor,
                       YAML::EmitterStyle::value /*style*/) override {
    begin(StudyNode::Kind::List, placeOf(mark), anchor);
  }
  void OnSequenceEnd() override { end(); }
  void OnMapStart(const YAML::Mark &mark, const std::string & /*tag*/, YAML::anchor_t anchor,
                  YAML::EmitterStyle::value /*style*/) override {
    begin(StudyNode::Kind::Map, placeOf(mark), anchor);
  }
  void OnMapEnd() override { end(); }

  std::optional<StudyNode> take() { return m_builder.take(); }

private:
  struct Anchored {
    StudyNode node;
    std::size_t size;
  };

  // An alias of an alias doubles what it stands for, and so a short text could ask for endless memory.
  void countCopies(std::size_t nodes, FilePlace place) {
    m_copies += nodes;
    if (m_copies > kMostCopies) {
      throw Refused(place, "the aliases stand for more than " + std::to_string(kMostCopies) + " values");
    }
  }
  void remember(const StudyNode &node, YAML::anchor_t anchor) {
    if (anchor != YAML::NullAnchor) {
      m_anchored[anchor] = {node, nodesIn(node)};
    }
  }
  void add(StudyNode node, YAML::anchor_t anchor) {
    remember(node, anchor);
    m_builder.add(std::move(node));
  }
  void begin(StudyNode::Kind kind, FilePlace place, YAML::anchor_t anchor) {
    m_builder.begin(kind, place);
    m_anchors.push_back(anchor);
  }
  void end() {
    if (m_anchors.back() != YAML::NullAnchor) {
      remember(m_builder.last(), m_anchors.back());
    }
    m_anchors.pop_back();
    m_builder.end();
  }

  NodeBuilder m_builder;
  std::vector<YAML::anchor_t> m_anchors; // one for each node that is open
  std::map<YAML::anchor_t, Anchored> m_anchored;
  std::size_t m_copies = 0;
};

constexpr const char *kNoTabs = "the line is indented by a tab; YAML wants blanks there";

std::string lineAt(const std::string &text, std::size_t line) {
  std::size_t begin = 0;
  for (std::size_t number = 1; number < line && begin != std::string::npos; ++number) {
    const std::size_t end = text.find('\n', begin);
    begin = end == std::string::npos ? end : end + 1;
  }
  return begin == std::string::npos ? "" : text.substr(begin, text.find('\n', begin) - begin);
}

} // namespace

std::optional<StudyNode> readYaml(const std::string &text, NodeProblem &problem) {
  try {
    std::istringstream stream(text);
    YAML::Parser parser(stream);
    YamlNodes nodes;
    if (!parser.HandleNextDocument(nodes)) {
      problem = {{1, 1}, "the file is empty"};
      return std::nullopt;
    }
    YamlNodes second;
    if (parser.HandleNextDocument(second)) {
      problem = {{1, 1}, "the file holds more than one document"};
      return std::nullopt;
    }
    return nodes.take();
  } catch (const YAML::Exception &error) {
    const FilePlace at = placeOf(error.mark);
    const std::string line = lineAt(text, at.line);
    const bool needsQuotes = line.find('%') != std::string::npos || line.find("{{") != std::string::npos;
    const bool hasTab = line.find_first_not_of(" \t") > line.find('\t');
    problem = {at, hasTab ? kNoTabs : needsQuotes ? kQuoteIt : error.msg};
  } catch (const Refused &refused) {
    problem = {refused.place(), refused.what()};
  }
  return std::nullopt;
}

} // namespace Workbench
