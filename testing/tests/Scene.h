#pragma once

#include "HostModel/ChangeSet.h"
#include "HostModel/tests/TinyHost.h"
#include "HostModel/tests/TinyModel.h"

#include <string>
#include <vector>

namespace HostTesting {

/// A small host with one object of every class that there is.
struct Scene {
  Scene();

  /// The lines that the host has written since the last call, joined by "; ".
  std::string takeLog();

  TinyModel::Host host;
  TinyModel::Entity fan{"Fan", EntityModel::TypeRef::fromLabel("Fan")};
  TinyModel::Entity box{"Box", EntityModel::TypeRef::fromLabel("Box")};
  TinyModel::List &fans;
  TinyModel::List &parts;
  TinyModel::Value &speed;
  TinyModel::Value &mode;
  TinyModel::Value &reference;
  TinyModel::Link &link;
  TinyModel::TypeValue &target;
  TinyModel::Version base{host.script, "Base"};
  TinyModel::Version second{host.script, "Second"};
  TinyModel::Delta delta;
  TinyModel::Delta externalDelta;
  TinyModel::ExternalData externalData;
  TinyModel::Value recorded;
};

} // namespace HostTesting
