#pragma once

#include <string>

namespace CommandTests {

/// A file system in memory, mounted on a folder until this object ends; after FaultTests::prepareMounting().
class SmallDisk {
public:
  SmallDisk(std::string folder, std::size_t kilobytes);
  SmallDisk(const SmallDisk &) = delete;
  SmallDisk &operator=(const SmallDisk &) = delete;
  ~SmallDisk();

  /// Why it is not mounted; "" when it is.
  const std::string &problem() const { return m_problem; }
  bool resize(std::size_t kilobytes) const;
  bool makeReadOnly() const;
  bool makeWritable() const;

private:
  bool mount(unsigned long flags, const std::string &options) const;

  std::string m_folder;
  std::string m_problem;
};

} // namespace CommandTests
