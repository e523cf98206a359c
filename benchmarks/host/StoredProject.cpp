#include "benchmarks/host/StoredProject.h"

#include "benchmarks/host/HostProject.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

namespace HostBenchmark {

StoredProject::StoredProject(std::string folder, std::size_t versions)
    : m_folder(std::move(folder)), m_file(m_folder + "/" + std::to_string(versions) + ".study") {
  if (std::filesystem::exists(m_file)) {
    return;
  }
  HostProject host = makeProject(10);
  addAlternates(host, versions);
  std::string problem;
  if (!host.project->saveAs(m_file, problem)) {
    throw std::runtime_error(problem);
  }
}

std::string StoredProject::copy(const std::string &name) const {
  std::string copy = m_file + "." + name;
  std::filesystem::copy_file(m_file, copy, std::filesystem::copy_options::overwrite_existing);
  return copy;
}

std::unique_ptr<EmbeddedHost::Project> StoredProject::open() const {
  std::string problem;
  std::unique_ptr<EmbeddedHost::Project> project =
      EmbeddedHost::Project::open(m_file, EmbeddedHost::OpenMode::ReadWrite, problem);
  if (project == nullptr) {
    throw std::runtime_error(problem);
  }
  return project;
}

} // namespace HostBenchmark
