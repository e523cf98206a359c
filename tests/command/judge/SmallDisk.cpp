#include "tests/command/judge/SmallDisk.h"

#include "tests/fault/judge/Disk.h"

#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <utility>

namespace CommandTests {

namespace {

constexpr unsigned long kFlags = MS_NODEV | MS_NOSUID;

std::string sizeOf(std::size_t kilobytes) {
  return "mode=0777,size=" + std::to_string(kilobytes) + "k";
}

} // namespace

SmallDisk::SmallDisk(std::string folder, std::size_t kilobytes) : m_folder(std::move(folder)) {
  if (!mount(kFlags, sizeOf(kilobytes))) {
    m_problem = m_folder + " cannot be mounted: " + std::strerror(errno);
  }
}

SmallDisk::~SmallDisk() {
  if (m_problem.empty()) {
    const FaultTests::RootScope root;
    ::umount2(m_folder.c_str(), MNT_DETACH);
  }
}

// Nothing but the mounting itself is done as root.
bool SmallDisk::mount(unsigned long flags, const std::string &options) const {
  const FaultTests::RootScope root;
  return ::mount("none", m_folder.c_str(), "tmpfs", flags, options.c_str()) == 0;
}

bool SmallDisk::resize(std::size_t kilobytes) const {
  return mount(kFlags | MS_REMOUNT, sizeOf(kilobytes));
}

bool SmallDisk::makeReadOnly() const {
  return mount(kFlags | MS_REMOUNT | MS_RDONLY, "");
}

bool SmallDisk::makeWritable() const {
  return mount(kFlags | MS_REMOUNT, "");
}

} // namespace CommandTests
