#include "HostModel/StudyTypeName.h"

#include "HostModel/Host.h"

namespace EntityModel {

StudyTypeNameService::~StudyTypeNameService() = default;

QString modelVersionStudyTypeToQString(ModelVersionStudyType type) {
  HostModel::Host *host = HostModel::installedHost();
  StudyTypeNameService *service = host == nullptr ? nullptr : host->getStudyTypeNames();
  return service == nullptr ? QString() : service->getStudyTypeName(type);
}

} // namespace EntityModel
