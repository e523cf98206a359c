#pragma once

#include <string_view>
#include <vector>

namespace HostTesting {

/// What a host operation does, which decides whether a recording holds it by default.
enum class OperationEffect {
  /// Reads and changes nothing.
  Query,
  /// Asks for versions, their names or their places; which ones are asked for, and when, is of interest.
  VersionQuery,
  /// Changes the model, versions, stores or the state of the application, or tells somebody of a change.
  Change,
};

/// What a host operation answers, which decides how it can fail.
enum class OperationResult {
  Nothing,
  Flag,
  /// An object, or null.
  Pointer,
  /// A text, number, path or type.
  Value,
  /// The begin of a range; failing makes the range empty.
  RangeBegin,
  /// The end of a range. There is no neutral end for a range that is being walked.
  RangeEnd,
};

/// One virtual operation of the host interface.
struct HostOperation {
  /// Class and operation, as in "ChangeManager::setCurrentVersion".
  const char *name;
  OperationEffect effect;
  OperationResult result;
};

/// Every virtual operation of every service and object of the host interface, class by class.
const std::vector<HostOperation> &hostOperations();

/// The operation of that name, or null.
const HostOperation *findHostOperation(std::string_view name);

} // namespace HostTesting
