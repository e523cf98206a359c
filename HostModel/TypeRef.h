#pragma once

#include "HostModel/Export.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <string_view>

namespace EntityModel {

class Type;
struct PathNode;

/// The interned name behind a type reference: one object per label and process, never destroyed.
/// Only the constants of TypeConstants.h and TypeRef::fromLabel() make one.
class TypeName {
public:
  constexpr explicit TypeName(std::string_view label) : m_label(label) {}
  TypeName(const TypeName &) = delete;
  TypeName &operator=(const TypeName &) = delete;

  constexpr std::string_view label() const noexcept { return m_label; }

private:
  friend class AttributePath;

  std::string_view m_label;
  // The one-element path of this name, so that a path made from a type reference needs no look-up.
  mutable std::atomic<const PathNode *> m_path{nullptr};
};

/// A named reference to a model type. One pointer wide, compared by identity: two references with the same
/// label are the same reference. The constants of TypeConstants.h are constant-initialised, so they may be
/// used during static initialisation.
class HOSTMODEL_EXPORT TypeRef {
public:
  /// Names no type; its label is empty.
  constexpr TypeRef() noexcept = default;
  constexpr explicit TypeRef(const TypeName &name) noexcept : m_name(&name) {}
  /// The reference that names \p type. Implicit, because a type is accepted wherever a reference to it is.
  TypeRef(const Type &type) noexcept;

  /// The reference with this label, interned on first use. An empty label gives the empty reference.
  /// \param label  must not contain "."; the full stop separates the elements of a path
  static TypeRef fromLabel(std::string_view label);

  /// The label that is stored when a type reference is written as a value; lives as long as the process.
  std::string_view getLabel() const noexcept {
    return m_name == nullptr ? std::string_view() : m_name->label();
  }

  bool isEmpty() const noexcept { return m_name == nullptr; }

  friend bool operator==(const TypeRef &a, const TypeRef &b) noexcept { return a.m_name == b.m_name; }
  friend bool operator!=(const TypeRef &a, const TypeRef &b) noexcept { return a.m_name != b.m_name; }

private:
  friend class AttributePath;
  friend struct std::hash<TypeRef>;

  const TypeName *m_name = nullptr;
};

} // namespace EntityModel

template <> struct std::hash<EntityModel::TypeRef> {
  std::size_t operator()(const EntityModel::TypeRef &type) const noexcept {
    return std::hash<const void *>()(type.m_name);
  }
};
