#include "EmbeddedHost/SolverSupervisors.h"

#include "EmbeddedHost/src/solve/Supervisor.h"

#include <climits>

#include <array>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr const char *kName = "optstudy-supervisor";

std::string folderOfRunningProgram() {
  std::array<char, PATH_MAX> path{};
  const ssize_t size = ::readlink("/proc/self/exe", path.data(), path.size());
  const std::string file(path.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  const std::size_t slash = file.rfind('/');
  return slash == std::string::npos ? "" : file.substr(0, slash);
}

bool isExecutable(const std::string &file) {
  return ::access(file.c_str(), X_OK) == 0;
}

} // namespace

SolverSupervisors::SolverSupervisors(std::string program) : m_program(std::move(program)) {}

SolverSupervisors::~SolverSupervisors() = default;

std::string SolverSupervisors::findProgram(std::string &problem) {
  const char *const chosen = std::getenv("OPTSTUDY_SUPERVISOR");
  if (chosen != nullptr && *chosen != '\0') {
    if (isExecutable(chosen)) {
      return chosen;
    }
    problem = std::string(kName) + ", which runs solvers, is not at " + chosen +
              ", where the environment variable OPTSTUDY_SUPERVISOR says";
    return "";
  }
  std::vector<std::string> places;
  const std::string folder = folderOfRunningProgram();
  if (!folder.empty()) {
    places = {folder + "/" + kName, folder + "/../bin/" + kName, folder + "/../libexec/optstudy/" + kName};
  }
  places.push_back(std::string(OPTSTUDY_LIBEXEC) + "/" + kName);
  std::string searched;
  for (const std::string &place : places) {
    if (isExecutable(place)) {
      return place;
    }
    searched += (searched.empty() ? "" : ", ") + place;
  }
  problem = std::string(kName) + ", which runs solvers, is missing; it was looked for at " + searched +
            "; install it, or set the environment variable OPTSTUDY_SUPERVISOR to its file";
  return "";
}

std::unique_ptr<Supervisor> SolverSupervisors::startOne(std::string &problem) {
  if (m_program.empty()) {
    m_program = findProgram(problem);
  }
  return m_program.empty() ? nullptr : Supervisor::start(m_program, problem);
}

bool SolverSupervisors::prepare(std::size_t count, std::string &problem) {
  while (m_idle.size() < count) {
    std::unique_ptr<Supervisor> started = startOne(problem);
    if (!started) {
      return false;
    }
    m_idle.push_back(std::move(started));
  }
  return true;
}

std::unique_ptr<Supervisor> SolverSupervisors::take(std::string &problem) {
  while (!m_idle.empty()) {
    std::unique_ptr<Supervisor> supervisor = std::move(m_idle.back());
    m_idle.pop_back();
    if (supervisor->isAlive()) {
      return supervisor;
    }
  }
  return startOne(problem);
}

void SolverSupervisors::giveBack(std::unique_ptr<Supervisor> supervisor) {
  m_idle.push_back(std::move(supervisor));
}

} // namespace EmbeddedHost
