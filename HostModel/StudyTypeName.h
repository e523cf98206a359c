#pragma once

#include "HostModel/Export.h"
#include "HostModel/StudyEnumerations.h"

#include <QString>

namespace EntityModel {

/// What a host writes to name its study types.
class HOSTMODEL_EXPORT StudyTypeNameService {
public:
  StudyTypeNameService() = default;
  StudyTypeNameService(const StudyTypeNameService &) = delete;
  StudyTypeNameService &operator=(const StudyTypeNameService &) = delete;
  virtual ~StudyTypeNameService();

  /// Must be constant over time and sessions and free of "%": names of versions are composed from it and
  /// composed again to find them.
  virtual QString getStudyTypeName(ModelVersionStudyType type) = 0;
};

/// Display name of a study type, used in progress texts and version names; "" without a host.
HOSTMODEL_EXPORT QString modelVersionStudyTypeToQString(ModelVersionStudyType type);

} // namespace EntityModel
