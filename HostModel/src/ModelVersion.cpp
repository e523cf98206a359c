#include "HostModel/ModelVersion.h"

namespace EntityModel {

EditOperation::~EditOperation() = default;
ModelDelta::~ModelDelta() = default;
ModelVersionExternalData::~ModelVersionExternalData() = default;
ModelVersion::~ModelVersion() = default;

} // namespace EntityModel
