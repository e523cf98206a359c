#pragma once

#include "EmbeddedHost/src/model/Slot.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace EmbeddedHost {

class Model;

// Between the texts of values and the values themselves.

/// The text of a value; "" when none is held.
std::string valueText(const Slot &slot, const Value &value);

/// Reads a value of the slot. A number alone is taken in the unit of the slot's present value.
/// \param model  finds the entities that texts of links name; null finds none
/// \throws std::invalid_argument  the text is no value of the slot, "" of a number included
Value readValue(const Slot &slot, std::string_view text, const Model *model);

/// Whether values of this kind are numbers.
bool isNumberKind(MemberKind kind);

/// The value that new entities have; without value where the member declares no default.
/// \throws std::invalid_argument  the declared default is no value
Value defaultValue(const Member &member);

/// The unit in which the slot's value is shown, or would be; null without units.
const Unit *displayUnit(const Member &member, const Value &value);
/// The number in standard units, the ordinal of a choice, 0 or 1 for a boolean; 0.0 for anything else.
double standardNumber(const Member &member, const Value &value);

} // namespace EmbeddedHost
