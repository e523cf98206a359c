#include "Workbench/tests/StudyDocs.h"

#include <filesystem>

namespace Workbench {

std::vector<std::string> studiesOfThePage() {
  std::map<std::string, std::string> base;
  std::vector<std::map<std::string, std::string>> parts;
  for (const PageExample &example : examplesOf(fileText(OPTSTUDY_STUDY_FILE_PAGE))) {
    if (example.language != "yaml") {
      continue;
    }
    parts.push_back(studyParts(example.text));
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
