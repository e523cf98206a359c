#pragma once

#include "HostModel/Export.h"

#include <string>

namespace EntityModel {

class Attribute;

/// What a host writes to offer ModellingImpact.
class HOSTMODEL_EXPORT ModellingImpactService {
public:
  ModellingImpactService() = default;
  ModellingImpactService(const ModellingImpactService &) = delete;
  ModellingImpactService &operator=(const ModellingImpactService &) = delete;
  virtual ~ModellingImpactService();

  virtual bool hasModellingImpact(const Attribute *attribute, const std::string &kind,
                                  bool includeOwners) = 0;
};

/// Whether changes of attributes matter to kinds of modelling.
class HOSTMODEL_EXPORT ModellingImpact {
public:
  ModellingImpact() = delete;

  /// Whether the attribute has the named impact: for "NoCFDImpact", whether changing it leaves the simulation
  /// as it is, as with names, notes and colours. False without a host.
  /// \param includeOwners  also true when
  /// an owner of the attribute is marked so
  static bool hasModellingImpact(const Attribute *attribute, const std::string &kind, bool includeOwners);
};

} // namespace EntityModel
