#include "Workbench/Console.h"

#include <ostream>

namespace Workbench {

void Console::note(const std::string &text) const {
  if (!isQuiet) {
    messages << text << "\n";
  }
}

void Console::detail(const std::string &text) const {
  if (isVerbose) {
    messages << text << "\n";
  }
}

void Console::error(const std::string &text) const {
  messages << text << "\n";
}

} // namespace Workbench
