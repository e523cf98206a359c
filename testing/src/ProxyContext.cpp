#include "testing/src/ProxyContext.h"

#include "testing/src/AttributeProxies.h"
#include "testing/src/ChangeManagerProxy.h"
#include "testing/src/ServiceProxies.h"
#include "testing/src/VersionProxies.h"

#include <stdexcept>
#include <utility>

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::ChangeManager;
using EntityModel::ChangeSet;
using EntityModel::EditOperation;
using EntityModel::Entity;
using EntityModel::EntityLink;
using EntityModel::ListAttribute;
using EntityModel::ModelDelta;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionExternalData;
using EntityModel::TypeAttribute;

namespace {

AttributeKind kindOf(const Attribute &attribute) {
  auto &changeable = const_cast<Attribute &>(attribute);
  if (changeable.asEntity() != nullptr) {
    return AttributeKind::Entity;
  }
  if (changeable.asList() != nullptr) {
    return AttributeKind::List;
  }
  if (changeable.asLink() != nullptr) {
    return AttributeKind::Link;
  }
  if (changeable.asTypeAttribute() != nullptr) {
    return AttributeKind::Type;
  }
  return dynamic_cast<const EntityModel::CompositeAttribute *>(&attribute) == nullptr
             ? AttributeKind::Plain
             : AttributeKind::Composite;
}

} // namespace

ProxyContext::ProxyContext(Interceptor interceptor, std::shared_ptr<ProxyContext> inner)
    : m_interceptor(std::move(interceptor)), m_inner(std::move(inner)) {}

ProxyContext::~ProxyContext() = default;

void ProxyContext::detach() {
  m_interceptor = nullptr;
  m_editOperation.reset();
  // Taken out first: each proxy removes itself from the tables.
  const std::vector<std::unique_ptr<Attribute>> attributes = std::exchange(m_attributes, {});
}

template <class T, class Make> T *ProxyContext::wrapIn(ProxyTable<T> &table, T *object, const Make &make) {
  if (object == nullptr || table.isProxy(object)) {
    return object;
  }
  T *original = m_inner == nullptr ? object : m_inner->wrap(object);
  T *proxy = table.find(original);
  return proxy == nullptr ? table.add(original, make(*original)) : proxy;
}

Attribute *ProxyContext::wrap(Attribute *attribute) {
  if (attribute == nullptr || m_attributeOriginals.count(attribute) != 0) {
    return attribute;
  }
  Attribute *original = m_inner == nullptr ? attribute : m_inner->wrap(attribute);
  const AttributeKind kind = kindOf(*innermost(original));
  const auto found = m_attributeProxies.find(original);
  // An address may be used again for another attribute after a project was closed.
  if (found != m_attributeProxies.end() && found->second.kind == kind) {
    return found->second.proxy;
  }
  m_attributes.push_back(makeAttributeProxy(*this, *original, kind, {}));
  return m_attributes.back().get();
}

const Attribute *ProxyContext::wrap(const Attribute *attribute) {
  return wrap(const_cast<Attribute *>(attribute));
}
Entity *ProxyContext::wrap(Entity *entity) {
  return static_cast<Entity *>(wrap(static_cast<Attribute *>(entity)));
}
const Entity *ProxyContext::wrap(const Entity *entity) {
  return wrap(const_cast<Entity *>(entity));
}
EntityLink *ProxyContext::wrap(EntityLink *link) {
  return static_cast<EntityLink *>(wrap(static_cast<Attribute *>(link)));
}
ListAttribute *ProxyContext::wrap(ListAttribute *list) {
  return static_cast<ListAttribute *>(wrap(static_cast<Attribute *>(list)));
}
TypeAttribute *ProxyContext::wrap(TypeAttribute *attribute) {
  return static_cast<TypeAttribute *>(wrap(static_cast<Attribute *>(attribute)));
}

ModelVersion *ProxyContext::wrap(ModelVersion *version) {
  return wrapIn(m_versions, version, [this](ModelVersion &original) -> std::unique_ptr<ModelVersion> {
    return std::make_unique<ModelVersionProxy>(*this, original);
  });
}
ModelDelta *ProxyContext::wrap(ModelDelta *delta) {
  return wrapIn(m_deltas, delta, [this](ModelDelta &original) -> std::unique_ptr<ModelDelta> {
    return std::make_unique<ModelDeltaProxy>(*this, original);
  });
}
ModelVersionExternalData *ProxyContext::wrap(ModelVersionExternalData *data) {
  return wrapIn(m_externalData, data,
                [this](ModelVersionExternalData &original) -> std::unique_ptr<ModelVersionExternalData> {
                  return std::make_unique<ExternalDataProxy>(*this, original);
                });
}
ChangeManager *ProxyContext::wrap(ChangeManager *manager) {
  return wrapIn(m_changeManagers, manager, [this](ChangeManager &original) -> std::unique_ptr<ChangeManager> {
    return std::make_unique<ChangeManagerProxy>(*this, original);
  });
}
EntityGUI::AbstractModelChecker *ProxyContext::wrap(EntityGUI::AbstractModelChecker *checker) {
  using EntityGUI::AbstractModelChecker;
  return wrapIn(m_modelCheckers, checker,
                [this](AbstractModelChecker &original) -> std::unique_ptr<AbstractModelChecker> {
                  return std::make_unique<ModelCheckerProxy>(*this, original);
                });
}

