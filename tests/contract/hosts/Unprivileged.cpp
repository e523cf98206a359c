// A host with a defect may delete what it must not touch, so the contract never runs as root.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <grp.h>
#include <iostream>
#include <sys/prctl.h>
#include <unistd.h>

namespace HostContract {

namespace {

constexpr unsigned kNobody = 65534;

class Unprivileged final : public testing::Environment {
public:
  void SetUp() override {
    if (getuid() != 0) {
      return;
    }
    const bool isNobody = setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
                          setresuid(kNobody, kNobody, kNobody) == 0;
    if (!isNobody) {
      std::cerr << "The contract cannot give up the rights of root: " << std::strerror(errno) << '\n';
      std::abort();
    }
    // The leak checker of the sanitizers traces its own process, which a change of user forbids.
    prctl(PR_SET_DUMPABLE, 1);
  }
};

// GoogleTest owns it from here on.
[[maybe_unused]] const testing::Environment *const kUnprivileged =
    testing::AddGlobalTestEnvironment(new Unprivileged);

} // namespace

TEST(ContractProcessTest, Cases_AreNotRunByRoot) {
  EXPECT_NE(getuid(), 0U);
  EXPECT_NE(geteuid(), 0U);
  EXPECT_NE(setuid(0), 0);
}

} // namespace HostContract
