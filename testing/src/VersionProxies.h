#pragma once

#include "testing/src/ProxyContext.h"

#include <memory>
#include <string>
#include <vector>

namespace HostTesting {

/// Forwards the operations of a version.
class ModelVersionProxy final : public EntityModel::ModelVersion {
public:
  ModelVersionProxy(ProxyContext &context, EntityModel::ModelVersion &original);
  ~ModelVersionProxy() override;

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
  template <class Body, class... Arguments>
  auto call(const char *operation, const Body &body, const Arguments &...arguments) const;
  void updateNext() const;

  ProxyContext &m_context;
  EntityModel::ModelVersion &m_original;
  // The proxies of the following versions. Kept while they are the same, so that a range stays valid.
  mutable std::vector<EntityModel::ModelVersion *> m_next;
};

/// Forwards the operations of external data.
class ExternalDataProxy final : public EntityModel::ModelVersionExternalData {
public:
  ExternalDataProxy(ProxyContext &context, EntityModel::ModelVersionExternalData &original);
  ~ExternalDataProxy() override;

  const_iterator begin() const override;
  const_iterator end() const override;

private:
  void updateDeltas() const;

  ProxyContext &m_context;
  EntityModel::ModelVersionExternalData &m_original;
  mutable std::vector<EntityModel::ModelDelta *> m_deltas;
};

/// Forwards the operations of a delta.
class ModelDeltaProxy final : public EntityModel::ModelDelta {
public:
  ModelDeltaProxy(ProxyContext &context, EntityModel::ModelDelta &original);
  ~ModelDeltaProxy() override;

  const EntityModel::EditOperation *findEditOperation(const EntityModel::Entity *entity,
                                                      const EntityModel::AttributePath &path) const override;

private:
  ProxyContext &m_context;
  EntityModel::ModelDelta &m_original;
};

/// Forwards the operations of an edit operation, until the next one is looked up.
class EditOperationProxy final : public EntityModel::EditOperation {
public:
  EditOperationProxy(ProxyContext &context, const EntityModel::EditOperation &original);
  ~EditOperationProxy() override;

  int getKind() const override;
  const EntityModel::Attribute *getValue() const override;

private:
  ProxyContext &m_context;
  const EntityModel::EditOperation &m_original;
  // The value that was handed out last, with its original.
  mutable const EntityModel::Attribute *m_originalValue = nullptr;
  mutable std::unique_ptr<EntityModel::Attribute> m_value;
};

} // namespace HostTesting
