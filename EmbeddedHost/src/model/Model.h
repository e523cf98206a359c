#pragma once

#include "EmbeddedHost/src/model/ModelEntity.h"
#include "EmbeddedHost/src/model/VersionTree.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace EmbeddedHost {

/// The entities of a project and every change to them. Values of versioned entities go into the current version;
/// those of project-level entities are the same in every version.
class Model {
public:
  explicit Model(ModelSchema schema);
  Model(const Model &) = delete;
  Model &operator=(const Model &) = delete;
  ~Model();

  const ModelSchema &schema() const { return m_schema; }
  VersionTree &tree() { return m_tree; }
  const VersionTree &tree() const { return m_tree; }
  ModelEntity &root() const { return *m_root; }
  /// Expires with the model.
  std::weak_ptr<Model> lifetime() const { return m_lifetime; }

  /// The entity with that number, deleted ones included; null when there never was one.
  ModelEntity *findEntity(std::int64_t number) const;
  const std::vector<std::unique_ptr<ModelEntity>> &entities() const { return m_entities; }

  /// \name Changes
  /// All of them mark the project as changed.
  /// @{

  /// Records and shows a value. False when no version is current to take it.
  bool setValue(Slot &slot, Value value);
  /// Records a value in any version.
  void setValueIn(Version &version, Slot &slot, Value value);
  /// Reads and sets; "" takes a number away.
  /// \throws std::invalid_argument  the text is no value
  bool setText(Slot &slot, const std::string &text);
  /// Creates an entity at a position of a list, past its end for the end, or in a link.
  ModelEntity *create(const std::shared_ptr<const EntityType> &type, ModelEntity &owner, Slot &link,
                      const std::string &name, std::size_t position);
  /// Links an entity without owning it.
  bool addLink(Slot &link, ModelEntity &entity, std::size_t position);
  /// Moves an entity to the position in an owning list or link.
  bool move(ModelEntity &entity, Slot &link, std::size_t position);
  /// Moves an element of a list before the one that is now at \p to.
  bool reorder(Slot &list, std::size_t from, std::size_t to);
  /// Removes an entity with what it owns: from every version at project level, else from the current version.
  bool remove(ModelEntity &entity);
  bool rename(ModelEntity &entity, const std::string &name);
  /// @}

  /// Puts an entity back as it was saved, without a place.
  ModelEntity &restore(std::int64_t number, const std::shared_ptr<const EntityType> &type,
                       const std::string &name, bool isProjectLevel);
  std::int64_t nextNumber() const { return m_nextNumber; }
  void reserveNumbers(std::int64_t next);

  /// Changes what a slot shows, and with it who owns which entity.
  static void show(Slot &slot, Value value);
  /// Whether the slot's value belongs to the project and not to a version.
  static bool isProjectLevel(const Slot &slot);

  /// \name What is not saved yet
  /// @{
  bool needsSave = false;
  const std::unordered_set<const ModelEntity *> &unsavedEntities() const { return m_unsavedEntities; }
  const std::unordered_set<const Slot *> &unsavedSlots() const { return m_unsavedSlots; }
  const std::vector<std::int64_t> &deletedEntities() const { return m_deletedEntities; }
  void forgetUnsaved();
  /// @}

private:
  bool hasPlaceFor(const Slot &link, const ModelEntity &entity) const;
  bool insert(Slot &link, ModelEntity &entity, bool isOwned, std::size_t position);
  void takeOutOf(Slot &owner, ModelEntity &entity);
  bool takeOut(ModelEntity &entity);
  std::shared_ptr<ListContent> editableList(Slot &list);
  void buryWithContent(ModelEntity &entity);

  std::shared_ptr<Model> m_lifetime;
  ModelSchema m_schema;
  std::vector<std::unique_ptr<ModelEntity>> m_entities;
  std::unordered_map<std::int64_t, ModelEntity *> m_byNumber;
  ModelEntity *m_root = nullptr;
  std::int64_t m_nextNumber = 1;
  std::unordered_set<const ModelEntity *> m_unsavedEntities;
  std::unordered_set<const Slot *> m_unsavedSlots;
  std::vector<std::int64_t> m_deletedEntities;
  VersionTree m_tree;
};

} // namespace EmbeddedHost
