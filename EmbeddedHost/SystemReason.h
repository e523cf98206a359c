#pragma once

#include <string>

namespace EmbeddedHost {

/// What an error number of the system means, in English whatever the locale, as the sentence around it is.
std::string systemReason(int error);

/// What a signal means, in English whatever the locale.
std::string signalReason(int signal);

} // namespace EmbeddedHost
