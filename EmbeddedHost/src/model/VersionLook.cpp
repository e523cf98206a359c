#include "EmbeddedHost/VersionLook.h"

#include "EmbeddedHost/src/project/ProjectParts.h"

namespace EmbeddedHost {

VersionLook::VersionLook(const Project &project)
    : m_project(project), m_before(project.parts().model.tree().shown()) {}

VersionLook::~VersionLook() {
  VersionTree &tree = m_project.parts().model.tree();
  if (m_before != nullptr) {
    tree.look(*tree.own(m_before));
  }
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