ChangeSet ProxyContext::wrap(const ChangeSet &changes) {
  ChangeSet result;
  for (const ChangeSet::ModifiedEntity &modified : changes.getModifiedEntities()) {
    Entity *entity = wrap(modified.entity);
    result.addModified(entity);
    for (Attribute *attribute : modified.attributes) {
      result.addModifiedAttribute(entity, wrap(attribute));
    }
  }
  return result;
}

std::unique_ptr<Attribute> ProxyContext::wrapCopy(std::unique_ptr<Attribute> copy) {
  if (copy == nullptr) {
    return nullptr;
  }
  Attribute &original = *copy;
  return makeAttributeProxy(*this, original, kindOf(*innermost(&original)), {std::move(copy), true});
}

std::unique_ptr<Attribute> ProxyContext::wrapTransient(const Attribute *copy) {
  if (copy == nullptr) {
    return nullptr;
  }
  return makeAttributeProxy(*this, const_cast<Attribute &>(*copy), kindOf(*innermost(copy)), {nullptr, true});
}

const EditOperation *ProxyContext::wrapTransient(const EditOperation *operation) {
  m_editOperation = operation == nullptr ? nullptr : std::make_unique<EditOperationProxy>(*this, *operation);
  return m_editOperation.get();
}

Attribute *ProxyContext::unwrap(Attribute *attribute) const {
  const auto found = m_attributeOriginals.find(attribute);
  return found == m_attributeOriginals.end() ? attribute : found->second;
}
const Attribute *ProxyContext::unwrap(const Attribute *attribute) const {
  return unwrap(const_cast<Attribute *>(attribute));
}
Entity *ProxyContext::unwrap(Entity *entity) const {
  return static_cast<Entity *>(unwrap(static_cast<Attribute *>(entity)));
}
const Entity *ProxyContext::unwrap(const Entity *entity) const {
  return unwrap(const_cast<Entity *>(entity));
}
EntityLink *ProxyContext::unwrap(EntityLink *link) const {
  return static_cast<EntityLink *>(unwrap(static_cast<Attribute *>(link)));
}
ModelVersion *ProxyContext::unwrap(ModelVersion *version) const {
  return m_versions.original(version);
}

ChangeSet ProxyContext::unwrap(const ChangeSet &changes) const {
  ChangeSet result;
  for (const ChangeSet::ModifiedEntity &modified : changes.getModifiedEntities()) {
    Entity *entity = unwrap(modified.entity);
    result.addModified(entity);
    for (Attribute *attribute : modified.attributes) {
      result.addModifiedAttribute(entity, unwrap(attribute));
    }
  }
  return result;
}

const Attribute *ProxyContext::innermost(const Attribute *attribute) const {
  const Attribute *original = unwrap(attribute);
  return m_inner == nullptr ? original : m_inner->innermost(original);
}
ModelVersion *ProxyContext::innermost(ModelVersion *version) const {
  ModelVersion *original = unwrap(version);
  return m_inner == nullptr ? original : m_inner->innermost(original);
}

void ProxyContext::add(Attribute *proxy, Attribute *original, AttributeKind kind) {
  m_attributeProxies[original] = {proxy, kind};
  m_attributeOriginals[proxy] = original;
}

void ProxyContext::remove(const Attribute *proxy) {
  const auto found = m_attributeOriginals.find(proxy);
  const auto entry = m_attributeProxies.find(found->second);
  if (entry != m_attributeProxies.end() && entry->second.proxy == proxy) {
    m_attributeProxies.erase(entry);
  }
  m_attributeOriginals.erase(found);
}

void ProxyContext::setAlias(const Entity *entity, const std::string &alias) {
  m_aliases[innermost(static_cast<const Attribute *>(entity))] = alias;
}

std::string ProxyContext::alias(const Attribute *original) const {
  const auto found = m_aliases.find(original);
  if (found != m_aliases.end()) {
    return found->second;
  }
  return m_inner == nullptr ? std::string() : m_inner->alias(original);
}

Verdict ProxyContext::admit(const char *operation, bool isDetached, std::function<std::string()> arguments) {
  if (!m_interceptor) {
    return Verdict::Proceed;
  }
  const HostOperation *known = findHostOperation(operation);
  if (known == nullptr) {
    throw std::logic_error(std::string("ProxyContext: No such operation: ") + operation);
  }
  return m_interceptor({*known, std::move(arguments), isDetached, m_isInHost, m_depth});
}

bool ProxyContext::mutesBroadcast() const {
  return (m_mutesHostBroadcasts && m_isInHost) || (m_inner != nullptr && m_inner->mutesBroadcast());
}

void ProxyContext::broadcast(const char *operation, const std::function<std::string()> &arguments,
                             const std::function<void()> &deliver) {
  if (mutesBroadcast() || admit(operation, false, arguments) == Verdict::Refuse) {
    return;
  }
  const StackMark mark(*this, false);
  if (m_inner == nullptr) {
    deliver();
  } else {
    m_inner->broadcast(operation, arguments, deliver);
  }
}

} // namespace HostTesting
