#include "testing/src/CallText.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ProjectStore.h"
#include "testing/src/ProxyContext.h"

#include <charconv>
#include <string_view>

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::EntityLink;
using EntityModel::ListAttribute;
using EntityModel::ModelVersion;

namespace {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      result += '\\';
    }
    result += character;
  }
  return result + '"';
}

// All of these work on the innermost host's objects.
std::string entityText(const ProxyContext &context, const Entity *entity);

std::string attributeText(const ProxyContext &context, const Attribute *attribute) {
  if (attribute == nullptr) {
    return "null";
  }
  if (const Entity *entity = const_cast<Attribute *>(attribute)->asEntity()) {
    return entityText(context, entity);
  }
  const std::string path = attribute->getAttributePath().toString('.');
  const Entity *owner = attribute->getOwnerEntity();
  return owner == nullptr ? "copy" : entityText(context, owner) + "." + path;
}

std::string entityText(const ProxyContext &context, const Entity *entity) {
  std::string name = context.alias(entity);
  if (name.empty()) {
    name = entity->getName(false);
  }
  if (!name.empty()) {
    return name;
  }
  EntityLink *link = entity->getOwnerEntityLink();
  if (link == nullptr) {
    return std::string(entity->getType().getReference().getLabel());
  }
  std::string place = link->getAttributePath().toString('.');
  if (const ListAttribute *list = link->asList()) {
    place += "[" + std::to_string(list->indexOf(entity)) + "]";
  }
  const Entity *owner = link->getOwnerEntity();
  // What lies in the root entity needs no mention of it.
  return owner == nullptr || owner->getOwnerEntityLink() == nullptr
             ? place
             : entityText(context, owner) + "." + place;
}

std::string versionText(const ProxyContext &context, const ModelVersion *version) {
  const ModelVersion *original = context.innermost(const_cast<ModelVersion *>(version));
  return original == nullptr ? "null" : quoted(original->getLabel());
}

} // namespace

void CallText::separate() {
  if (!m_text.empty()) {
    m_text += ", ";
  }
}

CallText &CallText::append(const std::string &text) {
  if (!m_isNamed) {
    separate();
  }
  m_isNamed = false;
  m_text += text;
  return *this;
}

CallText &CallText::add(int value) {
  return append(std::to_string(value));
}

CallText &CallText::add(std::size_t value) {
  return append(std::to_string(value));
}

CallText &CallText::add(const std::optional<double> &value) {
  if (!value) {
    return append("none");
  }
  char text[32] = {};
  const auto end = std::to_chars(text, text + sizeof text, *value);
  return append(std::string(text, end.ptr));
}

CallText &CallText::add(const std::string &text) {
  return append(quoted(text));
}

CallText &CallText::add(const EntityModel::AttributePath &path) {
  return append(path.empty() ? "(empty path)" : path.toString('.'));
}

CallText &CallText::add(const EntityModel::TypeRef &type) {
  return append(type.isEmpty() ? "(no type)" : std::string(type.getLabel()));
}

CallText &CallText::add(const Attribute *attribute) {
  return append(attributeText(m_context, m_context.innermost(attribute)));
}

CallText &CallText::add(const ModelVersion *version) {
  return append(versionText(m_context, version));
}

CallText &CallText::add(const ChangeSet *changes) {
  if (changes == nullptr) {
    return append("null");
  }
  if (changes->isEmpty()) {
    return append("changes");
  }
  std::string text;
  for (const ChangeSet::ModifiedEntity &modified : changes->getModifiedEntities()) {
    if (modified.attributes.empty()) {
      text += (text.empty() ? "" : ", ") + attributeText(m_context, m_context.innermost(modified.entity));
    }
    for (const Attribute *attribute : modified.attributes) {
      text += (text.empty() ? "" : ", ") + attributeText(m_context, m_context.innermost(attribute));
    }
  }
  return append("changes[" + text + "]");
}

CallText &CallText::add(const Tools::ToolProgress *progress) {
  return append(progress == nullptr ? "null" : "progress");
}

CallText &CallText::add(const EntityModel::LibraryInterface *library) {
  return append(library == nullptr ? "null" : "library");
}

CallText &CallText::add(const ProjectData::StoreLocation &store) {
  return append("(" + quoted(store.projectFile) + ", " + quoted(store.versionFolder) + ")");
}

CallText &CallText::add(const Member &member) {
  const Attribute *entity = m_context.innermost(static_cast<const Attribute *>(member.entity));
  const std::string path = member.path.toString('.');
  return append(attributeText(m_context, entity) + (path.empty() ? "" : "." + path));
}

CallText &CallText::add(const Presence &presence) {
  return append(presence.isThere ? presence.name : "null");
}

CallText &CallText::add(const std::vector<Entity *> &entities) {
  std::string text;
  for (const Entity *entity : entities) {
    text += (text.empty() ? "" : ", ") +
            attributeText(m_context, m_context.innermost(static_cast<const Attribute *>(entity)));
  }
  return append("[" + text + "]");
}

CallText &CallText::add(const std::vector<ModelVersion *> &versions) {
  std::string text;
  for (const ModelVersion *version : versions) {
    text += (text.empty() ? "" : ", ") + versionText(m_context, version);
  }
  return append("[" + text + "]");
}

CallText &CallText::add(const std::map<std::string, ModelVersion *> &versions) {
  std::string text;
  for (const auto &[label, version] : versions) {
    text += (text.empty() ? "" : ", ") + quoted(label);
  }
  return append("{" + text + "}");
}

} // namespace HostTesting
