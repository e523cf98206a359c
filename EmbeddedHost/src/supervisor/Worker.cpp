#include "EmbeddedHost/src/supervisor/Worker.h"

#include "EmbeddedHost/src/supervisor/Descendants.h"
#include "EmbeddedHost/src/supervisor/ProgramWatch.h"
#include "EmbeddedHost/src/supervisor/Run.h"
#include "EmbeddedHost/src/supervisor/Signals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

using namespace EmbeddedHost::Supervision;

namespace {

constexpr size_t kDescriptors = 3;

enum class Received { Nothing, Order, End };

struct Incoming {
  OrderMessage message = {};
  std::array<int, kDescriptors> descriptors = {-1, -1, -1};
};

void takeDescriptors(msghdr &header, Incoming &incoming) {
  cmsghdr *control = CMSG_FIRSTHDR(&header);
  if (control != nullptr && control->cmsg_type == SCM_RIGHTS &&
      control->cmsg_len == CMSG_LEN(sizeof(incoming.descriptors))) {
    memcpy(incoming.descriptors.data(), CMSG_DATA(control), sizeof(incoming.descriptors));
  }
}

Received receive(int socket, Incoming &incoming) {
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * kDescriptors)> control{};
  iovec content = {&incoming.message, sizeof(incoming.message)};
  msghdr header = {};
  header.msg_iov = &content;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  const ssize_t count = recvmsg(socket, &header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
  if (count < 0) {
    return errno == EAGAIN || errno == EINTR ? Received::Nothing : Received::End;
  }
  takeDescriptors(header, incoming);
  return count == static_cast<ssize_t>(sizeof(incoming.message)) ? Received::Order : Received::End;
}

void report(int socket, const ReportMessage &message) {
  // A program that is gone is noticed by the next look at the socket.
  while (send(socket, &message, sizeof(message), MSG_NOSIGNAL) < 0 && errno == EINTR) {
  }
}

void start(int socket, Run &run, const Incoming &incoming) {
  RunRequest request;
  const int problem = request.read(incoming.descriptors[0], incoming.descriptors[1], incoming.descriptors[2]);
  report(socket,
         problem == 0 ? run.start(request) : ReportMessage{Report::NotStarted, EndedBy::Itself, problem, 0});
}

// \return false when the program is gone
bool carryOutOrder(int socket, Run &run) {
  Incoming incoming;
  switch (receive(socket, incoming)) {
  case Received::End:
    return false;
  case Received::Nothing:
    return true;
  case Received::Order:
    break;
  }
  if (incoming.message.order == Order::Start && !run.isActive()) {
    start(socket, run, incoming);
  } else if (incoming.message.order == Order::Stop && run.isActive()) {
    run.stop(EndedBy::Order);
  } else if (incoming.message.order == Order::Kill && run.isActive()) {
    run.kill();
  }
  return true;
}

} // namespace

void work(int socket) {
  const ProgramWatch program(socket);
  const int signals = openSignals();
  Run run;
  bool isOrdered = signals >= 0;
  while (isOrdered) {
    std::array<pollfd, 3> awaited = {
        {{signals, POLLIN, 0}, {socket, POLLIN, 0}, {program.endDescriptor(), POLLIN, 0}}};
    poll(awaited.data(), awaited.size(), run.wait());
    const bool isTerminated = takeSignals(signals);
    const bool isGone = (awaited[2].revents & POLLIN) != 0;
    if (run.hasEnded()) {
      report(socket, run.conclude());
    }
    isOrdered = !isTerminated && !isGone && (awaited[1].revents == 0 || carryOutOrder(socket, run));
    run.look(run.isActive() && program.isSuspended());
  }
  if (run.isActive()) {
    run.kill();
  }
  sweepDescendants();
}
