#pragma once

/// A reader who goes away, as in "| head", ends nothing: what is printed then is lost, and nothing else.
void outliveReaders();

/// From now on Ctrl-C is counted instead of ending the program; SIGTERM and SIGHUP count like two of them. The third
/// Ctrl-C ends the program at once, for whoever has waited long enough. A SIGHUP that is ignored, as by nohup, stays
/// ignored. For commands that start solvers: a row that runs is to be finished, or ended together with its processes.
/// Any other command ends at the first signal, as a project is left as it was before or after what the command does.
void countInterruptions();

/// How often somebody has asked the program to stop.
int interruptions();

/// What the program ends with instead of \p code: an interrupted command tells by its exit code what interrupted it
/// first, Ctrl-C or a signal.
int exitCodeAfterInterruptions(int code);
