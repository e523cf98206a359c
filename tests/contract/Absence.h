#pragma once

#include "tests/contract/HostUnderTest.h"

namespace HostContract {

class Scene;

/// Checks that a host which does not declare the capability does not have it either, so that no rule is left out
/// by mistake.
void expectAbsent(Scene &scene, Capability capability);

} // namespace HostContract
