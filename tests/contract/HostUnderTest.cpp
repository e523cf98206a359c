#include "tests/contract/HostUnderTest.h"

namespace HostContract {

std::string nameOf(Capability capability) {
  switch (capability) {
  case Capability::NotifyingSwitches:
    return "NotifyingSwitches";
  case Capability::QuietCreation:
    return "QuietCreation";
  case Capability::MoreKinds:
    return "MoreKinds";
  case Capability::Units:
    return "Units";
  case Capability::UserCommands:
    return "UserCommands";
  case Capability::Persistence:
    return "Persistence";
  case Capability::Store:
    return "Store";
  }
  return {};
}

bool HostUnderTest::switchByUser(EntityModel::ModelVersion * /*version*/) {
  return false;
}

bool HostUnderTest::editByUser(EntityModel::Entity * /*entity*/, const EntityModel::AttributePath & /*path*/,
                               const std::string & /*text*/) {
  return false;
}

bool HostUnderTest::relabelByUser(EntityModel::ModelVersion * /*version*/, const std::string & /*label*/) {
  return false;
}

bool HostUnderTest::destroyByUser(EntityModel::ModelVersion * /*version*/) {
  return false;
}

bool HostUnderTest::closeByUser() {
  return false;
}

void HostUnderTest::setSolverRuns(bool /*runs*/) {}

bool HostUnderTest::save(const std::string & /*path*/) {
  return false;
}

bool HostUnderTest::reopen() {
  return false;
}

} // namespace HostContract
