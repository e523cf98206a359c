#pragma once

#include <functional>
#include <string>
#include <vector>

namespace EmbeddedHost {

/// Where a layout is built.
struct LayoutPlace {
  std::string canary;  ///< a folder that must not change; "linked" beside it is a file that may be linked to
  std::string results; ///< the folder of the versions' folders, which holds "other" only
  std::string version; ///< the version's folder, which does not exist yet
  std::string other;   ///< the folder of another version, with files in it
};

/// Something hostile in a version's folder, in its place, or in a place above.
struct HostileLayout {
  std::string name;
  std::function<void(const LayoutPlace &)> build;
  /// Nothing can be done to the version's folder then.
  bool isRefused = false;
  /// It can be removed but not copied.
  bool isTooDeep = false;
};

std::vector<HostileLayout> hostileLayouts();

} // namespace EmbeddedHost
