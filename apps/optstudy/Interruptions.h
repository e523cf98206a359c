#pragma once

/// From now on Ctrl-C is counted instead of ending the program; SIGTERM and SIGHUP count like two of them. The third
/// Ctrl-C ends the program at once, for whoever has waited long enough. A SIGHUP that is ignored, as by nohup, stays
/// ignored. A reader who goes away, as in "| head", ends nothing: what is printed then is lost, and nothing else.
void countInterruptions();

/// How often somebody has asked the program to stop.
int interruptions();

/// What the program ends with instead of \p code: an interrupted command tells by its exit code what interrupted it
/// first, Ctrl-C or a signal.
int exitCodeAfterInterruptions(int code);
