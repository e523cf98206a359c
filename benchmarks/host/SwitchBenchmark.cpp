#include "HostModel/ChangeSet.h"
#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/HostProject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <random>
#include <utility>

// Switching from one alternate to another takes ten values back and sets ten others, wherever they are in the model
// and however many versions there are. The floor copies the same twenty values out of plain vectors.

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

// A number and its unit.
struct Value {
  double number = 0.0;
  const void *unit = nullptr;
};

class Floor {
public:
  Floor(std::size_t attributes, std::size_t alternates) : m_slots(attributes), m_deltas(alternates) {
    for (std::size_t number = 0; number < alternates; ++number) {
      for (std::size_t edit = 0; edit < kEdits; ++edit) {
        Value *slot = &m_slots[edit * (attributes / kEdits) + (attributes > kEdits ? edit : 0)];
        m_deltas[number].push_back({slot, Value{static_cast<double>(number), nullptr}});
      }
    }
    m_shadows = m_deltas.front();
  }

  void switchTo(std::size_t alternate) {
    for (std::size_t edit = m_shadows.size(); edit-- > 0;) {
      *m_shadows[edit].first = m_shadows[edit].second;
    }
    for (const auto &[slot, value] : m_deltas[alternate]) {
      *slot = value;
    }
    benchmark::ClobberMemory();
  }

private:
  using Delta = std::vector<std::pair<Value *, Value>>;

  std::vector<Value> m_slots;
  std::vector<Delta> m_deltas;
  Delta m_shadows;
};

// Which alternates to visit, one after the other, round and round.
using Visits = std::vector<std::size_t>;

Visits twoOf(std::size_t alternates) {
  return {alternates / 3, alternates / 3 * 2};
}

Visits allOf(std::size_t alternates) {
  Visits visits(alternates);
  for (std::size_t number = 0; number < alternates; ++number) {
    visits[number] = number;
  }
  std::shuffle(visits.begin(), visits.end(), std::mt19937_64(alternates));
  return visits;
}

template <class Switch> Way overVisits(const Visits &visits, Switch switchTo) {
  return [&visits, switchTo](std::size_t times) {
    auto at = visits.begin();
    for (std::size_t time = 0; time < times; ++time) {
      switchTo(*at);
      at = std::next(at) == visits.end() ? visits.begin() : std::next(at);
    }
  };
}

struct Scale {
  std::size_t attributes;
  std::size_t versions;
};

// A project and its floor, which are measured together with those of the other scales.
class Contender {
public:
  explicit Contender(const Scale &scale)
      : m_host(makeProject(scale.attributes)), m_floor(scale.attributes, scale.versions),
        m_two(twoOf(scale.versions)), m_all(allOf(scale.versions)) {
    addAlternates(m_host, scale.versions);
  }

  // The floor, switching without and with a record of what has changed; for two versions, then for all.
  void addWays(std::vector<Way> &ways) {
    for (const Visits *visits : {&m_two, &m_all}) {
      ways.push_back(overVisits(*visits, [this](std::size_t alternate) { m_floor.switchTo(alternate); }));
      ways.push_back(overVisits(
          *visits, [this](std::size_t alternate) { makeCurrent(m_host, m_host.alternates[alternate]); }));
      ways.push_back(overVisits(*visits, [this](std::size_t alternate) {
        EntityModel::ChangeSet changes;
        m_host.project->changeManager().setCurrentVersion(m_host.alternates[alternate], &changes, false,
                                                          nullptr, true);
        benchmark::DoNotOptimize(changes);
      }));
    }
  }

private:
  HostProject m_host;
  Floor m_floor;
  Visits m_two;
  Visits m_all;
};

constexpr std::size_t kWays = 3;

} // namespace

void measureSwitching(const Setting &setting, BarList &bars) {
  const std::array<Scale, 3> scales = {{{10, setting.few}, {setting.many, setting.few}, {10, setting.many}}};
  std::vector<std::unique_ptr<Contender>> contenders;
  std::vector<Way> ways;
  for (const Scale &scale : scales) {
    contenders.push_back(std::make_unique<Contender>(scale));
    contenders.back()->addWays(ways);
  }
  const std::vector<double> seconds = measureInterleaved(ways, setting.effort);

  std::cout << "\n1  Switching between alternates of ten edits\n";
  const std::array<std::string, 2> visits = {"two alternates", "all, in random order"};
  const std::array<std::string, kWays> names = {"floor", "switch", "switch, changes recorded"};
  Table table({"attributes", "versions", "visits", "floor", "switch", "x floor", "with changes", "x floor"});
  for (std::size_t row = 0; row < scales.size() * visits.size(); ++row) {
    const double *of = &seconds[row * kWays];
    const Scale &scale = scales[row / visits.size()];
    table.add({std::to_string(scale.attributes), std::to_string(scale.versions), visits[row % visits.size()],
               duration(of[0]), duration(of[1]), fixed(of[1] / of[0], 2), duration(of[2]),
               fixed(of[2] / of[0], 2)});
  }
  table.print();

  const std::size_t first = bars.size();
  const std::size_t scaleWays = visits.size() * kWays;
  for (std::size_t way = 1; way < kWays; ++way) {
    bars.judge(names[way] + ": " + std::to_string(setting.many) + " attributes / 10 attributes",
               seconds[scaleWays + way] / seconds[way], 1.5, std::nullopt);
    bars.judge(names[way] + ": " + std::to_string(setting.many) + " versions / " +
                   std::to_string(setting.few),
               seconds[2 * scaleWays + way] / seconds[way], 1.5, std::nullopt);
  }
  bars.print(first);
}

} // namespace HostBenchmark
