#pragma once

/// From now on Ctrl-C is counted instead of ending the program; SIGTERM and SIGHUP count like two of them.
void countInterruptions();

/// How often somebody has asked the program to stop.
int interruptions();
