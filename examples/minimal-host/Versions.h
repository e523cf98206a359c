#pragma once

#include "HostModel/ChangeManager.h"
#include "HostModel/ModelVersion.h"
#include "Model.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace MinimalHost {

using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

class Operation final : public EntityModel::EditOperation {
public:
  int getKind() const override { return value == nullptr ? kValueSet + 1 : kValueSet; }
  const Attribute *getValue() const override { return value.get(); }

  std::unique_ptr<Attribute> value;
};

/// A version is its own delta: what was set in it, over what its previous version has now.
class Version final : public ModelVersion, public EntityModel::ModelDelta {
public:
  Version(std::string text, Version *before) : label(std::move(text)), previous(before) {}

  std::string getLabel() const override { return label; }
  void setLabel(const std::string &text) override { label = text; }
  EntityModel::ModelVersionStudyType getStudyType() const override { return studyType; }
  void setStudyType(EntityModel::ModelVersionStudyType type) override { studyType = type; }
  VersionType getVersionType() const override;
  ModelVersion *getStudyBaseline() const override;
  bool isStudyBaseline() const override { return studyType != EntityModel::ModelVersionStudyType::None; }
  void clearStudy() override;
  void removeFromStudy() override;
  bool isStudyCase(bool throughAlternate, bool anyRelation) const override;
  void setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) override;
  void setReadOnlyVersion(const std::string &text) override { isReadOnly = text == "true"; }
  ModelVersion *getPrevious() const override { return previous; }
  const_iterator beginNext() const override { return next.data(); }
  const_iterator endNext() const override { return next.data() + next.size(); }
  EntityModel::ModelDelta *getDelta(bool /*includeUnsaved*/) const override;
  EntityModel::ModelVersionExternalData *getExternalData() const override { return nullptr; }
  const EntityModel::EditOperation *findEditOperation(const Entity *entity,
                                                      const AttributePath &path) const override;

  std::string label;
  Version *previous;
  std::vector<ModelVersion *> next;
  std::map<const Slot *, Value> edits;
  bool isReadOnly = false;
  /// Shared with all alternates of a version: that version, or null once it is gone.
  std::shared_ptr<Version *> family = std::make_shared<Version *>(this);

private:
  EntityModel::ModelVersionStudyType studyType = EntityModel::ModelVersionStudyType::None;
  std::set<EntityModel::ModelVersionStudyCaseFlag> m_caseFlags;
  bool m_isRemoved = false;
  mutable Operation m_shown;
};

class Versions final : public EntityModel::ChangeManager {
public:
  explicit Versions(Model &model);

  ModelVersion *getCurrentVersion() const override { return m_model.current; }
  ModelVersion *getRootVersion(bool /*create*/) override { return m_versions.front().get(); }
  ModelVersion *findVersion(const std::string &label, Entity *entity) const override;
  void getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const override;
  bool setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force, Tools::ToolProgress *progress,
                         bool loadData) override;
  ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                const std::string &author, const std::string &comment, ChangeSet *changes,
                                ModelVersion *origin, bool makeReadOnly) override;
  ModelVersion *startNewAlternate(ModelVersion *version, ChangeSet *changes, bool copyContent,
                                  std::size_t position) override;
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, ModelVersion *> &others) const override;
  void editedVersion(ModelVersion *version, ChangeSet *changes, bool &edited, bool notify) override;
  void destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) override;
  void destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes, bool &destroyed) override;
  std::string getVersionFolder(ModelVersion * /*version*/, bool /*create*/) override { return {}; }
  bool canBeginPACStudy(ModelVersion *version) const override;

private:
  Version *own(const ModelVersion *version) const;
  Version &add(const std::string &label, Version *previous);
  void show(Version *version, ChangeSet *changes);

  Model &m_model;
  /// In order of creation, so that a version comes before what follows it.
  std::vector<std::unique_ptr<Version>> m_versions;
  /// The alternates of all families, those of one family in their order.
  std::vector<Version *> m_alternates;
};

} // namespace MinimalHost
