#pragma once

#include <string>
#include <vector>

namespace Workbench {

// The text with every control character as "?": a name or a value may hold anything, and must neither break the line
// that it is printed in nor reach the terminal as a command.
std::string inOneLine(std::string text);

// The words with blanks between.
std::string joinedWords(const std::vector<std::string> &words);

// The text as one word of a command that a person can copy into a shell.
std::string shellWord(const std::string &text);

} // namespace Workbench
