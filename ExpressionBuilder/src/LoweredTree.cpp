#include "ExpressionBuilder/LoweredTree.h"

#include "ExpressionBuilder/src/RowCompiler.h"

#include <optional>
#include <utility>

namespace ExpressionBuilder {

LoweredTree::LoweredTree() = default;

LoweredTree::~LoweredTree() = default;

const RowProgram *LoweredTree::lower(const ElementAbstract &root,
                                     const SimpleVariableCollection &variables) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  const std::uint64_t layout = variables.layout();
  if (m_layout.load(std::memory_order_relaxed) != layout) {
    std::optional<RowProgram> program = compileRow(root, variables);
    m_program = program ? std::make_unique<const RowProgram>(std::move(*program)) : nullptr;
    m_layout.store(layout, std::memory_order_release);
  }
  return m_program.get();
}

} // namespace ExpressionBuilder
