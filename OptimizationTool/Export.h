#pragma once

/// Marks what the OptimizationTool shared library exports.
#define OPTIMIZATIONTOOL_EXPORT __attribute__((visibility("default")))
