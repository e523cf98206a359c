#include "Workbench/tests/PageText.h"

#include <fstream>
#include <sstream>

namespace Workbench {

std::string fileText(const std::string &path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

std::vector<PageExample> examplesOf(const std::string &page) {
  std::vector<PageExample> examples;
  std::istringstream stream(page);
  bool isInside = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.compare(0, 3, "```") == 0) {
      if (!isInside) {
        const std::size_t blank = line.find(' ');
        examples.push_back({line.substr(3, blank == std::string::npos ? blank : blank - 3),
                            blank == std::string::npos ? "" : line.substr(blank + 1), ""});
      }
      isInside = !isInside;
    } else if (isInside) {
      examples.back().text += line + "\n";
    }
  }
  return examples;
}

std::map<std::string, std::string> studyParts(const std::string &text) {
  std::map<std::string, std::string> parts;
  std::istringstream stream(text);
  std::string key;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.front() != ' ') {
      key = line.substr(0, line.find(':'));
    }
    parts[key] += line + "\n";
  }
  return parts;
}

std::string withParts(const std::string &study, const std::string &parts) {
  std::map<std::string, std::string> all = studyParts(study);
  for (const auto &[key, text] : studyParts(parts)) {
    all[key] = text;
  }
  std::string text;
  for (const char *key : {"version", "title", "model", "solver", "formulas", "study"}) {
    text += all[key];
  }
  return text;
}

} // namespace Workbench
