#pragma once

#include "testing/WrappedHost.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace HostTesting {

enum class FaultKind {
  /// The operation has no effect; it answers false, null, "", 0, -1 for a position, or an empty range.
  Refused,
  /// The operation has no effect and answers null.
  Null,
  /// The operation has no effect and throws std::runtime_error "injected fault".
  Throws,
};

/// Lets chosen operations of a host fail. What the host calls itself while it works on a call is spared and
/// not counted, except for its broadcasts.
class FaultyHost : public WrappedHost {
public:
  /// The occurrence that stands for every one.
  static constexpr int kAlways = 0;

  explicit FaultyHost(HostModel::Host &host);
  ~FaultyHost() override;

  /// The names of all operations that can fail.
  static std::vector<std::string> operations();
  /// The kinds in which an operation can fail, each with an effect of its own: Null instead of Refused when
  /// it answers an object, Throws alone when it has no neutral answer.
  /// \throws std::invalid_argument "FaultyHost: No such operation: " and the name
  static std::vector<FaultKind> kinds(const std::string &operation);

  /// Lets an operation fail, in place of an earlier choice for it.
  /// \param occurrence  1 for the next call, 2 for the one after and so on; kAlways for every call
  /// \throws std::invalid_argument "FaultyHost: No such operation: " and the name, or
  ///         "FaultyHost: Operation cannot fail in this kind: " and the name
  void fail(const std::string &operation, FaultKind kind, int occurrence = kAlways);
  /// Lets nothing fail any more and counts from 0 again.
  void heal();

  /// What is told of each strike before the call fails. Calls that it makes of the host are spared and not counted.
  using StrikeAction = std::function<void(const HostCall &call)>;
  void setStrikeAction(StrikeAction action);

  /// How often a fault has struck since the last heal().
  int strikes() const { return m_strikes; }
  /// How often an operation was called since the last heal(), faults included.
  int occurrences(const std::string &operation) const;

protected:
  Verdict intercept(const HostCall &call) override;

private:
  struct Fault {
    FaultKind kind;
    int occurrence;
    // Calls since the fault was chosen.
    int seen;
  };

  std::map<std::string, Fault> m_faults;
  std::map<std::string, int> m_occurrences;
  StrikeAction m_strikeAction;
  bool m_isStriking = false;
  int m_strikes = 0;
};

} // namespace HostTesting
