#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace Workbench {

// A new folder, which is gone with the object.
class TestFolder {
public:
  TestFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "workbench test XXXXXX").string();
    m_path = ::mkdtemp(pattern.data());
  }
  TestFolder(const TestFolder &) = delete;
  TestFolder &operator=(const TestFolder &) = delete;
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }

  const std::filesystem::path &path() const { return m_path; }
  std::string file(const std::string &name) const { return (m_path / name).string(); }
  bool has(const std::string &name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(m_path / name));
  }
  void write(const std::string &name, const std::string &text) const {
    std::ofstream(m_path / name, std::ios::binary) << text;
  }
  std::string read(const std::string &name) const {
    std::ifstream stream(m_path / name, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
  }

private:
  std::filesystem::path m_path;
};

} // namespace Workbench
