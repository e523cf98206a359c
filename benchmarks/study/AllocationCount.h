#pragma once

#include <cstddef>

namespace StudyBenchmark {

/// How often this program has asked for memory with operator new so far, on any thread.
std::size_t allocationCount();

} // namespace StudyBenchmark
