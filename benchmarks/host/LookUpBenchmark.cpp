#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/HostProject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <unordered_map>

// What the study library looks up most: a version by its label, and the edit of an attribute in a version.

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;

struct HashName {
  std::size_t operator()(const AttributeName &name) const {
    return std::hash<const void *>()(name.entity) ^
           (std::hash<AttributePath>()(name.path) * std::size_t{0x9E3779B97F4A7C15});
  }
};
struct SameName {
  bool operator()(const AttributeName &a, const AttributeName &b) const {
    return a.entity == b.entity && a.path == b.path;
  }
};
using EditTable = std::unordered_map<AttributeName, double, HashName, SameName>;

// The look-ups in random order, so often as there are keys and then from the first on.
template <class Key, class LookUp> Way overKeys(const std::vector<Key> &keys, LookUp lookUp) {
  return [&keys, lookUp](std::size_t times) {
    std::size_t at = 0;
    for (std::size_t time = 0; time < times; ++time) {
      benchmark::DoNotOptimize(lookUp(keys[at]));
      at = at + 1 == keys.size() ? 0 : at + 1;
    }
  };
}

template <class Key> void shuffle(std::vector<Key> &keys) {
  std::shuffle(keys.begin(), keys.end(), std::mt19937_64(keys.size()));
}

class Labels {
public:
  explicit Labels(const HostProject &host) : m_versions(host.project->changeManager()) {
    for (ModelVersion *alternate : host.alternates) {
      m_keys.push_back(alternate->getLabel());
      m_table.emplace(m_keys.back(), alternate);
    }
    shuffle(m_keys);
  }

  void addWays(std::vector<Way> &ways) const {
    ways.push_back(overKeys(m_keys, [this](const std::string &key) { return m_table.find(key)->second; }));
    ways.push_back(
        overKeys(m_keys, [this](const std::string &key) { return m_versions.findVersion(key, nullptr); }));
  }

private:
  EntityModel::ChangeManager &m_versions;
  std::unordered_map<std::string, ModelVersion *> m_table;
  std::vector<std::string> m_keys;
};

class Edits {
public:
  // Of all alternates the attributes that they edit.
  explicit Edits(const HostProject &host) {
    m_tables.reserve(host.alternates.size());
    for (ModelVersion *alternate : host.alternates) {
      m_tables.emplace_back();
      for (const AttributeName &name : host.edited) {
        add(alternate, name);
      }
    }
    shuffle(m_keys);
  }
  // Of one version all attributes of the model.
  Edits(ModelVersion *version, const HostProject &host) : m_tables(1) {
    for (Entity *part : host.parts) {
      for (const AttributeName &name : host.edited) {
        add(version, {part, name.path});
      }
    }
    shuffle(m_keys);
  }

  void addWays(std::vector<Way> &ways) const {
    ways.push_back(overKeys(m_keys, [](const Key &key) { return key.table->find(key.name)->second; }));
    ways.push_back(overKeys(m_keys, [](const Key &key) {
      return key.version->getDelta(true)->findEditOperation(key.name.entity, key.name.path);
    }));
  }

private:
  struct Key {
    ModelVersion *version;
    const EditTable *table;
    AttributeName name;
  };

  void add(ModelVersion *version, const AttributeName &name) {
    m_tables.back().emplace(name, 1.0);
    m_keys.push_back({version, &m_tables.back(), name});
  }

  std::vector<EditTable> m_tables;
  std::vector<Key> m_keys;
};

// A project with one alternate that edits the whole model.
HostProject wholeModelEdited(std::size_t attributes) {
  HostProject host = makeProject(attributes);
  addAlternates(host, 1);
  const std::vector<AttributeName> spread = host.edited;
  for (std::size_t number = 0; number < host.parts.size(); ++number) {
    for (AttributeName &name : host.edited) {
      name.entity = host.parts[number];
    }
    editCurrentVersion(host, number);
  }
  host.edited = spread;
  return host;
}

} // namespace

void measureLookUp(const Setting &setting, BarList &bars) {
  HostProject few = makeProject(10);
  addAlternates(few, setting.few);
  HostProject many = makeProject(10);
  addAlternates(many, setting.many);
  const HostProject small = wholeModelEdited(setting.few);
  const HostProject large = wholeModelEdited(setting.many);

  const std::array<Labels, 2> labels = {Labels(few), Labels(many)};
  const std::array<Edits, 4> edits = {Edits(few), Edits(many), Edits(small.alternates.front(), small),
                                      Edits(large.alternates.front(), large)};
  std::vector<Way> ways;
  for (const Labels &each : labels) {
    each.addWays(ways);
  }
  for (const Edits &each : edits) {
    each.addWays(ways);
  }
  const std::vector<double> seconds = measureInterleaved(ways, setting.effort);

  const std::string fewText = std::to_string(setting.few);
  const std::string manyText = std::to_string(setting.many);
  const std::array<std::string, 6> names = {"findVersion, " + fewText + " versions",
                                            "findVersion, " + manyText + " versions",
                                            "findEditOperation, " + fewText + " versions of ten edits",
                                            "findEditOperation, " + manyText + " versions of ten edits",
                                            "findEditOperation, one version of " + fewText + " edits",
                                            "findEditOperation, one version of " + manyText + " edits"};
  std::cout << "\n2  Look-ups, in random order\n";
  const std::size_t first = bars.size();
  Table table({"", "hash table", "host", "x hash table"});
  for (std::size_t row = 0; row < names.size(); ++row) {
    const double floor = seconds[2 * row];
    const double host = seconds[2 * row + 1];
    table.add({names[row], duration(floor), duration(host), fixed(host / floor, 2)});
    bars.judge(names[row] + " / hash table", host / floor, 2.0, std::nullopt);
  }
  table.print();
  bars.print(first);
}

} // namespace HostBenchmark
