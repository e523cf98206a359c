#pragma once

#include "HostModel/TypeRef.h"

#include <vector>

namespace EntityModel {

/// The names behind the constants of TypeConstants.h, so that a label finds the constant and no second name.
const std::vector<const TypeName *> &builtInTypeNames();

} // namespace EntityModel
