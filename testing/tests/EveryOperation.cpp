#include "testing/tests/EveryOperation.h"

#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"
#include "testing/tests/AttributeSteps.h"
#include "testing/tests/Shown.h"

#include <QString>

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;

SceneProxies::SceneProxies(Scene &sceneGiven, WrappedHost &wrapperGiven)
    : scene(sceneGiven), wrapper(wrapperGiven), editor(wrapper.getEntityEditor()),
      manager(wrapper.getEntityManager()), studyTypeNames(wrapper.getStudyTypeNames()),
      impact(wrapper.getModellingImpact()), stores(wrapper.getProjectStore()),
      directories(wrapper.getDirectories()), versions(editor->getChangeManager()),
      observers(manager->getObserverManager()), checker(manager->getModelChecker()),
      base(wrapper.proxy(&scene.base)), second(wrapper.proxy(&scene.second)),
      externalData(second->getExternalData()), delta(second->getDelta(true)), fan(wrapper.proxy(&scene.fan)),
      box(wrapper.proxy(&scene.box)), speed(fan->findAttribute(AttributePath("Speed"))),
      mode(fan->findAttribute(AttributePath("Mode"))),
      reference(fan->findAttribute(AttributePath("Reference"))),
      parts(fan->findAttribute(AttributePath("Parts"))->asList()),
      link(fan->findAttribute(AttributePath("Casing"))->asLink()),
      target(fan->findAttribute(AttributePath("Target"))->asTypeAttribute()) {
  scene.takeLog();
}

namespace {

// Told of a broadcast; writes down what it got.
class Witness final : public EntityGUI::Observer {
public:
  explicit Witness(SceneProxies &p) : Observer(false, true), m_proxies(p) {
    EntityGUI::ObserverManager::process().addObserver(this);
  }
  void setCurrentEntity(Entity *entity, bool scrollTo) override {
    seen += "current " + shown(m_proxies, entity) + " " + shown(scrollTo);
  }
  void changedEntities(ChangeSet &changes) override { seen += "changed " + shown(m_proxies, changes); }
  void selectEntities(const std::vector<Entity *> &entities) override {
    seen += "selected";
    for (Entity *entity : entities) {
      seen += " " + shown(m_proxies, entity);
    }
  }
  void changedVersion(ChangeSet &changes, Entity *entity, const std::string &versionName,
                      bool reload) override {
    seen += "version " + shown(m_proxies, changes) + " " + shown(m_proxies, entity) + " " + versionName +
            " " + shown(reload);
  }

