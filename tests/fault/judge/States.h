#pragma once

#include <map>
#include <string>
#include <vector>

namespace FaultTests {

/// What the projects hold after every acknowledgement of an undisturbed session; 0 is before the first. While a row is
/// being solved there is a state of its own between two: its begin is recorded, its results are gone.
struct States {
  std::vector<std::string> after;
  std::map<std::size_t, std::string> solvingAfter;

  /// Reads what the session wrote into a folder.
  static States read(const std::string &folder, std::size_t count);

  /// Whether a session that died or gave up after so many acknowledgements may have left this.
  bool isAllowed(const std::string &state, std::size_t acknowledged) const;
  /// The same for a session that was told of an error: the one version that was being changed may also say that its
  /// run failed, or still runs.
  bool isAllowedAfterError(const std::string &state, std::size_t acknowledged) const;
  /// The first line in which a state differs from the one after so many acknowledgements.
  std::string difference(const std::string &state, std::size_t acknowledged) const;
};

} // namespace FaultTests
