#include "HostModel/Attribute.h"
#include "benchmarks/study/Benchmarks.h"
#include "benchmarks/study/StudyProject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <unordered_map>

// Loading a study of 20 input and 10 output groups. The floor looks every group up in a hash table of each version's
// edits and copies an attribute for each cell.

namespace StudyBenchmark {

using namespace Benchmarking;
using EntityModel::Attribute;

namespace {

struct HashName {
  std::size_t operator()(const AttributeName &name) const {
    return std::hash<const void *>()(name.entity) ^
           (std::hash<EntityModel::AttributePath>()(name.path) * std::size_t{0x9E3779B97F4A7C15});
  }
};
struct SameName {
  bool operator()(const AttributeName &a, const AttributeName &b) const {
    return a.entity == b.entity && a.path == b.path;
  }
};
using Edits = std::unordered_map<AttributeName, const Attribute *, HashName, SameName>;

class Floor {
public:
  explicit Floor(StudyProject &study) : m_edits(study.alternates().size() + 1) {
    for (const bool isInput : {true, false}) {
      for (const AttributeName &name : study.names(isInput)) {
        m_names.push_back(name);
        for (Edits &edits : m_edits) {
          edits.emplace(name, study.attribute(name));
        }
      }
    }
  }

  // With the memory of the copies, which the study keeps, too.
  double load(std::size_t times) const {
    double seconds = 0.0;
    for (std::size_t time = 0; time < times; ++time) {
      std::vector<std::vector<std::unique_ptr<Attribute>>> rows;
      const double begin = processorSeconds();
      rows.reserve(m_edits.size());
      for (const Edits &edits : m_edits) {
        rows.emplace_back();
        rows.back().reserve(m_names.size());
        for (const AttributeName &name : m_names) {
          rows.back().push_back(edits.find(name)->second->clone());
        }
      }
      seconds += processorSeconds() - begin;
      benchmark::DoNotOptimize(rows);
    }
    return seconds / static_cast<double>(times);
  }

private:
  std::vector<AttributeName> m_names;
  std::vector<Edits> m_edits;
};

double loadStudy(StudyProject &study, std::size_t times) {
  double seconds = 0.0;
  for (std::size_t time = 0; time < times; ++time) {
    study.reopen();
    const double begin = processorSeconds();
    study.data().initializeVariants(nullptr);
    seconds += processorSeconds() - begin;
  }
  return seconds / static_cast<double>(times);
}

constexpr std::size_t kPerProject = 3;

// Medians of the floor and of the study, in a project that is made for them.
std::vector<double> loadProject(std::size_t rows, std::size_t repetitions) {
  StudyProject study;
  study.addAlternates(rows - 1);
  const Floor floor(study);
  const std::size_t times = std::max<std::size_t>(1, 10'000 / rows);
  return measureOneByOne({[&] { return floor.load(times); },
                          [&] {
                            return loadStudy(study, times);
                          }},
                         repetitions);
}

} // namespace

void measureLoading(const Setting &setting, BarList &bars) {
  std::vector<std::size_t> counts = setting.rows;
  counts.push_back(setting.mostRows);
  // All sizes several times over: how fast memory is changes from minute to minute, and growth is to show none of that.
  std::vector<std::vector<double>> floorsOf(counts.size());
  std::vector<std::vector<double>> loadsOf(counts.size());
  for (std::size_t repetition = 0; repetition < setting.longRepetitions; repetition += kPerProject) {
    for (std::size_t at = 0; at < counts.size(); ++at) {
      const std::vector<double> seconds =
          loadProject(counts[at], std::min(kPerProject, setting.longRepetitions));
      floorsOf[at].push_back(seconds[0]);
      loadsOf[at].push_back(seconds[1]);
    }
  }
  std::vector<double> floors;
  std::vector<double> loads;
  for (std::size_t at = 0; at < counts.size(); ++at) {
    floors.push_back(median(floorsOf[at]));
    loads.push_back(median(loadsOf[at]));
  }

  std::cout << "\n3  Loading a study of " << kInputs << " input and " << kOutputs << " output groups\n";
  const std::size_t first = bars.size();
  Table table({"rows", "floor", "initializeVariants", "x floor", "a row", "growth"});
  for (std::size_t at = 0; at < counts.size(); ++at) {
    table.add({std::to_string(counts[at]), duration(floors[at]), duration(loads[at]),
               fixed(loads[at] / floors[at], 2), duration(loads[at] / static_cast<double>(counts[at])),
               at == 0 ? "" : fixed(loads[at] / loads[at - 1], 2)});
    bars.judge("load " + std::to_string(counts[at]) + " rows / floor", loads[at] / floors[at], 3.0,
               std::nullopt);
  }
  const std::size_t last = counts.size() - 1;
  bars.judge("load " + std::to_string(counts[last]) + " rows / " + std::to_string(counts[last - 1]) + " rows",
             loads[last] / loads[last - 1], 15.0, std::nullopt);
  table.print();
  bars.print(first);
}

} // namespace StudyBenchmark
