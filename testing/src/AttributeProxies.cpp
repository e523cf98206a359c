#include "testing/src/AttributeProxies.h"

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::CompositeAttribute;
using EntityModel::Entity;
using EntityModel::EntityLink;
using EntityModel::ListAttribute;
using EntityModel::Type;
using EntityModel::TypeAttribute;
using EntityModel::TypeRef;

template <class Base>
AttributeProxy<Base>::AttributeProxy(ProxyContext &context, Base &original, AttributeKind kind,
                                     Ownership ownership)
    : m_keptContext(ownership.owned == nullptr ? nullptr : context.shared_from_this()), m_context(context),
      m_original(original), m_ownership(std::move(ownership)) {
  m_context.add(this, &m_original, kind);
}

template <class Base> AttributeProxy<Base>::~AttributeProxy() {
  m_context.remove(this);
}

template <class Base> Entity *AttributeProxy<Base>::getOwnerEntity() {
  return call("Attribute::getOwnerEntity", [&] { return m_context.wrap(m_original.getOwnerEntity()); });
}
template <class Base> const Entity *AttributeProxy<Base>::getOwnerEntity() const {
  return call("Attribute::getOwnerEntity",
              [&] { return m_context.wrap(std::as_const(m_original).getOwnerEntity()); });
}
template <class Base> AttributePath AttributeProxy<Base>::getAttributePath() const {
  return call("Attribute::getAttributePath", [&] { return m_original.getAttributePath(); });
}
template <class Base> Type AttributeProxy<Base>::getType() const {
  return call("Attribute::getType", [&] { return m_original.getType(); });
}
template <class Base> bool AttributeProxy<Base>::isReadOnly(bool includeVersion) const {
  return call(
      "Attribute::isReadOnly", [&] { return m_original.isReadOnly(includeVersion); },
      named("includeVersion", includeVersion));
}
template <class Base> bool AttributeProxy<Base>::isLocked() const {
  return call("Attribute::isLocked", [&] { return m_original.isLocked(); });
}
template <class Base> bool AttributeProxy<Base>::isMonitor() const {
  return call("Attribute::isMonitor", [&] { return m_original.isMonitor(); });
}
template <class Base> bool AttributeProxy<Base>::isInternal() const {
  return call("Attribute::isInternal", [&] { return m_original.isInternal(); });
}
template <class Base> bool AttributeProxy<Base>::isInteger() const {
  return call("Attribute::isInteger", [&] { return m_original.isInteger(); });
}
template <class Base> bool AttributeProxy<Base>::isReal() const {
  return call("Attribute::isReal", [&] { return m_original.isReal(); });
}
template <class Base> bool AttributeProxy<Base>::isChoice() const {
  return call("Attribute::isChoice", [&] { return m_original.isChoice(); });
}
template <class Base> bool AttributeProxy<Base>::isBoolean() const {
  return call("Attribute::isBoolean", [&] { return m_original.isBoolean(); });
}
template <class Base> bool AttributeProxy<Base>::isEntityLink() const {
  return call("Attribute::isEntityLink", [&] { return m_original.isEntityLink(); });
}
template <class Base> bool AttributeProxy<Base>::isTypeReference() const {
  return call("Attribute::isTypeReference", [&] { return m_original.isTypeReference(); });
}
template <class Base> bool AttributeProxy<Base>::isEntityList() const {
  return call("Attribute::isEntityList", [&] { return m_original.isEntityList(); });
}
template <class Base> bool AttributeProxy<Base>::isText() const {
  return call("Attribute::isText", [&] { return m_original.isText(); });
}
template <class Base> bool AttributeProxy<Base>::isAttributeReference() const {
  return call("Attribute::isAttributeReference", [&] { return m_original.isAttributeReference(); });
}
template <class Base> bool AttributeProxy<Base>::isEntity() const {
  return call("Attribute::isEntity", [&] { return m_original.isEntity(); });
}
template <class Base> Entity *AttributeProxy<Base>::asEntity() {
  return call("Attribute::asEntity", [&] { return m_context.wrap(m_original.asEntity()); });
}
template <class Base> EntityLink *AttributeProxy<Base>::asLink() {
  return call("Attribute::asLink", [&] { return m_context.wrap(m_original.asLink()); });
}
template <class Base> ListAttribute *AttributeProxy<Base>::asList() {
  return call("Attribute::asList", [&] { return m_context.wrap(m_original.asList()); });
}
template <class Base> TypeAttribute *AttributeProxy<Base>::asTypeAttribute() {
  return call("Attribute::asTypeAttribute", [&] { return m_context.wrap(m_original.asTypeAttribute()); });
}
template <class Base> Attribute *AttributeProxy<Base>::getReferencedAttribute() const {
  return call("Attribute::getReferencedAttribute",
              [&] { return m_context.wrap(m_original.getReferencedAttribute()); });
}
template <class Base> bool AttributeProxy<Base>::hasValue() const {
  return call("Attribute::hasValue", [&] { return m_original.hasValue(); });
}
template <class Base> std::string AttributeProxy<Base>::getValueAsString() const {
  return call("Attribute::getValueAsString", [&] { return m_original.getValueAsString(); });
}
template <class Base> void AttributeProxy<Base>::setValueFromString(const std::string &text) {
  call(
      "Attribute::setValueFromString", [&] { m_original.setValueFromString(text); }, text);
}
template <class Base> void AttributeProxy<Base>::assignValue(const Attribute &other) {
  call(
      "Attribute::assignValue", [&] { m_original.assignValue(*m_context.unwrap(&other)); }, &other);
}
template <class Base> double AttributeProxy<Base>::getStandardValue() const {
  return call("Attribute::getStandardValue", [&] { return m_original.getStandardValue(); });
}
template <class Base> bool AttributeProxy<Base>::isQuantity() const {
  return call("Attribute::isQuantity", [&] { return m_original.isQuantity(); });
}
template <class Base> std::string AttributeProxy<Base>::getUnits(int form) const {
  return call(
      "Attribute::getUnits", [&] { return m_original.getUnits(form); }, named("form", form));
}
template <class Base> double AttributeProxy<Base>::getValueInUnits(const std::string &units) const {
  return call(
      "Attribute::getValueInUnits", [&] { return m_original.getValueInUnits(units); }, units);
}
template <class Base> bool AttributeProxy<Base>::isNumeric() const {
  return call("Attribute::isNumeric", [&] { return m_original.isNumeric(); });
}
template <class Base> double AttributeProxy<Base>::getNumericValue() const {
  return call("Attribute::getNumericValue", [&] { return m_original.getNumericValue(); });
}
template <class Base> int AttributeProxy<Base>::getIntValue() const {
  return call("Attribute::getIntValue", [&] { return m_original.getIntValue(); });
}
template <class Base> int AttributeProxy<Base>::getUpperIndex() const {
  return call("Attribute::getUpperIndex", [&] { return m_original.getUpperIndex(); });
}
template <class Base> void AttributeProxy<Base>::setOptionalMinimum(const std::optional<double> &minimum) {
  call(
      "Attribute::setOptionalMinimum", [&] { m_original.setOptionalMinimum(minimum); }, minimum);
}
template <class Base> void AttributeProxy<Base>::setOptionalMaximum(const std::optional<double> &maximum) {
  call(
      "Attribute::setOptionalMaximum", [&] { m_original.setOptionalMaximum(maximum); }, maximum);
}
template <class Base> std::string AttributeProxy<Base>::getTypeDescription() const {
  return call("Attribute::getTypeDescription", [&] { return m_original.getTypeDescription(); });
}
template <class Base> std::unique_ptr<Attribute> AttributeProxy<Base>::clone() const {
  return call("Attribute::clone", [&] { return m_context.wrapCopy(m_original.clone()); });
}

