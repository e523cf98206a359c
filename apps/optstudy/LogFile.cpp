#include "apps/optstudy/LogFile.h"

LogFile::~LogFile() {
  if (m_original != nullptr) {
    m_stream.rdbuf(m_original);
  }
}

bool LogFile::open(const std::string &file) {
  m_file.open(file, std::ios::app | std::ios::binary);
  if (!m_file) {
    return false;
  }
  m_original = m_stream.rdbuf(this);
  return true;
}

int LogFile::overflow(int character) {
  if (character != traits_type::eof()) {
    const char text = traits_type::to_char_type(character);
    xsputn(&text, 1);
  }
  return traits_type::not_eof(character);
}

std::streamsize LogFile::xsputn(const char *text, std::streamsize size) {
  m_file.write(text, size);
  return m_original->sputn(text, size);
}

int LogFile::sync() {
  m_file.flush();
  return m_original->pubsync();
}
