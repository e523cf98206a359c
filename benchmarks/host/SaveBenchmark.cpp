#include "HostModel/Attribute.h"
#include "benchmarks/host/BareDatabase.h"
#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/HostProject.h"
#include "benchmarks/host/StoredProject.h"

#include <array>
#include <iostream>
#include <memory>
#include <stdexcept>

// A save waits for the disk, so the clock on the wall is what counts here.

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

class Contender {
public:
  Contender(const std::string &folder, std::size_t versions)
      : m_stored(folder, versions), m_full(m_stored.copy("full"), "FULL"),
        m_extra(m_stored.copy("extra"), "EXTRA"), m_project(m_stored.open()),
        m_attribute(firstAttribute(*m_project)) {}

  // The bare transaction with the pragma of the bar; a save; the bare transaction with the pragma of a save.
  void addWays(std::vector<Way> &ways) {
    ways.push_back([this](std::size_t times) { saveBare(m_full, times); });
    ways.push_back([this](std::size_t times) { save(times); });
    ways.push_back([this](std::size_t times) { saveBare(m_extra, times); });
  }

private:
  static AttributeName firstAttribute(const EmbeddedHost::Project &project) {
    EntityModel::Entity *part = project.attribute(project.rootEntity(), "Parts")->asList()->getEntity(0);
    return {part, EntityModel::AttributePath("Member0")};
  }

  void saveBare(BareSave &bare, std::size_t times) {
    for (std::size_t time = 0; time < times; ++time) {
      bare.save(++m_value);
    }
  }

  void save(std::size_t times) {
    std::string problem;
    for (std::size_t time = 0; time < times; ++time) {
      m_value += 1.0;
      const bool isSet = m_project->getEntityEditor()->setValue(
          m_attribute.entity, m_attribute.path, std::to_string(m_value), false, nullptr, false, true);
      if (!isSet || !m_project->needsSave() || !m_project->save(problem)) {
        throw std::runtime_error("A project cannot be saved: " + problem);
      }
    }
  }

  StoredProject m_stored;
  BareSave m_full;
  BareSave m_extra;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  AttributeName m_attribute;
  double m_value = 0.0;
};

constexpr std::size_t kWays = 3;

} // namespace

void measureSaving(const Setting &setting, BarList &bars) {
  const std::array<std::size_t, 2> versions = {setting.few, setting.many};
  std::vector<std::unique_ptr<Contender>> contenders;
  std::vector<Way> ways;
  for (const std::size_t count : versions) {
    contenders.push_back(std::make_unique<Contender>(setting.folder, count));
    contenders.back()->addWays(ways);
  }
  Effort effort = setting.effort;
  effort.secondsPerRepetition *= 10.0;
  const std::vector<double> seconds = measureInterleaved(ways, effort, &wallSeconds);

  std::cout << "\n3  Saving after one edit (time on the wall)\n";
  const std::size_t first = bars.size();
  Table table(
      {"versions", "bare, FULL", "bare, EXTRA", "save (EXTRA)", "save / bare, FULL", "bare: EXTRA / FULL"});
  for (std::size_t row = 0; row < versions.size(); ++row) {
    const double *of = &seconds[row * kWays];
    table.add({std::to_string(versions[row]), duration(of[0]), duration(of[2]), duration(of[1]),
               fixed(of[1] / of[0], 2), fixed(of[2] / of[0], 2)});
    bars.judge("save in a project of " + std::to_string(versions[row]) + " versions / bare transaction",
               of[1] / of[0], 2.0, std::nullopt);
  }
  table.print();
  bars.judge("save: " + std::to_string(setting.many) + " versions / " + std::to_string(setting.few),
             seconds[kWays + 1] / seconds[1], 1.5, std::nullopt);
  bars.print(first);
}

} // namespace HostBenchmark
