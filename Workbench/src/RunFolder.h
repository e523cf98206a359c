#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/StudyFile.h"

#include <string>
#include <vector>

namespace Workbench {

// The folder in a version's folder that holds what is kept of its last run.
constexpr const char *kFinishedRunFolder = "run";

// Makes an empty folder, in the place of what was there, and writes the files into it. "" or what went wrong.
std::string makeRunFolder(const std::string &folder, const std::vector<RunFile> &files);

// Why an ended run has written more than the study file allows, as the reason of its failure; "" when it has not. What
// it was given, and what its commands printed, which has a limit of its own, counts as a part of the folder only.
std::string excessOf(const std::string &folder, const StudySolver &solver, const std::vector<RunFile> &given);

// Removes what an ended run has written, apart from what its commands printed. "" or what went wrong.
std::string removeWritten(const std::string &folder, const StudySolver &solver,
                          const std::vector<RunFile> &given);

// Puts what is to be kept of an ended run in the place of the run before it. "" or what went wrong.
std::string keepRunFolder(const std::string &folder, const StudySolver &solver, bool isOk);

// The ends of what the stages have printed, for people.
std::string logTails(const std::string &folder, const StudySolver &solver);

} // namespace Workbench
