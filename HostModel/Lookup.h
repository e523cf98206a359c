#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/Export.h"
#include "HostModel/TypeRef.h"

#include <string>
#include <vector>

namespace EntityModel {

class Attribute;
class CompositeAttribute;
class Entity;

/// \name Look-ups over any host's attributes
/// None of them throws of its own or changes anything; a null composite finds nothing.
/// @{

/// The member at the path, or null.
HOSTMODEL_EXPORT Attribute *findAttribute(CompositeAttribute *composite, const AttributePath &path);
HOSTMODEL_EXPORT const Attribute *findAttribute(const CompositeAttribute *composite,
                                                const AttributePath &path);
/// The entity linked at the path, or null.
HOSTMODEL_EXPORT Entity *getLinkedEntity(const CompositeAttribute *composite, const AttributePath &path);
/// The entities of the list at the path in list order, null entries left out; empty when there is no list.
HOSTMODEL_EXPORT std::vector<Entity *> getLinkedEntities(const CompositeAttribute *composite,
                                                         const AttributePath &path);
/// The value at the path as text, or \p defaultValue when there is no attribute.
HOSTMODEL_EXPORT std::string getStringValue(const CompositeAttribute *composite, const AttributePath &path,
                                            const std::string &defaultValue);
/// The value of the boolean at the path, or \p defaultValue when there is none or it holds no value.
HOSTMODEL_EXPORT bool getBoolValue(const CompositeAttribute *composite, const AttributePath &path,
                                   bool defaultValue);
/// The type reference held at the path, or \p defaultValue when there is none.
HOSTMODEL_EXPORT TypeRef getTypeValue(const CompositeAttribute *composite, const AttributePath &path,
                                      const TypeRef &defaultValue);
/// @}

} // namespace EntityModel
