#include "HostModel/ChangeManager.h"

namespace EntityModel {

ChangeManager::~ChangeManager() = default;

} // namespace EntityModel
