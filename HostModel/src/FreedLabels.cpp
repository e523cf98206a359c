#include "HostModel/FreedLabels.h"

namespace EntityModel {

FreedLabels::~FreedLabels() = default;

} // namespace EntityModel
