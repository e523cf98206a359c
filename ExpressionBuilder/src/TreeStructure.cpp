#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/TreeOperations.h"

#include <cstddef>
#include <typeinfo>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

bool equalTrees(const ElementAbstract &first, const ElementAbstract &second) {
  std::vector<std::pair<const ElementAbstract *, const ElementAbstract *>> pairs{{&first, &second}};
  while (!pairs.empty()) {
    const auto [a, b] = pairs.back();
    pairs.pop_back();
    if (a == nullptr || b == nullptr) {
      if (a != b) {
        return false;
      }
      continue;
    }
    const ElementShape &shape = a->shape();
    if (typeid(*a) != typeid(*b) || (shape.sameAlone != nullptr && !shape.sameAlone(*a, *b))) {
      return false;
    }
    for (std::size_t i = 0; i < shape.arity; ++i) {
      pairs.emplace_back(childrenOf(*a)[i].get(), childrenOf(*b)[i].get());
    }
  }
  return true;
}

std::unique_ptr<ElementAbstract> cloneTree(const ElementAbstract &root) {
  std::unique_ptr<ElementAbstract> copy = root.shape().copyAlone(root);
  // Originals whose children are still to be copied, each with its copy; every copy already hangs in the new
  // tree, which an exception therefore releases.
  std::vector<std::pair<const ElementAbstract *, ElementAbstract *>> pending{{&root, copy.get()}};
  while (!pending.empty()) {
    const auto [from, to] = pending.back();
    pending.pop_back();
    const std::size_t arity = from->shape().arity;
    for (std::size_t i = 0; i < arity; ++i) {
      const ElementAbstract *const child = childrenOf(*from)[i].get();
      if (child == nullptr) {
        continue;
      }
      std::unique_ptr<ElementAbstract> &slot = to->shape().children(*to)[i];
      slot = child->shape().copyAlone(*child);
      if (child->shape().arity != 0) {
        pending.emplace_back(child, slot.get());
      }
    }
  }
  return copy;
}

void destroyTree(std::unique_ptr<ElementAbstract> root) noexcept {
  // Goes down to a node without children, deletes it and goes back up. The way back needs no memory: while a
  // node is being emptied its last slot holds its parent, which is why the last child leaves first.
  std::unique_ptr<ElementAbstract> parent;
  std::unique_ptr<ElementAbstract> node = std::move(root);
  for (;;) {
    if (node != nullptr && node->shape().arity != 0) {
      std::unique_ptr<ElementAbstract> &last = node->shape().children(*node)[node->shape().arity - 1];
      std::unique_ptr<ElementAbstract> child = std::move(last);
      last = std::move(parent);
      parent = std::move(node);
      node = std::move(child);
      continue;
    }
    node.reset();
    if (parent == nullptr) {
      return;
    }
    std::unique_ptr<ElementAbstract> *const slots = parent->shape().children(*parent);
    const std::size_t last = parent->shape().arity - 1;
    for (std::size_t i = 0; i < last && node == nullptr; ++i) {
      node = std::move(slots[i]);
    }
    if (node == nullptr) {
      std::unique_ptr<ElementAbstract> grandparent = std::move(slots[last]);
      parent = std::move(grandparent);
    }
  }
}

} // namespace ExpressionBuilder
