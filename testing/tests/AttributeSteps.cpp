#include "testing/tests/AttributeSteps.h"

#include "testing/tests/Shown.h"

#include <string>

namespace HostTesting {

using EntityModel::AttributePath;
using EntityModel::TypeRef;

std::vector<OperationStep> attributeSteps() {
  return {
      {"Attribute::getOwnerEntity", [](SceneProxies &p) { return shown(p, p.speed->getOwnerEntity()); },
       "proxy of Fan", "null"},
      {"Attribute::getAttributePath",
       [](SceneProxies &p) { return shown(p.speed->getAttributePath().toString('.')); }, "'Speed'", "''"},
      {"Attribute::getType",
       [](SceneProxies &p) {
         const EntityModel::Type type = p.speed->getType();
         return std::string(type.getReference().getLabel()) + " " + shown(type.getKindCode());
       },
       "Speed 4", " 0"},
      {"Attribute::isReadOnly",
       [](SceneProxies &p) {
         p.scene.speed.answers.isVersionReadOnly = true;
         const bool isReadOnly = p.speed->isReadOnly(true);
         p.scene.speed.answers.isVersionReadOnly = false;
         return shown(isReadOnly);
       },
       "true", "false"},
      {"Attribute::isLocked",
       [](SceneProxies &p) {
         p.scene.speed.answers.isLocked = true;
         return shown(p.speed->isLocked());
       },
       "true", "false"},
      {"Attribute::isMonitor",
       [](SceneProxies &p) {
         p.scene.speed.answers.isMonitor = true;
         return shown(p.speed->isMonitor());
       },
       "true", "false"},
      {"Attribute::isInternal",
       [](SceneProxies &p) {
         p.scene.speed.answers.isInternal = true;
         return shown(p.speed->isInternal());
       },
       "true", "false"},
      {"Attribute::isInteger",
       [](SceneProxies &p) {
         p.scene.mode.answers.kind = TinyModel::Kind::Integer;
         return shown(p.mode->isInteger());
       },
       "true", "false"},
      {"Attribute::isReal", [](SceneProxies &p) { return shown(p.speed->isReal()); }, "true", "false"},
      {"Attribute::isChoice",
       [](SceneProxies &p) {
         p.scene.mode.answers.kind = TinyModel::Kind::Choice;
         return shown(p.mode->isChoice());
       },
       "true", "false"},
      {"Attribute::isBoolean",
       [](SceneProxies &p) {
         p.scene.mode.answers.kind = TinyModel::Kind::Boolean;
         return shown(p.mode->isBoolean());
       },
       "true", "false"},
      {"Attribute::isEntityLink", [](SceneProxies &p) { return shown(p.link->isEntityLink()); }, "true",
       "false"},
      {"Attribute::isTypeReference", [](SceneProxies &p) { return shown(p.target->isTypeReference()); },
       "true", "false"},
      {"Attribute::isEntityList", [](SceneProxies &p) { return shown(p.parts->isEntityList()); }, "true",
       "false"},
      {"Attribute::isText",
       [](SceneProxies &p) {
         p.scene.mode.answers.kind = TinyModel::Kind::Text;
         return shown(p.mode->isText());
       },
       "true", "false"},
      {"Attribute::isAttributeReference",
       [](SceneProxies &p) { return shown(p.reference->isAttributeReference()); }, "true", "false"},
      {"Attribute::isEntity", [](SceneProxies &p) { return shown(p.fan->isEntity()); }, "true", "false"},
      {"Attribute::asEntity", [](SceneProxies &p) { return shown(p.fan->asEntity() == p.fan); }, "true",
       "false"},
      {"Attribute::asLink", [](SceneProxies &p) { return shown(p.link->asLink() == p.link); }, "true",
       "false"},
      {"Attribute::asList", [](SceneProxies &p) { return shown(p.parts->asList() == p.parts); }, "true",
       "false"},
      {"Attribute::asTypeAttribute",
       [](SceneProxies &p) { return shown(p.target->asTypeAttribute() == p.target); }, "true", "false"},
      {"Attribute::getReferencedAttribute",
       [](SceneProxies &p) { return shown(p.reference->getReferencedAttribute() == p.speed); }, "true",
       "false"},
      {"Attribute::hasValue", [](SceneProxies &p) { return shown(p.speed->hasValue()); }, "true", "false"},
      {"Attribute::getValueAsString", [](SceneProxies &p) { return shown(p.speed->getValueAsString()); },
       "'2.5'", "''"},
      {"Attribute::setValueFromString",
       [](SceneProxies &p) {
         p.scene.speed.answers.text = "2.5";
         p.speed->setValueFromString("7");
         return p.scene.speed.answers.text;
       },
       "7", "2.5"},
      {"Attribute::assignValue",
       [](SceneProxies &p) {
         p.scene.speed.answers.text = "2.5";
         p.scene.mode.answers.text = "2";
         p.speed->assignValue(*p.mode);
         return p.scene.speed.answers.text;
       },
       "2", "2.5"},
      {"Attribute::getStandardValue",
       [](SceneProxies &p) {
         p.scene.speed.answers.text = "2.5";
         return shown(p.speed->getStandardValue());
       },
       "125/100", "0/100"},
      {"Attribute::isQuantity", [](SceneProxies &p) { return shown(p.speed->isQuantity()); }, "true",
       "false"},
      {"Attribute::getUnits", [](SceneProxies &p) { return shown(p.speed->getUnits(1)); }, "'[mm/s]'", "''"},
      {"Attribute::getValueInUnits", [](SceneProxies &p) { return shown(p.speed->getValueInUnits("mm/s")); },
       "250/100", "0/100"},
      {"Attribute::isNumeric", [](SceneProxies &p) { return shown(p.speed->isNumeric()); }, "true", "false"},
      {"Attribute::getNumericValue", [](SceneProxies &p) { return shown(p.speed->getNumericValue()); },
       "125/100", "0/100"},
      {"Attribute::getIntValue",
       [](SceneProxies &p) {
         p.scene.mode.answers.kind = TinyModel::Kind::Choice;
         p.scene.mode.answers.text = "2";
         return shown(p.mode->getIntValue());
       },
       "2", "0"},
      {"Attribute::getUpperIndex", [](SceneProxies &p) { return shown(p.mode->getUpperIndex()); }, "3", "0"},
      {"Attribute::setOptionalMinimum",
       [](SceneProxies &p) {
         p.scene.speed.answers.minimum.reset();
         p.speed->setOptionalMinimum(0.5);
         return shown(p.scene.speed.answers.minimum.has_value());
       },
       "true", "false"},
      {"Attribute::setOptionalMaximum",
       [](SceneProxies &p) {
         p.scene.speed.answers.maximum.reset();
         p.speed->setOptionalMaximum(0.5);
         return shown(p.scene.speed.answers.maximum.has_value());
       },
       "true", "false"},
      {"Attribute::getTypeDescription", [](SceneProxies &p) { return shown(p.speed->getTypeDescription()); },
       "'tiny'", "''"},
      {"Attribute::clone", [](SceneProxies &p) { return shown(p.speed->clone().get()); }, "object", "null"},
  };
}

std::vector<OperationStep> compositeSteps() {
  return {
      {"CompositeAttribute::findAttribute",
       [](SceneProxies &p) { return shown(p.fan->findAttribute(AttributePath("Speed")) == p.speed); }, "true",
       "false"},
      {"CompositeAttribute::findAttribute(type)",
       [](SceneProxies &p) {
         return shown(p.fan->findAttribute(TypeRef::fromLabel("Speed"), false) == p.speed);
       },
       "true", "false"},
      {"Entity::getOwnerEntityLink", [](SceneProxies &p) { return shown(p, p.fan->getOwnerEntityLink()); },
       "proxy of Fans", "null"},
      {"Entity::getName", [](SceneProxies &p) { return shown(p.fan->getName(true)); }, "'<Fan>'", "''"},
      {"EntityLink::getLinkedEntity", [](SceneProxies &p) { return shown(p, p.link->getLinkedEntity()); },
       "proxy of Box", "null"},
      {"ListAttribute::getCount", [](SceneProxies &p) { return shown(p.parts->getCount()); }, "2", "0"},
      {"ListAttribute::getEntity", [](SceneProxies &p) { return shown(p, p.parts->getEntity(1)); },
       "proxy of Fan", "null"},
      {"ListAttribute::indexOf",
       [](SceneProxies &p) {
         p.scene.parts.entities = {&p.scene.box, &p.scene.fan};
         return shown(p.parts->indexOf(p.fan));
       },
       "1", "-1"},
      {"ListAttribute::moveEntity",
       [](SceneProxies &p) {
         p.scene.parts.entities = {&p.scene.box, &p.scene.fan};
         const bool result = p.parts->moveEntity(p.fan, 0);
         const bool isMoved = p.scene.parts.entities.front() == &p.scene.fan;
         p.scene.parts.entities = {&p.scene.box, &p.scene.fan};
         return shown(result) + " " + shown(isMoved);
       },
       "true true", "false false"},
      {"TypeAttribute::getTypeValue",
       [](SceneProxies &p) { return shown(std::string(p.target->getTypeValue().getLabel())); }, "'Minimise'",
       "''"},
      {"TypeAttribute::hasSameTypes",
       [](SceneProxies &p) { return shown(p.target->hasSameTypes(*p.target)); }, "true", "false"},
  };
}

} // namespace HostTesting
