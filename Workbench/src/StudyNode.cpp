#include "Workbench/src/StudyNode.h"

#include "EmbeddedHost/JsonText.h"

namespace Workbench {

namespace {

class JsonNodes final : public EmbeddedHost::JsonHandler {
public:
  void beginObject(EmbeddedHost::TextPlace place) override {
    m_builder.begin(StudyNode::Kind::Map, {place.line, place.column});
  }
  void endObject() override { m_builder.end(); }
  void beginArray(EmbeddedHost::TextPlace place) override {
    m_builder.begin(StudyNode::Kind::List, {place.line, place.column});
  }
  void endArray() override { m_builder.end(); }
  void key(std::string name, EmbeddedHost::TextPlace place) override {
    m_builder.add(StudyNode::scalar(std::move(name), false, {place.line, place.column}));
  }
  void value(EmbeddedHost::JsonKind kind, std::string text, EmbeddedHost::TextPlace place) override {
    const FilePlace at{place.line, place.column};
    const bool isNull = kind == EmbeddedHost::JsonKind::Null;
    m_builder.add(isNull ? StudyNode(StudyNode::Kind::Nothing, at)
                         : StudyNode::scalar(std::move(text), kind != EmbeddedHost::JsonKind::Text, at));
  }
  std::optional<StudyNode> take() { return m_builder.take(); }

private:
  NodeBuilder m_builder;
};

} // namespace

StudyNode StudyNode::scalar(std::string text, bool isPlain, FilePlace place) {
  StudyNode node(Kind::Scalar, place);
  node.m_text = std::move(text);
  node.m_isPlain = isPlain;
  return node;
}

void StudyNode::append(StudyNode item) {
  m_items.push_back(std::move(item));
}

void StudyNode::append(StudyNode key, StudyNode value) {
  m_entries.emplace_back(std::move(key), std::move(value));
}

void NodeBuilder::begin(StudyNode::Kind kind, FilePlace place) {
  m_open.push_back({StudyNode(kind, place), std::nullopt});
}

void NodeBuilder::end() {
  StudyNode node = std::move(m_open.back().node);
  m_open.pop_back();
  add(std::move(node));
}

void NodeBuilder::add(StudyNode node) {
  if (m_open.empty()) {
    m_root = std::move(node);
    return;
  }
  Open &open = m_open.back();
  if (open.node.isList()) {
    open.node.append(std::move(node));
  } else if (!open.key) {
    open.key = std::move(node);
  } else {
    open.node.append(std::move(*open.key), std::move(node));
    open.key.reset();
  }
}

std::optional<StudyNode> NodeBuilder::take() {
  return std::move(m_root);
}

std::optional<StudyNode> readJson(const std::string &text, NodeProblem &problem) {
  JsonNodes nodes;
  EmbeddedHost::JsonProblem found;
  if (!EmbeddedHost::parseJson(text, nodes, found)) {
    problem = {{found.place.line, found.place.column}, found.message};
    return std::nullopt;
  }
  return nodes.take();
}

} // namespace Workbench
