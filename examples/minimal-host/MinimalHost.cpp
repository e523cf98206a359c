#include "MinimalHost.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/StudyTypeName.h"
#include "HostModel/TypeConstants.h"
#include "Versions.h"

#include <exception>
#include <utility>

namespace MinimalHost {

using EntityModel::ChangeManager;

namespace {

using Types = std::map<std::string, std::vector<Member>>;

// The entities in which a study is stored.
Types withStudyTypes(Types types) {
  using namespace EntityModel;
  const auto declare = [&types](const TypeRef &type, const std::vector<Member> &members) {
    types[std::string(type.getLabel())] = members;
  };
  const auto ownType = [](const char *label, Kind kind, const char *text) {
    return Member{TypeRef::fromLabel(label), kind, text};
  };
  declare(OptimizationData_t, {{BaseVersionName_t, Kind::Text},
                               {CopyVersionName_t, Kind::Text},
                               {CostFunction_t, Kind::Text},
                               {OptimisationTarget_t, Kind::TypeReference},
                               {OptimizationInputs_t, Kind::List},
                               {OptimizationOutputs_t, Kind::List},
                               {OptimalityConfigurationLink_t, Kind::Link}});
  declare(OptimalityConfiguration_t, {});
  declare(OptimizationGroup_t, {{Group_Name_t, Kind::Text}, {OptimizationAttributes_t, Kind::List}});
  declare(OptimizationAttribute_t, {{ParentEntity_t, Kind::Link},
                                    {Path_t, Kind::Text},
                                    {MinimumValue_t, Kind::Text},
                                    {MaximumValue_t, Kind::Text},
                                    {StepValue_t, Kind::Text},
                                    ownType("LowBoundEnabled", Kind::Boolean, "0"),
                                    ownType("LowBoundValue", Kind::Text, ""),
                                    ownType("HighBoundEnabled", Kind::Boolean, "0"),
                                    ownType("HighBoundValue", Kind::Text, "")});
  return types;
}

Links *findLinks(Entity *owner, const AttributePath &path) {
  return dynamic_cast<Links *>(EntityModel::findAttribute(owner, path));
}

Links *owningLink(const ModelEntity *entity) {
  return entity == nullptr ? nullptr : dynamic_cast<Links *>(entity->getOwnerEntityLink());
}

bool isInside(const Entity *entity, const Entity *other) {
  const Links *link = owningLink(existing(entity));
  return entity == other || (link != nullptr && isInside(link->owner, other));
}

class Editor final : public EntityModel::EntityEditorService {
public:
  Editor(Model &model, Versions &versions, Types types)
      : m_model(model), m_versions(versions), m_types(std::move(types)) {}

  Entity *getRootEntity() override { return m_model.entities.front().get(); }
  ChangeManager *getChangeManager() override { return &m_versions; }

  Entity *createEntity(const TypeRef &type, Entity *owner, const AttributePath &listPath,
                       EntityModel::LibraryInterface * /*library*/, bool /*setDefaults*/, bool /*notify*/,
                       bool /*select*/, const std::string &name, int position) override {
    const auto declared = m_types.find(std::string(type.getLabel()));
    Links *links = findLinks(owner, listPath);
    if (declared == m_types.end() || links == nullptr || !links->hasPlace()) {
      return nullptr;
    }
    auto entity = std::make_unique<ModelEntity>(m_model, Member{type, Kind::Entity, name}, declared->second,
                                                links->isStudyStorage);
    if (!links->insert(*entity, true, position)) {
      return nullptr;
    }
    m_model.entities.push_back(std::move(entity));
    return m_model.entities.back().get();
  }

  bool addEntity(Entity *owner, const AttributePath &listPath, Entity *entity, bool takeOwnership,
                 bool /*checkType*/, bool notify, bool /*markEdited*/, bool /*select*/,
                 int position) override {
    Links *links = findLinks(owner, listPath);
    ModelEntity *known = existing(entity);
    if (takeOwnership) {
      return moveEntity(entity, owner, links, notify, position);
    }
    return links != nullptr && known != nullptr && links->insert(*known, false, position);
  }

  bool moveEntity(Entity *entity, Entity *newOwner, EntityLink *link, bool /*notify*/,
                  int position) override {
    ModelEntity *known = existing(entity);
    Links *source = owningLink(known);
    auto *target = dynamic_cast<Links *>(link);
    return source != nullptr && target != nullptr && target->owner == newOwner && target->hasPlace() &&
           target->isStudyStorage == known->isStudyStorage && !isInside(newOwner, entity) &&
           source->remove(*known) && target->insert(*known, true, position);
  }

