#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "benchmarks/study/AllocationCount.h"
#include "benchmarks/study/Benchmarks.h"
#include "benchmarks/study/StudyProject.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <iostream>
#include <memory>

// What is asked of the groups of one side, each for what stands last, so that all groups are looked through. By hand
// the host is asked the same questions without handles.

namespace StudyBenchmark {

using namespace Benchmarking;
using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ListAttribute;

namespace {

constexpr std::size_t kVariables = 2;

ListAttribute *listOf(Entity *entity, const EntityModel::TypeRef &type) {
  Attribute *attribute = entity->findAttribute(type, false);
  return attribute != nullptr && attribute->isEntityList() ? attribute->asList() : nullptr;
}

// The variable at a flat index.
Entity *flatByHand(const ListAttribute &groups, int index) {
  const int count = groups.getCount();
  for (int group = 0; group < count; ++group) {
    const ListAttribute *variables = listOf(groups.getEntity(group), EntityModel::OptimizationAttributes_t);
    if (index < variables->getCount()) {
      return variables->getEntity(index);
    }
    index -= variables->getCount();
  }
  return nullptr;
}

// The group with a variable for the attribute.
Entity *groupByHand(const ListAttribute &groups, const Attribute *attribute) {
  const int count = groups.getCount();
  for (int group = 0; group < count; ++group) {
    Entity *entity = groups.getEntity(group);
    const ListAttribute *variables = listOf(entity, EntityModel::OptimizationAttributes_t);
    const int size = variables->getCount();
    for (int position = 0; position < size; ++position) {
      const Entity *variable = variables->getEntity(position);
      Entity *owner = EntityModel::getLinkedEntity(variable, AttributePath(EntityModel::ParentEntity_t));
      const AttributePath path(EntityModel::getStringValue(variable, AttributePath(EntityModel::Path_t), ""));
      if (owner->findAttribute(path) == attribute) {
        return entity;
      }
    }
  }
  return nullptr;
}

struct Question {
  std::string name;
  std::function<void()> byHand;
  std::function<void()> ask;
};

Way repeated(const std::function<void()> &once) {
  return [&once](std::size_t times) {
    for (std::size_t time = 0; time < times; ++time) {
      once();
    }
  };
}

std::size_t allocationsOf(const std::function<void()> &once) {
  once();
  const std::size_t before = allocationCount();
  once();
  return allocationCount() - before;
}

// The questions to the inputs of a study.
std::vector<Question> questionsTo(StudyProject &study) {
  OptimizationTool::OptimizationGroups &groups = study.data().getGroups(true);
  const ListAttribute *list = groups.getGroupList();
  const int last = groups.numberOfvariables() - 1;
  Attribute *wanted = study.attribute(study.names(true).back());
  Attribute *absent = study.attribute(study.names(false).back());
  const OptimizationTool::OptimizationData &data = study.data();
  return {
      {"variable by flat index", [=] { benchmark::DoNotOptimize(flatByHand(*list, last)); },
       [=, &data] {
         benchmark::DoNotOptimize(data.getVariable(true, last));
       }},
      {"group index by flat index", [=] { benchmark::DoNotOptimize(flatByHand(*list, last)); },
       [=, &data] {
         benchmark::DoNotOptimize(data.getGroupIndex(true, last));
       }},
      {"containsAttribute", [=] { benchmark::DoNotOptimize(groupByHand(*list, wanted)); },
       [=, &groups] {
         benchmark::DoNotOptimize(groups.containsAttribute(wanted));
       }},
      {"containsAttribute, of none", [=] { benchmark::DoNotOptimize(groupByHand(*list, absent)); },
       [=, &groups] {
         benchmark::DoNotOptimize(groups.containsAttribute(absent));
       }},
      {"getGroupContainingAttribute", [=] { benchmark::DoNotOptimize(groupByHand(*list, wanted)); },
       [=, &data] {
         benchmark::DoNotOptimize(data.getGroupContainingAttribute(true, wanted));
       }},
  };
}

} // namespace

void measureGroups(const Setting &setting, BarList &bars) {
  std::vector<std::unique_ptr<StudyProject>> studies;
  std::vector<std::vector<Question>> questions;
  for (const std::size_t groups : setting.groups) {
    studies.push_back(std::make_unique<StudyProject>(StudySize{groups, kOutputs, kVariables}));
    questions.push_back(questionsTo(*studies.back()));
  }
  std::vector<Way> ways;
  for (const std::vector<Question> &of : questions) {
    for (const Question &question : of) {
      ways.push_back(repeated(question.byHand));
      ways.push_back(repeated(question.ask));
    }
  }
  const std::vector<double> seconds = measureInterleaved(ways, setting.effort);

  std::cout << "\n1  Groups of " << kVariables << " variables; what is asked for stands last\n";
  const std::size_t first = bars.size();
  Table table(
      {"", "groups", "by hand", "growth", "study", "growth", "x by hand", "allocations by hand", "study"});
  const std::size_t kinds = questions.front().size();
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    for (std::size_t at = 0; at < questions.size(); ++at) {
      const Question &question = questions[at][kind];
      const double *of = &seconds[2 * (at * kinds + kind)];
      const std::size_t byHand = allocationsOf(question.byHand);
      const std::size_t asked = allocationsOf(question.ask);
      const double *before = at == 0 ? of : &seconds[2 * ((at - 1) * kinds + kind)];
      table.add({question.name, std::to_string(setting.groups[at]), duration(of[0]),
                 at == 0 ? "" : fixed(of[0] / before[0], 2), duration(of[1]),
                 at == 0 ? "" : fixed(of[1] / before[1], 2), fixed(of[1] / of[0], 2), std::to_string(byHand),
                 std::to_string(asked)});
      if (at > 0) {
        bars.judge(question.name + ": " + std::to_string(setting.groups[at]) + " groups / " +
                       std::to_string(setting.groups[at - 1]),
                   of[1] / before[1], 15.0, std::nullopt);
      }
      if (at + 1 == questions.size()) {
        bars.judge(question.name + ": allocations more than by hand",
                   static_cast<double>(asked) - static_cast<double>(byHand), 10.0, std::nullopt);
      }
    }
  }
  table.print();
  bars.print(first);
}

} // namespace StudyBenchmark
