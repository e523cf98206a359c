#pragma once

#include <sys/types.h>

// Knows whether the program that a supervisor works for is alive, and whether it is suspended.
class ProgramWatch {
public:
  // The program is whoever made the socket.
  explicit ProgramWatch(int socket);
  ProgramWatch(const ProgramWatch &) = delete;
  ProgramWatch &operator=(const ProgramWatch &) = delete;
  ~ProgramWatch();

  // Becomes readable when the program ends; -1 where the system cannot tell, where the socket's end has to do.
  int endDescriptor() const { return m_end; }

  // True between a stop (SIGTSTP, SIGSTOP, Ctrl-Z at the terminal) and SIGCONT.
  bool isSuspended() const;

private:
  int m_end = -1;
  int m_status = -1;
};
