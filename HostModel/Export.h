#pragma once

/// Marks what the HostModel shared library exports.
#define HOSTMODEL_EXPORT __attribute__((visibility("default")))
