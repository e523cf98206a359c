#pragma once

#include "EmbeddedHost/src/project/FolderTree.h"

#include <string>
#include <string_view>

namespace EmbeddedHost {

/// \name Names of what is not finished yet
/// All of it lies beside the project's file, under names that begin with the file's and hold a random part, and is only
/// made and removed by whoever holds the lock of that file. So what is found by the next holder is of nobody any more.
/// @{

/// A new project on its way to its name: "<file>.new-<16 hexadecimal digits>", its results folder with ".results" added.
constexpr std::string_view kNew = ".new-";
/// A copy of a project that is being brought to the present format, or is kept as it was before.
constexpr std::string_view kUpgrade = ".upgrade-";
constexpr std::string_view kJournalEnding = "-journal";
constexpr std::string_view kResultsEnding = ".results";
/// Lies in a results folder from its beginning until its project has its name, and holds a folder named as the random
/// part of the project's unfinished name.
constexpr const char *kPublishing = "publishing";
/// @}

/// Whether the name is that of something unfinished, of whatever project.
bool isUnfinishedName(std::string_view name);

/// Clears up after programs that were killed while they made a project of this name, or brought it to the present
/// format. Only by the holder of the project's lock. What cannot be removed now is the next time.
void removeLeftovers(const std::string &projectFile);

/// Gives the copy of a project of an older format the name that it stays under, "<file>.format-<number>", with a "-2"
/// and so on added where that is taken.
/// \param unfinished  its name in \p folder
bool nameKeptProject(const Folder &folder, const std::string &unfinished, const std::string &projectName,
                     std::int64_t format, std::string &problem);

} // namespace EmbeddedHost
