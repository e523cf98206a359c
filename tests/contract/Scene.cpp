#include "tests/contract/Scene.h"

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;

namespace {

template <class Object> Object &there(Object *object, const std::string &what) {
  if (object == nullptr) {
    throw std::logic_error("There is no " + what);
  }
  return *object;
}

} // namespace

Scene::Scene(const HostKind &kind) : m_kind(kind), m_subject(kind.make()) {
  install();
  m_subject->open();
  m_isOpen = true;
  m_partA = create("Part", root(), "Parts", "A");
  m_partB = create("Part", root(), "Parts", "B");
}

Scene::~Scene() {
  try {
    if (m_isOpen) {
      install();
      close();
    }
  } catch (const std::exception &error) {
    ADD_FAILURE() << "The project was not closed: " << error.what();
  }
}

EntityModel::ChangeManager &Scene::tree() const {
  return there(EntityEditor::getChangeManager(), "change manager");
}

EntityModel::Entity *Scene::root() const {
  return &there(EntityEditor::getRootEntity(), "root entity");
}

ModelVersion *Scene::base() const {
  return &there(tree().getRootVersion(false), "first version");
}

ModelVersion *Scene::current() const {
  return &there(tree().getCurrentVersion(), "current version");
}

std::string Scene::folder() {
  if (m_folder == nullptr) {
    m_folder = std::make_unique<QTemporaryDir>();
    if (!m_folder->isValid()) {
      throw std::logic_error("There is no folder for the case");
    }
  }
  return m_folder->path().toStdString();
}

EntityModel::Attribute *Scene::find(EntityModel::Entity *entity, const std::string &path) const {
  return EntityModel::findAttribute(entity, AttributePath(path));
}

EntityModel::Attribute &Scene::attribute(EntityModel::Entity *entity, const std::string &path) const {
  return there(find(entity, path), "attribute " + path);
}

EntityModel::ListAttribute &Scene::list(EntityModel::Entity *owner, const std::string &path) const {
  return there(attribute(owner, path).asList(), "list " + path);
}

std::string Scene::text(EntityModel::Entity *entity, const std::string &path) const {
  return attribute(entity, path).getValueAsString();
}

double Scene::number(EntityModel::Entity *entity, const std::string &path) const {
  return attribute(entity, path).getStandardValue();
}

void Scene::set(EntityModel::Entity *entity, const std::string &path, const std::string &text) const {
  if (!EntityEditor::setValue(entity, AttributePath(path), text, false, nullptr, true, true)) {
    throw std::logic_error("\"" + text + "\" was not set as " + path);
  }
}

EntityModel::Entity *Scene::create(const std::string &type, EntityModel::Entity *owner,
                                   const std::string &path, const std::string &name, int position) const {
  return EntityEditor::createEntity(EntityModel::TypeRef::fromLabel(type), owner, AttributePath(path),
                                    nullptr, true, true, false, name, position);
}

bool Scene::link(EntityModel::Entity *owner, const std::string &path, EntityModel::Entity *entity) const {
  return EntityEditor::addEntity(owner, AttributePath(path), entity, false, true, true, true, false, -1);
}

Texts Scene::names(EntityModel::Entity *owner, const std::string &path) const {
  const EntityModel::ListAttribute &elements = list(owner, path);
  Texts all;
  for (int index = 0; index < elements.getCount(); ++index) {
    const EntityModel::Entity *element = elements.getEntity(index);
    all.push_back(element == nullptr ? "(none)" : element->getName(true));
  }
  return all;
}

void Scene::findParts() {
  m_partA = list(root(), "Parts").getEntity(0);
  m_partB = list(root(), "Parts").getEntity(1);
}

void Scene::install() {
  if (!m_installation) {
    m_installation.emplace(m_subject->host());
  }
}

void Scene::uninstall() {
  m_installation.reset();
}

void Scene::close() {
  m_isOpen = false;
  m_subject->close();
}

void Scene::reopen() {
  close();
  uninstall();
  if (!m_subject->reopen()) {
    throw std::logic_error("The project was not opened again");
  }
  install();
  m_subject->open();
  m_isOpen = true;
  findParts();
}

void Scene::saveAndReopen() {
  if (!m_subject->save(folder() + "/project")) {
    throw std::logic_error("The project was not saved");
  }
  reopen();
}

} // namespace HostContract
