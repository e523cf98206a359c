#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/TreeOperations.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <cstddef>
#include <stdexcept>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace ExpressionBuilder {

namespace {

using Form = ElementShape::Form;

/// One evaluation: the nodes under way, their intermediate values and the look-ups that are in progress.
/// When an exception leaves it, its destruction ends the look-ups.
class TreeEvaluation {
public:
  explicit TreeEvaluation(const VariableCollectionAbstract &collection) : m_collection(collection) {}

  /// Leaves the value of the root on the stack.
  void run(const ElementAbstract &root) {
    enter(&root);
    while (!m_frames.empty()) {
      step();
    }
  }

  EvaluationStack &stack() noexcept { return m_stack; }

private:
  struct Frame {
    const ElementAbstract *node;
    /// Functional: arguments already entered. Conditional, variable: 1 when the condition or the definition
    /// has been entered.
    std::size_t stage;
  };
  using Value = std::variant<double, int, bool, std::string, long long>;

  /// Leaves are computed at once, all others get a frame.
  void enter(const ElementAbstract *node) {
    if (node == nullptr) {
      throw std::runtime_error("No Element in container");
    }
    const ElementShape &shape = node->shape();
    if (shape.form == Form::Constant || shape.form == Form::Opaque) {
      shape.compute(*node, m_collection, m_stack);
    } else {
      m_frames.push_back({node, 0});
    }
  }

  void step() {
    switch (m_frames.back().node->shape().form) {
    case Form::Functional:
      stepFunctional();
      return;
    case Form::Conditional:
      stepConditional();
      return;
    case Form::Variable:
      stepVariable();
      return;
    case Form::Constant:
    case Form::Opaque:
      break; // never gets a frame
    }
  }

  void stepFunctional() {
    Frame &frame = m_frames.back();
    const ElementShape &shape = frame.node->shape();
    if (frame.stage < shape.arity) {
      ++frame.stage;
      enter(childrenOf(*frame.node)[shape.arity - frame.stage].get());
      return;
    }
    const ElementAbstract &node = *frame.node;
    m_frames.pop_back();
    shape.compute(node, m_collection, m_stack);
  }

  void stepConditional() {
    Frame &frame = m_frames.back();
    const ElementAbstract &node = *frame.node;
    std::size_t branch = node.shape().selectedBranch(node);
    if (branch == 0) {
      if (frame.stage == 0) {
        frame.stage = 1;
        enter(childrenOf(node)[0].get());
        return;
      }
      branch = m_stack.pop<bool>() ? 1 : 2;
    }
    m_frames.pop_back();
    enter(childrenOf(node)[branch].get());
  }

  void stepVariable() {
    Frame &frame = m_frames.back();
    if (frame.stage == 1) {
      keepValue(*m_lookups.back().definition());
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
      throw std::runtime_error("Variable is of wrong type");
    }
    if (definition->shape().type != shape.type) {
      throw std::logic_error("Invalid Cast");
    }
    if (definition->shape().form == Form::Constant) {
      m_frames.pop_back();
      definition->shape().compute(*definition, m_collection, m_stack);
      return;
    }
    const auto known = m_known.find(definition);
    if (known != m_known.end()) {
      m_frames.pop_back();
      std::visit([this](const auto &value) { m_stack.push(value); }, known->second);
      return;
    }
    frame.stage = 1;
    m_lookups.push_back(std::move(lookup));
    enter(definition);
  }

  /// Keeps the value on top of the stack for the next reference to the same definition: definitions that use
  /// one another twice would take exponential time otherwise.
  void keepValue(const ElementAbstract &definition) {
    visitValueType(definition.shape().type, [this, &definition](auto tag) {
      using T = typename decltype(tag)::Type;
      T value = m_stack.pop<T>();
      m_known.emplace(&definition, value);
      m_stack.push<T>(std::move(value));
    });
  }

  const VariableCollectionAbstract &m_collection;
  EvaluationStack m_stack;
  std::vector<Frame> m_frames;
  std::vector<VariableLookup> m_lookups;
  std::unordered_map<const ElementAbstract *, Value> m_known;
};

} // namespace

template <class T> T evaluateTree(const ElementAbstract &root, const VariableCollectionAbstract &collection) {
  TreeEvaluation evaluation(collection);
  evaluation.run(root);
  return evaluation.stack().template pop<T>();
}

template double evaluateTree<double>(const ElementAbstract &, const VariableCollectionAbstract &);
template int evaluateTree<int>(const ElementAbstract &, const VariableCollectionAbstract &);
template bool evaluateTree<bool>(const ElementAbstract &, const VariableCollectionAbstract &);
template std::string evaluateTree<std::string>(const ElementAbstract &, const VariableCollectionAbstract &);
template long long evaluateTree<long long>(const ElementAbstract &, const VariableCollectionAbstract &);

} // namespace ExpressionBuilder
