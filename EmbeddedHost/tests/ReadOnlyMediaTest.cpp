#include "EmbeddedHost/tests/ReadOnlyMedia.h"

#include "EmbeddedHost/tests/ModelFixture.h"
#include "EmbeddedHost/tests/OrdinaryUser.h"

#include <filesystem>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

TEST(ReadOnlyMediaTest, FolderWithoutWritePermission_IsReadAndNotWritten) {
  EXPECT_EQ(reportOfOrdinaryUser([] {
              const TestFolder folder;
              const std::string file = makeProjectToRead(folder.path());
              fs::permissions(file, fs::perms(0444));
              fs::permissions(folder.path(), fs::perms(0555));
              const auto before = everythingIn(folder.path());
              std::string report = reportOfReading(file);
              report += everythingIn(folder.path()) == before ? "" : "something was written\n";
              fs::permissions(folder.path(), fs::perms(0755));
              return report;
            }),
            wholeReport("Permission denied"));
}

TEST(ReadOnlyMediaTest, FolderWithoutWritePermission_CannotBeRecoveredThere) {
  EXPECT_EQ(reportOfOrdinaryUser([] {
              const TestFolder folder;
              const std::string file = makeProjectToRead(folder.path());
              interruptAChangeOf(file);
              fs::permissions(file, fs::perms(0444));
              fs::permissions(folder.path(), fs::perms(0555));
              const auto before = everythingIn(folder.path());
              std::string report = reportOfReading(file);
              report += everythingIn(folder.path()) == before ? "" : "something was written\n";
              fs::permissions(folder.path(), fs::perms(0755));
              return report;
            }),
            interruptedReport("Permission denied"));
}

} // namespace
} // namespace EmbeddedHost