namespace {

template <class Base> class CompositeProxy : public AttributeProxy<Base> {
public:
  using AttributeProxy<Base>::AttributeProxy;
  using CompositeAttribute::findAttribute;

  Attribute *findAttribute(const AttributePath &path) override {
    return this->call(
        "CompositeAttribute::findAttribute",
        [&] { return this->m_context.wrap(this->m_original.findAttribute(path)); }, path);
  }
  Attribute *findAttribute(const TypeRef &type, bool searchMembers) override {
    return this->call(
        "CompositeAttribute::findAttribute(type)",
        [&] { return this->m_context.wrap(this->m_original.findAttribute(type, searchMembers)); }, type,
        named("searchMembers", searchMembers));
  }
};

class EntityProxy final : public CompositeProxy<Entity> {
public:
  using CompositeProxy<Entity>::CompositeProxy;

  EntityLink *getOwnerEntityLink() const override {
    return call("Entity::getOwnerEntityLink",
                [&] { return m_context.wrap(m_original.getOwnerEntityLink()); });
  }
  std::string getName(bool asDisplayed) const override {
    return call(
        "Entity::getName", [&] { return m_original.getName(asDisplayed); },
        named("asDisplayed", asDisplayed));
  }
};

template <class Base> class LinkProxy : public AttributeProxy<Base> {
public:
  using AttributeProxy<Base>::AttributeProxy;

  Entity *getLinkedEntity() const override {
    return this->call("EntityLink::getLinkedEntity",
                      [&] { return this->m_context.wrap(this->m_original.getLinkedEntity()); });
  }
};

class ListProxy final : public LinkProxy<ListAttribute> {
public:
  using LinkProxy<ListAttribute>::LinkProxy;

