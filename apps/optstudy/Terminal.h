#pragma once

#include <cstddef>

/// How many columns the terminal of standard error has at this moment; 0 when it is none.
std::size_t terminalWidth();

/// Writes out what was printed. \return \p code, or another one when it says that all is well and results could not be
/// written, which is said then. That nobody reads them any more, as in "| head", is well.
int exitCodeAfterPrinting(int code);
