#pragma once

#include "HostModel/Export.h"
#include "HostModel/TypeRef.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace EntityModel {

/// An interned path, see AttributePath.
struct PathNode;

/// A path of type references from a composite attribute to one of its members. Interned: a copy is one
/// pointer, and two paths are equal exactly when their elements are. The empty path names the composite
/// attribute itself.
class HOSTMODEL_EXPORT AttributePath {
public:
  /// The empty path.
  AttributePath() noexcept = default;
  /// The path with one element; the empty reference gives the empty path.
  explicit AttributePath(const TypeRef &type);
  /// The path with these elements.
  explicit AttributePath(const std::vector<TypeRef> &elements);
  /// Reads the labels of the elements, separated by "."; the inverse of toString('.'). "" is the empty path.
  /// \param text  null counts as ""
  explicit AttributePath(const char *text);
  /// As the form for a C string.
  explicit AttributePath(const std::string &text);

  /// Number of elements.
  std::size_t size() const noexcept { return elements().size(); }
  bool empty() const noexcept { return m_node == nullptr; }
  /// The last element; the empty reference for the empty path.
  TypeRef back() const noexcept;
  /// The elements in order; the reference is valid as long as the process lives.
  const std::vector<TypeRef> &elements() const noexcept;
  /// The labels of the elements with \p separator between them.
  std::string toString(char separator) const;

  friend bool operator==(const AttributePath &a, const AttributePath &b) noexcept {
    return a.m_node == b.m_node;
  }
  friend bool operator!=(const AttributePath &a, const AttributePath &b) noexcept {
    return a.m_node != b.m_node;
  }

private:
  friend struct std::hash<AttributePath>;

  const PathNode *m_node = nullptr;
};

} // namespace EntityModel

template <> struct std::hash<EntityModel::AttributePath> {
  std::size_t operator()(const EntityModel::AttributePath &path) const noexcept {
    return std::hash<const void *>()(path.m_node);
  }
};
