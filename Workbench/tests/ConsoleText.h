#pragma once

#include "Workbench/Console.h"

#include <sstream>
#include <string>

namespace Workbench {

// A console whose output a test reads.
struct ConsoleText {
  std::ostringstream out;
  std::ostringstream messages;
  Console console{out, messages};

  // What has been written since the last call.
  std::string takeOut() { return take(out); }
  std::string takeMessages() { return take(messages); }

private:
  static std::string take(std::ostringstream &stream) {
    std::string text = stream.str();
    stream.str("");
    return text;
  }
};

} // namespace Workbench
