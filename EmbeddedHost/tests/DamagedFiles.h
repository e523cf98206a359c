#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace EmbeddedHost {

/// What a project file and what lies beside it hold; "" for what there is not.
struct ProjectBytes {
  std::string file;
  std::string journal;
  std::string writeAheadLog;
};

/// Sound material to damage.
struct SoundProject {
  std::string saved;        ///< a saved project of several hundred pages
  ProjectBytes interrupted; ///< the same with a change that was half done and the journal that undoes it
  std::string foreignLog;   ///< a log of another way of saving that would change what the project holds
};

/// Makes it in a folder that can be written, and leaves nothing there.
SoundProject makeSoundProject(const std::string &folder);

/// Number of kinds of damage.
constexpr int kDamageKinds = 14;
/// Damages a project in one of the ways, at random places.
ProjectBytes damaged(const SoundProject &sound, int kind, std::mt19937 &random);
/// What is done there, for people.
const char *damageName(int kind);

} // namespace EmbeddedHost
