#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Workbench {

// The length of the well-formed UTF-8 sequence at `offset`, 0 when there is none or it is a NUL.
std::size_t utf8Length(const std::string &text, std::size_t offset);

// Whether it is well-formed UTF-8 without NUL, which every name has to be: JSON holds nothing else.
bool isUtf8Text(const std::string &text);

// The text with every control character as "?": a name or a value may hold anything, and must neither break the line
// that it is printed in nor reach the terminal as a command.
std::string inOneLine(std::string text);

// The words with blanks between.
std::string joinedWords(const std::vector<std::string> &words);

// The text as one word of a command that a person can copy into a shell.
std::string shellWord(const std::string &text);

} // namespace Workbench
