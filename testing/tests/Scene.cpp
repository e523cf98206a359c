#include "testing/tests/Scene.h"

#include "HostModel/TypeConstants.h"

namespace HostTesting {

using TinyModel::Answers;
using TinyModel::Kind;

namespace {

Answers recordedValue() {
  Answers answers;
  answers.kind = Kind::Real;
  answers.text = "9";
  return answers;
}

} // namespace

Scene::Scene()
    : fans(host.script.root.addList("Fans")), parts(fan.addList("Parts")),
      speed(fan.addValue("Speed", Kind::Real, "2.5")), mode(fan.addValue("Mode", Kind::Choice, "2")),
      reference(fan.addValue("Reference", Kind::Reference, "a reference")), link(fan.addLink("Casing", &box)),
      target(fan.addType("Target", EntityModel::Minimise_t)), recorded(recordedValue()) {
  TinyModel::own(fans, fan);
  TinyModel::own(fans, box);
  parts.entities = {&box, &fan};
  speed.answers.units = "mm/s";
  speed.answers.factor = 0.5;
  speed.answers.type = EntityModel::Type(EntityModel::TypeRef::fromLabel("Speed"), 4);
  mode.answers.upperIndex = 3;
  reference.answers.referenced = &speed;
  host.script.current = &base;
  host.script.started = &second;
  host.script.created = &box;
  host.script.alternates = {&second, nullptr};
  host.script.changedEntity = &fan;
  host.script.changedAttribute = &speed;
  second.previous = &base;
  second.baseline = &base;
  second.delta = &delta;
  second.externalData = &externalData;
  second.studyType = EntityModel::ModelVersionStudyType::Optimality;
  base.next = {&second, nullptr};
  externalData.deltas = {&externalDelta, nullptr};
  delta.entity = &fan;
  delta.path = EntityModel::AttributePath("Speed");
  delta.operation.value = &recorded;
}

std::string Scene::takeLog() {
  std::string lines;
  for (const std::string &line : host.script.log) {
    lines += (lines.empty() ? "" : "; ") + line;
  }
  host.script.log.clear();
  return lines;
}

} // namespace HostTesting
