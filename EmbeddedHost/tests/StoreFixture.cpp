#include "EmbeddedHost/tests/StoreFixture.h"

#include "EmbeddedHost/src/project/ProjectParts.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;
using ProjectData::ProjectStore;

StoreTest::StoreTest() {
  std::string problem;
  if (!project->saveAs(file, problem)) {
    throw std::runtime_error(problem);
  }
}

std::string StoreTest::folderOf(ModelVersion *version) {
  return tree.getVersionFolder(version, false);
}

std::string StoreTest::fill(ModelVersion *version, const std::string &content) {
  std::string path = tree.getVersionFolder(version, true);
  fs::create_directories(path + "/inner");
  writeFile(path + "/result.txt", content);
  writeFile(path + "/inner/deep.txt", "deep " + content);
  return path;
}

bool StoreTest::copyResults(ModelVersion *from, ModelVersion *to, bool overwrite) {
  ProjectStore target(file, folderOf(to));
  return ProjectStore(file, folderOf(from)).copyResults(target, false, nullptr, overwrite);
}

bool StoreTest::moveResults(ModelVersion *from, ModelVersion *to) {
  ProjectStore target(file, folderOf(to));
  return ProjectStore(file, folderOf(from)).copyResults(target, true, nullptr, true);
}

std::string StoreTest::resultOf(ModelVersion *version) {
  return contentOf(folderOf(version) + "/result.txt");
}

std::string StoreTest::lastProblem() {
  return project->parts().stores.lastProblem();
}

namespace {

std::string timeText(const timespec &time) {
  return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

} // namespace

void makeCanary(const std::string &path) {
  for (const char *inner : {"", "/a", "/a/b", "/0123456789abcdef", "/unfinished", "/inner"}) {
    fs::create_directory(path + inner);
    writeFile(path + inner + "/file", "canary");
    writeFile(path + inner + "/result.txt", "canary");
  }
  fs::permissions(path + "/a/file", fs::perms::owner_read);
  fs::permissions(path + "/a/b", fs::perms::owner_all | fs::perms::group_read);
}

std::map<std::string, std::string> contentsOf(const std::string &folder) {
  std::map<std::string, std::string> contents;
  std::vector<std::string> waiting = {""};
  while (!waiting.empty()) {
    const std::string name = waiting.back();
    const std::string path = folder + name;
    waiting.pop_back();
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
      continue;
    }
    std::string entry = "mode " + std::to_string(status.st_mode) + " links " +
                        std::to_string(status.st_nlink) + " written " + timeText(status.st_mtim) +
                        " changed " + timeText(status.st_ctim);
    if (S_ISREG(status.st_mode)) {
      entry += " content " + contentOf(path);
    } else if (S_ISLNK(status.st_mode)) {
      entry += " target " + fs::read_symlink(path).string();
    } else if (S_ISDIR(status.st_mode)) {
      for (const auto &inner : fs::directory_iterator(path)) {
        waiting.push_back(name + "/" + inner.path().filename().string());
      }
    }
    contents.emplace(name, entry);
  }
  return contents;
}

} // namespace EmbeddedHost
