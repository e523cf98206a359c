#pragma once

#include "EmbeddedHost/src/solve/FileDescriptor.h"
#include "EmbeddedHost/src/solve/SupervisorProtocol.h"

#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

namespace EmbeddedHost {

// One supervisor and the connection to it.
class Supervisor {
public:
  enum class Answer {
    None,
    Report,
    Lost,     // it has ended, and so has everything that it ran
    NeverRead // likewise, and it had not looked at the last order
  };

  // Null with a problem.
  static std::unique_ptr<Supervisor> start(const std::string &program, std::string &problem);

  Supervisor(const Supervisor &) = delete;
  Supervisor &operator=(const Supervisor &) = delete;
  // Ends it, and with it whatever it runs, and waits for that.
  ~Supervisor();

  // Whether an idle one can still be used.
  bool isAlive() const;

  // False when it is gone.
  bool order(Supervision::Order order, std::initializer_list<int> descriptors = {}) const;

  // Waits for the next report.
  Answer next(Supervision::ReportMessage &message, std::chrono::milliseconds longest) const;

  // Readable when there is an answer.
  int descriptor() const { return m_socket.get(); }

  // What became of one that is lost, as the end of a sentence.
  std::string howItEnded();

private:
  Supervisor(FileDescriptor socket, int process);
  std::optional<int> waitForEnd(std::chrono::milliseconds longest);

  FileDescriptor m_socket;
  int m_process;
  int m_owner; // a copy of this process that was forked ends nothing
};

} // namespace EmbeddedHost
