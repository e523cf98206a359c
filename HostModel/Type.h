#pragma once

#include "HostModel/Export.h"
#include "HostModel/TypeRef.h"

namespace EntityModel {

/// A model type: the reference that names it and a code for the kind of value it describes. A value class.
class HOSTMODEL_EXPORT Type {
public:
  /// The kind code of a default-constructed type; no real kind has it.
  static constexpr int kNoKind = 0;

  /// A type without name and kind.
  constexpr Type() noexcept = default;
  /// \param reference  names the type
  /// \param kindCode   a host's own code, above 0, equal for types that hold the same kind of value
  constexpr Type(const TypeRef &reference, int kindCode) noexcept
      : m_reference(reference), m_kindCode(kindCode) {}

  const TypeRef &getReference() const noexcept { return m_reference; }
  int getKindCode() const noexcept { return m_kindCode; }

private:
  TypeRef m_reference;
  int m_kindCode = kNoKind;
};

/// Whether \p type is the one that \p reference names.
HOSTMODEL_EXPORT bool operator==(const Type &type, const TypeRef &reference) noexcept;

/// Types that exist without any host.
struct HOSTMODEL_EXPORT TypeFactory {
  /// The type without name and kind, the default wherever a type is asked for and none is held.
  static const Type emptyType;
};

} // namespace EntityModel
