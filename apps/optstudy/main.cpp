#include "Workbench/ExitCode.h"
#include "apps/optstudy/CommandLine.h"

#include <exception>
#include <iostream>

int main(int argc, char **argv) {
  try {
    return runCommandLine(argc, argv);
  } catch (const std::exception &error) {
    std::cerr << "optstudy: " << error.what() << "\n";
  } catch (...) {
    std::cerr << "optstudy: unknown error\n";
  }
  return Workbench::ExitCode::kInternalError;
}