  std::string seen;

private:
  SceneProxies &m_proxies;
};

const AttributePath &speedPath() {
  static const AttributePath path("Speed");
  return path;
}

std::vector<OperationStep> serviceSteps() {
  return {
      {"Host::getEntityEditor", [](SceneProxies &p) { return shown(p.wrapper.getEntityEditor()); }, "object",
       "null"},
      {"Host::getEntityManager", [](SceneProxies &p) { return shown(p.wrapper.getEntityManager()); },
       "object", "null"},
      {"Host::getStudyTypeNames", [](SceneProxies &p) { return shown(p.wrapper.getStudyTypeNames()); },
       "object", "null"},
      {"Host::getModellingImpact", [](SceneProxies &p) { return shown(p.wrapper.getModellingImpact()); },
       "object", "null"},
      {"Host::getProjectStore", [](SceneProxies &p) { return shown(p.wrapper.getProjectStore()); }, "object",
       "null"},
      {"Host::getDirectories", [](SceneProxies &p) { return shown(p.wrapper.getDirectories()); }, "object",
       "null"},
      {"EntityEditor::getRootEntity", [](SceneProxies &p) { return shown(p, p.editor->getRootEntity()); },
       "proxy of Root", "null"},
      {"EntityEditor::getChangeManager",
       [](SceneProxies &p) { return shown(p.editor->getChangeManager() == p.versions); }, "true", "false"},
      {"EntityEditor::createEntity",
       [](SceneProxies &p) {
         return shown(p, p.editor->createEntity(EntityModel::OptimizationGroup_t, p.fan, speedPath(), nullptr,
                                                true, false, true, "a name", 5));
       },
       "proxy of Box | createEntity OptimizationGroup Fan Speed null 1 0 1 a name 5", "null"},
      {"EntityEditor::addEntity",
       [](SceneProxies &p) {
         return shown(p.editor->addEntity(p.fan, speedPath(), p.box, true, false, true, false, true, 3));
       },
       "true | addEntity Fan Speed Box 1 0 1 0 1 3", "false"},
      {"EntityEditor::moveEntity",
       [](SceneProxies &p) { return shown(p.editor->moveEntity(p.fan, p.box, p.link, true, -1)); },
       "true | moveEntity Fan Box  1 -1", "false"},
      {"EntityEditor::deleteEntity",
       [](SceneProxies &p) { return shown(p.editor->deleteEntity(p.fan, false, true)); },
       "true | deleteEntity Fan 0 1", "false"},
      {"EntityEditor::deleteEntities",
       [](SceneProxies &p) {
         std::vector<Entity *> entities = {p.fan, nullptr, p.box};
         const bool result = p.editor->deleteEntities(entities, false, true);
         return shown(result) +
                (entities == std::vector<Entity *>({p.fan, nullptr, p.box}) ? "" : " altered");
       },
       "true | deleteEntities entities:3 0 1", "false"},
      {"EntityEditor::setValue",
       [](SceneProxies &p) {
         std::vector<Entity *> affected;
         const bool result = p.editor->setValue(p.fan, speedPath(), "4", false, &affected, true, false);
         return shown(result) + (affected.empty() ? "" : " " + shown(p, affected.front()));
       },
       "true proxy of Fan | setValue Fan Speed 4 0 entities:0 1 0", "false"},
      {"EntityEditor::setValueNoThrow",
       [](SceneProxies &p) {
         return shown(p.editor->setValueNoThrow(p.fan, speedPath(), "4", true, nullptr, false));
       },
       "true | setValueNoThrow Fan Speed 4 1 null 0", "false"},
      {"EntityEditor::setValueNoThrow(bool)",
       [](SceneProxies &p) { return shown(p.editor->setValueNoThrow(p.fan, speedPath(), true, false)); },
       "true | setValueNoThrow(bool) Fan Speed 1 0", "false"},
      {"EntityManager::getChangeManager",
       [](SceneProxies &p) { return shown(p.manager->getChangeManager() == p.versions); }, "true", "false"},
      {"EntityManager::getObserverManager",
       [](SceneProxies &p) { return shown(p.manager->getObserverManager() == p.observers); }, "true",
       "false"},
      {"EntityManager::setNeedsSave",
       [](SceneProxies &p) {
         p.manager->setNeedsSave(true);
         return std::string();
       },
       " | setNeedsSave 1", ""},
      {"EntityManager::setValue",
       [](SceneProxies &p) { return shown(p.manager->setValue(p.fan, speedPath(), "4", true)); },
       "true | manager setValue Fan Speed 4 1", "false"},
      {"EntityManager::checkSelectionsAreValid",
       [](SceneProxies &p) {
         p.manager->checkSelectionsAreValid();
         return std::string();
       },
       " | checkSelectionsAreValid", ""},
      {"EntityManager::getModelChecker",
       [](SceneProxies &p) { return shown(p.manager->getModelChecker() == p.checker); }, "true", "false"},
      {"ModelChecker::check",
       [](SceneProxies &p) {
         ChangeSet changes;
         changes.addModified(p.box);
         p.checker->check(changes);
         return shown(p, changes);
       },
       "{proxy of Box}{proxy of Fan, proxy of Speed} | check changes:1", "{proxy of Box}"},
      {"StudyTypeName::getStudyTypeName",
       [](SceneProxies &p) {
         return shown(p.studyTypeNames->getStudyTypeName(ModelVersionStudyType::Optimality).toStdString());
       },
       "'Type 3'", "''"},
      {"ModellingImpact::hasModellingImpact",
       [](SceneProxies &p) { return shown(p.impact->hasModellingImpact(p.fan, "NoCFDImpact", true)); },
       "true | hasModellingImpact Fan NoCFDImpact 1", "false"},
      {"ProjectStore::getStoreDirectoryName",
       [](SceneProxies &p) {
         return shown(p.stores->getStoreDirectoryName({"file", "folder"}));
       },
       "'store of file in folder'", "''"},
      {"ProjectStore::remove",
       [](SceneProxies &p) {
         return shown(p.stores->remove({"file", "folder"}));
       },
       "true | remove file:folder", "false"},
      {"ProjectStore::copyResults",
       [](SceneProxies &p) {
         return shown(p.stores->copyResults({"a", "b"}, {"c", "d"}, false, nullptr, true));
       },
       "true | copyResults a:b c:d 0 null 1", "false"},
      {"Directory::rename", [](SceneProxies &p) { return shown(p.directories->rename("old", "new")); },
       "true | rename old new", "false"},
  };
}

std::vector<OperationStep> observerSteps() {
  return {
      {"ObserverManager::addObserver",
       [](SceneProxies &p) {
         Witness witness(p);
         EntityGUI::ObserverManager::process().removeObserver(&witness);
         p.observers->addObserver(&witness);
         EntityGUI::ObserverManager::process().broadcastSetCurrentEntity(nullptr, true);
         return witness.seen;
       },
       "current null true", ""},
      {"ObserverManager::removeObserver",
       [](SceneProxies &p) {
         Witness witness(p);
         p.observers->removeObserver(&witness);
         EntityGUI::ObserverManager::process().broadcastSetCurrentEntity(nullptr, true);
         return witness.seen;
       },
       "", "current null true"},
      {"ObserverManager::broadcastChangedVersion",
       [](SceneProxies &p) {
         Witness witness(p);
         ChangeSet changes;
         changes.addModifiedAttribute(&p.scene.fan, &p.scene.speed);
         p.observers->broadcastChangedVersion(changes, &p.scene.box, "Base", true, false);
         return witness.seen;
       },
       "version {proxy of Fan, proxy of Speed} proxy of Box Base true", ""},
      {"ObserverManager::broadcastChangedEntities",
       [](SceneProxies &p) {
         Witness witness(p);
         ChangeSet changes;
         changes.addModifiedAttribute(p.fan, &p.scene.speed);
         p.observers->broadcastChangedEntities(changes);
         return witness.seen;
       },
       "changed {proxy of Fan, proxy of Speed}", ""},
      {"ObserverManager::broadcastUndoneOrRedone",
       [](SceneProxies &p) {
         Witness witness(p);
         ChangeSet changes;
         changes.addModified(&p.scene.box);
         p.observers->broadcastUndoneOrRedone(changes);
         return witness.seen;
       },
       "changed {proxy of Box}", ""},
      {"ObserverManager::broadcastSetCurrentEntity",
       [](SceneProxies &p) {
         Witness witness(p);
         p.observers->broadcastSetCurrentEntity(&p.scene.fan, true);
         return witness.seen;
       },
       "current proxy of Fan true", ""},
      {"ObserverManager::broadcastSelectEntities",
       [](SceneProxies &p) {
         Witness witness(p);
         p.observers->broadcastSelectEntities({&p.scene.fan, p.box, nullptr});
         return witness.seen;
       },
       "selected proxy of Fan proxy of Box null", ""},
  };
}

std::vector<OperationStep> changeManagerSteps() {
  return {
      {"ChangeManager::getCurrentVersion",
       [](SceneProxies &p) { return shown(p, p.versions->getCurrentVersion()); }, "proxy of Base", "null"},
      {"ChangeManager::getRootVersion",
       [](SceneProxies &p) { return shown(p, p.versions->getRootVersion(true)); },
       "proxy of Base | getRootVersion 1", "null"},
      {"ChangeManager::findVersion",
       [](SceneProxies &p) { return shown(p, p.versions->findVersion("Base", p.fan)); },
       "proxy of Base | findVersion Base Fan", "null"},
      {"ChangeManager::getAlternates",
       [](SceneProxies &p) {
         std::vector<ModelVersion *> alternates = {p.base};
         p.versions->getAlternates(p.second, alternates);
         std::string text;
         for (ModelVersion *version : alternates) {
           text += shown(p, version) + ", ";
         }
         return text;
       },
       "proxy of Base, proxy of Second, null,  | getAlternates Second", "proxy of Base, "},
      {"ChangeManager::setCurrentVersion",
       [](SceneProxies &p) {
         ChangeSet changes;
         const bool result = p.versions->setCurrentVersion(p.second, &changes, false, nullptr, true);
         p.scene.host.script.current = &p.scene.base;
         return shown(result) + shown(p, changes);
       },
       "true{proxy of Fan, proxy of Speed} | setCurrentVersion Second changes:0 0 null 1", "false"},
      {"ChangeManager::startNewVersion",
       [](SceneProxies &p) {
         ChangeSet changes;
         ModelVersion *result =
             p.versions->startNewVersion("label", "text", "author", "comment", &changes, p.base, true);
         return shown(p, result) + shown(p, changes);
       },
       "proxy of Second{proxy of Fan, proxy of Speed}"
       " | startNewVersion label text author comment changes:0 Base 1",
       "null"},
      {"ChangeManager::startNewAlternate",
       [](SceneProxies &p) {
         ChangeSet changes;
         ModelVersion *result = p.versions->startNewAlternate(p.second, &changes, true, SIZE_MAX);
         return shown(p, result) + shown(p, changes);
       },
       "proxy of Second{proxy of Fan, proxy of Speed}"
       " | startNewAlternate Second changes:0 1 18446744073709551615",
       "null"},
      {"ChangeManager::getUniqueName",
       [](SceneProxies &p) {
         return shown(p.versions->getUniqueName("name", {{"a", p.base}, {"b", nullptr}}));
       },
       "'name!' | getUniqueName name a=Base b=null", "''"},
      {"ChangeManager::editedVersion",
       [](SceneProxies &p) {
         ChangeSet changes;
         bool edited = false;
         p.versions->editedVersion(p.second, &changes, edited, true);
         return shown(edited) + shown(p, changes);
       },
       "true{proxy of Fan, proxy of Speed} | editedVersion Second changes:0 1", "false"},
      {"ChangeManager::destroyVersion",
       [](SceneProxies &p) {
         ChangeSet changes;
         bool destroyed = false;
         p.versions->destroyVersion(p.second, &changes, destroyed);
         return shown(destroyed) + shown(p, changes);
       },
       "true{proxy of Fan, proxy of Speed} | destroyVersion Second changes:0", "false"},
      {"ChangeManager::destroyVersions",
       [](SceneProxies &p) {
         bool destroyed = false;
         std::vector<ModelVersion *> versions = {p.second, nullptr};
         p.versions->destroyVersions(versions, nullptr, destroyed);
         return shown(destroyed) + (versions == std::vector<ModelVersion *>({p.second, nullptr}) ? "" : "!");
       },
       "true | destroyVersions Second,null, null", "false"},
      {"ChangeManager::getVersionFolder",
       [](SceneProxies &p) { return shown(p.versions->getVersionFolder(p.second, true)); },
       "'folder' | getVersionFolder Second 1", "''"},
      {"ChangeManager::canBeginPACStudy",
       [](SceneProxies &p) { return shown(p.versions->canBeginPACStudy(p.second)); },
       "true | canBeginPACStudy Second", "false"},
  };
}

std::vector<OperationStep> versionSteps() {
  return {
      {"ModelVersion::getLabel", [](SceneProxies &p) { return shown(p.second->getLabel()); }, "'Second'",
       "''"},
      {"ModelVersion::setLabel",
       [](SceneProxies &p) {
         p.second->setLabel("Third");
         p.scene.second.label = "Second";
         return std::string();
       },
       " | setLabel Second Third", ""},
      {"ModelVersion::getStudyType",
       [](SceneProxies &p) { return shown(static_cast<int>(p.second->getStudyType())); }, "3", "0"},
      {"ModelVersion::setStudyType",
       [](SceneProxies &p) {
         p.second->setStudyType(ModelVersionStudyType::Calibration);
         p.scene.second.studyType = ModelVersionStudyType::Optimality;
         return std::string();
       },
       " | setStudyType Second 4", ""},
      {"ModelVersion::getVersionType",
       [](SceneProxies &p) { return shown(static_cast<int>(p.second->getVersionType())); }, "3", "0"},
      {"ModelVersion::getStudyBaseline",
       [](SceneProxies &p) { return shown(p, p.second->getStudyBaseline()); }, "proxy of Base", "null"},
      {"ModelVersion::isStudyBaseline", [](SceneProxies &p) { return shown(p.second->isStudyBaseline()); },
       "true", "false"},
      {"ModelVersion::clearStudy",
       [](SceneProxies &p) {
         p.second->clearStudy();
         return std::string();
       },
       " | clearStudy Second", ""},
      {"ModelVersion::removeFromStudy",
       [](SceneProxies &p) {
         p.second->removeFromStudy();
         return std::string();
       },
       " | removeFromStudy Second", ""},
      {"ModelVersion::isStudyCase", [](SceneProxies &p) { return shown(p.second->isStudyCase(true, false)); },
       "true | isStudyCase Second 1 0", "false"},
      {"ModelVersion::setStudyCaseFlag",
       [](SceneProxies &p) {
         p.second->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
         return std::string();
       },
       " | setStudyCaseFlag Second 2 1", ""},
      {"ModelVersion::setReadOnlyVersion",
       [](SceneProxies &p) {
         p.second->setReadOnlyVersion("true");
         return std::string();
       },
       " | setReadOnlyVersion Second true", ""},
      {"ModelVersion::getPrevious", [](SceneProxies &p) { return shown(p, p.second->getPrevious()); },
       "proxy of Base", "null"},
      {"ModelVersion::beginNext",
       [](SceneProxies &p) {
         const auto begin = p.base->beginNext();
         return shown(p, begin[0]) + " " + shown(p, begin[1]);
       },
       "proxy of Second null", nullptr},
      {"ModelVersion::endNext",
       [](SceneProxies &p) {
         const auto end = p.base->endNext();
         return shown(p, end[-2]) + " " + shown(p, end[-1]);
       },
       "proxy of Second null", nullptr},
      {"ModelVersion::getDelta", [](SceneProxies &p) { return shown(p.second->getDelta(true) == p.delta); },
       "true | getDelta Second 1", "false"},
      {"ModelVersion::getExternalData",
       [](SceneProxies &p) { return shown(p.second->getExternalData() == p.externalData); }, "true", "false"},
      {"ModelVersionExternalData::begin",
       [](SceneProxies &p) {
         const auto begin = p.externalData->begin();
         return shown(begin[0]) + " " + shown(begin[1]);
       },
       "object null", nullptr},
      {"ModelVersionExternalData::end",
       [](SceneProxies &p) {
         const auto end = p.externalData->end();
         return shown(end[-2]) + " " + shown(end[-1]);
       },
       "object null", nullptr},
      {"ModelDelta::findEditOperation",
       [](SceneProxies &p) {
         const bool isOther = p.delta->findEditOperation(p.box, speedPath()) != nullptr;
         return shown(p.delta->findEditOperation(p.fan, speedPath())) + " " + shown(isOther);
       },
       "object false", "null false"},
      {"EditOperation::getKind",
       [](SceneProxies &p) { return shown(p.delta->findEditOperation(p.fan, speedPath())->getKind()); }, "1",
       "0"},
      {"EditOperation::getValue",
       [](SceneProxies &p) {
         const EntityModel::EditOperation *operation = p.delta->findEditOperation(p.fan, speedPath());
         const Attribute *value = operation->getValue();
         return value == nullptr ? "null"
                                 : shown(value->getValueAsString()) + " " + shown(value == &p.scene.recorded);
       },
       "'9' false", "null"},
  };
}

} // namespace

const std::vector<OperationStep> &everyOperation() {
  static const std::vector<OperationStep> steps = [] {
    std::vector<OperationStep> all;
    for (const auto &group : {serviceSteps(), observerSteps(), changeManagerSteps(), versionSteps(),
                              attributeSteps(), compositeSteps()}) {
      all.insert(all.end(), group.begin(), group.end());
    }
    return all;
  }();
  return steps;
}

std::string outcome(const OperationStep &step, SceneProxies &proxies) {
  const std::string answer = step.call(proxies);
  const std::string log = proxies.scene.takeLog();
  return log.empty() ? answer : answer + " | " + log;
}

} // namespace HostTesting
