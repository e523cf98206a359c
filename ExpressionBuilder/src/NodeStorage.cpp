#include "ExpressionBuilder/src/NodeStorage.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace ExpressionBuilder::NodeStorage {

namespace {

// The sanitizers know every block of the general allocator and nothing of ours.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kUsesChunks = false;
#else
constexpr bool kUsesChunks = true;
#endif

/// A power of two: a chunk stands at a multiple of its size, so that a node's address leads to it.
constexpr std::size_t kChunkBytes = std::size_t{1} << 15U;
constexpr std::size_t kAlignment = alignof(std::max_align_t);
/// Larger objects are no nodes of this library.
constexpr std::size_t kLargestNode = 256;
/// What a chunk's counter stands above its nodes while a thread cuts from it, which need not count them there.
constexpr std::int64_t kInUse = std::int64_t{1} << 40U;

struct alignas(kAlignment) Chunk {
  /// Nodes released by other threads or after the cutting has ended count down; 0 is the end of the chunk.
  std::atomic<std::int64_t> count{kInUse};
};

void destroy(Chunk *chunk) noexcept {
  chunk->~Chunk();
  ::operator delete(chunk, std::align_val_t(kChunkBytes));
}

/// The chunk that a thread cuts from.
class Cutter {
public:
  Cutter() = default;
  Cutter(const Cutter &) = delete;
  Cutter &operator=(const Cutter &) = delete;
  ~Cutter() {
    giveUp();
    m_ended = true;
  }

  /// Null when the thread is ending and nobody would give the chunk up later.
  void *cut(std::size_t size) {
    if (size > m_left) {
      if (m_ended) {
        return nullptr;
      }
      begin();
    }
    void *const memory = m_next;
    m_next += size;
    m_left -= size;
    ++m_alive;
    return memory;
  }

  bool owns(const Chunk *chunk) const noexcept { return chunk == m_chunk; }

  void release() noexcept {
    --m_alive;
    if (m_alive == releasedElsewhere()) {
      restart();
    }
  }

private:
  void begin() {
    giveUp();
    void *const memory = ::operator new(kChunkBytes, std::align_val_t(kChunkBytes));
    m_chunk = new (memory) Chunk;
    restart();
  }

  void restart() noexcept {
    m_alive -= releasedElsewhere();
    m_chunk->count.store(kInUse, std::memory_order_relaxed);
    m_next = reinterpret_cast<char *>(m_chunk) + sizeof(Chunk);
    m_left = kChunkBytes - sizeof(Chunk);
  }

  /// Nodes of the chunk that other threads have released.
  std::int64_t releasedElsewhere() const noexcept {
    return kInUse - m_chunk->count.load(std::memory_order_acquire);
  }

  /// From now on all nodes of the chunk count down its own counter.
  void giveUp() noexcept {
    if (m_chunk == nullptr) {
      return;
    }
    const std::int64_t surplus = kInUse - m_alive;
    if (m_chunk->count.fetch_sub(surplus, std::memory_order_acq_rel) == surplus) {
      destroy(m_chunk);
    }
    m_chunk = nullptr;
    m_left = 0;
    m_alive = 0;
  }

  Chunk *m_chunk = nullptr;
  char *m_next = nullptr;
  std::size_t m_left = 0;
  /// Nodes cut from the chunk less those that this thread has released.
  std::int64_t m_alive = 0;
  bool m_ended = false;
};

thread_local Cutter t_cutter;

std::size_t rounded(std::size_t size) noexcept {
  constexpr std::size_t kStep = alignof(void *);
  return (size + kStep - 1) / kStep * kStep;
}

} // namespace

void *allocate(std::size_t size) {
  if (!kUsesChunks) {
    return ::operator new(size);
  }
  void *const cut = size <= kLargestNode ? t_cutter.cut(rounded(size)) : nullptr;
  if (cut != nullptr) {
    return cut;
  }
  // A chunk of its own, in which it is the only node.
  void *const memory = ::operator new(sizeof(Chunk) + size, std::align_val_t(kChunkBytes));
  auto *const chunk = new (memory) Chunk;
  chunk->count.store(1, std::memory_order_relaxed);
  return static_cast<char *>(memory) + sizeof(Chunk);
}

void release(void *memory) noexcept {
  if (!kUsesChunks) {
    ::operator delete(memory);
    return;
  }
  if (memory == nullptr) {
    return;
  }
  const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(memory) & (kChunkBytes - 1);
  auto *const chunk = reinterpret_cast<Chunk *>(static_cast<char *>(memory) - offset);
  if (t_cutter.owns(chunk)) {
    t_cutter.release();
  } else if (chunk->count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    destroy(chunk);
  }
}

} // namespace ExpressionBuilder::NodeStorage
