#pragma once

#include <string>

namespace FaultTests {

/// Writes a whole text to an open file by a system call that the suites never strike, so that what a session says of
/// itself does not depend on the fault that it was given.
void writeUntouched(int descriptor, const std::string &text);

/// The file, outside the project's file system, to which a session reports what it was told to be done.
class Acknowledgements {
public:
  /// \param file  exists already
  explicit Acknowledgements(const std::string &file);
  Acknowledgements(const Acknowledgements &) = delete;
  Acknowledgements &operator=(const Acknowledgements &) = delete;
  ~Acknowledgements();

  bool isOpen() const { return m_descriptor >= 0; }
  /// One line; it may be followed by a process that dies, so nothing is kept back.
  void add(const std::string &line);
  int count() const { return m_count; }

private:
  int m_descriptor;
  int m_count = 0;
};

} // namespace FaultTests
