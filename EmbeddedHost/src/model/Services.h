#pragma once

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/StudyTypeName.h"

namespace EmbeddedHost {

class Model;

/// Editing of a model, see EntityModel::EntityEditor.
class EditorService final : public EntityModel::EntityEditorService {
public:
  explicit EditorService(Model &model);
  ~EditorService() override;

  EntityModel::Entity *getRootEntity() override;
  EntityModel::ChangeManager *getChangeManager() override;
  EntityModel::Entity *createEntity(const EntityModel::TypeRef &type, EntityModel::Entity *owner,
                                    const EntityModel::AttributePath &listPath,
                                    EntityModel::LibraryInterface *library, bool setDefaults, bool notify,
                                    bool select, const std::string &name, int position) override;
  bool addEntity(EntityModel::Entity *owner, const EntityModel::AttributePath &listPath,
                 EntityModel::Entity *entity, bool takeOwnership, bool checkType, bool notify,
                 bool markEdited, bool select, int position) override;
  bool moveEntity(EntityModel::Entity *entity, EntityModel::Entity *newOwner, EntityModel::EntityLink *link,
                  bool notify, int position) override;
  bool deleteEntity(EntityModel::Entity *entity, bool force, bool notify) override;
  bool deleteEntities(std::vector<EntityModel::Entity *> &entities, bool force, bool notify) override;
  bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path, const std::string &text,
                bool force, std::vector<EntityModel::Entity *> *affected, bool notify,
                bool markEdited) override;
  bool setValueNoThrow(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                       const std::string &text, bool force, std::vector<EntityModel::Entity *> *affected,
                       bool notify) override;
  bool setValueNoThrow(EntityModel::Entity *entity, const EntityModel::AttributePath &path, bool value,
                       bool notify) override;

private:
  Model &m_model;
};

/// The application around a model, see EntityGUI::EntityManager.
class ManagerService final : public EntityGUI::EntityManagerService {
public:
  explicit ManagerService(Model &model);
  ~ManagerService() override;

  /// Not owned; may be null.
  EntityGUI::AbstractModelChecker *checker = nullptr;

  EntityModel::ChangeManager *getChangeManager() override;
  EntityGUI::AbstractObserverManager *getObserverManager() override;
  void setNeedsSave(bool needsSave) override;
  bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path, const std::string &text,
                bool notify) override;
  void checkSelectionsAreValid() override;
  EntityGUI::AbstractModelChecker *getModelChecker() override;

private:
  Model &m_model;
};

/// English names of the study types.
class StudyTypeNames final : public EntityModel::StudyTypeNameService {
public:
  ~StudyTypeNames() override;
  QString getStudyTypeName(EntityModel::ModelVersionStudyType type) override;
};

/// Knows the impact "NoCFDImpact": members that are declared to have no effect on the simulation have it.
class DeclaredImpact final : public EntityModel::ModellingImpactService {
public:
  explicit DeclaredImpact(Model &model);
  ~DeclaredImpact() override;
  bool hasModellingImpact(const EntityModel::Attribute *attribute, const std::string &kind,
                          bool includeOwners) override;

private:
  Model &m_model;
};

} // namespace EmbeddedHost
