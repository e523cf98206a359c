#include "Workbench/SolverPrograms.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverProcess.h"
#include "Workbench/RunInputs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestVersion = std::size_t{64} * 1024;

std::string absoluteFolder(const StudyFile &study) {
  std::error_code error;
  return fs::absolute(study.folder, error).string();
}

// A folder of its own for a program that only prints something.
class ScratchFolder {
public:
  ScratchFolder() {
    std::error_code error;
    std::string pattern = (fs::temp_directory_path(error) / "optstudy.XXXXXX").string();
    m_path = ::mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  ~ScratchFolder() {
    std::error_code error;
    if (!m_path.empty()) {
      fs::remove_all(m_path, error);
    }
  }
  const std::string &path() const { return m_path; }

private:
  std::string m_path;
};

std::string quoted(const std::vector<std::string> &command) {
  std::string text;
  for (const std::string &argument : command) {
    text += (text.empty() ? "\"" : " ") + argument;
  }
  return text + "\"";
}

// What the command prints to either stream; "" with the reason in `problem`.
std::string printed(const std::vector<std::string> &arguments, const std::string &program,
                    const std::map<std::string, std::string> &environment, std::string &problem) {
  const ScratchFolder folder;
  EmbeddedHost::SolverCommand command;
  command.program = program;
  command.arguments = arguments;
  command.workingFolder = folder.path();
  command.outputFile = folder.path() + "/stdout.log";
  command.errorFile = folder.path() + "/stderr.log";
  command.environment = environment;
  command.timeLimit = SolverPrograms::kLongestVersion;
  command.outputLimit = kLargestVersion;
  if (folder.path().empty()) {
    problem = "a temporary folder cannot be made";
    return "";
  }
  EmbeddedHost::SolverProcess process(std::move(command));
  if (process.start()) {
    while (!process.poll()) {
      EmbeddedHost::SolverProcess::waitForAny({&process}, SolverPrograms::kLongestVersion);
    }
  }
  const EmbeddedHost::SolverOutcome &outcome = process.outcome();
  if (outcome.end == EmbeddedHost::SolverEnd::TimedOut) {
    problem = "it does not end";
  } else if (outcome.end != EmbeddedHost::SolverEnd::Exited) {
    problem = outcome.problem.empty() ? "it was ended by a signal" : outcome.problem;
  }
  std::string text;
  for (const char *log : {"/stdout.log", "/stderr.log"}) {
    std::string ignored;
    text += EmbeddedHost::readWholeFile(folder.path() + log, kLargestVersion, ignored).value_or("");
  }
  if (problem.empty() && text.empty()) {
    problem = "it prints nothing";
  }
  return problem.empty() ? text : "";
}

// Why the program cannot be run. A file of that name beside the study file is what somebody means who has forgotten
// "./" or "chmod +x".
std::string whyNotFound(const std::string &program, const StudyFile &study) {
  std::error_code ignored;
  const bool isNamedByPath = program.find('/') != std::string::npos;
  const bool isThere = fs::is_regular_file(study.pathOf(program), ignored);
  if (isThere && isNamedByPath) {
    return program + " may not be executed: \"chmod +x " + program + "\" allows it";
  }
  return program + " is not installed or not on the PATH" +
         (isThere ? ", did you mean \"./" + program + "\"?" : "") +
         (study.solver.installHint.empty() ? "" : "; " + study.solver.installHint);
}

// Why a script cannot be started, which the system says in words that mislead; "" for any other program.
std::string problemOfScript(const std::string &program, const std::string &file) {
  constexpr std::size_t kMost = 256;
  std::ifstream in(file, std::ios::binary);
  std::string begin(kMost, '\0');
  in.read(begin.data(), static_cast<std::streamsize>(kMost));
  begin.resize(static_cast<std::size_t>(in.gcount()));
  const std::string line = begin.substr(0, begin.find('\n'));
  if (line.compare(0, 2, "#!") != 0) {
    const bool isText = !begin.empty() && begin.find('\0') == std::string::npos;
    return isText ? program + " is a text without \"#!\" in its first line; write \"#!/bin/sh\" there" : "";
  }
  if (line.back() == '\r') {
    return program + " has the line ends of Windows, which no interpreter takes: \"sed -i 's/\\r$//' " +
           program + "\" mends that";
  }
  const std::size_t first = line.find_first_not_of(" \t", 2);
  const std::string interpreter =
      first == std::string::npos ? "" : line.substr(first, line.find_first_of(" \t", first) - first);
  std::error_code ignored;
  return fs::exists(interpreter, ignored)
             ? ""
             : program + " names an interpreter in its first line that is not there: \"" + interpreter + "\"";
}

} // namespace

std::optional<SolverPrograms> SolverPrograms::find(const StudyFile &study, const std::string &searchPath,
                                                   std::vector<FileProblem> &problems) {
  const std::size_t before = problems.size();
  std::vector<std::string> files;
  for (const StudyStage &stage : study.solver.stages) {
    std::optional<std::string> file =
        EmbeddedHost::findProgram(stage.program(), absoluteFolder(study), searchPath);
    if (!file) {
      problems.push_back(
          {study.path, stage.place.line, stage.place.column, whyNotFound(stage.program(), study)});
    } else if (std::string problem = problemOfScript(stage.program(), *file); !problem.empty()) {
      problems.push_back({study.path, stage.place.line, stage.place.column, std::move(problem)});
    }
    files.push_back(file.value_or(""));
  }
  return problems.size() == before ? std::optional<SolverPrograms>(SolverPrograms(study, std::move(files)))
                                   : std::nullopt;
}

SolverPrograms::SolverPrograms(const StudyFile &study, std::vector<std::string> files)
    : m_files(std::move(files)) {
  for (std::size_t index = 0; index < m_files.size(); ++index) {
    std::string ignored; // a program that may be executed but not read is known by its name alone
    const bool hasVersion = !study.solver.stages[index].versionCommand.empty();
    m_identities.push_back(hasVersion ? "" : fileFingerprint(m_files[index], ignored));
  }
}

std::string SolverPrograms::askVersions(const StudyFile &study, const std::string &searchPath) {
  for (std::size_t index = 0; index < m_files.size(); ++index) {
    const std::vector<std::string> &command = study.solver.stages[index].versionCommand;
    if (command.empty()) {
      continue;
    }
    std::string problem;
    const std::optional<std::string> program =
        EmbeddedHost::findProgram(command.front(), absoluteFolder(study), searchPath);
    if (!program) {
      return command.front() + " is not installed or not on the PATH";
    }
    m_identities[index] = printed(command, *program, study.solver.environment, problem);
    if (!problem.empty()) {
      return "the version cannot be asked for by " + quoted(command) + ": " + problem;
    }
    m_version += m_identities[index];
  }
  return "";
}

} // namespace Workbench
