#pragma once

#include "EmbeddedHost/ModelSchema.h"

#include <cstdint>

namespace EmbeddedHost {

/// The yes-and-no properties of a member in one number of a row.
std::int64_t flagsOf(const MemberType &member);
void setFlags(MemberType &member, std::int64_t flags);

} // namespace EmbeddedHost
