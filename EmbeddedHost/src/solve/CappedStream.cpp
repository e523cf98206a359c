#include "EmbeddedHost/src/solve/CappedStream.h"

#include "EmbeddedHost/SystemReason.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

// The child's end must not be one of the standard descriptors, which are replaced one after the other before
// it runs.
FileDescriptor aboveStandard(FileDescriptor descriptor) {
  if (descriptor.get() > STDERR_FILENO) {
    return descriptor;
  }
  return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

} // namespace

bool CappedStream::open(const std::string &file, std::string &problem) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    problem = "pipe: " + systemReason(errno);
    return false;
  }
  m_readingEnd = FileDescriptor(ends[0]);
  m_writingEnd = aboveStandard(FileDescriptor(ends[1]));
  ::fcntl(m_readingEnd.get(), F_SETFL, O_NONBLOCK);
  m_fileName = file;
  if (file.empty()) {
    return true;
  }
  m_file = FileDescriptor(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
  if (!m_file.isOpen()) {
    problem = file + ": " + systemReason(errno);
    return false;
  }
  return true;
}

void CappedStream::keep(std::size_t most) {
  std::array<char, 65536> buffer{};
  std::size_t taken = 0;
  while (m_readingEnd.isOpen() && taken < most) {
    const ssize_t count = ::read(m_readingEnd.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      return; // empty for now
    }
    if (count == 0) {
      m_readingEnd.close();
      return;
    }
    const auto size = static_cast<std::size_t>(count);
    taken += size;
    if (!m_file.isOpen()) {
      continue;
    }
    const std::size_t kept = std::min(size, m_limit - m_kept);
    m_truncated = m_truncated || kept < size;
    m_kept += kept;
    if (m_problem.empty() && !writeAll(m_file.get(), std::string_view(buffer.data(), kept))) {
      m_problem = m_fileName + ": " + systemReason(errno);
    }
  }
}

} // namespace EmbeddedHost
