#pragma once

// Carries out one run after the other as the program at the other end of the socket orders, until that end is closed,
// the program ends or SIGTERM comes. Nothing that it has started is alive when it returns.
void work(int socket);
