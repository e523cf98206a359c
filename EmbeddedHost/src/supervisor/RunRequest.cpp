#include "EmbeddedHost/src/supervisor/RunRequest.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void closeIfOpen(int descriptor) {
  if (descriptor >= 0) {
    close(descriptor);
  }
}

// Null with errno set.
char *readAll(int file, size_t &size) {
  struct stat status = {};
  if (fstat(file, &status) != 0) {
    return nullptr;
  }
  size = static_cast<size_t>(status.st_size);
  char *content = static_cast<char *>(malloc(size + 1));
  size_t done = 0;
  while (content != nullptr && done < size) {
    const ssize_t count = pread(file, content + done, size - done, static_cast<off_t>(done));
    if (count <= 0 && !(count < 0 && errno == EINTR)) {
      free(content);
      errno = EIO;
      return nullptr;
    }
    done += count > 0 ? static_cast<size_t>(count) : 0;
  }
  return content;
}

} // namespace

RunRequest::~RunRequest() {
  closeIfOpen(m_output);
  closeIfOpen(m_error);
  free(static_cast<void *>(m_pointers));
  free(m_content);
}

int RunRequest::read(int request, int output, int error) {
  m_output = output;
  m_error = error;
  size_t size = 0;
  m_content = readAll(request, size);
  const int problem = errno;
  closeIfOpen(request);
  if (m_content == nullptr) {
    return problem;
  }
  if (size < sizeof(m_header) || m_content[size - 1] != '\0') {
    return EPROTO;
  }
  memcpy(&m_header, m_content, sizeof(m_header));
  const size_t pointers = size_t{m_header.argumentCount} + m_header.variableCount + 2;
  m_pointers = static_cast<char **>(calloc(pointers, sizeof(char *)));
  if (m_pointers == nullptr) {
    return ENOMEM;
  }
  return divideTexts(m_content + sizeof(m_header), m_content + size) ? 0 : EPROTO;
}

bool RunRequest::divideTexts(char *text, const char *end) {
  const size_t arguments = m_header.argumentCount;
  const size_t count = arguments + m_header.variableCount + 2;
  for (size_t number = 0; number < count; ++number) {
    if (text >= end) {
      return false;
    }
    if (number == 0) {
      m_program = text;
    } else if (number == 1) {
      m_workingFolder = text;
    } else {
      const size_t index = number - 2;
      m_pointers[index < arguments ? index : index + 1] = text;
    }
    text += strlen(text) + 1;
  }
  return text == end;
}
