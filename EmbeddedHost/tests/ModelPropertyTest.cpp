#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityEditor.h"

#include <algorithm>
#include <map>
#include <random>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;

/// What the versions of a project have to show, kept in the simplest way.
struct Reference {
  struct Version {
    int previous = -1;
    std::string label;
    std::map<std::string, std::string> values; ///< by "entity.path"
  };
  std::map<int, Version> versions;
  int current = 0;

  std::string value(int version, const std::string &key) const {
    for (int each = version; each >= 0; each = versions.at(each).previous) {
      const auto found = versions.at(each).values.find(key);
      if (found != versions.at(each).values.end()) {
        return found->second;
      }
    }
    return "(default)";
  }
};

class ModelPropertyTest : public testing::TestWithParam<unsigned> {
protected:
  static constexpr const char *kPaths[] = {"Ratio", "Count", "Note", "Mass"};

  TestFolder folder;
  std::string file = folder.path("p.optstudy");
  std::unique_ptr<Project> project = Project::create(testSchema());
  std::mt19937 random{GetParam()};
  Reference reference;
  std::map<int, ModelVersion *> own;
  int nextVersion = 1;

  int below(std::size_t count) { return static_cast<int>(random() % count); }
  int anyVersion() {
    auto version = reference.versions.begin();
    std::advance(version, below(reference.versions.size()));
    return version->first;
  }
  EntityModel::Entity *part(int index) {
    return project->attribute(project->rootEntity(), "Parts")->asList()->getEntity(index);
  }
  std::string shown(int index, const char *path) {
    return project->attribute(part(index), path)->getValueAsString();
  }

  static std::string defaultOf(const std::string &path) {
    return path == "Ratio" ? "0.5" : path == "Count" ? "3" : "";
  }

  void compare() {
    for (int index = 0; index < 3; ++index) {
      for (const char *path : kPaths) {
        const std::string expected = reference.value(reference.current, std::to_string(index) + "." + path);
        ASSERT_EQ(shown(index, path), expected == "(default)" ? defaultOf(path) : expected)
            << "version " << reference.current << " part " << index << " " << path;
      }
    }
    std::vector<std::string> expected;
    for (const auto &[number, version] : reference.versions) {
      expected.push_back(version.label);
    }
    std::vector<std::string> labels;
    for (const ModelVersion *version : project->versions()) {
      labels.push_back(version->getLabel());
    }
    ASSERT_EQ(labels, expected);
  }

  void edit() {
    const int index = below(3);
    const char *path = kPaths[random() % 4];
    std::string value = std::to_string(below(90));
    if (std::string(path) == "Mass") {
      value = below(3) == 0 ? "" : value + " kg";
    }
    ASSERT_TRUE(project->setValue(part(index), path, value));
    reference.versions[reference.current].values[std::to_string(index) + "." + path] = value;
  }

  void create() {
    const int origin = anyVersion();
    const bool isAlternate = reference.versions[origin].previous >= 0 && below(2) == 0;
    const int number = nextVersion++;
    const std::string label = "V" + std::to_string(number);
    EntityModel::ChangeManager &tree = project->changeManager();
    ModelVersion *made = isAlternate ? tree.startNewAlternate(own[origin], nullptr, true, random() % 5)
                                     : tree.startNewVersion(label, "", "", "", nullptr, own[origin], false);
    ASSERT_NE(made, nullptr);
    made->setLabel(label);
    own[number] = made;
    Reference::Version version;
    version.previous = isAlternate ? reference.versions[origin].previous : origin;
    version.label = label;
    if (isAlternate) {
      version.values = reference.versions[origin].values;
    }
    reference.versions[number] = version;
  }

  void switchVersion() {
    reference.current = anyVersion();
    ASSERT_TRUE(
        project->changeManager().setCurrentVersion(own[reference.current], nullptr, false, nullptr, true));
  }

  void relabel() {
    const int version = anyVersion();
    reference.versions[version].label = "L" + std::to_string(below(1000));
    own[version]->setLabel(reference.versions[version].label);
  }

  void destroy() {
    const int doomed = anyVersion();
    if (doomed == 0) {
      return;
    }
    bool destroyed = false;
    project->changeManager().destroyVersion(own[doomed], nullptr, destroyed);
    ASSERT_TRUE(destroyed);
    const auto isGone = [&](int version) {
      while (version >= 0 && version != doomed) {
        version = reference.versions.at(version).previous;
      }
      return version == doomed;
    };
    while (isGone(reference.current)) {
      reference.current = reference.versions.at(reference.current).previous;
    }
    std::vector<int> gone;
    for (const auto &[number, version] : reference.versions) {
      if (isGone(number)) {
        gone.push_back(number);
      }
    }
    for (const int number : gone) {
      reference.versions.erase(number);
      own.erase(number);
    }
  }

  void result() {
    const int version = anyVersion();
    const int index = below(3);
    const double value = below(1000) / 8.0;
    std::string problem;
    if (project->recordRun(*own[version], {}, {{part(index), AttributePath("Ratio"), value}}, problem)) {
      std::string written = std::to_string(value);
      written.erase(written.find_last_not_of('0') + 1);
      if (written.back() == '.' || written.back() == ',') {
        written.pop_back();
      }
      std::replace(written.begin(), written.end(), ',', '.');
      reference.versions[version].values[std::to_string(index) + ".Ratio"] = written;
    }
  }

  void saveAndReopen() {
    std::string problem;
    ASSERT_TRUE(project->file().empty() ? project->saveAs(file, problem) : project->save(problem)) << problem;
    if (below(2) == 0) {
      return;
    }
    project.reset();
    project = Project::open(file, OpenMode::ReadWrite, problem);
    ASSERT_NE(project, nullptr) << problem;
    const std::vector<ModelVersion *> versions = project->versions();
    ASSERT_EQ(versions.size(), reference.versions.size());
    std::size_t position = 0;
    for (const auto &[number, known] : reference.versions) {
      own[number] = versions[position++];
    }
  }
};

TEST_P(ModelPropertyTest, RandomSessions_EqualTheReference) {
  for (int index = 0; index < 3; ++index) {
    project->createEntity("Part", project->rootEntity(), "Parts", "P");
  }
  reference.versions[0].label = "Base";
  own[0] = project->rootVersion();
  for (int step = 0; step < 400; ++step) {
    const int action = below(40);
    if (action < 16) {
      edit();
    } else if (action < 22) {
      create();
    } else if (action < 32) {
      switchVersion();
    } else if (action < 34) {
      relabel();
    } else if (action < 36) {
      destroy();
    } else if (action < 39) {
      result();
    } else {
      saveAndReopen();
    }
    compare();
    if (HasFatalFailure()) {
      FAIL() << "step " << step << " action " << action;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelPropertyTest, testing::Range(1U, 13U));

} // namespace
} // namespace EmbeddedHost
