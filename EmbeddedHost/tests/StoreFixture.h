#pragma once

#include "EmbeddedHost/tests/ModelFixture.h"

#include <map>
#include <string>

namespace EmbeddedHost {

/// A saved project with the versions "Base" and "Copy", whose folders hold nothing yet.
class StoreTest : public ModelTest {
protected:
  TestFolder folder;
  std::string file = folder.path("fan.optstudy");
  std::string results = folder.path("fan.results");
  EntityModel::ModelVersion *base = project->rootVersion();
  EntityModel::ModelVersion *copy = follow(base, "Copy");

  StoreTest();

  /// The path of a version's folder.
  std::string folderOf(EntityModel::ModelVersion *version);
  /// Puts "result.txt" with the content and "inner/deep.txt" with "deep <content>" into a version's folder.
  /// \return the path of the folder
  std::string fill(EntityModel::ModelVersion *version, const std::string &content);
  bool copyResults(EntityModel::ModelVersion *from, EntityModel::ModelVersion *to, bool overwrite = true);
  bool moveResults(EntityModel::ModelVersion *from, EntityModel::ModelVersion *to);
  std::string resultOf(EntityModel::ModelVersion *version);
  /// Why the last of these failed.
  std::string lastProblem();
};

/// Makes three levels of folders and files that hold "canary", for whatever must not be reached.
void makeCanary(const std::string &path);

/// Everything in a folder, by path relative to it: kind, mode, links, times of writing and change, content or target.
std::map<std::string, std::string> contentsOf(const std::string &folder);

} // namespace EmbeddedHost
