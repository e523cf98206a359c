#pragma once

/// Takes the command line apart, carries the command out and answers one of Workbench::ExitCode.
int runCommandLine(int argc, char **argv);
