#include "EmbeddedHost/VersionLook.h"

#include "EmbeddedHost/src/project/ProjectParts.h"

namespace EmbeddedHost {

VersionLook::VersionLook(const Project &project) : m_project(project) {}

VersionLook::~VersionLook() {
  VersionTree &tree = m_project.parts().model.tree();
  tree.makeCurrent(tree.current());
}

bool VersionLook::at(EntityModel::ModelVersion &version) {
  VersionTree &tree = m_project.parts().model.tree();
  Version *known = tree.own(&version);
  if (known == nullptr) {
    return false;
  }
  tree.look(*known);
  return true;
}

} // namespace EmbeddedHost