  int getCount() const override {
    return call("ListAttribute::getCount", [&] { return m_original.getCount(); });
  }
  Entity *getEntity(int index) const override {
    return call(
        "ListAttribute::getEntity", [&] { return m_context.wrap(m_original.getEntity(index)); },
        named("index", index));
  }
  int indexOf(const Entity *entity) const override {
    // Refused, the list holds nothing; 0 would be the answer for another entity.
    struct Position {
      int index = -1;
    };
    return call(
               "ListAttribute::indexOf",
               [&] { return Position{m_original.indexOf(m_context.unwrap(entity))}; }, entity)
        .index;
  }
  bool moveEntity(Entity *entity, int to) override {
    return call(
        "ListAttribute::moveEntity", [&] { return m_original.moveEntity(m_context.unwrap(entity), to); },
        entity, named("to", to));
  }
};

class TypeProxy final : public AttributeProxy<TypeAttribute> {
public:
  using AttributeProxy<TypeAttribute>::AttributeProxy;

  TypeRef getTypeValue() const override {
    return call("TypeAttribute::getTypeValue", [&] { return m_original.getTypeValue(); });
  }
  bool hasSameTypes(const TypeAttribute &other) const override {
    return call(
        "TypeAttribute::hasSameTypes",
        [&] {
          return m_original.hasSameTypes(
              static_cast<const TypeAttribute &>(*m_context.unwrap(static_cast<const Attribute *>(&other))));
        },
        &other);
  }
};

} // namespace

std::unique_ptr<Attribute> makeAttributeProxy(ProxyContext &context, Attribute &original, AttributeKind kind,
                                              Ownership ownership) {
  switch (kind) {
  case AttributeKind::Entity:
    return std::make_unique<EntityProxy>(context, static_cast<Entity &>(original), kind,
                                         std::move(ownership));
  case AttributeKind::Composite:
    return std::make_unique<CompositeProxy<CompositeAttribute>>(
        context, static_cast<CompositeAttribute &>(original), kind, std::move(ownership));
  case AttributeKind::List:
    return std::make_unique<ListProxy>(context, static_cast<ListAttribute &>(original), kind,
                                       std::move(ownership));
  case AttributeKind::Link:
    return std::make_unique<LinkProxy<EntityLink>>(context, static_cast<EntityLink &>(original), kind,
                                                   std::move(ownership));
  case AttributeKind::Type:
    return std::make_unique<TypeProxy>(context, static_cast<TypeAttribute &>(original), kind,
                                       std::move(ownership));
  case AttributeKind::Plain:
    break;
  }
  return std::make_unique<AttributeProxy<Attribute>>(context, original, AttributeKind::Plain,
                                                     std::move(ownership));
}

} // namespace HostTesting
