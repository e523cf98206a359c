#pragma once

#include "EmbeddedHost/ModelSchema.h"

#include <memory>
#include <vector>

namespace EmbeddedHost {

/// The types that hold studies. The same for every project.
const std::vector<std::shared_ptr<const EntityType>> &studyStorageTypes();

/// The list of studies, a member of every root entity.
MemberType studyListMember();

} // namespace EmbeddedHost
