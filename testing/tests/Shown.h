#pragma once

#include "HostModel/ChangeSet.h"
#include "testing/tests/EveryOperation.h"

#include <string>

namespace HostTesting {

/// \name Answers as text; of a proxy, which object of the scene it stands for
/// @{
std::string shown(bool value);
std::string shown(int value);
std::string shown(double value);
std::string shown(const std::string &text);
std::string shown(const void *object);
std::string shown(SceneProxies &p, EntityModel::Attribute *attribute);
std::string shown(SceneProxies &p, EntityModel::ModelVersion *version);
std::string shown(SceneProxies &p, const EntityModel::ChangeSet &changes);
/// @}

} // namespace HostTesting
