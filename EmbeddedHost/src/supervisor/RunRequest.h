#pragma once

#include "EmbeddedHost/src/solve/SupervisorProtocol.h"

// A request to run a solver, and the descriptors that came with it, which are closed with it.
class RunRequest {
public:
  RunRequest() = default;
  RunRequest(const RunRequest &) = delete;
  RunRequest &operator=(const RunRequest &) = delete;
  ~RunRequest();

  // Takes over the descriptors and reads the request.
  // \return 0 or the number of the system's error
  int read(int request, int output, int error);

  const EmbeddedHost::Supervision::RequestHeader &header() const { return m_header; }
  const char *program() const { return m_program; }
  const char *workingFolder() const { return m_workingFolder; }
  char *const *arguments() const { return m_pointers; }
  char *const *environment() const { return m_pointers + m_header.argumentCount + 1; }
  int output() const { return m_output; }
  int error() const { return m_error; }

private:
  bool divideTexts(char *text, const char *end);

  EmbeddedHost::Supervision::RequestHeader m_header = {};
  char *m_content = nullptr;
  char **m_pointers = nullptr; // the arguments, a null, the environment, a null
  const char *m_program = nullptr;
  const char *m_workingFolder = nullptr;
  int m_output = -1;
  int m_error = -1;
};
