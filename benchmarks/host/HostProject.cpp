#include "benchmarks/host/HostProject.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace HostBenchmark {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;

namespace {

std::string memberLabel(std::size_t member) {
  return "Member" + std::to_string(member);
}

MemberType member(std::size_t number) {
  MemberType type;
  type.label = memberLabel(number);
  if (number < 6) {
    type.standardUnit = number < 3 ? "m" : "K";
    type.displayUnit = number < 3 ? "mm" : "degC";
  } else if (number == 8) {
    type.kind = MemberKind::Integer;
  } else if (number == 9) {
    type.kind = MemberKind::Choice;
    type.options = {"steel", "brass", "oak"};
  }
  type.defaultText = "1";
  return type;
}

void expectNoProblem(const std::string &problem) {
  if (!problem.empty()) {
    throw std::runtime_error(problem);
  }
}

ModelSchema makeSchema() {
  ModelSchema schema;
  std::vector<MemberType> members;
  for (std::size_t number = 0; number < kEdits; ++number) {
    members.push_back(member(number));
  }
  expectNoProblem(schema.declareType("Part", members));
  MemberType parts;
  parts.label = "Parts";
  parts.kind = MemberKind::EntityList;
  parts.targetType = "Part";
  expectNoProblem(schema.declareRootMembers({parts}));
  return schema;
}

std::string valueText(std::size_t member, std::size_t seed) {
  if (member == 9) {
    return std::to_string(seed % 3 + 1);
  }
  return std::to_string(seed + member) + (member == 8 ? "" : ".25");
}

} // namespace

HostProject makeProject(std::size_t attributes) {
  HostProject host;
  host.project = Project::create(makeSchema());
  Project &project = *host.project;
  for (std::size_t number = 0; number < attributes / kEdits; ++number) {
    host.parts.push_back(
        project.createEntity("Part", project.rootEntity(), "Parts", "Part " + std::to_string(number)));
  }
  for (std::size_t number = 0; number < kEdits; ++number) {
    host.edited.push_back(
        {host.parts[number * host.parts.size() / kEdits], EntityModel::AttributePath(memberLabel(number))});
  }
  host.design =
      project.changeManager().startNewVersion("Design", "", "", "", nullptr, project.rootVersion(), false);
  makeCurrent(host, host.design);
  return host;
}

void editCurrentVersion(const HostProject &host, std::size_t seed) {
  for (std::size_t number = 0; number < kEdits; ++number) {
    const AttributeName &edited = host.edited[number];
    if (!host.project->getEntityEditor()->setValue(edited.entity, edited.path, valueText(number, seed), false,
                                                   nullptr, false, true)) {
      throw std::runtime_error("A value cannot be set");
    }
  }
}

std::string alternateLabel(std::size_t number) {
  return "Alternate " + std::to_string(number);
}

void addAlternates(HostProject &host, std::size_t count) {
  EntityModel::ChangeManager &versions = host.project->changeManager();
  for (std::size_t number = 0; number < count; ++number) {
    EntityModel::ModelVersion *alternate =
        versions.startNewAlternate(host.design, nullptr, false, std::numeric_limits<std::size_t>::max());
    alternate->setLabel(alternateLabel(host.alternates.size()));
    makeCurrent(host, alternate);
    editCurrentVersion(host, host.alternates.size());
    host.alternates.push_back(alternate);
  }
}

void makeCurrent(HostProject &host, EntityModel::ModelVersion *version) {
  if (!host.project->changeManager().setCurrentVersion(version, nullptr, false, nullptr, true)) {
    throw std::runtime_error("A version cannot be made current");
  }
}

} // namespace HostBenchmark