  bool deleteEntity(Entity *entity, bool /*force*/, bool /*notify*/) override {
    ModelEntity *known = existing(entity);
    Links *source = owningLink(known);
    return source != nullptr && source->remove(*known);
  }

  bool deleteEntities(std::vector<Entity *> &entities, bool force, bool notify) override {
    bool areDeleted = true;
    for (Entity *entity : entities) {
      areDeleted = deleteEntity(entity, force, notify) && areDeleted;
    }
    return areDeleted;
  }

  bool setValue(Entity *entity, const AttributePath &path, const std::string &text, bool /*force*/,
                std::vector<Entity *> *affected, bool /*notify*/, bool /*markEdited*/) override {
    auto *slot = dynamic_cast<Slot *>(EntityModel::findAttribute(entity, path));
    if (slot == nullptr || !slot->store(slot->isNumber() && text.empty() ? Value() : slot->read(text))) {
      return false;
    }
    if (affected != nullptr) {
      affected->push_back(entity);
    }
    return true;
  }

  bool setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                       std::vector<Entity *> *affected, bool notify) override {
    try {
      return setValue(entity, path, text, force, affected, notify, true);
    } catch (const std::exception &) {
      return false;
    }
  }

  bool setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool notify) override {
    const Attribute *attribute = EntityModel::findAttribute(entity, path);
    return attribute != nullptr && attribute->isBoolean() &&
           setValueNoThrow(entity, path, std::string(value ? "1" : "0"), false, nullptr, notify);
  }

private:
  Model &m_model;
  Versions &m_versions;
  Types m_types;
};

class Manager final : public EntityGUI::EntityManagerService {
public:
  explicit Manager(Versions &versions) : m_versions(versions) {}

  ChangeManager *getChangeManager() override { return &m_versions; }
  EntityGUI::AbstractObserverManager *getObserverManager() override {
    return &EntityGUI::ObserverManager::process();
  }
  void setNeedsSave(bool /*needsSave*/) override {}

  bool setValue(Entity *entity, const AttributePath &path, const std::string &text, bool notify) override {
    if (!EntityModel::EntityEditor::setValue(entity, path, text, false, nullptr, notify, true)) {
      return false;
    }
    if (notify) {
      ChangeSet changes;
      changes.addModifiedAttribute(entity, entity->findAttribute(path));
      EntityGUI::EntityManager::getObserverManager()->broadcastChangedEntities(changes);
    }
    return true;
  }

  void checkSelectionsAreValid() override {
    Entity *&selected = EntityGUI::EntityManager::s_CurrentEntity;
    selected = existing(selected);
  }

  EntityGUI::AbstractModelChecker *getModelChecker() override { return nullptr; }

private:
  Versions &m_versions;
};

// The root stands for the project as a whole.
void selectRoot(Editor &editor) {
  if (EntityGUI::AbstractObserverManager *observers = EntityGUI::EntityManager::getObserverManager()) {
    observers->broadcastSetCurrentEntity(editor.getRootEntity(), false);
  }
}

class TypeNames final : public EntityModel::StudyTypeNameService {
public:
  QString getStudyTypeName(EntityModel::ModelVersionStudyType type) override {
    return QStringLiteral("Study %1").arg(static_cast<int>(type));
  }
};

} // namespace

struct Host::Parts {
  Parts(const std::vector<Member> &rootMembers, Types types)
      : editor(model, versions, withStudyTypes(std::move(types))) {
    std::vector<Member> members = rootMembers;
    members.push_back({EntityModel::OptimizationDataList_t, Kind::List});
    const Member type{TypeRef::fromLabel("Model"), Kind::Entity, "Model"};
    model.entities.push_back(std::make_unique<ModelEntity>(model, type, members, false));
  }

  Model model;
  Versions versions{model};
  Editor editor;
  Manager manager{versions};
  TypeNames typeNames;
};

Host::Host(const std::vector<Member> &rootMembers, Types types)
    : m_parts(std::make_unique<Parts>(rootMembers, std::move(types))) {}

Host::~Host() = default;

void Host::open() {
  EntityGUI::EntityManager::s_CurrentFilename.clear();
  EntityGUI::EntityManager::s_CurrentEntity = m_parts->editor.getRootEntity();
  selectRoot(m_parts->editor);
}

void Host::close() {
  m_parts->model.current = nullptr;
  EntityGUI::EntityManager::s_CurrentEntity = nullptr;
  selectRoot(m_parts->editor);
}

EntityModel::EntityEditorService *Host::getEntityEditor() {
  return &m_parts->editor;
}

EntityGUI::EntityManagerService *Host::getEntityManager() {
  return &m_parts->manager;
}

EntityModel::StudyTypeNameService *Host::getStudyTypeNames() {
  return &m_parts->typeNames;
}

} // namespace MinimalHost
