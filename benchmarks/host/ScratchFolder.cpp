#include "benchmarks/host/ScratchFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <linux/magic.h>
#include <sstream>
#include <sys/vfs.h>
#include <system_error>

namespace HostBenchmark {

ScratchFolder::ScratchFolder(const std::string &parent) {
  std::string name = parent + "/host-benchmark-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), parent);
  }
  m_path = name;
}

ScratchFolder::~ScratchFolder() {
  // The path is what mkdtemp() made, and nothing is ever added to it here.
  std::error_code error;
  std::filesystem::remove_all(m_path, error);
}

std::string ScratchFolder::fileSystem() const {
  struct statfs about {};
  if (statfs(m_path.c_str(), &about) != 0) {
    return "an unknown file system";
  }
  switch (about.f_type) {
  case EXT4_SUPER_MAGIC:
    return "ext4";
  case XFS_SUPER_MAGIC:
    return "xfs";
  case BTRFS_SUPER_MAGIC:
    return "btrfs";
  case OVERLAYFS_SUPER_MAGIC:
    return "overlayfs";
  case TMPFS_MAGIC:
    return "tmpfs, where nothing is written to a disk";
  default:
    break;
  }
  std::ostringstream number;
  number << "file system 0x" << std::hex << about.f_type;
  return number.str();
}

} // namespace HostBenchmark
