#include "EmbeddedHost/Project.h"
#include "HostModel/Host.h"
#include "HostModel/ProjectStore.h"
#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/solve/Benchmarks.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace SolveBenchmark {

using namespace Benchmarking;
namespace fs = std::filesystem;

namespace {

// A project with two versions, of which the first has results of 1 MiB.
class Results {
public:
  Results(const std::string &folder, std::size_t files) : m_folder(folder + "/" + std::to_string(files)) {
    fs::create_directory(m_folder);
    m_project = EmbeddedHost::Project::create(EmbeddedHost::ModelSchema());
    std::string problem;
    if (!m_project->saveAs(m_folder + "/copy.optstudy", problem)) {
      throw std::runtime_error(problem);
    }
    EntityModel::ModelVersion *second = m_project->changeManager().startNewVersion(
        "Second", "", "", "", nullptr, m_project->rootVersion(), false);
    if (!m_project->save(problem)) {
      throw std::runtime_error(problem);
    }
    m_from = m_project->versionFolder(*m_project->rootVersion(), true);
    m_to = m_project->versionFolder(*second, true);
    const std::string content((std::size_t{1} << 20U) / files, 'x');
    for (std::size_t number = 0; number < files; ++number) {
      std::ofstream(m_from + "/" + std::to_string(number)) << content;
    }
  }

  // The version's folder is empty before, as that of a new version is; removing is not counted.
  double copy() {
    ProjectData::ProjectStoreService &stores = *m_project->getProjectStore();
    const ProjectData::StoreLocation source{m_project->file(), m_from};
    const ProjectData::StoreLocation target{m_project->file(), m_to};
    stores.remove(target);
    const double began = wallSeconds();
    const bool isDone = stores.copyResults(source, target, false, nullptr, true);
    const double seconds = wallSeconds() - began;
    if (!isDone || !fs::exists(m_to + "/0")) {
      throw std::runtime_error("Results cannot be copied");
    }
    return seconds;
  }

  double copyByProgram() const {
    const std::string target = m_folder + "/cp";
    fs::remove_all(target);
    const double began = wallSeconds();
    outputOf({"/bin/cp", "-r", "--reflink=auto", m_from, target});
    return wallSeconds() - began;
  }

private:
  std::string m_folder;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  std::string m_from;
  std::string m_to;
};

} // namespace

void measureCopying(const Setting &setting, BarList &bars) {
  const std::vector<std::size_t> counts = {1, 256};
  std::vector<std::unique_ptr<Results>> results;
  std::vector<TimedWay> ways;
  for (const std::size_t files : counts) {
    results.push_back(std::make_unique<Results>(setting.folder, files));
    Results &of = *results.back();
    ways.emplace_back([&of] { return of.copy(); });
    ways.emplace_back([&of] { return of.copyByProgram(); });
  }
  constexpr std::size_t kTimes = 5;
  const std::vector<double> seconds = measureOneByOne(ways, setting.repetitions * kTimes);
  std::cout << "\n4  Copying 1 MiB of results into a new version (time on the wall)\n";
  const std::size_t first = bars.size();
  Table table({"files", "copyResults", "cp -r --reflink=auto", "copyResults / cp"});
  for (std::size_t row = 0; row < counts.size(); ++row) {
    const double *of = &seconds[row * 2];
    table.add({std::to_string(counts[row]), duration(of[0]), duration(of[1]), fixed(of[0] / of[1], 2)});
    bars.judge("copying 1 MiB in " + std::to_string(counts[row]) + (row == 0 ? " file" : " files") + " / cp",
               of[0] / of[1], 1.5, std::nullopt);
  }
  table.print();
  bars.print(first);
}

} // namespace SolveBenchmark
