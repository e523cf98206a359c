#include "tests/contract/Scene.h"

#include "tests/contract/hosts/Hosts.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace HostContract {
namespace {

namespace fs = std::filesystem;

// Whatever is at that path is removed in the end, so it must be a folder of the case's own.
TEST(ContractSceneTest, Folder_IsANewOneAmongTheTemporaryFiles_AndGoesWithTheScene) {
  std::string folder;
  {
    Scene scene(minimalHost());
    folder = scene.folder();
    EXPECT_EQ(fs::path(folder).parent_path(), fs::temp_directory_path());
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_EQ(scene.folder(), folder);
    Scene other(minimalHost());
    EXPECT_NE(other.folder(), folder);
  }
  EXPECT_FALSE(fs::exists(folder));
  EXPECT_TRUE(fs::is_directory(fs::temp_directory_path()));
}

} // namespace
} // namespace HostContract
