#include "tests/fault/session/Acknowledgements.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace FaultTests {

void writeUntouched(int descriptor, const std::string &text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const iovec part{const_cast<char *>(text.data()) + done, text.size() - done};
    // -1: at the present position, which every kind of file has.
    const ssize_t count = ::pwritev2(descriptor, &part, 1, -1, 0);
    if (count < 0 && errno != EINTR) {
      return;
    }
    done += count < 0 ? 0 : static_cast<std::size_t>(count);
  }
}

Acknowledgements::Acknowledgements(const std::string &file)
    : m_descriptor(::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC)) {}

Acknowledgements::~Acknowledgements() {
  if (isOpen()) {
    ::close(m_descriptor);
  }
}

void Acknowledgements::add(const std::string &line) {
  ++m_count;
  writeUntouched(m_descriptor, line + "\n");
}

} // namespace FaultTests
