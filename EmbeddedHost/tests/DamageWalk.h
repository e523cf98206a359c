#pragma once

#include "EmbeddedHost/tests/DamageJudge.h"

#include <string>

namespace EmbeddedHost {

/// Opens a project and, when that succeeds, reads all of it in every version, edits it without saving, and saves
/// it as another project, which has to be sound.
/// \param scratch  a folder for that other project
Opening openAndWalk(const std::string &file, OpenMode mode, const std::string &scratch);

} // namespace EmbeddedHost
