#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/StudyTypeName.h"
#include "testing/WrappedHost.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace StudyTesting {

/// A delta with the edits that a test gives it.
class AdjustedDelta final : public EntityModel::ModelDelta {
public:
  AdjustedDelta();
  ~AdjustedDelta() override;

  /// \param value  may be null, as it is for an operation that set no value
  void add(const EntityModel::Entity *entity, const std::string &path, int kind,
           std::unique_ptr<EntityModel::Attribute> value);
  const EntityModel::EditOperation *findEditOperation(const EntityModel::Entity *entity,
                                                      const EntityModel::AttributePath &path) const override;

private:
  struct Edit;

  std::vector<std::unique_ptr<Edit>> m_edits;
};

/// Forwards to another host, except that a test decides what it cannot know of a real one: folders and stores
/// of versions, names of study types, and edits that a version keeps outside its own delta.
///
/// The folder of a version is "folders/" and its label, the directory of a store the folder and "/store"; the
/// operations of stores succeed and do nothing. Parametric studies are called "Steady", others "Plain".
class AdjustedHost final : public HostModel::Host {
public:
  /// \param host  not owned; outlives this one
  explicit AdjustedHost(HostModel::Host &host);
  ~AdjustedHost() override;

  EntityModel::EntityEditorService *getEntityEditor() override;
  EntityGUI::EntityManagerService *getEntityManager() override;
  EntityModel::StudyTypeNameService *getStudyTypeNames() override;
  EntityModel::ModellingImpactService *getModellingImpact() override;
  ProjectData::ProjectStoreService *getProjectStore() override;
  FileSystem::DirectoryService *getDirectories() override;

  /// The next questions for a folder get these answers in turn.
  std::vector<std::string> folderAnswers;
  /// The store operations answer this.
  bool storesSucceed = true;
  /// An empty name is answered to every question for a unique one.
  bool givesNoUniqueNames = false;
  /// Asked for a unique form of a name of this map, the answer is the name that it has there.
  std::map<std::string, std::string> uniqueNames;

  /// Gives a version external data with these deltas, where null stands for an item without a delta.
  /// \param deltas  not owned
  void setExternalData(EntityModel::ModelVersion *version, std::vector<EntityModel::ModelDelta *> deltas);

private:
  struct Parts;

  HostModel::Host &m_host;
  std::unique_ptr<Parts> m_parts;
};

/// Runs an action in the middle of a host call.
class HookedHost final : public HostTesting::WrappedHost {
public:
  explicit HookedHost(HostModel::Host &host);
  ~HookedHost() override;

  /// Lets \p action run before the call of that number is made, counted from 1 and from now on. Calls are those
  /// of the library that change something, and no changes of copies.
  void runBefore(int number, std::function<void()> action);
  /// Lets \p action run before the next call of an operation is made.
  void runBefore(const std::string &operation, std::function<void()> action);

  /// How many calls the library has made since the last runBefore().
  int count() const { return m_count; }

protected:
  HostTesting::Verdict intercept(const HostTesting::HostCall &call) override;

private:
  int m_count = 0;
  int m_number = 0;
  std::string m_operation;
  std::function<void()> m_action;
};

} // namespace StudyTesting
