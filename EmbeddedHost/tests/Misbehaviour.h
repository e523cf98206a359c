#pragma once

#include <string>

/// What solvers should not do: to exit, crash, hang, be deaf, leave something behind or flood, as the word says.
/// Some of it does not return.
/// \return the exit code to end with, 0 to go on; -1 for a word that is not known
int misbehave(const std::string &what, const char *argument);
