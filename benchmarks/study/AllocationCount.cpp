#include "benchmarks/study/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

// The other forms of operator new of the standard library go through this one; those for over-aligned types, which
// do not, are not counted.

namespace {

std::atomic<std::size_t> count{0};

} // namespace

void *operator new(std::size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  if (void *memory = std::malloc(size == 0 ? 1 : size)) {
    return memory;
  }
  throw std::bad_alloc();
}

void operator delete(void *memory) noexcept {
  std::free(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace StudyBenchmark {

std::size_t allocationCount() {
  return count.load(std::memory_order_relaxed);
}

} // namespace StudyBenchmark
