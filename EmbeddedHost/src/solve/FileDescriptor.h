#pragma once

#include <string_view>

namespace EmbeddedHost {

// Owns one file descriptor; -1 means none.
class FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
  FileDescriptor(FileDescriptor &&other) noexcept;
  FileDescriptor &operator=(FileDescriptor &&other) noexcept;
  FileDescriptor(const FileDescriptor &) = delete;
  FileDescriptor &operator=(const FileDescriptor &) = delete;
  ~FileDescriptor();

  int get() const { return m_descriptor; }
  bool isOpen() const { return m_descriptor >= 0; }
  // False when the last of what was written did not reach the file; errno then says why.
  bool close();

private:
  int m_descriptor = -1;
};

// Writes everything, going on after short writes and interruptions; false with errno set.
bool writeAll(int descriptor, std::string_view content);

} // namespace EmbeddedHost
