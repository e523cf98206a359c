#pragma once

#include "EmbeddedHost/tests/ProjectFixture.h"

#include <string>

namespace EmbeddedHost {

/// The small project that programs of every format have saved, see fixtures/.
class FixtureProjectTest : public ProjectTest {
protected:
  /// Builds the file from the text that was dumped from a project of that format, in place of whatever there is.
  void build(int format) const;
  /// Carries statements out as somebody else's program would.
  static void alter(const std::string &path, const std::string &sql);
  /// The names of what lies in the folder.
  std::vector<std::string> entries() const;
  /// Checks every value, version and run.
  static void expectContent(Project &opened);
};

} // namespace EmbeddedHost
