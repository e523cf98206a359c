#pragma once

#include <string>
#include <vector>

namespace FaultTests {

/// How a program ended.
struct Ending {
  int exitCode = -1; ///< -1: by a signal, or it could not be started
  int signal = 0;
};

/// Starts a program; its output goes to new files.
/// \return its process number, or -1
int startCommand(const std::vector<std::string> &words, const std::string &outputFile,
                 const std::string &errorFile);

/// The same, and waits for its end.
Ending runCommand(const std::vector<std::string> &words, const std::string &outputFile,
                  const std::string &errorFile);

Ending waitFor(int process);

/// The whole content of a file; "" when there is none.
std::string readFile(const std::string &path);
void writeFile(const std::string &path, const std::string &content);
std::vector<std::string> linesOf(const std::string &text);

} // namespace FaultTests
