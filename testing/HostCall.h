#pragma once

#include "testing/HostOperation.h"

#include <functional>
#include <string>

namespace HostTesting {

/// A call of a host operation that is about to be made.
struct HostCall {
  const HostOperation &operation;
  /// The arguments as text, the object that is called first. Valid during the interception; costs only when
  /// it is called, and makes no call that would be intercepted itself.
  std::function<std::string()> arguments;
  /// The call goes to a copy of an attribute, outside the model.
  bool isDetached;
  /// The host itself makes the call, while it works on another one.
  bool isByHost;
  /// Number of host calls and broadcasts that have begun and not ended.
  int depth;
};

/// What becomes of an intercepted call.
enum class Verdict {
  Proceed,
  /// Not made; its answer is the neutral one: false, null, an empty text, 0, -1 for a position, an empty range.
  Refuse,
};

} // namespace HostTesting
