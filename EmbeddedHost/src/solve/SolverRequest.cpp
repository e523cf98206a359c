#include "EmbeddedHost/src/solve/SolverRequest.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/solve/SupervisorProtocol.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

// "NAME=value" texts: ours first, then what is inherited and not replaced.
std::vector<std::string> environmentTexts(std::map<std::string, std::string> variables) {
  variables.emplace("LC_ALL", "C.UTF-8");
  if (::getenv("OMP_NUM_THREADS") == nullptr) {
    variables.emplace("OMP_NUM_THREADS", "1");
  }
  std::vector<std::string> texts;
  texts.reserve(variables.size());
  for (const auto &[name, value] : variables) {
    texts.push_back(std::string(name).append("=").append(value));
  }
  for (char **inherited = ::environ; inherited != nullptr && *inherited != nullptr; ++inherited) {
    const std::string text = *inherited;
    if (variables.count(text.substr(0, text.find('='))) == 0) {
      texts.push_back(text);
    }
  }
  return texts;
}

// A supervisor has a working folder of its own.
std::string absolute(const std::string &path) {
  std::error_code error;
  const std::filesystem::path made = std::filesystem::absolute(path, error);
  return error ? path : made.string();
}

bool append(std::string &content, const std::string &text) {
  content.append(text).push_back('\0');
  return text.find('\0') == std::string::npos;
}

std::string contentOf(const SolverCommand &command, std::string &problem) {
  const std::vector<std::string> environment = environmentTexts(command.environment);
  Supervision::RequestHeader header = {};
  header.timeLimit = command.timeLimit.count();
  header.graceTime = command.graceTime.count();
  header.fileSizeLimit = static_cast<std::int64_t>(command.fileSizeLimit);
  header.argumentCount = static_cast<std::uint32_t>(command.arguments.size());
  header.variableCount = static_cast<std::uint32_t>(environment.size());
  std::string content(sizeof(header), '\0');
  std::memcpy(content.data(), &header, sizeof(header));
  bool isWhole = append(content, command.program);
  isWhole = append(content, absolute(command.workingFolder)) && isWhole;
  for (const std::string &argument : command.arguments) {
    isWhole = append(content, argument) && isWhole;
  }
  for (const std::string &variable : environment) {
    isWhole = append(content, variable) && isWhole;
  }
  if (!isWhole) {
    problem = command.program + ": a program, folder, argument or variable cannot hold a zero byte";
  }
  return content;
}

} // namespace

FileDescriptor makeSolverRequest(const SolverCommand &command, std::string &problem) {
  const std::string content = contentOf(command, problem);
  if (!problem.empty()) {
    return FileDescriptor();
  }
  FileDescriptor file(::memfd_create("solver request", MFD_CLOEXEC));
  if (!file.isOpen() || !writeAll(file.get(), content)) {
    const std::string reason = systemReason(errno);
    problem = absolute(command.workingFolder) + ": the run cannot be described to its supervisor: " + reason;
    return FileDescriptor();
  }
  return file;
}

} // namespace EmbeddedHost
