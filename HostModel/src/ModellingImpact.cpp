#include "HostModel/ModellingImpact.h"

#include "HostModel/Host.h"

namespace EntityModel {

ModellingImpactService::~ModellingImpactService() = default;

bool ModellingImpact::hasModellingImpact(const Attribute *attribute, const std::string &kind,
                                         bool includeOwners) {
  HostModel::Host *host = HostModel::installedHost();
  ModellingImpactService *service = host == nullptr ? nullptr : host->getModellingImpact();
  return service != nullptr && service->hasModellingImpact(attribute, kind, includeOwners);
}

} // namespace EntityModel
