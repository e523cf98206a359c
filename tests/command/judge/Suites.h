#pragma once

#include "tests/command/judge/Box.h"

namespace CommandTests {

enum class Outcome { Passed, Failed, CannotMount };

Outcome runKillSuite(const SuiteOptions &options);
Outcome runInterruptSuite(const SuiteOptions &options);
Outcome runLimitSuite(const SuiteOptions &options);
Outcome runEndsSuite(const SuiteOptions &options);
Outcome runHostileSuite(const SuiteOptions &options);
Outcome runHeldSuite(const SuiteOptions &options);
Outcome runReadOnlySuite(const SuiteOptions &options);
Outcome runLocaleSuite(const SuiteOptions &options);
Outcome runSurfaceSuite(const SuiteOptions &options);
/// These mount, and have to be started as root.
Outcome runDiskSuite(const SuiteOptions &options);
Outcome runMediaSuite(const SuiteOptions &options);
Outcome runPowerSuite(const SuiteOptions &options);

} // namespace CommandTests
