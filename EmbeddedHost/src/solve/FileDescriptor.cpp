#include "EmbeddedHost/src/solve/FileDescriptor.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

FileDescriptor::FileDescriptor(FileDescriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept {
  if (this != &other) {
    close();
    m_descriptor = std::exchange(other.m_descriptor, -1);
  }
  return *this;
}

FileDescriptor::~FileDescriptor() {
  close();
}

bool FileDescriptor::close() {
  if (m_descriptor < 0) {
    return true;
  }
  return ::close(std::exchange(m_descriptor, -1)) == 0;
}

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(descriptor, content.data(), content.size());
    if (count < 0) {
      if (errno == EINTR) {
        continue;
      }
      return false;
    }
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

} // namespace EmbeddedHost
