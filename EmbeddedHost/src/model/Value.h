#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/TypeRef.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace EmbeddedHost {

class ModelEntity;
class Unit;

/// A number as it is shown, with the unit that it is shown in; no unit for a plain number. Kept in that form
/// because a round trip through another unit would change its last digits.
struct RealValue {
  double number = 0.0;
  const Unit *unit = nullptr;
};

/// An entity at a link or in a list.
struct LinkValue {
  ModelEntity *entity = nullptr;
  bool isOwned = false;
};

/// What an attribute reference refers to.
struct AttributeTarget {
  ModelEntity *entity = nullptr;
  EntityModel::AttributePath path;
};

/// The content of a list. Shared by the list that shows it and the edit that recorded it, and changed in place
/// through Model only.
struct ListContent {
  std::vector<LinkValue> elements;
};

/// A text; null is the empty one.
using TextValue = std::shared_ptr<const std::string>;

/// The value of one attribute in a small form, as there are millions of them. Without alternative: no value.
using Value = std::variant<std::monostate, RealValue, std::int64_t, TextValue, EntityModel::TypeRef,
                           LinkValue, std::shared_ptr<const AttributeTarget>, std::shared_ptr<ListContent>>;

TextValue makeText(std::string_view text);
std::string_view textOf(const TextValue &text);

/// Whether a value is held.
inline bool holdsValue(const Value &value) {
  return !std::holds_alternative<std::monostate>(value);
}

/// Whether the two are the same, doubles bit for bit.
bool isSameValue(const Value &a, const Value &b);

/// A copy that shares no list with the original.
Value deepCopy(const Value &value);

/// The elements of a list value; empty for any other.
const std::vector<LinkValue> &elementsOf(const Value &value);

} // namespace EmbeddedHost
