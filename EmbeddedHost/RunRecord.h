#pragma once

#include "HostModel/AttributePath.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace EntityModel {
class Entity;
}

namespace EmbeddedHost {

/// The reason of a run that was begun and of whose end nothing is known.
constexpr const char *kLostRun = "lost: the program ended while it ran";

/// The folder in a version's folder that a run is prepared and carried out in until it is finished. It is no part of the
/// results and not copied with a project.
constexpr const char *kUnfinishedRunFolder = "run.new";

/// What became of the last solver run of a version.
enum class RunStatus { None, Running, Ok, Failed };

/// The record of a version's last solver run.
struct RunRecord {
  RunStatus status = RunStatus::None;
  std::string reason;            ///< why a run failed; "" otherwise
  std::vector<std::string> keys; ///< what the result depends on, as the caller defines it
  std::int64_t startedAt = 0;    ///< seconds since 1970-01-01 UTC
  double durationSeconds = 0.0;
  std::vector<std::string> command; ///< program and arguments
  std::optional<int> exitCode;      ///< empty when it did not end by itself
  std::string solverVersion;
  std::string logTail; ///< the end of what the solver printed
};

/// One result of a run. Without a number the result is unset.
struct ResultValue {
  EntityModel::Entity *entity = nullptr;
  EntityModel::AttributePath path;
  std::optional<double> value; ///< in the display unit that the attribute declares
};

} // namespace EmbeddedHost
