#pragma once

#include "EmbeddedHost/Project.h"

#include <cstddef>
#include <memory>
#include <string>

namespace HostBenchmark {

/// A project of ten attributes and many alternates in a file.
class StoredProject {
public:
  /// \param folder    is to hold the file
  /// \param versions  names the file too
  StoredProject(std::string folder, std::size_t versions);

  const std::string &file() const { return m_file; }
  /// A copy of the file as it is, while nobody has it open.
  std::string copy(const std::string &name) const;
  /// \throws std::runtime_error  it cannot be opened
  std::unique_ptr<EmbeddedHost::Project> open() const;

private:
  std::string m_folder;
  std::string m_file;
};

} // namespace HostBenchmark
