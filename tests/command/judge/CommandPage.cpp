#include "tests/command/judge/CommandPage.h"

#include "tests/fault/judge/Command.h"

#include <regex>
#include <sstream>
#include <vector>

namespace CommandTests {

namespace {

std::vector<std::string> matches(const std::string &text, const char *pattern) {
  std::vector<std::string> found;
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
    found.push_back((*match)[1].str());
  }
  return found;
}

// A bar inside a code span is written "\|".
std::string firstCell(const std::string &line) {
  std::size_t end = line.find('|', 1);
  while (end != std::string::npos && line[end - 1] == '\\') {
    end = line.find('|', end + 1);
  }
  return end == std::string::npos ? "" : line.substr(1, end - 1);
}

// The lower-case words that a use begins with: "input add" of "input add PROJECT ATTRIBUTE...".
std::string commandOf(const std::string &use) {
  std::istringstream words(use);
  std::string command;
  for (std::string word; words >> word &&
                         word.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string::npos &&
                         word.front() != '-';) {
    command.append(command.empty() ? "" : " ").append(word);
  }
  return command;
}

} // namespace

CommandPage CommandPage::read(const std::string &text) {
  CommandPage page;
  std::string heading;
  bool isInTable = false;
  for (const std::string &line : FaultTests::linesOf(text)) {
    const std::string cell = line.rfind('|', 0) == 0 ? firstCell(line) : "";
    for (const std::string &code : matches(line, "`([^`]*)`")) {
      for (const std::string &option : matches(" " + code, "[ \\[](--?[a-z][a-z-]*)")) {
        page.options.insert(option);
      }
      for (const std::string &use : matches(code, "^optstudy ([a-z].*)")) {
        page.commands.insert(commandOf(use));
      }
    }
    if (cell.empty()) {
      isInTable = false;
    } else if (!isInTable) {
      isInTable = true;
      heading = cell;
    } else if (heading == " command ") {
      for (const std::string &use : matches(cell, "`([^`]*)`")) {
        page.commands.insert(commandOf(use));
      }
    } else if (heading == " code ") {
      for (const std::string &code : matches(cell, "([0-9]+)")) {
        page.exitCodes.insert(std::stoi(code));
      }
    }
  }
  return page;
}

} // namespace CommandTests
