#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

namespace ExpressionBuilder {

class RowProgram;

/// The program of one tree over one collection, made when it is first asked for and again whenever the
/// collection's layout has changed. Threads may ask at once.
class LoweredTree {
public:
  LoweredTree();
  LoweredTree(const LoweredTree &) = delete;
  LoweredTree &operator=(const LoweredTree &) = delete;
  ~LoweredTree();

  /// Null when the tree cannot be lowered. Valid until the collection's layout changes.
  const RowProgram *program(const ElementAbstract &root, const SimpleVariableCollection &variables) const {
    return m_layout.load(std::memory_order_acquire) == variables.layout() ? m_program.get()
                                                                          : lower(root, variables);
  }

private:
  const RowProgram *lower(const ElementAbstract &root, const SimpleVariableCollection &variables) const;

  mutable std::mutex m_mutex;
  /// Layout that the program was made for; 0 before there is one.
  mutable std::atomic<std::uint64_t> m_layout{0};
  /// A thread that sees another layout never touches the old one, so it may be released while the first such
  /// thread makes the new one.
  mutable std::unique_ptr<const RowProgram> m_program;
};

} // namespace ExpressionBuilder
