// The folders with the results of versions: nothing but a version's own is ever touched.

#include "HostModel/EntityManager.h"
#include "HostModel/ProjectStore.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Story.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace HostContract {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;
using ProjectData::ProjectStore;

namespace {

void write(const std::string &path, const std::string &content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::string contentOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A saved project with a version beside the first one, and a file of nobody's beside the project.
struct Stores {
  explicit Stores(Scene &scene)
      : tree(scene.tree()), base(scene.base()), other(scene.follow(base, "Other")), place(scene.folder()) {
    if (!scene.subject().save(scene.folder() + "/project")) {
      throw std::logic_error("The project was not saved");
    }
    canary = scene.folder() + "/canary";
    write(canary, "alive");
  }

  std::string folder(ModelVersion *version) const { return tree.getVersionFolder(version, false); }
  ProjectStore store(ModelVersion *version) const {
    return {EntityGUI::EntityManager::s_CurrentFilename, folder(version)};
  }
  /// Nothing is written outside the folder of the case, whatever the host answers.
  std::string fileOf(ModelVersion *version) const {
    const std::string directory = store(version).getStoreDirectoryName();
    if (directory.rfind(place + "/", 0) != 0) {
      throw std::logic_error("The store \"" + directory + "\" is not beside the project");
    }
    return directory + "/inner/result.txt";
  }
  void fill(ModelVersion *version, const std::string &content) const {
    tree.getVersionFolder(version, true);
    fs::create_directories(fs::path(fileOf(version)).parent_path());
    write(fileOf(version), content);
  }
  std::string resultOf(ModelVersion *version) const { return contentOf(fileOf(version)); }
  bool copy(ModelVersion *from, ModelVersion *to) const {
    ProjectStore target = store(to);
    return store(from).copyResults(target, false, nullptr, true);
  }

  EntityModel::ChangeManager &tree;
  ModelVersion *base;
  ModelVersion *other;
  std::string place;
  std::string canary;
};

} // namespace

std::vector<Rule> storeRules() {
  const Capabilities folders = {Capability::Persistence, Capability::Store};
  return {
      {"Store_WithoutFile_ThereIsNone",
       [](Scene &scene) {
         const std::string folder = scene.tree().getVersionFolder(scene.base(), false);
         ProjectStore store(EntityGUI::EntityManager::s_CurrentFilename, folder);
         EXPECT_EQ(store.getStoreDirectoryName(), "");
         EXPECT_FALSE(store.remove());
         EXPECT_EQ(scene.tree().getVersionFolder(nullptr, false), "");
       }},
      {"Store_Folder_NeverDependsOnTheLabel",
       [](Scene &scene) {
         const Stores stores(scene);
         const std::string folder = stores.folder(stores.other);
         ASSERT_NE(folder, "");
         EXPECT_NE(stores.folder(stores.base), folder);
         for (const std::string &label : {std::string(), std::string(".."), std::string("/no/such/place"),
                                          std::string("a/b\n"), std::string(300, 'x'), std::string("Base")}) {
           stores.other->setLabel(label);
           EXPECT_EQ(stores.folder(stores.other), folder) << label;
         }
         EXPECT_EQ(scene.tree().getVersionFolder(nullptr, true), "");
       },
       folders},
      {"Store_Folder_IsMadeOnlyWhenItIsAskedFor",
       [](Scene &scene) {
         const Stores stores(scene);
         const std::string folder = stores.folder(stores.other);
         EXPECT_FALSE(fs::exists(folder));
         EXPECT_EQ(scene.tree().getVersionFolder(stores.other, true), folder);
         EXPECT_TRUE(fs::is_directory(folder));
       },
       folders},
      {"Store_WithoutPlace_DoesNothing",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.other, "42");
         const std::string file = EntityGUI::EntityManager::s_CurrentFilename;
         for (ProjectStore store :
              {ProjectStore("", stores.folder(stores.other)), ProjectStore(file, ""), ProjectStore("", "")}) {
           EXPECT_EQ(store.getStoreDirectoryName(), "");
           store.remove();
           ProjectStore target = stores.store(stores.other);
           store.copyResults(target, true, nullptr, true);
           target.copyResults(store, true, nullptr, true);
         }
         EXPECT_EQ(stores.resultOf(stores.other), "42");
         EXPECT_EQ(contentOf(stores.canary), "alive");
         EXPECT_TRUE(fs::exists(file));
       },
       folders},
      {"Store_Remove_TakesNothingButItsOwn",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.base, "base");
         stores.fill(stores.other, "other");
         fs::create_directory_symlink(scene.folder(),
                                      fs::path(stores.fileOf(stores.other)).parent_path() / "up");
         EXPECT_TRUE(stores.store(stores.other).remove());
         EXPECT_FALSE(fs::exists(stores.fileOf(stores.other)));
         EXPECT_EQ(stores.resultOf(stores.base), "base");
         EXPECT_EQ(contentOf(stores.canary), "alive");
         EXPECT_TRUE(stores.store(stores.other).remove());
       },
       folders},
      {"Store_OfAnotherFolder_IsNotTouched",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.other, "other");
         const std::string file = EntityGUI::EntityManager::s_CurrentFilename;
         fs::create_directory(scene.folder() + "/precious");
         write(scene.folder() + "/precious/file", "precious");
         for (const std::string &folder :
              {scene.folder() + "/precious", stores.folder(stores.other) + "/.."}) {
           ProjectStore(file, folder).remove();
         }
         EXPECT_EQ(contentOf(scene.folder() + "/precious/file"), "precious");
         EXPECT_EQ(contentOf(stores.canary), "alive");
         EXPECT_EQ(stores.resultOf(stores.other), "other");
         EXPECT_TRUE(fs::exists(file));
       },
       folders},
      {"Store_CopyResults_ReplacesWhatWasThere",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.base, "new");
         stores.fill(stores.other, "old");
         const std::string onlyOld = stores.store(stores.other).getStoreDirectoryName() + "/old.txt";
         write(onlyOld, "old");
         EXPECT_TRUE(stores.copy(stores.base, stores.other));
         EXPECT_EQ(stores.resultOf(stores.other), "new");
         EXPECT_FALSE(fs::exists(onlyOld));
         write(stores.fileOf(stores.other), "changed");
         EXPECT_EQ(stores.resultOf(stores.base), "new");
       },
       folders},
      {"Store_CopyResults_OntoItself_LosesNothing",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.other, "42");
         stores.copy(stores.other, stores.other);
         EXPECT_EQ(stores.resultOf(stores.other), "42");
       },
       folders},
      {"Store_CopyResults_WithoutSource_IsNoError",
       [](Scene &scene) {
         const Stores stores(scene);
         EXPECT_TRUE(stores.copy(stores.base, stores.other));
         EXPECT_FALSE(fs::exists(stores.fileOf(stores.other)));
       },
       folders},
      {"Store_NewVersionsOfAStudy_StartWithTheResultsOfTheirOrigin",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.base, "of the baseline");
         Story story(scene);
         EXPECT_EQ(stores.resultOf(story.copy()), "of the baseline");
         story.addRows();
         EXPECT_EQ(stores.resultOf(story.version("One")), "of the baseline");
         write(stores.fileOf(story.version("One")), "own");
         EXPECT_EQ(stores.resultOf(story.version("Two")), "of the baseline");
       },
       folders},
      {"Store_RowRenamed_KeepsItsResults",
       [](Scene &scene) {
         const Stores stores(scene);
         Story story(scene);
         story.addRows();
         stores.fill(story.version("One"), "own");
         Story::study().setVariantName(1, "../Uno");
         EXPECT_EQ(stores.resultOf(story.version("../Uno")), "own");
         EXPECT_EQ(contentOf(stores.canary), "alive");
       },
       folders},
      {"Store_VersionDestroyed_ItsFolderGoesWithTheNextSave",
       [](Scene &scene) {
         const Stores stores(scene);
         stores.fill(stores.base, "base");
         stores.fill(stores.other, "other");
         const std::string gone = stores.folder(stores.other);
         ASSERT_TRUE(scene.destroy({stores.other}));
         ASSERT_TRUE(scene.subject().save(""));
         EXPECT_FALSE(fs::exists(gone));
         EXPECT_EQ(stores.resultOf(stores.base), "base");
       },
       folders},
      {"Store_Results_AreThereAfterReopening",
       [](Scene &scene) {
         {
           const Stores stores(scene);
           stores.fill(stores.other, "42");
         }
         scene.saveAndReopen();
         const ProjectStore store(EntityGUI::EntityManager::s_CurrentFilename,
                                  scene.tree().getVersionFolder(scene.find("Other"), false));
         EXPECT_EQ(contentOf(store.getStoreDirectoryName() + "/inner/result.txt"), "42");
       },
       folders},
  };
}

} // namespace HostContract
