#include "HostModel/EntityEditor.h"

#include "HostModel/Host.h"

namespace EntityModel {

EntityEditorService::~EntityEditorService() = default;

namespace {

EntityEditorService *service() {
  HostModel::Host *host = HostModel::installedHost();
  return host == nullptr ? nullptr : host->getEntityEditor();
}

} // namespace

Entity *EntityEditor::getRootEntity() {
  EntityEditorService *editor = service();
  return editor == nullptr ? nullptr : editor->getRootEntity();
}

ChangeManager *EntityEditor::getChangeManager() {
  EntityEditorService *editor = service();
  return editor == nullptr ? nullptr : editor->getChangeManager();
}

Entity *EntityEditor::createEntity(const TypeRef &type, Entity *owner, const AttributePath &listPath,
                                   LibraryInterface *library, bool setDefaults, bool notify, bool select,
                                   const std::string &name, int position) {
  EntityEditorService *editor = service();
  return editor == nullptr ? nullptr
                           : editor->createEntity(type, owner, listPath, library, setDefaults, notify, select,
                                                  name, position);
}

bool EntityEditor::addEntity(Entity *owner, const AttributePath &listPath, Entity *entity, bool takeOwnership,
                             bool checkType, bool notify, bool markEdited, bool select, int position) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->addEntity(owner, listPath, entity, takeOwnership, checkType, notify,
                                                markEdited, select, position);
}

bool EntityEditor::moveEntity(Entity *entity, Entity *newOwner, EntityLink *link, bool notify, int position) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->moveEntity(entity, newOwner, link, notify, position);
}

bool EntityEditor::deleteEntity(Entity *entity, bool force, bool notify) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->deleteEntity(entity, force, notify);
}

bool EntityEditor::deleteEntities(std::vector<Entity *> &entities, bool force, bool notify) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->deleteEntities(entities, force, notify);
}

bool EntityEditor::setValue(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                            std::vector<Entity *> *affected, bool notify, bool markEdited) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->setValue(entity, path, text, force, affected, notify, markEdited);
}

bool EntityEditor::setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text,
                                   bool force, std::vector<Entity *> *affected, bool notify) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->setValueNoThrow(entity, path, text, force, affected, notify);
}

bool EntityEditor::setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool notify) {
  EntityEditorService *editor = service();
  return editor != nullptr && editor->setValueNoThrow(entity, path, value, notify);
}

} // namespace EntityModel
