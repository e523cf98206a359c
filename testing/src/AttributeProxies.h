#pragma once

#include "testing/src/ProxyContext.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace HostTesting {

/// What owns an original.
struct Ownership {
  /// Of a copy that its proxy owns; null otherwise.
  std::unique_ptr<EntityModel::Attribute> owned;
  /// A copy outside the model.
  bool isDetached = false;
};

/// Forwards the operations of an attribute that is a \p Base.
template <class Base> class AttributeProxy : public Base {
public:
  AttributeProxy(ProxyContext &context, Base &original, AttributeKind kind, Ownership ownership);
  ~AttributeProxy() override;

  EntityModel::Entity *getOwnerEntity() override;
  const EntityModel::Entity *getOwnerEntity() const override;
  EntityModel::AttributePath getAttributePath() const override;
  EntityModel::Type getType() const override;
  bool isReadOnly(bool includeVersion) const override;
  bool isLocked() const override;
  bool isMonitor() const override;
  bool isInternal() const override;
  bool isInteger() const override;
  bool isReal() const override;
  bool isChoice() const override;
  bool isBoolean() const override;
  bool isEntityLink() const override;
  bool isTypeReference() const override;
  bool isEntityList() const override;
  bool isText() const override;
  bool isAttributeReference() const override;
  bool isEntity() const override;
  EntityModel::Entity *asEntity() override;
  EntityModel::EntityLink *asLink() override;
  EntityModel::ListAttribute *asList() override;
  EntityModel::TypeAttribute *asTypeAttribute() override;
  EntityModel::Attribute *getReferencedAttribute() const override;
  bool hasValue() const override;
  std::string getValueAsString() const override;
  void setValueFromString(const std::string &text) override;
  void assignValue(const EntityModel::Attribute &other) override;
  double getStandardValue() const override;
  bool isQuantity() const override;
  std::string getUnits(int form) const override;
  double getValueInUnits(const std::string &units) const override;
  bool isNumeric() const override;
  double getNumericValue() const override;
  int getIntValue() const override;
  int getUpperIndex() const override;
  void setOptionalMinimum(const std::optional<double> &minimum) override;
  void setOptionalMaximum(const std::optional<double> &maximum) override;
  std::string getTypeDescription() const override;
  std::unique_ptr<EntityModel::Attribute> clone() const override;

protected:
  template <class Body, class... Arguments>
  auto call(const char *operation, const Body &body, const Arguments &...arguments) const {
    return m_context.perform(
        operation, m_ownership.isDetached,
        [&] { return m_context.render(static_cast<const EntityModel::Attribute *>(this), arguments...); },
        body);
  }

  // Set for a copy, which may outlive the wrapper; declared first, so that it goes last.
  std::shared_ptr<ProxyContext> m_keptContext;
  ProxyContext &m_context;
  Base &m_original;

private:
  Ownership m_ownership;
};

/// Makes the proxy of the class that an attribute has.
std::unique_ptr<EntityModel::Attribute> makeAttributeProxy(ProxyContext &context,
                                                           EntityModel::Attribute &original,
                                                           AttributeKind kind, Ownership ownership);

} // namespace HostTesting
