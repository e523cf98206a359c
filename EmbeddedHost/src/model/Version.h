#pragma once

#include "EmbeddedHost/src/model/EditTable.h"
#include "HostModel/ModelVersion.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace EmbeddedHost {

class Version;
class VersionTree;

/// The alternates made from one version and from each other, in their order.
struct AlternateFamily {
  std::int64_t number = 0;   ///< that of the first origin; stays when the origin is destroyed
  Version *origin = nullptr; ///< the version that the first was made from; null when it was destroyed
  std::vector<Version *> members;
};

/// What a version is, apart from its place in the tree and its edits. All of it is saved.
struct VersionMarks {
  std::string label;
  std::string description;
  std::string author;
  std::string comment;
  EntityModel::ModelVersionStudyType studyType = EntityModel::ModelVersionStudyType::None;
  std::set<EntityModel::ModelVersionStudyCaseFlag> caseFlags;
  bool isRemovedFromStudy = false;
  bool isReadOnly = false;
  bool isEdited = false;
};

/// The one edit operation that is shown at a time.
class ShownEdit final : public EntityModel::EditOperation {
public:
  ~ShownEdit() override;
  /// Shows another edit; the value that was handed out before is gone.
  void show(const Edit &edit);
  int getKind() const override;
  const EntityModel::Attribute *getValue() const override;

private:
  const Edit *m_edit = nullptr;
  /// Of the edit that was last asked for its value; changed in place for the next one.
  mutable std::unique_ptr<EntityModel::Attribute> m_value;
  mutable bool m_isValueShown = false;
};

/// One version of the model.
class Version final : public EntityModel::ModelVersion, private EntityModel::ModelDelta {
public:
  /// \param number  counts the versions of a project in order of creation, never used again
  /// \param folder  names the version's results folder; never changes
  Version(VersionTree &tree, std::int64_t number, std::string folder, Version *previous);
  ~Version() override;

  std::int64_t number() const { return m_number; }
  const std::string &folder() const { return m_folder; }
  Version *previous() const { return m_previous; }
  std::size_t depth() const { return m_depth; }
  const VersionMarks &marks() const { return m_marks; }
  const std::vector<EntityModel::ModelVersion *> &followers() const { return m_next; }
  const std::shared_ptr<AlternateFamily> &family() const { return m_family; }
  /// The version that this one is an alternate of, or null.
  Version *alternateOf() const;

  EditTable edits;
  /// Whether the model shows this version or one that follows it.
  bool isActive = false;
  /// While active: for each edit the value that the previous version shows.
  std::vector<Value> shadows;
  /// Slots whose edits are not saved yet.
  std::unique_ptr<std::unordered_set<const Slot *>> unsavedEdits;
  /// Label, marks or place differ from what is saved.
  bool isUnsaved = true;
  /// Orders the members of a family; between two there is room for another.
  double rank = 0.0;
  /// The project's file has a row of this version.
  bool isInFile = false;

  std::string getLabel() const override;
  void setLabel(const std::string &label) override;
  EntityModel::ModelVersionStudyType getStudyType() const override;
  void setStudyType(EntityModel::ModelVersionStudyType type) override;
  VersionType getVersionType() const override;
  EntityModel::ModelVersion *getStudyBaseline() const override;
  bool isStudyBaseline() const override;
  void clearStudy() override;
  void removeFromStudy() override;
  bool isStudyCase(bool throughAlternate, bool anyRelation) const override;
  void setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) override;
  void setReadOnlyVersion(const std::string &text) override;
  EntityModel::ModelVersion *getPrevious() const override;
  const_iterator beginNext() const override;
  const_iterator endNext() const override;
  EntityModel::ModelDelta *getDelta(bool includeUnsaved) const override;
  EntityModel::ModelVersionExternalData *getExternalData() const override;

private:
  friend class VersionTree;

  const EntityModel::EditOperation *findEditOperation(const EntityModel::Entity *entity,
                                                      const EntityModel::AttributePath &path) const override;
  template <class Change> void changeMarks(Change change);

  VersionTree &m_tree;
  std::int64_t m_number;
  std::string m_folder;
  Version *m_previous;
  std::size_t m_depth;
  VersionMarks m_marks;
  std::vector<EntityModel::ModelVersion *> m_next;
  std::shared_ptr<AlternateFamily> m_family; ///< of which it is the origin or a member; null when in none
  Version *m_sameLabelNext = nullptr;        ///< a later version with the same label
};

} // namespace EmbeddedHost
