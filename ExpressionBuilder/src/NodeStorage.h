#pragma once

#include <cstddef>

namespace ExpressionBuilder {

/// Memory for the nodes of trees. A tree has very many small nodes that come and go together, and a general
/// allocator spends more time on them than all that is computed with them. Nodes are cut from chunks one after
/// another; a chunk is released when all its nodes are. Each thread cuts from a chunk of its own, and a node may
/// be released by any thread.
namespace NodeStorage {

/// Memory for an object of the size, aligned for any member of a node.
/// \throws std::bad_alloc
void *allocate(std::size_t size);

/// An empty pointer is fine.
void release(void *memory) noexcept;

} // namespace NodeStorage

} // namespace ExpressionBuilder
