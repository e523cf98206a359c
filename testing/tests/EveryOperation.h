#pragma once

#include "testing/WrappedHost.h"
#include "testing/tests/Scene.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace HostTesting {

/// The proxies of a scene's objects, taken before a test lets anything fail.
struct SceneProxies {
  SceneProxies(Scene &scene, WrappedHost &wrapper);

  Scene &scene;
  WrappedHost &wrapper;
  EntityModel::EntityEditorService *editor;
  EntityGUI::EntityManagerService *manager;
  EntityModel::StudyTypeNameService *studyTypeNames;
  EntityModel::ModellingImpactService *impact;
  ProjectData::ProjectStoreService *stores;
  FileSystem::DirectoryService *directories;
  EntityModel::ChangeManager *versions;
  EntityGUI::AbstractObserverManager *observers;
  EntityGUI::AbstractModelChecker *checker;
  EntityModel::ModelVersion *base;
  EntityModel::ModelVersion *second;
  EntityModel::ModelVersionExternalData *externalData;
  EntityModel::ModelDelta *delta;
  EntityModel::Entity *fan;
  EntityModel::Entity *box;
  EntityModel::Attribute *speed;
  EntityModel::Attribute *mode;
  EntityModel::Attribute *reference;
  EntityModel::ListAttribute *parts;
  EntityModel::EntityLink *link;
  EntityModel::TypeAttribute *target;
};

/// How one operation is called, and what shows that it was.
struct OperationStep {
  const char *operation;
  /// Calls the operation, after others where only these lead to its object, and gives its answer, or what it
  /// changed, as text.
  std::function<std::string(SceneProxies &)> call;
  /// The answer, then " | " and the lines that the host wrote when it wrote any.
  const char *answer;
  /// The same when the call was refused; null where a refused call leaves nothing to look at.
  const char *refusedAnswer;
};

/// One step for every operation of the host interface.
const std::vector<OperationStep> &everyOperation();

/// What a step gives, with the lines that the host wrote.
std::string outcome(const OperationStep &step, SceneProxies &proxies);

} // namespace HostTesting
