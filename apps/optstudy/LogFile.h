#pragma once

#include <fstream>
#include <ostream>
#include <streambuf>
#include <string>

// Writes what goes to a stream to a file too, from open() until it is destroyed.
class LogFile final : private std::streambuf {
public:
  explicit LogFile(std::ostream &stream) : m_stream(stream) {}
  LogFile(const LogFile &) = delete;
  LogFile &operator=(const LogFile &) = delete;
  ~LogFile() override;

  // Appends to the file. \return false when it cannot be written
  bool open(const std::string &file);

private:
  int overflow(int character) override;
  std::streamsize xsputn(const char *text, std::streamsize size) override;
  int sync() override;

  std::ostream &m_stream;
  std::streambuf *m_original = nullptr;
  std::ofstream m_file;
};
