#pragma once

#include <sys/types.h>

// The processes that descend from this one, which adopts those of them whose parents have ended.

// Sends a signal to every descendant, children of children included.
void signalDescendants(int number);

// Kills and reaps every descendant; returns when none is left.
void sweepDescendants();

// Reaps the children that have ended, all but one, whose end is looked at only: it stays what it is, so that its number
// cannot be given to another process. Pass 0 to spare none.
// \return whether that one has ended
bool reapAllBut(pid_t spared);
