#pragma once

#include "tests/command/judge/Box.h"

namespace CommandTests {

/// One use of the command, in the order in which they are carried out in one folder.
struct SurfaceCall {
  std::vector<std::string> words;
  int exitCode = 0;
  std::string prints; ///< on standard output or standard error
};

/// Every command with every option, on a study of five rows.
const std::vector<SurfaceCall> &surfaceCalls();

} // namespace CommandTests
