#include "testing/src/VersionProxies.h"

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::EditOperation;
using EntityModel::Entity;
using EntityModel::ModelDelta;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionExternalData;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;

ModelVersionProxy::ModelVersionProxy(ProxyContext &context, ModelVersion &original)
    : m_context(context), m_original(original) {}

ModelVersionProxy::~ModelVersionProxy() = default;

template <class Body, class... Arguments>
auto ModelVersionProxy::call(const char *operation, const Body &body, const Arguments &...arguments) const {
  return m_context.perform(
      operation, false,
      [&] { return m_context.render(static_cast<const ModelVersion *>(this), arguments...); }, body);
}

std::string ModelVersionProxy::getLabel() const {
  return call("ModelVersion::getLabel", [&] { return m_original.getLabel(); });
}
void ModelVersionProxy::setLabel(const std::string &label) {
  call(
      "ModelVersion::setLabel", [&] { m_original.setLabel(label); }, label);
}
ModelVersionStudyType ModelVersionProxy::getStudyType() const {
  return call("ModelVersion::getStudyType", [&] { return m_original.getStudyType(); });
}
void ModelVersionProxy::setStudyType(ModelVersionStudyType type) {
  call(
      "ModelVersion::setStudyType", [&] { m_original.setStudyType(type); }, static_cast<int>(type));
}
ModelVersion::VersionType ModelVersionProxy::getVersionType() const {
  return call("ModelVersion::getVersionType", [&] { return m_original.getVersionType(); });
}
ModelVersion *ModelVersionProxy::getStudyBaseline() const {
  return call("ModelVersion::getStudyBaseline",
              [&] { return m_context.wrap(m_original.getStudyBaseline()); });
}
bool ModelVersionProxy::isStudyBaseline() const {
  return call("ModelVersion::isStudyBaseline", [&] { return m_original.isStudyBaseline(); });
}
void ModelVersionProxy::clearStudy() {
  call("ModelVersion::clearStudy", [&] { m_original.clearStudy(); });
}
void ModelVersionProxy::removeFromStudy() {
  call("ModelVersion::removeFromStudy", [&] { m_original.removeFromStudy(); });
}
bool ModelVersionProxy::isStudyCase(bool throughAlternate, bool anyRelation) const {
  return call(
      "ModelVersion::isStudyCase", [&] { return m_original.isStudyCase(throughAlternate, anyRelation); },
      named("throughAlternate", throughAlternate), named("anyRelation", anyRelation));
}
void ModelVersionProxy::setStudyCaseFlag(ModelVersionStudyCaseFlag flag, bool set) {
  call(
      "ModelVersion::setStudyCaseFlag", [&] { m_original.setStudyCaseFlag(flag, set); },
      static_cast<int>(flag), named("set", set));
}
void ModelVersionProxy::setReadOnlyVersion(const std::string &text) {
  call(
      "ModelVersion::setReadOnlyVersion", [&] { m_original.setReadOnlyVersion(text); }, text);
}
ModelVersion *ModelVersionProxy::getPrevious() const {
  return call("ModelVersion::getPrevious", [&] { return m_context.wrap(m_original.getPrevious()); });
}
ModelDelta *ModelVersionProxy::getDelta(bool includeUnsaved) const {
  return call(
      "ModelVersion::getDelta", [&] { return m_context.wrap(m_original.getDelta(includeUnsaved)); },
      named("includeUnsaved", includeUnsaved));
}
ModelVersionExternalData *ModelVersionProxy::getExternalData() const {
  return call("ModelVersion::getExternalData", [&] { return m_context.wrap(m_original.getExternalData()); });
}

void ModelVersionProxy::updateNext() const {
  std::vector<ModelVersion *> next;
  for (auto version = m_original.beginNext(); version != m_original.endNext(); ++version) {
    next.push_back(m_context.wrap(*version));
  }
  if (next != m_next) {
    m_next = std::move(next);
  }
}

// A refused call gives null, which would not be the begin of any range; the end of the range makes it empty.
ModelVersion::const_iterator ModelVersionProxy::beginNext() const {
  const_iterator begin = nullptr;
  const bool isMade = call("ModelVersion::beginNext", [&] {
    updateNext();
    begin = m_next.data();
    return true;
  });
  if (!isMade) {
    updateNext();
    begin = m_next.data() + m_next.size();
  }
  return begin;
}

ModelVersion::const_iterator ModelVersionProxy::endNext() const {
  call("ModelVersion::endNext", [&] { updateNext(); });
  return m_next.data() + m_next.size();
}

ExternalDataProxy::ExternalDataProxy(ProxyContext &context, ModelVersionExternalData &original)
    : m_context(context), m_original(original) {}

ExternalDataProxy::~ExternalDataProxy() = default;

void ExternalDataProxy::updateDeltas() const {
  std::vector<ModelDelta *> deltas;
  for (auto delta = m_original.begin(); delta != m_original.end(); ++delta) {
    deltas.push_back(m_context.wrap(*delta));
  }
  if (deltas != m_deltas) {
    m_deltas = std::move(deltas);
  }
}

ModelVersionExternalData::const_iterator ExternalDataProxy::begin() const {
  const_iterator begin = nullptr;
  const bool isMade = m_context.perform(
      "ModelVersionExternalData::begin", false, [] { return std::string(); },
      [&] {
        updateDeltas();
        begin = m_deltas.data();
        return true;
      });
  if (!isMade) {
    updateDeltas();
    begin = m_deltas.data() + m_deltas.size();
  }
  return begin;
}

ModelVersionExternalData::const_iterator ExternalDataProxy::end() const {
  m_context.perform(
      "ModelVersionExternalData::end", false, [] { return std::string(); }, [&] { updateDeltas(); });
  return m_deltas.data() + m_deltas.size();
}

ModelDeltaProxy::ModelDeltaProxy(ProxyContext &context, ModelDelta &original)
    : m_context(context), m_original(original) {}

ModelDeltaProxy::~ModelDeltaProxy() = default;

const EditOperation *ModelDeltaProxy::findEditOperation(const Entity *entity,
                                                        const AttributePath &path) const {
  return m_context.perform(
      "ModelDelta::findEditOperation", false,
      [&] {
        return m_context.render(Member{entity, path});
      },
      [&] { return m_context.wrapTransient(m_original.findEditOperation(m_context.unwrap(entity), path)); });
}

EditOperationProxy::EditOperationProxy(ProxyContext &context, const EditOperation &original)
    : m_context(context), m_original(original) {}

EditOperationProxy::~EditOperationProxy() = default;

int EditOperationProxy::getKind() const {
  return m_context.perform(
      "EditOperation::getKind", false, [] { return std::string(); }, [&] { return m_original.getKind(); });
}

const Attribute *EditOperationProxy::getValue() const {
  return m_context.perform(
      "EditOperation::getValue", false, [] { return std::string(); },
      [&]() -> const Attribute * {
        const Attribute *value = m_original.getValue();
        if (value != m_originalValue) {
          m_value = m_context.wrapTransient(value);
          m_originalValue = value;
        }
        return m_value.get();
      });
}

} // namespace HostTesting
