#pragma once

#include "tests/contract/HostUnderTest.h"

#include <vector>

namespace HostContract {

HostKind minimalHost();
/// The embedded host as the shipped programs use it, with new versions that become current, and with switches that
/// tell nobody.
std::vector<HostKind> embeddedHosts();

} // namespace HostContract
