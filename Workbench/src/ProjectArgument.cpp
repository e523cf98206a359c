#include "Workbench/src/ProjectArgument.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/ExitCode.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/PlainText.h"

#include <array>
#include <filesystem>
#include <vector>

namespace Workbench {

namespace {

std::vector<std::string> rowNames(const ProjectSession &session) {
  std::vector<std::string> names;
  names.reserve(session.rowCount());
  for (std::size_t row = 0; row < session.rowCount(); ++row) {
    names.push_back(session.rowName(row));
  }
  return names;
}

std::optional<std::size_t> numberOf(const std::string &text, std::size_t count) {
  const std::optional<double> number = EmbeddedHost::readSolverNumber(text);
  if (!number || !(*number >= 0.0) || !(*number < static_cast<double>(count))) {
    return std::nullopt;
  }
  const auto row = static_cast<std::size_t>(*number);
  return std::to_string(row) == text ? std::optional<std::size_t>(row) : std::nullopt;
}

} // namespace

std::string projectNamed(const std::string &argument) {
  const std::string ending = std::filesystem::path(argument).extension().string();
  constexpr std::array<const char *, 3> kStudyFiles{".yaml", ".yml", ".json"};
  for (const char *studyFile : kStudyFiles) {
    if (ending == studyFile) {
      return ProjectSession::projectFileOf(argument);
    }
  }
  return argument;
}

int withProject(const std::string &argument, EmbeddedHost::OpenMode mode, const Console &console,
                const std::function<int(ProjectSession &)> &action) {
  const std::string file = projectNamed(argument);
  std::error_code ignored;
  if (file != argument && !std::filesystem::exists(file, ignored)) {
    console.error("There is no project " + file + " yet: \"optstudy run " + shellWord(argument) +
                  "\" makes it.");
    return ExitCode::kInvalid;
  }
  OpenFailure failure;
  const std::unique_ptr<ProjectSession> session = ProjectSession::open(file, mode, failure);
  if (!session) {
    console.error(failure.problem);
    return failure.isHeld ? ExitCode::kHeld : ExitCode::kInvalid;
  }
  return action(*session);
}

int withStudy(const std::string &argument, EmbeddedHost::OpenMode mode, const Console &console,
              const std::function<int(ProjectSession &)> &action) {
  return withProject(argument, mode, console, [&](ProjectSession &session) {
    if (!session.hasStudy()) {
      console.error("The project " + session.fileName() + " has no study: \"optstudy begin " +
                    shellWord(argument) + "\" begins one.");
      return ExitCode::kInvalid;
    }
    return action(session);
  });
}

std::optional<std::size_t> rowNamed(const ProjectSession &session, const std::string &row,
                                    const Console &console) {
  const std::optional<std::size_t> found = session.findRow(row);
  const std::optional<std::size_t> number = numberOf(row, session.rowCount());
  if (found && number && *found != *number) {
    console.error("\"" + row + "\" is the number of the row \"" + inOneLine(session.rowName(*number)) +
                  "\" and the name of row " + std::to_string(*found) + ".");
    console.error(
        "Give that name for the one and that number for the other; \"optstudy rename\" gives it another "
        "name.");
    return std::nullopt;
  }
  if (found || number) {
    return found ? found : number;
  }
  // To a number no name is near.
  const bool isNumber = EmbeddedHost::readSolverNumber(row).has_value();
  console.error("There is no row \"" + row + "\"" + (isNumber ? "" : didYouMean(row, rowNames(session))));
  console.error("A row is given by its name or its number, 0 to " + std::to_string(session.rowCount() - 1) +
                "; \"optstudy show\" lists them.");
  return std::nullopt;
}

} // namespace Workbench
