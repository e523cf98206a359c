#pragma once

#include "EmbeddedHost/Project.h"

#include <string>

namespace FaultTests {

/// Opens every project of the folder and prints what it holds, or that it is absent.
/// \throws StepFailed  a project cannot be opened
void printStates(const std::string &folder, EmbeddedHost::OpenMode mode);

/// Does what a user does who finds the work interrupted: makes again what is not there, opens what is.
/// Prints a line for everything that lies about then and belongs to nothing.
/// \throws StepFailed  it cannot be done
void goOnAfterwards(const std::string &folder);

} // namespace FaultTests
