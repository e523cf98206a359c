#include "ExpressionBuilder/src/NodeStorage.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace ExpressionBuilder::NodeStorage {

namespace {

// The sanitizers know every block of the general allocator and nothing of ours.
#ifdef OPTSTUDY_SANITIZED
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

/// Tells the thread's cutter that the thread ends. Apart from it, because what is released at the end of a thread
/// is checked for its making at every use.
class ThreadEnd {
public:
  ThreadEnd() = default;
  ThreadEnd(const ThreadEnd &) = delete;
  ThreadEnd &operator=(const ThreadEnd &) = delete;
  ~ThreadEnd();

  void expect() const noexcept {}
};

/// The chunk that a thread cuts from.
class Cutter {
public:
  void end() noexcept {
    giveUp();
    m_ended = true;
  }

  /// Null when the thread is ending and nobody would give the chunk up later.
  void *cut(std::size_t size) {
    if (size > m_left) {
      return cutFromNewChunk(size);
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
  void *cutFromNewChunk(std::size_t size);

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

// Every node asks for it, so its place is not looked up by a call; its few words find room also in a library that
// is loaded late.
[[gnu::tls_model("initial-exec")]] thread_local Cutter t_cutter;
thread_local const ThreadEnd t_threadEnd;

ThreadEnd::~ThreadEnd() {
  t_cutter.end();
}

void *Cutter::cutFromNewChunk(std::size_t size) {
  // Nobody would give the chunk up later.
  if (m_ended) {
    return nullptr;
  }
  t_threadEnd.expect();
  giveUp();
  void *const memory = ::operator new(kChunkBytes, std::align_val_t(kChunkBytes));
  m_chunk = new (memory) Chunk;
  restart();
  return cut(size);
}

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
