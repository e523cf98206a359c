#include "EmbeddedHost/SystemReason.h"

#include <csignal>
#include <cstring>

namespace EmbeddedHost {

std::string systemReason(int error) {
  const char *description = strerrordesc_np(error);
  return description == nullptr ? "error " + std::to_string(error) : std::string(description);
}

std::string signalReason(int signal) {
  const char *description = sigdescr_np(signal);
  return description == nullptr ? "signal " + std::to_string(signal) : std::string(description);
}

} // namespace EmbeddedHost
