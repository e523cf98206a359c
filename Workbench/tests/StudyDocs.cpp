#include "Workbench/tests/StudyDocs.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace Workbench {

namespace {

// The parts of a study file by their keys in column 1.
std::map<std::string, std::string> partsOf(const std::string &text) {
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

} // namespace

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

std::vector<std::string> studiesOfThePage() {
  std::map<std::string, std::string> base;
  std::vector<std::map<std::string, std::string>> parts;
  for (const PageExample &example : examplesOf(fileText(OPTSTUDY_STUDY_FILE_PAGE))) {
    if (example.language != "yaml") {
      continue;
    }
    parts.push_back(partsOf(example.text));
    if (parts.back().size() == 1) {
      base.insert(parts.back().begin(), parts.back().end()); // the first of each
    }
  }
  std::vector<std::string> studies;
  for (const auto &changed : parts) {
    std::map<std::string, std::string> study = base;
    for (const auto &[key, text] : changed) {
      study[key] = text;
    }
    if (changed.count("formulas") != 0) {
      study.erase("solver");
    }
    std::string text = "version: 1\n";
    for (const char *key : {"model", "solver", "formulas", "study"}) {
      text += study[key];
    }
    studies.push_back(text);
  }
  return studies;
}

std::map<std::string, std::string> filesOfThePage() {
  std::map<std::string, std::string> files;
  for (const PageExample &example : examplesOf(fileText(OPTSTUDY_STUDY_FILE_PAGE))) {
    if (!example.name.empty()) {
      files[example.name] = example.text;
    }
  }
  return files;
}

std::vector<std::string> exampleStudyFiles() {
  std::vector<std::string> files;
  for (const auto &entry : std::filesystem::recursive_directory_iterator(OPTSTUDY_EXAMPLES)) {
    const std::string name = entry.path().string();
    const std::string ending = ".study.yaml";
    if (name.size() > ending.size() &&
        name.compare(name.size() - ending.size(), ending.size(), ending) == 0) {
      files.push_back(name);
    }
  }
  return files;
}

} // namespace Workbench
