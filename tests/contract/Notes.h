#pragma once

#include "HostModel/Observer.h"

#include <string>
#include <vector>

namespace HostContract {

class Scene;

/// Writes down what observers are told, one line for each notification: "version V of root A.Width=5",
/// "edit A.Width=5", "entity root". A "?" stands for what is neither the root nor has a name.
class Notes final : public EntityGUI::Observer {
public:
  explicit Notes(Scene &scene);
  ~Notes() override;

  const std::vector<std::string> &lines() const { return m_lines; }
  void clear() { m_lines.clear(); }

  void setCurrentEntity(EntityModel::Entity *entity, bool scrollTo) override;
  void changedEntities(EntityModel::ChangeSet &changes) override;
  void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                      const std::string &versionName, bool reload) override;

private:
  std::string nameOf(const EntityModel::Entity *entity) const;
  std::string describe(const EntityModel::ChangeSet &changes) const;

  const EntityModel::Entity *m_root;
  std::vector<std::string> m_lines;
};

} // namespace HostContract
