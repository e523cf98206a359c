#include "EmbeddedHost/src/project/MemberFlags.h"

namespace EmbeddedHost {

namespace {

struct Flag {
  std::int64_t bit;
  bool MemberType::*property;
};

// The bits are part of the file format.
constexpr Flag kFlags[] = {
    {1, &MemberType::isResult},
    {2, &MemberType::isLocked},
    {4, &MemberType::isInternal},
    {8, &MemberType::isMonitor},
    {16, &MemberType::hasNoSimulationEffect},
    {32, &MemberType::isProjectLevel},
};

} // namespace

std::int64_t flagsOf(const MemberType &member) {
  std::int64_t flags = 0;
  for (const Flag &flag : kFlags) {
    flags += member.*flag.property ? flag.bit : 0;
  }
  return flags;
}

void setFlags(MemberType &member, std::int64_t flags) {
  for (const Flag &flag : kFlags) {
    member.*flag.property = flags / flag.bit % 2 != 0;
  }
}

} // namespace EmbeddedHost
