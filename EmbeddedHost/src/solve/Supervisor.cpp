#include "EmbeddedHost/src/solve/Supervisor.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/solve/SpawnSupervisor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

using namespace Supervision;

namespace {

constexpr std::size_t kMostDescriptors = 3;
constexpr std::chrono::milliseconds kPatience{3000};

// Not one of the standard descriptors, which some programs take for what they are not.
FileDescriptor aboveStandard(int descriptor) {
  FileDescriptor low(descriptor);
  if (low.get() > STDERR_FILENO) {
    return low;
  }
  return FileDescriptor(::fcntl(low.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

} // namespace

std::unique_ptr<Supervisor> Supervisor::start(const std::string &program, std::string &problem) {
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    problem = "socketpair: " + systemReason(errno);
    return nullptr;
  }
  FileDescriptor ours = aboveStandard(ends[0]);
  const FileDescriptor theirs = aboveStandard(ends[1]);
  int process = 0;
  const int error = spawnSupervisor(program, theirs.get(), process);
  if (error != 0) {
    problem = program + ", which runs solvers, cannot be started: " + systemReason(error);
    return nullptr;
  }
  return std::unique_ptr<Supervisor>(new Supervisor(std::move(ours), process));
}

Supervisor::Supervisor(FileDescriptor socket, int process)
    : m_socket(std::move(socket)), m_process(process), m_owner(::getpid()) {}

Supervisor::~Supervisor() {
  if (m_owner != ::getpid()) {
    return;
  }
  // Closing alone would not be seen while a forked copy of this process has it open.
  ::shutdown(m_socket.get(), SHUT_RDWR);
  m_socket.close();
  if (m_process > 0 && !waitForEnd(kPatience) && m_process > 0) {
    ::kill(m_process, SIGKILL);
    waitForEnd(kPatience);
  }
}

bool Supervisor::isAlive() const {
  pollfd awaited = {m_socket.get(), POLLIN, 0};
  return ::poll(&awaited, 1, 0) == 0; // an idle one has nothing to say
}

bool Supervisor::order(Order order, std::initializer_list<int> descriptors) const {
  OrderMessage message = {order};
  iovec content = {&message, sizeof(message)};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * kMostDescriptors)> control{};
  msghdr header = {};
  header.msg_iov = &content;
  header.msg_iovlen = 1;
  if (descriptors.size() > 0) {
    header.msg_control = control.data();
    header.msg_controllen = CMSG_SPACE(sizeof(int) * descriptors.size());
    cmsghdr *rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int) * descriptors.size());
    std::memcpy(CMSG_DATA(rights), descriptors.begin(), sizeof(int) * descriptors.size());
  }
  ssize_t count = 0;
  do {
    count = ::sendmsg(m_socket.get(), &header, MSG_NOSIGNAL);
  } while (count < 0 && errno == EINTR);
  return count == static_cast<ssize_t>(sizeof(message));
}

Supervisor::Answer Supervisor::next(ReportMessage &message, std::chrono::milliseconds longest) const {
  const auto until = std::chrono::steady_clock::now() + longest;
  while (true) {
    const ssize_t count = ::recv(m_socket.get(), &message, sizeof(message), MSG_DONTWAIT);
    if (count == static_cast<ssize_t>(sizeof(message))) {
      return Answer::Report;
    }
    if (count >= 0 || (errno != EAGAIN && errno != EINTR)) {
      // The system's way to say that something was on its way to a socket that is closed.
      return count < 0 && errno == ECONNRESET ? Answer::NeverRead : Answer::Lost;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      return Answer::None;
    }
    pollfd awaited = {m_socket.get(), POLLIN, 0};
    ::poll(&awaited, 1, static_cast<int>(left.count()));
  }
}

// The status as waitpid() gives it; nothing when it has not ended, or somebody else has taken its status.
std::optional<int> Supervisor::waitForEnd(std::chrono::milliseconds longest) {
  const auto until = std::chrono::steady_clock::now() + longest;
  std::chrono::microseconds nap{50};
  while (m_process > 0) {
    int status = 0;
    const int waited = ::waitpid(m_process, &status, WNOHANG);
    if (waited > 0 || (waited < 0 && errno != EINTR)) {
      m_process = 0;
      return waited > 0 ? std::optional<int>(status) : std::nullopt;
    }
    if (std::chrono::steady_clock::now() >= until) {
      break;
    }
    std::this_thread::sleep_for(nap);
    nap = std::min(nap * 2, std::chrono::microseconds(5000));
  }
  return std::nullopt;
}

std::string Supervisor::howItEnded() {
  constexpr int kWorkerSignalled = 128;
  const std::optional<int> status = waitForEnd(kPatience);
  if (!status) {
    return "ended, nobody knows how";
  }
  const int code = WEXITSTATUS(*status);
  if (WIFSIGNALED(*status) || code > kWorkerSignalled) {
    const int number = WIFSIGNALED(*status) ? WTERMSIG(*status) : code - kWorkerSignalled;
    return "was ended by signal " + std::to_string(number) + " (" + signalReason(number) + ")";
  }
  return "ended with exit code " + std::to_string(code) +
         (code == 2 ? ", as one of another version does" : "");
}

} // namespace EmbeddedHost
