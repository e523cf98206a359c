#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/TypeRef.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace EntityModel {
class Attribute;
class ChangeSet;
class Entity;
class LibraryInterface;
class ModelVersion;
} // namespace EntityModel
namespace ProjectData {
struct StoreLocation;
}
namespace Tools {
class ToolProgress;
}

namespace HostTesting {

class ProxyContext;

/// An argument that is shown with its name.
template <class T> struct Named {
  const char *name;
  const T &value;
};
template <class T> Named<T> named(const char *name, const T &value) {
  return {name, value};
}

/// A member of an entity, shown as "Fan.Speed".
struct Member {
  const EntityModel::Entity *entity;
  const EntityModel::AttributePath &path;
};

/// A place of an object that only tells whether it is there, shown as its name or "null".
struct Presence {
  const char *name;
  bool isThere;
};

/// Renders the arguments of one call, exactly and independent of the locale. Texts stand in quotes, with
/// backslashes before quotes and backslashes; versions by their labels; objects are asked for these at the
/// innermost host, so that rendering is no call that could be intercepted. A pointer of another class does not
/// compile: the form for bool takes nothing else.
class CallText {
public:
  explicit CallText(const ProxyContext &context) : m_context(context) {}

  template <class T, std::enable_if_t<std::is_same_v<T, bool>, int> = 0> CallText &add(const T &value) {
    return append(value ? "true" : "false");
  }
  CallText &add(int value);
  CallText &add(std::size_t value);
  CallText &add(const std::optional<double> &value);
  CallText &add(const std::string &text);
  CallText &add(const EntityModel::AttributePath &path);
  CallText &add(const EntityModel::TypeRef &type);
  CallText &add(const EntityModel::Attribute *attribute);
  CallText &add(const EntityModel::ModelVersion *version);
  CallText &add(const EntityModel::ChangeSet *changes);
  CallText &add(const Tools::ToolProgress *progress);
  CallText &add(const EntityModel::LibraryInterface *library);
  CallText &add(const ProjectData::StoreLocation &store);
  CallText &add(const Member &member);
  CallText &add(const Presence &presence);
  CallText &add(const std::vector<EntityModel::Entity *> &entities);
  CallText &add(const std::vector<EntityModel::ModelVersion *> &versions);
  CallText &add(const std::map<std::string, EntityModel::ModelVersion *> &versions);
  template <class T> CallText &add(const Named<T> &argument) {
    separate();
    m_text += argument.name;
    m_text += '=';
    m_isNamed = true;
    return add(argument.value);
  }

  const std::string &text() const { return m_text; }

private:
  void separate();
  CallText &append(const std::string &text);

  const ProxyContext &m_context;
  std::string m_text;
  bool m_isNamed = false;
};

} // namespace HostTesting
