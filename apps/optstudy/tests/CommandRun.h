#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

// A folder that is gone with the object.
class TemporaryFolder {
public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;
  ~TemporaryFolder();

  const std::filesystem::path &path() const { return m_path; }
  std::string file(const std::string &name) const { return (m_path / name).string(); }
  void write(const std::string &name, const std::string &content) const;
  void writeProgram(const std::string &name, const std::string &content) const;
  std::string read(const std::string &name) const; // "" when there is no such file
  bool has(const std::string &name) const;

private:
  std::filesystem::path m_path;
};

struct CommandResult {
  int exitCode = -1; // -1 when it did not exit by itself
  int signal = 0;
  std::string output;
  std::string messages;
  std::chrono::milliseconds time{0};
};

// The program under test, started in `folder`; variables of `environment` replace those of the test. `before` are the
// words of a command that runs it, if any.
class CommandRun {
public:
  CommandRun(const TemporaryFolder &folder, std::vector<std::string> arguments,
             const std::map<std::string, std::string> &environment = {},
             const std::vector<std::string> &before = {});
  CommandRun(const CommandRun &) = delete;
  CommandRun &operator=(const CommandRun &) = delete;
  ~CommandRun();

  void sendSignal(int number) const;
  CommandResult wait();

private:
  std::string m_output;
  std::string m_messages;
  int m_pid = 0;
  std::chrono::steady_clock::time_point m_started;
};

CommandResult runCommand(const TemporaryFolder &folder, std::vector<std::string> arguments,
                         const std::map<std::string, std::string> &environment = {});

// Waits until the file holds at least `lines` lines, or ten seconds; false when it does not.
bool waitForLines(const std::filesystem::path &file, std::size_t lines);
std::vector<std::string> linesOf(const std::string &text);
