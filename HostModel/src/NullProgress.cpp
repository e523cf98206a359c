#include "HostModel/NullProgress.h"

namespace Tools::Progress {

AdditionalProgressAbstract::~AdditionalProgressAbstract() = default;

bool AdditionalProgressBase<0>::isInProgress() const {
  return false;
}
bool AdditionalProgressBase<0>::isNothing(const AdditionalProgressAbstract &other) const {
  return !other.isInProgress();
}

AdditionalProgressNone::~AdditionalProgressNone() = default;
bool AdditionalProgressNone::isInProgress() const {
  return false;
}
std::unique_ptr<AdditionalProgressAbstract> AdditionalProgressNone::clone() const {
  return std::make_unique<AdditionalProgressNone>();
}
// Nothing equals, and is continued by, whatever has nothing in progress: the other object knows.
bool AdditionalProgressNone::equals(const AdditionalProgressAbstract &other) const {
  return other.isNothing(other);
}
bool AdditionalProgressNone::continues(const AdditionalProgressAbstract &other) const {
  return other.isNothing(other);
}

const AdditionalProgressNone &AdditionalProgressNone::shared() {
  static const AdditionalProgressNone none;
  return none;
}

ProgressAbstract::~ProgressAbstract() = default;

int ProgressNoData<0>::stepsInProgress() const {
  return 0;
}
bool ProgressNoData<0>::isRunning() const {
  return false;
}
bool ProgressNoData<0>::isFinished() const {
  return false;
}
bool ProgressNoData<0>::isNothing(const ProgressAbstract &other) const {
  return other.stepsInProgress() == 0;
}

None::~None() = default;
std::unique_ptr<ProgressAbstract> None::clone() const {
  return std::make_unique<None>();
}
bool None::equals(const ProgressAbstract &other) const {
  return other.isNothing(other);
}
bool None::continues(const ProgressAbstract &other) const {
  return other.isNothing(other);
}

} // namespace Tools::Progress
