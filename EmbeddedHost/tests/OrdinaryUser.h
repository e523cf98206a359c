#pragma once

#include <functional>
#include <string>

namespace EmbeddedHost {

/// Carries something out in a child process by somebody whom permissions bind, which the superuser is not, and
/// who can do little harm.
/// \return what it answers, or what became of the child
std::string reportOfOrdinaryUser(const std::function<std::string()> &work);

} // namespace EmbeddedHost
