#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/TreeOperations.h"

#include <cstddef>
#include <stdexcept>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

namespace {

using Form = ElementShape::Form;

/// One validation. When an exception leaves it, its destruction ends the look-ups in progress.
class TreeValidation {
public:
  explicit TreeValidation(const VariableCollectionAbstract &collection) : m_collection(collection) {}

  void run(const ElementAbstract &root) {
    m_frames.push_back({&root, 0});
    while (!m_frames.empty()) {
      step();
    }
  }

private:
  struct Frame {
    const ElementAbstract *node;
    /// 0 before the node itself was looked at; 1 when the condition or the definition has been validated.
    int stage;
  };

  void step() {
    const Frame frame = m_frames.back();
    switch (frame.node->shape().form) {
    case Form::Constant:
      m_frames.pop_back();
      return;
    case Form::Opaque:
      m_frames.pop_back();
      frame.node->validate(m_collection);
      return;
    case Form::Functional:
      m_frames.pop_back();
      pushChildren(*frame.node);
      return;
    case Form::Conditional:
      stepConditional(frame);
      return;
    case Form::Variable:
      stepVariable(frame);
      return;
    }
  }

  static void requireChildren(const ElementAbstract &node) {
    const std::unique_ptr<ElementAbstract> *children = childrenOf(node);
    for (std::size_t i = 0; i < node.shape().arity; ++i) {
      if (children[i] == nullptr) {
        throw std::runtime_error("No Element in container");
      }
    }
  }

  /// The last child ends on top and is validated first, as evaluation goes.
  void pushChildren(const ElementAbstract &node) {
    requireChildren(node);
    const std::unique_ptr<ElementAbstract> *children = childrenOf(node);
    for (std::size_t i = 0; i < node.shape().arity; ++i) {
      m_frames.push_back({children[i].get(), 0});
    }
  }

  void stepConditional(const Frame &frame) {
    const std::unique_ptr<ElementAbstract> *children = childrenOf(*frame.node);
    if (frame.stage == 0) {
      requireChildren(*frame.node);
      m_frames.back().stage = 1;
      m_frames.push_back({children[0].get(), 0});
      return;
    }
    m_frames.pop_back();
    std::size_t branch = frame.node->shape().selectedBranch(*frame.node);
    if (branch == 0 && children[0]->isConstant()) {
      branch = evaluateTree<bool>(*children[0], EmptyVariableCollection::instance()) ? 1 : 2;
    }
    if (branch == 0) {
      m_frames.push_back({children[2].get(), 0});
      m_frames.push_back({children[1].get(), 0});
    } else {
      m_frames.push_back({children[branch].get(), 0});
    }
  }

  void stepVariable(const Frame &frame) {
    if (frame.stage == 1) {
      m_valid.insert(m_lookups.back().definition());
      m_lookups.pop_back();
      m_frames.pop_back();
      return;
    }
    const ElementShape &shape = frame.node->shape();
    const std::string &name = shape.name(*frame.node);
    VariableLookup lookup(m_collection, name);
    const ElementAbstract *const definition = lookup.definition();
    if (definition == nullptr) {
      throw MissingVariable(name);
    }
    if (definition->type() != shape.type) {
      throw std::runtime_error("Variable has invalid Return Type");
    }
    if (definition->shape().form == Form::Constant || m_valid.count(definition) != 0) {
      m_frames.pop_back();
      return;
    }
    m_frames.back().stage = 1;
    m_lookups.push_back(std::move(lookup));
    m_frames.push_back({definition, 0});
  }

  const VariableCollectionAbstract &m_collection;
  std::vector<Frame> m_frames;
  std::vector<VariableLookup> m_lookups;
  /// Definitions already found valid: those that use one another twice would take exponential time otherwise.
  std::unordered_set<const ElementAbstract *> m_valid;
};

} // namespace

void validateTree(const ElementAbstract &root, const VariableCollectionAbstract &collection) {
  TreeValidation(collection).run(root);
}

} // namespace ExpressionBuilder
