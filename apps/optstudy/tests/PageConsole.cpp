#include "apps/optstudy/tests/PageConsole.h"

#include <cstdlib>
#include <sstream>

namespace {

constexpr const char *kAnything = "...";
constexpr const char *kExitCode = "# exit code ";

bool isLike(const std::string &pattern, const std::string &line) {
  std::size_t at = 0;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = pattern.find(kAnything, begin);
    const std::string piece = pattern.substr(begin, end == std::string::npos ? end : end - begin);
    if (end == std::string::npos) {
      // The last piece ends the line.
      const bool fits = line.size() >= at + piece.size();
      const std::size_t place = fits ? line.size() - piece.size() : 0;
      return fits && (begin > 0 || place == 0) && line.compare(place, piece.size(), piece) == 0;
    }
    const std::size_t found = line.find(piece, at);
    if (found == std::string::npos || (begin == 0 && found != 0)) {
      return false;
    }
    at = found + piece.size();
    begin = end + std::string(kAnything).size();
  }
}

// The place of the first line from `from` on that is like the pattern; the number of lines when there is none.
std::size_t findLike(const std::vector<std::string> &lines, std::size_t from, const std::string &pattern) {
  while (from < lines.size() && !isLike(pattern, lines[from])) {
    ++from;
  }
  return from;
}

std::string mismatchOfLines(const ConsoleStep &step, const CommandResult &result) {
  const std::vector<std::string> output = linesOf(result.output);
  const std::vector<std::string> messages = linesOf(result.messages);
  std::size_t nextOutput = 0;
  std::size_t nextMessage = 0;
  bool maySkip = false;
  for (const std::string &shown : step.shown) {
    if (shown == kAnything) {
      maySkip = true;
      continue;
    }
    const std::size_t here = findLike(output, nextOutput, shown);
    if (here == nextOutput ? here < output.size() : maySkip && here < output.size()) {
      nextOutput = here + 1;
      maySkip = false;
      continue;
    }
    const std::size_t message = findLike(messages, nextMessage, shown);
    if (message == messages.size()) {
      return "not printed: " + shown;
    }
    nextMessage = message + 1;
  }
  return nextOutput == output.size() || maySkip ? "" : "not shown: " + output[nextOutput];
}

} // namespace

std::vector<ConsoleStep> stepsOf(const std::string &console) {
  std::vector<ConsoleStep> steps;
  std::istringstream stream(console);
  for (std::string line; std::getline(stream, line);) {
    if (line.compare(0, 2, "$ ") == 0) {
      const std::size_t mark = line.find(kExitCode);
      const int code =
          mark == std::string::npos ? 0 : std::atoi(line.c_str() + mark + std::string(kExitCode).size());
      steps.push_back({line.substr(2), code, {}});
    } else if (!steps.empty()) {
      steps.back().shown.push_back(line);
    }
  }
  return steps;
}

std::string mismatch(const ConsoleStep &step, const CommandResult &result) {
  if (result.exitCode != step.exitCode) {
    return "ended with exit code " + std::to_string(result.exitCode) + " instead of " +
           std::to_string(step.exitCode) + "\n" + result.messages;
  }
  return mismatchOfLines(step, result);
}
