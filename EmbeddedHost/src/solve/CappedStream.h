#pragma once

#include "EmbeddedHost/src/solve/FileDescriptor.h"

#include <cstddef>
#include <string>

namespace EmbeddedHost {

// One output stream of a process: a pipe whose reading end is emptied into a file, up to a limit. What comes
// after the limit is read and discarded, so that the writer is never held up.
class CappedStream {
public:
  explicit CappedStream(std::size_t limit) : m_limit(limit) {}

  // Makes the pipe and creates the file, which must not exist; an empty name keeps nothing.
  bool open(const std::string &file, std::string &problem);

  int writingEnd() const { return m_writingEnd.get(); }
  void closeWritingEnd() { m_writingEnd.close(); }
  // -1 once every writer has closed the pipe.
  int readingEnd() const { return m_readingEnd.get(); }

  // Takes what is in the pipe, at most about `most` bytes, without waiting.
  void keep(std::size_t most);

  bool isTruncated() const { return m_truncated; }
  // Why the output could not be kept; empty when all is well.
  const std::string &problem() const { return m_problem; }

private:
  FileDescriptor m_readingEnd;
  FileDescriptor m_writingEnd;
  FileDescriptor m_file;
  std::string m_fileName;
  std::size_t m_limit;
  std::size_t m_kept = 0;
  bool m_truncated = false;
  std::string m_problem;
};

} // namespace EmbeddedHost
