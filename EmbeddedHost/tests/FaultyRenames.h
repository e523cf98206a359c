#pragma once

#include <set>

namespace EmbeddedHost {

/// While it lives, chosen calls that rename or make folders fail, or end the process in their place, as a disk error
/// and a kill would. One at a time.
class FaultyRenames {
public:
  FaultyRenames();
  FaultyRenames(const FaultyRenames &) = delete;
  FaultyRenames &operator=(const FaultyRenames &) = delete;
  ~FaultyRenames();

  /// The calls of these ordinals, from 1, fail with that error.
  void fail(const std::set<int> &ordinals, int error);
  /// As on a file system that cannot exchange two names.
  void refuseExchanges();
  /// As on a file system that knows no flags of renaming at all.
  void refuseFlags();
  /// The process ends at that call without executing it, with the exit code kEnded.
  void endAt(int ordinal);
  /// The process stops at that call until it is killed, after writing one byte into the pipe.
  void pauseAt(int ordinal, int pipe);
  /// Making a folder fails with that error.
  void failMakingFolders(int error);
  /// Renaming calls so far, those included that failed.
  int count() const;

  static constexpr int kEnded = 37;
};

} // namespace EmbeddedHost
