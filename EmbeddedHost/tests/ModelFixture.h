#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/Observer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace EmbeddedHost {

/// A schema with a member of every kind: the root has lists "Parts" and "Marks" and the text "Title", a "Part" has
/// "Width" (m, shown in mm, 0 to 2 m), "Ratio", "Count" (-5 to 100), "Open", "Material" (Steel, Copper, Air), "Note",
/// "Law" (Linear, Cubic), "Next" (a link to a part), "Driver" (an attribute reference), "Parts" (a list of parts),
/// "Core" (an owning link), "Size" (a composite with "Height" and "Depth"), the results "Mass" (kg), "Cycles" and
/// "Remark", and the monitor "Field".
ModelSchema testSchema();

/// An installed project with the test schema and the parts "A" and "B" in the root's list.
class ModelTest : public testing::Test {
protected:
  explicit ModelTest(const HostBehaviour &behaviour = {});
  ~ModelTest() override;

  EntityModel::Attribute &attribute(EntityModel::Entity *entity, const std::string &path);
  std::string text(EntityModel::Entity *entity, const std::string &path);
  void set(EntityModel::Entity *entity, const std::string &path, const std::string &value);
  EntityModel::ModelVersion *follow(EntityModel::ModelVersion *origin, const std::string &label);
  EntityModel::ModelVersion *alternate(EntityModel::ModelVersion *origin, const std::string &label,
                                       std::size_t position = SIZE_MAX);
  void show(EntityModel::ModelVersion *version);
  static std::vector<std::string> labels(const std::vector<EntityModel::ModelVersion *> &versions);
  std::vector<std::string> names(EntityModel::Entity *owner, const std::string &list);
  EntityModel::ListAttribute &list(EntityModel::Entity *owner, const std::string &path);

  std::unique_ptr<Project> project;
  HostModel::HostInstallation installation;
  EntityModel::ChangeManager &tree;
  EntityModel::Entity *root;
  EntityModel::Entity *partA;
  EntityModel::Entity *partB;
};

/// Writes down what it is told, one line for each notification.
class NotedNotifications final : public EntityGUI::Observer {
public:
  NotedNotifications();
  ~NotedNotifications() override;

  void setCurrentEntity(EntityModel::Entity *entity, bool scrollTo) override;
  void changedEntities(EntityModel::ChangeSet &changes) override;
  void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                      const std::string &versionName, bool reload) override;

  std::vector<std::string> lines;
};

/// A folder that is removed with everything in it at the end.
class TestFolder {
public:
  TestFolder();
  TestFolder(const TestFolder &) = delete;
  TestFolder &operator=(const TestFolder &) = delete;
  ~TestFolder();

  std::string path(const std::string &name = "") const;

private:
  std::string m_path;
};

/// All bytes of a file.
std::string contentOf(const std::string &path);
void writeFile(const std::string &path, const std::string &content);

} // namespace EmbeddedHost
