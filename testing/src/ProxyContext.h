#pragma once

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "testing/HostCall.h"
#include "testing/src/CallText.h"
#include "testing/src/ProxyTable.h"

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace HostTesting {

/// The class that the proxy of an attribute has.
enum class AttributeKind { Plain, Composite, Entity, Link, List, Type };

/// What the proxies of one wrapper share: the tables that translate between proxies and originals, the
/// interception of calls, and where on the call stack host and library are.
///
/// Proxies of copies keep it alive after the wrapper; calls are not intercepted any more then.
class ProxyContext : public std::enable_shared_from_this<ProxyContext> {
public:
  using Interceptor = std::function<Verdict(const HostCall &)>;

  /// \param inner  of the wrapper that is wrapped; null when a host is wrapped that is none
  ProxyContext(Interceptor interceptor, std::shared_ptr<ProxyContext> inner);
  ProxyContext(const ProxyContext &) = delete;
  ProxyContext &operator=(const ProxyContext &) = delete;
  ~ProxyContext();

  /// Ends interception and the proxies that the wrapper owns.
  void detach();

  /// \name Translation; null stays null
  /// @{
  EntityModel::Attribute *wrap(EntityModel::Attribute *attribute);
  const EntityModel::Attribute *wrap(const EntityModel::Attribute *attribute);
  EntityModel::Entity *wrap(EntityModel::Entity *entity);
  const EntityModel::Entity *wrap(const EntityModel::Entity *entity);
  EntityModel::EntityLink *wrap(EntityModel::EntityLink *link);
  EntityModel::ListAttribute *wrap(EntityModel::ListAttribute *list);
  EntityModel::TypeAttribute *wrap(EntityModel::TypeAttribute *attribute);
  EntityModel::ModelVersion *wrap(EntityModel::ModelVersion *version);
  EntityModel::ModelDelta *wrap(EntityModel::ModelDelta *delta);
  EntityModel::ModelVersionExternalData *wrap(EntityModel::ModelVersionExternalData *data);
  EntityModel::ChangeManager *wrap(EntityModel::ChangeManager *manager);
  EntityGUI::AbstractModelChecker *wrap(EntityGUI::AbstractModelChecker *checker);
  EntityModel::ChangeSet wrap(const EntityModel::ChangeSet &changes);
  /// A proxy that owns its original.
  std::unique_ptr<EntityModel::Attribute> wrapCopy(std::unique_ptr<EntityModel::Attribute> copy);
  /// A proxy of a copy that the host owns for a while; replaces the one before.
  const EntityModel::EditOperation *wrapTransient(const EntityModel::EditOperation *operation);
  std::unique_ptr<EntityModel::Attribute> wrapTransient(const EntityModel::Attribute *copy);

  EntityModel::Attribute *unwrap(EntityModel::Attribute *attribute) const;
  const EntityModel::Attribute *unwrap(const EntityModel::Attribute *attribute) const;
  EntityModel::Entity *unwrap(EntityModel::Entity *entity) const;
  const EntityModel::Entity *unwrap(const EntityModel::Entity *entity) const;
  EntityModel::EntityLink *unwrap(EntityModel::EntityLink *link) const;
  EntityModel::ModelVersion *unwrap(EntityModel::ModelVersion *version) const;
  EntityModel::ChangeSet unwrap(const EntityModel::ChangeSet &changes) const;

  template <class T> std::vector<T *> wrapAll(const std::vector<T *> &objects) {
    std::vector<T *> result;
    result.reserve(objects.size());
    for (T *object : objects) {
      result.push_back(wrap(object));
    }
    return result;
  }
  template <class T> std::vector<T *> unwrapAll(const std::vector<T *> &objects) const {
    std::vector<T *> result;
    result.reserve(objects.size());
    for (T *object : objects) {
      result.push_back(unwrap(object));
    }
    return result;
  }

  /// Through all wrappers, down to the innermost host.
  const EntityModel::Attribute *innermost(const EntityModel::Attribute *attribute) const;
  EntityModel::ModelVersion *innermost(EntityModel::ModelVersion *version) const;
  /// @}

  /// \name For the proxies of attributes
  /// @{
  void add(EntityModel::Attribute *proxy, EntityModel::Attribute *original, AttributeKind kind);
  void remove(const EntityModel::Attribute *proxy);
  /// @}

  /// The arguments as text.
  template <class... Arguments> std::string render(const Arguments &...arguments) const {
    CallText text(*this);
    (text.add(arguments), ...);
    return text.text();
  }
  void setAlias(const EntityModel::Entity *entity, const std::string &alias);
  /// The name given to an entity of the innermost host; "" for none.
  std::string alias(const EntityModel::Attribute *original) const;

  /// Intercepts a call and makes it with \p body, unless it is refused: the answer is then the neutral one.
  template <class Arguments, class Body>
  std::invoke_result_t<Body> perform(const char *operation, bool isDetached, const Arguments &arguments,
                                     const Body &body) {
    using Result = std::invoke_result_t<Body>;
    if (admit(operation, isDetached, std::cref(arguments)) == Verdict::Refuse) {
      if constexpr (std::is_void_v<Result>) {
        return;
      } else {
        return Result();
      }
    }
    const StackMark mark(*this, true);
    return body();
  }

  /// Intercepts a broadcast here and in all wrappers inside, then calls \p deliver, which tells the observers.
  void broadcast(const char *operation, const std::function<std::string()> &arguments,
                 const std::function<void()> &deliver);
  void muteHostBroadcasts(bool mute) { m_mutesHostBroadcasts = mute; }

  /// Calls \p body with the originals of a change set, or with null for null, and translates back what it
  /// recorded, also when it throws.
  template <class Body> auto withChanges(EntityModel::ChangeSet *changes, const Body &body) {
    if (changes == nullptr) {
      return body(nullptr);
    }
    EntityModel::ChangeSet originals = unwrap(*changes);
    try {
      if constexpr (std::is_void_v<decltype(body(&originals))>) {
        body(&originals);
        *changes = wrap(originals);
      } else {
        auto result = body(&originals);
        *changes = wrap(originals);
        return result;
      }
    } catch (...) {
      *changes = wrap(originals);
      throw;
    }
  }

private:
  struct AttributeEntry {
    EntityModel::Attribute *proxy;
    AttributeKind kind;
  };

  // Who is at work while it lives: the host, or whoever is told of a broadcast.
  class StackMark {
  public:
    StackMark(ProxyContext &context, bool isInHost) : m_context(context), m_wasInHost(context.m_isInHost) {
      context.m_isInHost = isInHost;
      ++context.m_depth;
    }
    StackMark(const StackMark &) = delete;
    StackMark &operator=(const StackMark &) = delete;
    ~StackMark() {
      m_context.m_isInHost = m_wasInHost;
      --m_context.m_depth;
    }

  private:
    ProxyContext &m_context;
    bool m_wasInHost;
  };

  Verdict admit(const char *operation, bool isDetached, std::function<std::string()> arguments);
  bool mutesBroadcast() const;
  template <class T, class Make> T *wrapIn(ProxyTable<T> &table, T *object, const Make &make);

  Interceptor m_interceptor;
  std::shared_ptr<ProxyContext> m_inner;
  bool m_isInHost = false;
  bool m_mutesHostBroadcasts = false;
  int m_depth = 0;
  std::unordered_map<const EntityModel::Attribute *, std::string> m_aliases;
  std::unordered_map<const EntityModel::Attribute *, AttributeEntry> m_attributeProxies;
  std::unordered_map<const EntityModel::Attribute *, EntityModel::Attribute *> m_attributeOriginals;
  ProxyTable<EntityModel::ModelVersion> m_versions;
  ProxyTable<EntityModel::ModelDelta> m_deltas;
  ProxyTable<EntityModel::ModelVersionExternalData> m_externalData;
  ProxyTable<EntityModel::ChangeManager> m_changeManagers;
  ProxyTable<EntityGUI::AbstractModelChecker> m_modelCheckers;
  // After the tables that their destructors reach.
  std::vector<std::unique_ptr<EntityModel::Attribute>> m_attributes;
  std::unique_ptr<EntityModel::EditOperation> m_editOperation;
};

} // namespace HostTesting
