#include "HostModel/AttributePath.h"

#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace EntityModel {

struct PathNode {
  std::string text;
  std::vector<TypeRef> elements;
};

namespace {

std::string joined(const std::vector<TypeRef> &elements, char separator) {
  std::string text;
  for (const TypeRef &element : elements) {
    if (&element != &elements.front()) {
      text += separator;
    }
    text += element.getLabel();
  }
  return text;
}

std::vector<TypeRef> split(std::string_view text) {
  std::vector<TypeRef> elements;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = text.find('.', begin);
    elements.push_back(TypeRef::fromLabel(text.substr(begin, end - begin)));
    if (end == std::string_view::npos) {
      return elements;
    }
    begin = end + 1;
  }
}

class PathTable {
public:
  const PathNode *find(std::string_view text) {
    if (text.empty()) {
      return nullptr;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_nodes.find(text);
    if (found != m_nodes.end()) {
      return found->second.get();
    }
    auto node = std::make_unique<PathNode>();
    node->text = text;
    node->elements = split(node->text);
    const PathNode *result = node.get();
    m_nodes.emplace(result->text, std::move(node));
    return result;
  }

private:
  std::mutex m_mutex;
  std::unordered_map<std::string_view, std::unique_ptr<PathNode>> m_nodes;
};

PathTable &pathTable() {
  // Never destroyed: paths are used by objects that are destroyed at process exit in any order.
  static auto *table = new PathTable;
  return *table;
}

} // namespace

AttributePath::AttributePath(const TypeRef &type) {
  if (type.isEmpty()) {
    return;
  }
  m_node = type.m_name->m_path.load(std::memory_order_acquire);
  if (m_node == nullptr) {
    m_node = pathTable().find(type.getLabel());
    type.m_name->m_path.store(m_node, std::memory_order_release);
  }
}

AttributePath::AttributePath(const std::vector<TypeRef> &elements)
    : m_node(pathTable().find(joined(elements, '.'))) {}

AttributePath::AttributePath(const char *text)
    : m_node(pathTable().find(text == nullptr ? std::string_view() : std::string_view(text))) {}

AttributePath::AttributePath(const std::string &text) : m_node(pathTable().find(text)) {}

TypeRef AttributePath::back() const noexcept {
  return m_node == nullptr ? TypeRef() : m_node->elements.back();
}

const std::vector<TypeRef> &AttributePath::elements() const noexcept {
  static const std::vector<TypeRef> none;
  return m_node == nullptr ? none : m_node->elements;
}

std::string AttributePath::toString(char separator) const {
  if (m_node == nullptr) {
    return {};
  }
  return separator == '.' ? m_node->text : joined(m_node->elements, separator);
}

} // namespace EntityModel
