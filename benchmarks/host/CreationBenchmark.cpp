#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/HostProject.h"

#include <array>
#include <iostream>
#include <limits>

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

enum class Label { AsGiven, OwnOne };

// With the content of the version that they are made from, as a study makes its rows.
double createOnce(std::size_t alternates, Label label) {
  HostProject host = makeProject(10);
  editCurrentVersion(host, 1);
  EntityModel::ChangeManager &versions = host.project->changeManager();
  const double begin = processorSeconds();
  for (std::size_t number = 0; number < alternates; ++number) {
    EntityModel::ModelVersion *alternate =
        versions.startNewAlternate(host.design, nullptr, true, std::numeric_limits<std::size_t>::max());
    if (label == Label::OwnOne) {
      alternate->setLabel(alternateLabel(number));
    }
  }
  return processorSeconds() - begin;
}

} // namespace

void measureCreation(const Setting &setting, BarList &bars) {
  const std::array<Label, 2> labels = {Label::AsGiven, Label::OwnOne};
  const std::array<std::string, 2> names = {"labels as given", "each given a label"};
  std::vector<TimedWay> ways;
  for (const Label label : labels) {
    for (const std::size_t count : {setting.some, setting.many}) {
      ways.emplace_back([label, count] { return createOnce(count, label); });
    }
  }
  const std::vector<double> seconds = measureOneByOne(ways, setting.longRepetitions);

  std::cout << "\n6  Making alternates of ten edits\n";
  const std::string some = std::to_string(setting.some);
  const std::string many = std::to_string(setting.many);
  const std::size_t first = bars.size();
  Table table({"", some, many, "growth"});
  for (std::size_t row = 0; row < names.size(); ++row) {
    const double *of = &seconds[2 * row];
    table.add({names[row], duration(of[0]), duration(of[1]), fixed(of[1] / of[0], 2)});
    std::string name = "make alternates, ";
    name.append(names[row]).append(": ").append(many).append(" / ").append(some);
    bars.judge(name, of[1] / of[0], 15.0, std::nullopt);
  }
  table.print();
  bars.print(first);
}

} // namespace HostBenchmark
