#pragma once

#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/tests/DamagedFiles.h"

#include <functional>
#include <string>

namespace EmbeddedHost {

/// What an opener says of a file.
enum class Opening { Opened = 0, Refused = 1, RefusedWithoutName = 2, Contradicted = 3 };

/// Opens a file in a process of its own and does with it what can be done.
using Opener = std::function<Opening(const std::string &file, OpenMode mode)>;

/// Lets openers loose on damaged files, in a process each, and finds out what they did wrong.
class DamageJudge {
public:
  /// \param folder   a folder of its own, which has nothing in it but the tested file
  /// \param seconds  what an opening may take
  DamageJudge(std::string folder, Opener opener, unsigned seconds);

  struct Verdict {
    bool isOpened = false;
    std::string violation; ///< "" when nothing was wrong
  };
  Verdict tryOut(const ProjectBytes &bytes, OpenMode mode) const;

private:
  void place(const ProjectBytes &bytes) const;
  void clear() const;

  std::string m_folder;
  std::string m_file;
  Opener m_opener;
  unsigned m_seconds;
};

} // namespace EmbeddedHost
