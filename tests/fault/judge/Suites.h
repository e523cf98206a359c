#pragma once

#include "tests/fault/judge/Bench.h"

namespace FaultTests {

/// Each answers whether it passed, its control included.
/// @{
bool runKillSuite(const SuiteOptions &options);
bool runErrorSuite(const SuiteOptions &options);
bool runOrderSuite(const SuiteOptions &options);
/// @}

/// What became of the power cuts.
enum class PowerOutcome { Passed, Failed, CannotMount };

PowerOutcome runPowerSuite(const SuiteOptions &options);

} // namespace FaultTests
