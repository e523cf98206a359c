#pragma once

#include "testing/tests/EveryOperation.h"

#include <vector>

namespace HostTesting {

/// The steps of what every attribute has.
std::vector<OperationStep> attributeSteps();

/// The steps of what only entities, links, lists and type attributes have.
std::vector<OperationStep> compositeSteps();

} // namespace HostTesting
