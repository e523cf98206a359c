#pragma once

#include "HostModel/Export.h"

namespace EntityModel {

class Attribute;

/// The ordering of attributes in sets: by the place of the owner entity in the model tree, then by the text
/// of the attribute path, then by address, so that two different attributes are never equal. Null comes
/// first.
struct HOSTMODEL_EXPORT AttributeSorter {
  bool operator()(const Attribute *a, const Attribute *b) const;
};

} // namespace EntityModel
