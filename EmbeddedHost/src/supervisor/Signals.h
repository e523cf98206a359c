#pragma once

// A descriptor that becomes readable when a child has ended or SIGTERM has come; all signals are blocked from now on,
// because what a supervisor is for has to be done whatever it is sent. -1 with errno set.
int openSignals();

// Empties the descriptor. \return whether SIGTERM was among the signals
bool takeSignals(int signals);
